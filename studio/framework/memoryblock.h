// Raw bytes of a program.
#pragma once

#include "runtime/runtime.h"

namespace studio {

struct MemoryBlockBytes {
    char* data = nullptr;
    std::int32_t size = 0;
    bool littleEndian = true;
};

MemoryBlockBytes& memoryBlockBytes(REALobject block);
REALobject newMemoryBlock(std::string_view bytes); // owned
REALobject tryNewMemoryBlock(std::int32_t size);   // null when there is no memory for it
REALstring memoryBlockToString(REALobject block);  // owned

} // namespace studio
