// GNUstep converts UTF-16 with iconv, whose modules lie in the sysroot. Without this path text is damaged, so
// it is set as soon as a program that uses the platform is loaded, before any string can be converted.
#include <cstdlib>

__attribute__((constructor(101))) static void setIconvModulePath() {
    setenv("GCONV_PATH", KAZ_GCONV_PATH, 0);
}
