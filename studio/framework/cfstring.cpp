#include "framework/cfstring.h"

#include <CoreFoundation/CoreFoundation.h>

namespace studio {

const void* makeCFString(std::string_view utf8) {
    return CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(utf8.data()), CFIndex(utf8.size()),
                                   kCFStringEncodingUTF8, false);
}

} // namespace studio
