// Images with the way they are read.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIFilterShape;
@class CIImage;

/** The option keys: an NSAffineTransform, and one of the modes below. */
CORE_IMAGE_EXPORT NSString* const kCISamplerAffineMatrix;
CORE_IMAGE_EXPORT NSString* const kCISamplerWrapMode;
CORE_IMAGE_EXPORT NSString* const kCISamplerFilterMode;
CORE_IMAGE_EXPORT NSString* const kCISamplerColorSpace;

CORE_IMAGE_EXPORT NSString* const kCISamplerWrapBlack;
CORE_IMAGE_EXPORT NSString* const kCISamplerWrapClamp;
CORE_IMAGE_EXPORT NSString* const kCISamplerFilterNearest;
CORE_IMAGE_EXPORT NSString* const kCISamplerFilterLinear;

/**
 * An image with the transform and the modes by which it is read. Immutable.
 *
 * Beyond the image's edge "black" (the default) reads transparent pixels and "clamp" the nearest pixel of the
 * edge. Between the centres of pixels "linear" (the default) mixes the four around and "nearest" takes the
 * nearest. A filter takes a sampler in place of an image.
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
/** Unknown modes count as the defaults. */
- (id)initWithImage:(CIImage*)image options:(NSDictionary*)options;

/**
 * Where the sampler can read something other than transparent: everywhere for "clamp", and half a pixel
 * beyond the image where "linear" fades out. Raises NSInvalidArgumentException for a matrix that is not
 * finite.
 */
- (CIFilterShape*)definition;
/** The rectangle of the transformed image, whatever the wrap mode. */
- (CGRect)extent;

@end
