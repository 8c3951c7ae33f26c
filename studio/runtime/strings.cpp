#include "runtime/strings.h"

#include "runtime/runtime.h"
#include "runtime/text.h"

namespace studio {

std::string toUtf8(REALstring s) {
    return text::toUtf8(bytesOf(s), encodingOf(s)).value_or(std::string(bytesOf(s)));
}

REALstring makeString(std::string_view utf8) { return heap().newString(utf8, kREALTextEncodingUTF8); }

} // namespace studio
