// Pixel layouts under their three names.
#include "Formats.h"

namespace ci {

static const CoreImageFormat formats[] = {
    {20, engine::Format::BGRA8, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little},
    {23, engine::Format::ARGB8, kCGImageAlphaPremultipliedFirst},
    {24, engine::Format::RGBA8, kCGImageAlphaPremultipliedLast},
    {27, engine::Format::RGBA16, kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Host},
    {31, engine::Format::RGBAf,
     kCGImageAlphaPremultipliedLast | kCGBitmapFloatComponents | kCGBitmapByteOrder32Host, true},
    {34, engine::Format::RGBAf,
     kCGImageAlphaPremultipliedLast | kCGBitmapFloatComponents | kCGBitmapByteOrder32Host},
};

const CoreImageFormat* formatNamed(int code) {
    for (const CoreImageFormat& format : formats)
        if (format.code == code) return &format;
    return nullptr;
}

int formatForBits(int bits) { return bits == 32 ? 34 : bits == 16 ? 27 : 23; }

std::optional<engine::PixelLayout> layoutOf(const cg::PixelFormat& f, CGColorSpaceRef space) {
    engine::PixelLayout layout;
    layout.space = cg::spaceOf(space);
    if (!layout.space || f.swapped) return {};
    layout.alpha = f.alpha == cg::Alpha::premultiplied ? engine::Alpha::premultiplied
                   : f.alpha == cg::Alpha::straight    ? engine::Alpha::straight
                                                       : engine::Alpha::opaque;
    if (f.bits == 8 && f.pixelBits == 8 && f.colors == 1) {
        layout.format = engine::Format::Gray8;
        return layout;
    }
    if (f.colors != 3 || f.pixelBits != 4 * f.bits) return {};
    int fourth = f.hasAlpha() ? f.offset[cg::alphaPlane] : f.padding;
    auto isOrder = [&](int r, int g, int b, int a) {
        return f.offset[0] == r && f.offset[1] == g && f.offset[2] == b && fourth == a;
    };
    if (isOrder(0, 1, 2, 3))
        layout.format = f.bits == 32   ? engine::Format::RGBAf
                        : f.bits == 16 ? engine::Format::RGBA16
                                       : engine::Format::RGBA8;
    else if (f.bits == 8 && isOrder(1, 2, 3, 0))
        layout.format = engine::Format::ARGB8;
    else if (f.bits == 8 && isOrder(2, 1, 0, 3))
        layout.format = engine::Format::BGRA8;
    else
        return {};
    return layout;
}

} // namespace ci
