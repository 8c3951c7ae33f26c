// The payload of CGImage objects, and their pixels row by row in any layout.
#pragma once

#include <cg/colorspace.h>
#include <cg/dataprovider.h>
#include <cg/pixelformat.h>

namespace cg {

class CG_INTERNAL Image final : public Payload {
  public:
    using Ref = CGImageRef;

    struct Layout {
        std::size_t width = 0, height = 0, bitsPerComponent = 0, bitsPerPixel = 0, bytesPerRow = 0;
        CGBitmapInfo info = 0;
        bool isMask = false;
        bool interpolate = false;
        CGColorRenderingIntent intent = kCGRenderingIntentDefault;
    };

    /// Throws std::invalid_argument for a layout that is not supported or needs more bytes than there are.
    Image(const Layout& layout, CGColorSpaceRef space, CGDataProviderRef provider, CGImageRef mask = nullptr);

    const char* typeName() const override { return "CGImage"; }

    const Layout& layout() const { return layout_; }
    std::size_t width() const { return layout_.width; }
    std::size_t height() const { return layout_.height; }
    bool isMask() const { return layout_.isMask; }
    const PixelFormat& format() const { return format_; }
    /// Null for a mask.
    CGColorSpaceRef space() const { return space_.get(); }
    CGDataProviderRef provider() const { return provider_.get(); }
    const std::uint8_t* row(std::size_t y) const { return bytes_ + y * layout_.bytesPerRow; }
    /// The image that masks this one, stretched over it; null without.
    CGImageRef mask() const { return mask_.get(); }

  private:
    Layout layout_;
    PixelFormat format_;
    Retained<CGColorSpaceRef> space_;
    Retained<CGDataProviderRef> provider_;
    Retained<CGImageRef> mask_;
    const std::uint8_t* bytes_ = nullptr;
};

/// Rows of an image, its mask applied, in the layout and space of the caller. For one thread at a time.
class CG_INTERNAL ImageRows {
  public:
    /// Pixels come in `format` (8 bits or more), matched to `space`. A null space leaves the numbers as they
    /// are; the format must then have as many components as the image.
    ImageRows(CGImageRef image, const PixelFormat& format, CGColorSpaceRef space);
    ~ImageRows();
    /// Writes rows y to y+count-1, counted from the top, each `rowBytes` long.
    void read(std::size_t y, std::size_t count, std::uint8_t* out, std::size_t rowBytes);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace cg
