// Compositing operations, the names of colour spaces, and filling a rectangle.
#pragma once

#import <Foundation/Foundation.h>

#import <CoreGraphics/CoreGraphics.h>

#import <AppKit/AppKitDefines.h>

/** How drawing combines with the destination. */
enum {
    NSCompositeClear,
    NSCompositeCopy,
    NSCompositeSourceOver,
    NSCompositeSourceIn,
    NSCompositeSourceOut,
    NSCompositeSourceAtop,
    NSCompositeDestinationOver,
    NSCompositeDestinationIn,
    NSCompositeDestinationOut,
    NSCompositeDestinationAtop,
    NSCompositeXOR,
    NSCompositePlusDarker,
    NSCompositeHighlight,
    NSCompositePlusLighter
};
typedef NSUInteger NSCompositingOperation;

APPKIT_EXTERN NSString* const NSCalibratedWhiteColorSpace;
APPKIT_EXTERN NSString* const NSCalibratedRGBColorSpace;
APPKIT_EXTERN NSString* const NSDeviceWhiteColorSpace;
APPKIT_EXTERN NSString* const NSDeviceRGBColorSpace;
APPKIT_EXTERN NSString* const NSDeviceCMYKColorSpace;

/** Fills with the current context's fill colour. */
APPKIT_EXTERN void NSRectFill(NSRect rect);

/** Foundation's rectangles and Core Graphics' have the same fields. */
static inline NSRect NSRectFromCGRect(CGRect r) {
    return NSMakeRect(r.origin.x, r.origin.y, r.size.width, r.size.height);
}
static inline CGRect NSRectToCGRect(NSRect r) {
    return CGRectMake(r.origin.x, r.origin.y, r.size.width, r.size.height);
}
static inline NSPoint NSPointFromCGPoint(CGPoint p) { return NSMakePoint(p.x, p.y); }
static inline CGPoint NSPointToCGPoint(NSPoint p) { return CGPointMake(p.x, p.y); }
static inline NSSize NSSizeFromCGSize(CGSize s) { return NSMakeSize(s.width, s.height); }
static inline CGSize NSSizeToCGSize(NSSize s) { return CGSizeMake(s.width, s.height); }
