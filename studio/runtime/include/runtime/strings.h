// The host's strings as C++ reads and makes them.
#pragma once

#include "runtime/heap.h"

namespace studio {

inline std::string_view bytesOf(REALstring s) { return s ? StringCell::of(s).text() : std::string_view(); }
inline std::uint32_t encodingOf(REALstring s) {
    return s ? StringCell::of(s).encoding : kREALTextEncodingUTF8;
}
std::string toUtf8(REALstring s);
REALstring makeString(std::string_view utf8); // one host reference

} // namespace studio
