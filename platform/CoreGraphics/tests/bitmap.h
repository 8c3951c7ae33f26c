// A bitmap context and what it holds, for tests.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>

#include <array>
#include <cstdint>
#include <vector>

using Bytes = std::vector<std::uint8_t>;
using Pixel = std::array<int, 4>;

struct Bitmap {
    Bitmap(size_t width, size_t height, CGBitmapInfo info = kCGImageAlphaPremultipliedLast,
           CGColorSpaceRef (*space)() = CGColorSpaceCreateDeviceRGB) {
        auto meaning = cg::Retained<CGColorSpaceRef>::adopt(space());
        context = cg::Retained<CGContextRef>::adopt(
            CGBitmapContextCreate(nullptr, width, height, 8, 0, meaning.get(), info));
    }
    CGContextRef get() const { return context.get(); }
    /// The bytes of a pixel, counted from the top left.
    const std::uint8_t* at(size_t x, size_t y) const {
        return static_cast<std::uint8_t*>(CGBitmapContextGetData(get())) +
               y * CGBitmapContextGetBytesPerRow(get()) + x * CGBitmapContextGetBitsPerPixel(get()) / 8;
    }
    Pixel pixel(size_t x, size_t y) const {
        const std::uint8_t* p = at(x, y);
        return {p[0], p[1], p[2], p[3]};
    }
    cg::Retained<CGContextRef> context;
};

/// An image of tightly packed pixels.
inline cg::Retained<CGImageRef> makeImage(size_t width, size_t height, size_t bits, size_t pixelBits,
                                          CGColorSpaceRef (*space)(), CGBitmapInfo info, const Bytes& bytes) {
    auto meaning = cg::Retained<CGColorSpaceRef>::adopt(space());
    auto data = cg::Retained<CFDataRef>::adopt(
        CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
    return cg::Retained<CGImageRef>::adopt(
        CGImageCreate(width, height, bits, pixelBits, (width * pixelBits + 7) / 8, meaning.get(), info,
                      provider.get(), nullptr, false, kCGRenderingIntentDefault));
}

inline cg::Retained<CGImageRef> makeMask(size_t width, size_t height, const Bytes& bytes) {
    auto data = cg::Retained<CFDataRef>::adopt(
        CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
    return cg::Retained<CGImageRef>::adopt(
        CGImageMaskCreate(width, height, 8, 8, width, provider.get(), nullptr, false));
}
