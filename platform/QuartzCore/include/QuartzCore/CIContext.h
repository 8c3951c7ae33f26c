#pragma once

#import <QuartzCore/CIImage.h>

/** Option keys: a Boolean number; CGColorSpaces (RGB), or NSNull for no colour matching. */
CORE_IMAGE_EXTERN NSString* const kCIContextOutputColorSpace;
CORE_IMAGE_EXTERN NSString* const kCIContextWorkingColorSpace;
CORE_IMAGE_EXTERN NSString* const kCIContextUseSoftwareRenderer;

/** Where images are drawn. */
@interface CIContext : NSObject {
  @private
    struct CIContextState* _state;
}

/** The context is retained. Without one the result can make images, and draws nothing. */
+ (CIContext*)contextWithCGContext:(CGContextRef)context options:(NSDictionary*)options;

/** Draws `src` of the image (in its coordinates) so that its origin comes to `p` (in user space). */
- (void)drawImage:(CIImage*)image atPoint:(CGPoint)p fromRect:(CGRect)src;
/** Draws `src` of the image, scaled, into `dest`, source over, under the context's transform, clip and alpha.
 */
- (void)drawImage:(CIImage*)image inRect:(CGRect)dest fromRect:(CGRect)src;

/**
 * The pixels inside `r`, grown to whole pixels, as a new image that the caller releases; null for an empty,
 * infinite or too large rectangle, for an unknown format and for a space that is no RGB. Without format and
 * space: kCIFormatARGB8 in the context's output space.
 */
- (CGImageRef)createCGImage:(CIImage*)image fromRect:(CGRect)r;
- (CGImageRef)createCGImage:(CIImage*)image
                   fromRect:(CGRect)r
                     format:(CIFormat)format
                 colorSpace:(CGColorSpaceRef)colorSpace;
/** Writes the pixels inside `r`; the top row comes first. A null space means no colour matching. */
- (void)render:(CIImage*)image
      toBitmap:(void*)data
      rowBytes:(ptrdiff_t)rowBytes
        bounds:(CGRect)r
        format:(CIFormat)format
    colorSpace:(CGColorSpaceRef)colorSpace;

/** Nothing is kept between drawings, so both have nothing to do. */
- (void)clearCaches;
- (void)reclaimResources;

@end
