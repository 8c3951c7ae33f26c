// Pictures to work on, and helpers to look at results.
#pragma once

#import <QuartzCore/QuartzCore.h>

#include <ImageIO/ImageIO.h>
#include <cg/object.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using Pixel = std::array<int, 4>;

inline std::string str(NSString* s) { return s ? [s UTF8String] : "(nil)"; }

/// Every pixel has another colour: (40 x, 60 y, 128) with y counted from the top.
inline cg::Retained<CGImageRef> makePicture(size_t width, size_t height,
                                            CGColorSpaceRef (*space)() = CGColorSpaceCreateDeviceRGB) {
    std::vector<std::uint8_t> bytes;
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            for (size_t v : {40 * x, 60 * y, size_t(128), size_t(255)})
                bytes.push_back(static_cast<std::uint8_t>(v));
    auto meaning = cg::Retained<CGColorSpaceRef>::adopt(space());
    auto data = cg::Retained<CFDataRef>::adopt(
        CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
    return cg::Retained<CGImageRef>::adopt(CGImageCreate(width, height, 8, 32, width * 4, meaning.get(),
                                                         kCGImageAlphaPremultipliedLast, provider.get(),
                                                         nullptr, false, kCGRenderingIntentDefault));
}

/// The picture as a PNG file.
inline NSData* pngOf(CGImageRef image) {
    NSMutableData* data = [NSMutableData data];
    auto destination = cg::Retained<CGImageDestinationRef>::adopt(
        CGImageDestinationCreateWithData((CFMutableDataRef)data, (CFStringRef) @"public.png", 1, nullptr));
    CGImageDestinationAddImage(destination.get(), image, nullptr);
    return CGImageDestinationFinalize(destination.get()) ? data : nil;
}

/// A bitmap context in device RGB, cleared.
struct Canvas {
    explicit Canvas(size_t width, size_t height, CGBitmapInfo info = kCGImageAlphaPremultipliedLast) {
        auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
        context = cg::Retained<CGContextRef>::adopt(
            CGBitmapContextCreate(nullptr, width, height, 8, 0, space.get(), info));
    }
    CGContextRef get() const { return context.get(); }
    /// Counted from the top left.
    Pixel at(size_t x, size_t y) const {
        auto* p = static_cast<std::uint8_t*>(CGBitmapContextGetData(get())) +
                  y * CGBitmapContextGetBytesPerRow(get()) + x * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    cg::Retained<CGContextRef> context;
};

inline void expectNear(const Pixel& actual, const Pixel& expected, int tolerance) {
    for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(actual[k], expected[k], tolerance) << "component " << k;
}

/// The exception that `body` raises, or nil.
template <class Body>
NSException* raised(Body body) {
    @try {
        body();
    } @catch (NSException* e) {
        return [[e retain] autorelease];
    }
    return nil;
}
