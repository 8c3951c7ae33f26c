// Detection of features, as Mac OS X 10.7 and 10.8 brought it. Everything here is weak: a system may lack it,
// and a process does unless it links CIDetection. Look the classes up by name, and test a constant's address
// before reading it.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#import <Foundation/Foundation.h>

@class CIContext;
@class CIImage;

#define CI_DETECTION_EXTERN extern __attribute__((weak, visibility("default")))

/** The one type of detector. */
CI_DETECTION_EXTERN NSString* const CIDetectorTypeFace;

/**
 * Option of a detector: CIDetectorAccuracyLow (which is meant without the option) or CIDetectorAccuracyHigh.
 * Low scans the image at no more than its own size and half a megapixel, which finds faces from 72 pixels on;
 * high at up to twice its size and four megapixels, from 36 pixels on.
 */
CI_DETECTION_EXTERN NSString* const CIDetectorAccuracy;
CI_DETECTION_EXTERN NSString* const CIDetectorAccuracyLow;
CI_DETECTION_EXTERN NSString* const CIDetectorAccuracyHigh;
/** Option of a detector: a Boolean number, whether faces are followed from image to image. */
CI_DETECTION_EXTERN NSString* const CIDetectorTracking;
/**
 * Option of a detector: a number from 0 to 1, the side of the smallest face that is wanted as a fraction of
 * the image's shorter side. A large one saves time; a small one scans up to eight megapixels, but never more
 * than twice the size.
 */
CI_DETECTION_EXTERN NSString* const CIDetectorMinFeatureSize;
/** Option of a search: a number from 1 to 8, the EXIF orientation in which the image is upright; any other
 * means 1. */
CI_DETECTION_EXTERN NSString* const CIDetectorImageOrientation;

/** What a face's `type` answers. */
CI_DETECTION_EXTERN NSString* const CIFeatureTypeFace;

/** Finds features in images. May be used by one thread at a time. */
@interface CIDetector : NSObject {
  @private
    struct CIDetectorState* _state;
}
/**
 * Nil for a type that is not known, and, with a line in the log, when the detector's data cannot be read.
 * Images are rendered in the context's working space; without a context, in the usual one.
 */
+ (CIDetector*)detectorOfType:(NSString*)type context:(CIContext*)context options:(NSDictionary*)options;
/** Features, the largest first; an empty array when there are none and for nil, empty and infinite images. */
- (NSArray*)featuresInImage:(CIImage*)image;
/** Positions are those of the image as it is, however it is turned for the search. */
- (NSArray*)featuresInImage:(CIImage*)image options:(NSDictionary*)options;
@end

/** Something found in an image; positions are in the image's coordinates. */
@interface CIFeature : NSObject {
  @private
    CGRect _bounds;
}
/** Nil unless a subclass knows better. */
- (NSString*)type;
- (CGRect)bounds;
@end

/**
 * A face. The left eye is the one on the left as the viewer sees the face upright, not the person's own left.
 * A position that was not found is the zero point.
 */
@interface CIFaceFeature : CIFeature {
  @private
    struct CIFaceState* _state;
}
- (BOOL)hasLeftEyePosition;
- (CGPoint)leftEyePosition;
- (BOOL)hasRightEyePosition;
- (CGPoint)rightEyePosition;
- (BOOL)hasMouthPosition;
- (CGPoint)mouthPosition;
/** Both only of a detector that tracks: the number that stays with a face, and in how many images it was
 * seen. */
- (BOOL)hasTrackingID;
- (int)trackingID;
- (BOOL)hasTrackingFrameCount;
- (int)trackingFrameCount;
@end
