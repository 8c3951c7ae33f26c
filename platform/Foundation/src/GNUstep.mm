// Sets the path of iconv's modules, which lie in the sysroot; without it GNUstep damages UTF-16 text. Runs
// when the library is loaded, before any string can be converted.
#include <cstdlib>

__attribute__((constructor(101))) static void setIconvModulePath() {
    setenv("GCONV_PATH", KAZ_GCONV_PATH, 0);
}
