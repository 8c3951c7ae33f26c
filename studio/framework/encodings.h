// The code of a TextEncoding.
#pragma once

#include <hostapi/abi.h>

#include <cstdint>

namespace studio {

// Nil stands for bytes without an encoding.
std::uint32_t textEncodingCode(REALobject encoding);
REALobject newTextEncoding(std::uint32_t code); // owned

} // namespace studio
