// Regions of the plane.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

/** A region of the plane, kept as rectangles that do not overlap. Immutable. */
@interface CIFilterShape : NSObject <NSCopying> {
  @private
    struct CIRegion* _region;
}

+ (id)shapeWithRect:(CGRect)r;
- (id)initWithRect:(CGRect)r;

/**
 * The transformed shape. If the transform does not keep rectangles upright, the result is made of bands that
 * lie inside the exact shape (`interior`) or of the rectangles' bounding boxes (otherwise).
 */
- (CIFilterShape*)transformBy:(CGAffineTransform)m interior:(bool)flag;
/** Every boundary moved inwards by `dx` and `dy`, or outwards when negative. */
- (CIFilterShape*)insetByX:(int)dx Y:(int)dy;
/** A nil shape is empty. */
- (CIFilterShape*)unionWith:(CIFilterShape*)s2;
- (CIFilterShape*)unionWithRect:(CGRect)r;
- (CIFilterShape*)intersectWith:(CIFilterShape*)s2;
- (CIFilterShape*)intersectWithRect:(CGRect)r;

/** The bounding box; CGRectZero when empty. */
- (CGRect)extent;

@end
