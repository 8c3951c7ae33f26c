// Lists of numbers.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

/** A list of numbers: a position, a rectangle, the row of a matrix. Immutable; a copy is the receiver,
 * retained. */
@interface CIVector : NSObject <NSCopying> {
  @private
    size_t _count;
    CGFloat* _values;
}

/** Null `values` or a count of 0 give a vector without elements. */
+ (CIVector*)vectorWithValues:(const CGFloat*)values count:(size_t)count;
+ (CIVector*)vectorWithX:(CGFloat)x;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z;
+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;
/** x, y. */
+ (CIVector*)vectorWithCGPoint:(CGPoint)p;
/** x, y, width, height. */
+ (CIVector*)vectorWithCGRect:(CGRect)r;
/** a, b, c, d, tx, ty. */
+ (CIVector*)vectorWithCGAffineTransform:(CGAffineTransform)t;
/** From text like "[1 2 3]"; brackets are optional and commas count as blanks. Nil for any other text. */
+ (CIVector*)vectorWithString:(NSString*)representation;

- (id)initWithValues:(const CGFloat*)values count:(size_t)count;
- (id)initWithX:(CGFloat)x;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z;
- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;
- (id)initWithCGPoint:(CGPoint)p;
- (id)initWithCGRect:(CGRect)r;
- (id)initWithCGAffineTransform:(CGAffineTransform)t;
- (id)initWithString:(NSString*)representation;

/** The element at `index`, 0 beyond the end. */
- (CGFloat)valueAtIndex:(size_t)index;
- (size_t)count;
- (CGFloat)X;
- (CGFloat)Y;
- (CGFloat)Z;
- (CGFloat)W;
- (CGPoint)CGPointValue;
- (CGRect)CGRectValue;
/** The identity unless there are six elements. */
- (CGAffineTransform)CGAffineTransformValue;
/** Such as "[1 2.5 3]". */
- (NSString*)stringRepresentation;

@end
