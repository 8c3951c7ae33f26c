// Points, sizes and rectangles, and the arithmetic on them.
//
// A rectangle with a negative size covers the same area as its standardized form; every function here
// standardizes its arguments first, unless it says otherwise.
#pragma once

#include <CoreGraphics/CGBase.h>

struct CGPoint {
    CGFloat x;
    CGFloat y;
};
typedef struct CGPoint CGPoint;

struct CGSize {
    CGFloat width;
    CGFloat height;
};
typedef struct CGSize CGSize;

struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;

/** The four edges of a rectangle, as CGRectDivide names them. */
typedef enum CGRectEdge { CGRectMinXEdge, CGRectMinYEdge, CGRectMaxXEdge, CGRectMaxYEdge } CGRectEdge;

CG_EXTERN const CGPoint CGPointZero;
CG_EXTERN const CGSize CGSizeZero;
CG_EXTERN const CGRect CGRectZero;
/** No rectangle at all, the result of an empty intersection; not the same as an empty rectangle. */
CG_EXTERN const CGRect CGRectNull;
/** The rectangle without bounds. */
CG_EXTERN const CGRect CGRectInfinite;

CG_INLINE CGPoint CGPointMake(CGFloat x, CGFloat y) {
    CGPoint p;
    p.x = x;
    p.y = y;
    return p;
}

CG_INLINE CGSize CGSizeMake(CGFloat width, CGFloat height) {
    CGSize s;
    s.width = width;
    s.height = height;
    return s;
}

CG_INLINE CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect r;
    r.origin = CGPointMake(x, y);
    r.size = CGSizeMake(width, height);
    return r;
}

CG_INLINE bool CGPointEqualToPoint(CGPoint a, CGPoint b) { return a.x == b.x && a.y == b.y; }
CG_INLINE bool CGSizeEqualToSize(CGSize a, CGSize b) { return a.width == b.width && a.height == b.height; }

CG_EXTERN CGFloat CGRectGetMinX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMidX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMaxX(CGRect rect);
CG_EXTERN CGFloat CGRectGetMinY(CGRect rect);
CG_EXTERN CGFloat CGRectGetMidY(CGRect rect);
CG_EXTERN CGFloat CGRectGetMaxY(CGRect rect);
CG_EXTERN CGFloat CGRectGetWidth(CGRect rect);
CG_EXTERN CGFloat CGRectGetHeight(CGRect rect);

CG_EXTERN bool CGRectEqualToRect(CGRect a, CGRect b);
/** The same area with a size that is not negative. */
CG_EXTERN CGRect CGRectStandardize(CGRect rect);
/** True for a width or height of zero, and for the null rectangle. */
CG_EXTERN bool CGRectIsEmpty(CGRect rect);
CG_EXTERN bool CGRectIsNull(CGRect rect);
CG_EXTERN bool CGRectIsInfinite(CGRect rect);

/** Moves each edge inwards (outwards for a negative amount); null when nothing is left. */
CG_EXTERN CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy);
/** The smallest rectangle with whole-numbered edges that contains `rect`. */
CG_EXTERN CGRect CGRectIntegral(CGRect rect);
/** The smallest rectangle that contains both; a null rectangle adds nothing. */
CG_EXTERN CGRect CGRectUnion(CGRect a, CGRect b);
/** The common part, or CGRectNull when there is none. Touching edges have an empty common part. */
CG_EXTERN CGRect CGRectIntersection(CGRect a, CGRect b);
CG_EXTERN CGRect CGRectOffset(CGRect rect, CGFloat dx, CGFloat dy);
/** Cuts `rect` at `amount` from `edge` into the part at that edge and the rest. */
CG_EXTERN void CGRectDivide(CGRect rect, CGRect* slice, CGRect* remainder, CGFloat amount, CGRectEdge edge);
/** True for a point inside or on the left or lower edge. */
CG_EXTERN bool CGRectContainsPoint(CGRect rect, CGPoint point);
CG_EXTERN bool CGRectContainsRect(CGRect outer, CGRect inner);
CG_EXTERN bool CGRectIntersectsRect(CGRect a, CGRect b);
