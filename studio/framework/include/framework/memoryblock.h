// MemoryBlock: raw bytes in a program.
#pragma once

#include <hostapi/abi.h>

#include <cstdint>
#include <string_view>

namespace studio {

struct MemoryBlockBytes {
    char* data = nullptr;
    std::int32_t size = 0;
    bool littleEndian = true;
};

MemoryBlockBytes& memoryBlockBytes(REALobject block);
bool resizeMemoryBlock(REALobject block, std::int32_t size); // false when there is no memory for it
REALobject newMemoryBlock(std::string_view bytes);           // owned
REALobject tryNewMemoryBlock(std::int32_t size);             // null when there is no memory for it

} // namespace studio
