// Affine transforms: x' = a x + c y + tx, y' = b x + d y + ty.
#pragma once

#include <CoreGraphics/CGGeometry.h>

struct CGAffineTransform {
    CGFloat a, b, c, d;
    CGFloat tx, ty;
};
typedef struct CGAffineTransform CGAffineTransform;

CG_EXTERN const CGAffineTransform CGAffineTransformIdentity;

CG_EXTERN CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx,
                                                  CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
/** Counter-clockwise by `angle` radians. */
CG_EXTERN CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle);
CG_EXTERN bool CGAffineTransformIsIdentity(CGAffineTransform t);

/** The step comes before `t`: a point is translated (scaled, rotated) first and then transformed by `t`. */
CG_EXTERN CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty);
CG_EXTERN CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy);
CG_EXTERN CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat angle);

/** The inverse; a transform without one is returned unchanged. */
CG_EXTERN CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);
/** First t1, then t2. */
CG_EXTERN CGAffineTransform CGAffineTransformConcat(CGAffineTransform t1, CGAffineTransform t2);
CG_EXTERN bool CGAffineTransformEqualToTransform(CGAffineTransform t1, CGAffineTransform t2);

CG_EXTERN CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t);
CG_EXTERN CGSize CGSizeApplyAffineTransform(CGSize size, CGAffineTransform t);
/** The bounding box of the transformed rectangle; null and infinite rectangles are returned unchanged. */
CG_EXTERN CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t);
