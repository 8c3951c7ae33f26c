// libtiff on memory.
#pragma once

#include "decoder.h"

#include <tiffio.h>

namespace imageio {

/// Bytes to read, or a vector that grows as it is written.
struct MemoryFile {
    explicit MemoryFile(Bytes bytes) : bytes(bytes) {}
    explicit MemoryFile(std::vector<std::uint8_t>& output) : output(&output) {}

    std::size_t size() const { return output ? output->size() : bytes.size(); }

    Bytes bytes;
    std::vector<std::uint8_t>* output = nullptr;
    std::uint64_t position = 0;
    /// True once memory was too short for more output.
    bool failed = false;
};

/// Null when the header is damaged. `mode` is "r" or "w". The file must live until TIFFClose.
TIFF* openTiff(MemoryFile& file, const char* mode);

} // namespace imageio
