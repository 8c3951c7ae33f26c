// The current context and pictures, for the tests of AppKit.
#pragma once

#import <AppKit/AppKit.h>

#include <testing/bitmap.h>
#include <testing/cocoa.h>

/// Makes a context the current one for a scope.
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
