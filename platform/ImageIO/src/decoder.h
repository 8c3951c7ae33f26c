// Reading image files, in plain C++: bytes in, pixels out.
#pragma once

#include "metadata.h"

#include <color/color.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace imageio {

using Bytes = std::span<const std::uint8_t>;

/// The file is cut off, garbled, or absurdly large.
struct Damaged : std::invalid_argument {
    using std::invalid_argument::invalid_argument;
};

enum class Alpha { none, straight, premultiplied };

/// The properties of one image.
struct Info {
    std::size_t width = 0, height = 0;
    /// Bits of a component in the file.
    int depth = 8;
    bool hasAlpha = false;
    bool isFloat = false;
    bool isIndexed = false;
    /// The space of the decoded pixels. Never null after decoding.
    color::ColorSpacePtr space;
    /// The description of the embedded profile; empty without one.
    std::string profileName;
    /// 0 if the file does not say.
    double dpiX = 0, dpiY = 0;
    /// As in EXIF, 1 to 8; 0 if the file does not say.
    int orientation = 0;
    /// Read only if the pixels are not.
    Metadata metadata;
};

/// Pixels as in the file, interleaved, tightly packed, the top row first, components in the machine's byte
/// order.
struct Pixels {
    /// 8, 16 or 32 (float).
    int bits = 8;
    /// Components and, after them, alpha or a filler.
    int samples = 4;
    Alpha alpha = Alpha::none;
    std::size_t rowBytes = 0;
    std::size_t size = 0;
    std::shared_ptr<std::uint8_t[]> bytes;

    /// Cleared memory for an image. Throws Damaged for an absurd size, std::bad_alloc if memory is short.
    void allocate(std::size_t width, std::size_t height);
    std::uint8_t* row(std::size_t y) const { return bytes.get() + y * rowBytes; }
};

struct Decoded {
    Info info;
    /// Without bytes if only the information was asked for.
    Pixels pixels;
};

/// One file format. The functions throw Damaged and std::bad_alloc.
struct Format {
    /// Uniform type identifier.
    const char* type;
    bool (*recognises)(Bytes file);
    std::size_t (*count)(Bytes file);
    Decoded (*decode)(Bytes file, std::size_t index, bool pixels);
};

extern const Format jpegFormat, pngFormat, tiffFormat, gifFormat, bmpFormat, webpFormat;

/// The format that recognises the file by its first bytes; null for none.
const Format* formatOf(Bytes file);

// Shared by the decoders.

/// The memory that one picture may need, for its pixels and while it is decoded: a process has 3 GB of
/// addresses, and a file of a few bytes can claim any size.
constexpr std::uint64_t memoryLimit = 512u << 20;
/// Throws Damaged for a size of zero, or one that with `bytesPerPixel` is above the limit.
void checkSize(std::uint64_t width, std::uint64_t height, unsigned bytesPerPixel = 1);
/// Sets the space of `info` to the embedded profile if that has the right number of components, else to
/// `missing`.
void setProfile(Info& info, Bytes icc, int components, color::ColorSpacePtr missing);
/// Sets the orientation and the resolution that the metadata tell, after they are read.
void setFromMetadata(Info& info);
/// For formats that hold one image.
std::size_t one(Bytes file);

} // namespace imageio
