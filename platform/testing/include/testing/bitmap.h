// Bitmaps to draw on and images to draw, for the tests of every framework.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

using Bytes = std::vector<std::uint8_t>;
using Pixel = std::array<int, 4>;

/// A bitmap context of 8 bits per component, cleared.
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
    /// Its first four bytes.
    Pixel pixel(size_t x, size_t y) const {
        const std::uint8_t* p = at(x, y);
        return {p[0], p[1], p[2], p[3]};
    }
    cg::Retained<CGContextRef> context;
};

inline void expectNear(const Pixel& actual, const Pixel& expected, int tolerance) {
    for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(actual[k], expected[k], tolerance) << "component " << k;
}

/// A provider of a copy of the bytes.
inline cg::Retained<CGDataProviderRef> makeProvider(const Bytes& bytes) {
    auto data = cg::Retained<CFDataRef>::adopt(
        CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
}

/// An image of tightly packed pixels.
inline cg::Retained<CGImageRef> makeImage(size_t width, size_t height, size_t bits, size_t pixelBits,
                                          CGColorSpaceRef (*space)(), CGBitmapInfo info, const Bytes& bytes) {
    auto meaning = cg::Retained<CGColorSpaceRef>::adopt(space());
    return cg::Retained<CGImageRef>::adopt(
        CGImageCreate(width, height, bits, pixelBits, (width * pixelBits + 7) / 8, meaning.get(), info,
                      makeProvider(bytes).get(), nullptr, false, kCGRenderingIntentDefault));
}

/// An image mask of 8 bits: 0 lets the source through, 255 hides it.
inline cg::Retained<CGImageRef> makeMask(size_t width, size_t height, const Bytes& bytes) {
    return cg::Retained<CGImageRef>::adopt(
        CGImageMaskCreate(width, height, 8, 8, width, makeProvider(bytes).get(), nullptr, false));
}
