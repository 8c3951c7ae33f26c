// The features that a detector finds. Weak: see CIDetector.h.
#pragma once

#import <QuartzCore/CIWeakLinking.h>

/** The `type` of a face. */
CORE_IMAGE_WEAK_EXPORT NSString* const CIFeatureTypeFace;

/** Something found in an image. Positions are in the image's coordinates. */
@interface CIFeature : NSObject {
  @private
    CGRect _bounds;
}
/** Nil here; subclasses answer theirs. */
- (NSString*)type;
- (CGRect)bounds;
@end

/**
 * A face. The left eye is the one on the left as a viewer sees the face upright, not the person's own left
 * eye. A position that was not found is the zero point.
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
/** Only for a detector that tracks: the number that a face keeps, and how many images it has been seen in. */
- (BOOL)hasTrackingID;
- (int)trackingID;
- (BOOL)hasTrackingFrameCount;
- (int)trackingFrameCount;
@end
