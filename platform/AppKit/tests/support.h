#pragma once

#import <AppKit/AppKit.h>

#include <cg/object.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

using Pixel = std::array<int, 4>;

inline std::string str(NSString* s) { return s ? [s UTF8String] : "(nil)"; }

/// A bitmap context in device RGB, cleared.
inline cg::Retained<CGContextRef> makeContext(size_t width, size_t height) {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    return cg::Retained<CGContextRef>::adopt(
        CGBitmapContextCreate(nullptr, width, height, 8, 0, space.get(), kCGImageAlphaPremultipliedLast));
}

/// Counted from the top left.
inline Pixel pixel(CGContextRef context, size_t x, size_t y) {
    auto* p = static_cast<std::uint8_t*>(CGBitmapContextGetData(context)) +
              y * CGBitmapContextGetBytesPerRow(context) + x * 4;
    return {p[0], p[1], p[2], p[3]};
}

/// Makes a context current for a while.
struct Current {
    explicit Current(CGContextRef context) {
        [NSGraphicsContext saveGraphicsState];
        [NSGraphicsContext setCurrentContext:[NSGraphicsContext graphicsContextWithGraphicsPort:context
                                                                                        flipped:NO]];
    }
    ~Current() { [NSGraphicsContext restoreGraphicsState]; }
};

/// A picture of one colour, drawn with lockFocus.
inline NSImage* makeImage(CGFloat width, CGFloat height, NSColor* color) {
    NSImage* image = [[[NSImage alloc] initWithSize:NSMakeSize(width, height)] autorelease];
    [image lockFocus];
    [color set];
    NSRectFill(NSMakeRect(0, 0, width, height));
    [image unlockFocus];
    return image;
}
