// The platform's strings, kept out of the rest of the host.
#pragma once

#include <string_view>

namespace studio {

const void* makeCFString(std::string_view utf8); // a CFStringRef that the caller owns

} // namespace studio
