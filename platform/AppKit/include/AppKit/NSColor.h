// Cocoa's colours.
#pragma once

#import <AppKit/NSGraphics.h>

/** A colour, immutable. */
@interface NSColor : NSObject <NSCopying> {
  @private
    CGColorRef _color;
    NSString* _spaceName;
}

+ (NSColor*)colorWithCalibratedRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
+ (NSColor*)colorWithDeviceRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
+ (NSColor*)colorWithCalibratedWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)colorWithDeviceWhite:(CGFloat)white alpha:(CGFloat)alpha;
/** In device RGB. */
+ (NSColor*)blackColor;
+ (NSColor*)whiteColor;
+ (NSColor*)clearColor;
+ (NSColor*)redColor;
+ (NSColor*)greenColor;
+ (NSColor*)blueColor;

- (NSString*)colorSpaceName;
/** The same colour in another of the named spaces; nil for an unknown name. */
- (NSColor*)colorUsingColorSpaceName:(NSString*)name;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;

/** These raise NSInvalidArgumentException for a colour of another model. */
- (CGFloat)redComponent;
- (CGFloat)greenComponent;
- (CGFloat)blueComponent;
- (CGFloat)whiteComponent;
- (void)getRed:(CGFloat*)red green:(CGFloat*)green blue:(CGFloat*)blue alpha:(CGFloat*)alpha;

- (CGFloat)alphaComponent;
/** Alpha included. */
- (NSInteger)numberOfComponents;
- (void)getComponents:(CGFloat*)components;
/** Borrowed. */
- (CGColorRef)CGColor;

/** Make it the fill (stroke, both) colour of the current context. */
- (void)setFill;
- (void)setStroke;
- (void)set;

@end
