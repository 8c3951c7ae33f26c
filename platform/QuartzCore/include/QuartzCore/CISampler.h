#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIFilterShape;
@class CIImage;

/** The option keys: an NSAffineTransform, and one of the modes below. */
CORE_IMAGE_EXTERN NSString* const kCISamplerAffineMatrix;
CORE_IMAGE_EXTERN NSString* const kCISamplerWrapMode;
CORE_IMAGE_EXTERN NSString* const kCISamplerFilterMode;
CORE_IMAGE_EXTERN NSString* const kCISamplerColorSpace;

CORE_IMAGE_EXTERN NSString* const kCISamplerWrapBlack;
CORE_IMAGE_EXTERN NSString* const kCISamplerWrapClamp;
CORE_IMAGE_EXTERN NSString* const kCISamplerFilterNearest;
CORE_IMAGE_EXTERN NSString* const kCISamplerFilterLinear;

/**
 * An image with the transform and the modes by which it is read. Immutable.
 *
 * Beyond the image's edge "black" (the default) reads nothing and "clamp" the nearest pixel of the edge.
 * Between the centres of pixels "linear" (the default) mixes the four around and "nearest" takes the one of
 * them. A filter takes a sampler where it takes an image, and works on what the sampler reads.
 */
@interface CISampler : NSObject <NSCopying> {
  @private
    CIImage* _image;
    NSDictionary* _options;
}

+ (CISampler*)samplerWithImage:(CIImage*)image;
+ (CISampler*)samplerWithImage:(CIImage*)image keysAndValues:(id)key, ...;
+ (CISampler*)samplerWithImage:(CIImage*)image options:(NSDictionary*)options;

/** Nil for a nil image. */
- (id)initWithImage:(CIImage*)image;
- (id)initWithImage:(CIImage*)image keysAndValues:(id)key, ...;
/** The options are kept as they are; unknown modes are read as the defaults. */
- (id)initWithImage:(CIImage*)image options:(NSDictionary*)options;

/**
 * Every place where something other than nothing can be read: infinite for "clamp", and half a pixel of the
 * image more on each side where "linear" fades out. Raises NSInvalidArgumentException for a matrix that is
 * not finite.
 */
- (CIFilterShape*)definition;
/** Where the transformed image is; the wrap mode counts outside of it. */
- (CGRect)extent;

@end
