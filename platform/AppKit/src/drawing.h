// What AppKit draws on and reads from: the current context, bitmaps, and the bytes of files.
#pragma once

#import <AppKit/NSGraphicsContext.h>

#include <cg/object.h>

#include <cmath>

namespace appkit {

/// The Core Graphics context that this thread draws to, borrowed; null without a current context.
inline CGContextRef currentPort() {
    return static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort]);
}

/// Core Graphics' name of an operation.
inline CGBlendMode blendMode(NSCompositingOperation operation) {
    switch (operation) {
    case NSCompositeClear:
        return kCGBlendModeClear;
    case NSCompositeCopy:
        return kCGBlendModeCopy;
    case NSCompositeSourceIn:
        return kCGBlendModeSourceIn;
    case NSCompositeSourceOut:
        return kCGBlendModeSourceOut;
    case NSCompositeSourceAtop:
        return kCGBlendModeSourceAtop;
    case NSCompositeDestinationOver:
        return kCGBlendModeDestinationOver;
    case NSCompositeDestinationIn:
        return kCGBlendModeDestinationIn;
    case NSCompositeDestinationOut:
        return kCGBlendModeDestinationOut;
    case NSCompositeDestinationAtop:
        return kCGBlendModeDestinationAtop;
    case NSCompositeXOR:
        return kCGBlendModeXOR;
    case NSCompositePlusDarker:
        return kCGBlendModePlusDarker;
    case NSCompositePlusLighter:
        return kCGBlendModePlusLighter;
    default:
        return kCGBlendModeNormal;
    }
}

/// The bytes at the URL; nil when there are none.
inline NSData* contents(NSURL* url) {
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithURL((CFURLRef)url));
    return [(NSData*)CGDataProviderCopyData(provider.get()) autorelease];
}

/// A cleared bitmap in device RGB with one pixel for each point, rounded up; null for an empty or absurd
/// size.
inline cg::Retained<CGContextRef> makeBitmap(NSSize size) {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    auto pixels = [](CGFloat v) { return v > 0 && v < 1e6f ? static_cast<size_t>(std::ceil(v)) : 0; };
    return cg::Retained<CGContextRef>::adopt(CGBitmapContextCreate(
        nullptr, pixels(size.width), pixels(size.height), 8, 0, space.get(), kCGImageAlphaPremultipliedLast));
}

} // namespace appkit
