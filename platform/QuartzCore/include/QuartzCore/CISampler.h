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

/** An image with the transform and the modes by which a kernel reads it. Immutable. */
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
/** The options are kept as they are; a kernel takes unknown modes for the default: black outside, linear. */
- (id)initWithImage:(CIImage*)image options:(NSDictionary*)options;

/** Where the transformed image is, whatever the wrap mode shows beyond its edge. */
- (CIFilterShape*)definition;
- (CGRect)extent;

@end
