// Rendering images.
#pragma once

#import <QuartzCore/CIImage.h>

/** Option keys: RGB CGColorSpaces, or NSNull for no colour matching; and a Boolean NSNumber. */
CORE_IMAGE_EXPORT NSString* const kCIContextOutputColorSpace;
CORE_IMAGE_EXPORT NSString* const kCIContextWorkingColorSpace;
CORE_IMAGE_EXPORT NSString* const kCIContextUseSoftwareRenderer;

/** Renders images. */
@interface CIContext : NSObject {
  @private
    struct CIContextState* _state;
}

/** Retains the CGContext. Without one the result can make images but draws nothing. */
+ (CIContext*)contextWithCGContext:(CGContextRef)context options:(NSDictionary*)options;
/** A context that makes images and renders to memory, but draws nothing. */
+ (CIContext*)contextWithOptions:(NSDictionary*)options;

/** The space that filters compute in; null without colour matching. Borrowed. */
- (CGColorSpaceRef)workingColorSpace;

/** Draws the part `src` of the image, in its coordinates, with its origin at `p` in user space. */
- (void)drawImage:(CIImage*)image atPoint:(CGPoint)p fromRect:(CGRect)src;
/** Draws the part `src` of the image scaled to `dest`, source over, under the context's transform, clip and
 * alpha. */
- (void)drawImage:(CIImage*)image inRect:(CGRect)dest fromRect:(CGRect)src;

/**
 * The pixels inside `r`, grown to whole pixels, as a new image that the caller releases; null for an empty,
 * infinite or huge rectangle, an unknown format or a space that is not RGB. The defaults are kCIFormatARGB8
 * and the context's output space. Core Graphics has no floats of 16 bits: those become floats of 32.
 */
- (CGImageRef)createCGImage:(CIImage*)image fromRect:(CGRect)r;
- (CGImageRef)createCGImage:(CIImage*)image
                   fromRect:(CGRect)r
                     format:(CIFormat)format
                 colorSpace:(CGColorSpaceRef)colorSpace;
/** Writes the pixels inside `r`, the top row first. A null space means no colour matching. */
- (void)render:(CIImage*)image
      toBitmap:(void*)data
      rowBytes:(ptrdiff_t)rowBytes
        bounds:(CGRect)r
        format:(CIFormat)format
    colorSpace:(CGColorSpaceRef)colorSpace;

/** Nothing is cached between drawings, so these do nothing. */
- (void)clearCaches;
- (void)reclaimResources;

@end
