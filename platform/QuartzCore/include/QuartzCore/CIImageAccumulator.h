// Images that build upon what was drawn before.
#pragma once

#import <QuartzCore/CIImage.h>

/**
 * A bitmap that keeps the result of each rendering for the next, as painting and feedback effects need it.
 * Use one from one thread at a time.
 */
@interface CIImageAccumulator : NSObject {
  @private
    struct CIImageAccumulatorState* _state;
}

/**
 * A transparent bitmap of the rectangle, made whole. Without a colour space, 8-bit formats are kept in sRGB
 * and the others in linear sRGB. Nil for an empty, infinite or huge rectangle, an unknown format or a space
 * that is not RGB.
 */
+ (CIImageAccumulator*)imageAccumulatorWithExtent:(CGRect)r format:(CIFormat)f;
+ (CIImageAccumulator*)imageAccumulatorWithExtent:(CGRect)r
                                           format:(CIFormat)f
                                       colorSpace:(CGColorSpaceRef)colorSpace;
- (id)initWithExtent:(CGRect)r format:(CIFormat)f;
- (id)initWithExtent:(CGRect)r format:(CIFormat)f colorSpace:(CGColorSpaceRef)colorSpace;

- (CGRect)extent;
- (CIFormat)format;
/** What it holds now. A later -setImage: does not change the image. */
- (CIImage*)image;
/** Renders the image, which may be made of -image, and keeps the result. Nil is ignored. */
- (void)setImage:(CIImage*)im;
/** The same inside of `r` alone. */
- (void)setImage:(CIImage*)im dirtyRect:(CGRect)r;
/** Makes it transparent. */
- (void)clear;

@end
