// Colours.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

/** A colour: the components of a colour space and alpha. Immutable; a copy is the receiver, retained. */
@interface CIColor : NSObject <NSCopying> {
  @private
    CGColorRef _color;
}

/** Nil for a null colour. */
+ (CIColor*)colorWithCGColor:(CGColorRef)color;
/** In sRGB, alpha 1 unless given. */
+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a;
+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b;
/** From three or four numbers, "0.5 0.7 0.3 1.0". Any other text gives opaque black, nil gives nil. */
+ (CIColor*)colorWithString:(NSString*)representation;

- (id)initWithCGColor:(CGColorRef)color;

/** The number of components, alpha included. */
- (size_t)numberOfComponents;
/** The components with alpha last; they live as long as the colour. */
- (const CGFloat*)components;
- (CGFloat)alpha;
/** Borrowed. */
- (CGColorSpaceRef)colorSpace;
/** Not premultiplied: the components of an RGB colour; any other colour is converted to sRGB. */
- (CGFloat)red;
- (CGFloat)green;
- (CGFloat)blue;
/** All components, such as "1 0.5 0 1". */
- (NSString*)stringRepresentation;

@end
