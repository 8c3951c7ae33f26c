// Pictures for the tests of Core Image to work on.
#pragma once

#import <QuartzCore/QuartzCore.h>

#include <CoreGraphics/CGTesting.h>
#include <ImageIO/ImageIO.h>
#include <testing/bitmap.h>
#include <testing/cocoa.h>

#include <map>

/// Every pixel has another colour: (40 x, 60 y, 128) with y counted from the top.
inline cg::Retained<CGImageRef> makePicture(size_t width, size_t height,
                                            CGColorSpaceRef (*space)() = CGColorSpaceCreateDeviceRGB) {
    Bytes bytes;
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            for (size_t v : {40 * x, 60 * y, size_t(128), size_t(255)})
                bytes.push_back(static_cast<std::uint8_t>(v));
    return makeImage(width, height, 8, 32, space, kCGImageAlphaPremultipliedLast, bytes);
}

/// The picture as a PNG file.
inline NSData* pngOf(CGImageRef image) {
    NSMutableData* data = [NSMutableData data];
    auto destination = cg::Retained<CGImageDestinationRef>::adopt(
        CGImageDestinationCreateWithData((CFMutableDataRef)data, (CFStringRef) @"public.png", 1, nullptr));
    CGImageDestinationAddImage(destination.get(), image, nullptr);
    return CGImageDestinationFinalize(destination.get()) ? data : nil;
}

/// How many objects of each class are alive.
inline std::map<std::string, int> liveObjects() {
    const char* names[64];
    int counts[64];
    std::map<std::string, int> all;
    int n = PlatformLiveObjects(names, counts, 64);
    for (int i = 0; i < n; ++i) all[names[i]] = counts[i];
    return all;
}
