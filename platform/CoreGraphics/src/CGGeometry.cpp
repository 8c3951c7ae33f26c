// The arithmetic of rectangles.
#include <CoreGraphics/CGGeometry.h>

#include <algorithm>
#include <cmath>
#include <limits>

const CGPoint CGPointZero = {0, 0};
const CGSize CGSizeZero = {0, 0};
const CGRect CGRectZero = {{0, 0}, {0, 0}};
const CGRect CGRectNull = {
    {std::numeric_limits<CGFloat>::infinity(), std::numeric_limits<CGFloat>::infinity()}, {0, 0}};
const CGRect CGRectInfinite = {{-CGFLOAT_MAX / 2, -CGFLOAT_MAX / 2}, {CGFLOAT_MAX, CGFLOAT_MAX}};

CGFloat CGRectGetMinX(CGRect r) { return std::min(r.origin.x, r.origin.x + r.size.width); }
CGFloat CGRectGetMidX(CGRect r) { return r.origin.x + r.size.width / 2; }
CGFloat CGRectGetMaxX(CGRect r) { return std::max(r.origin.x, r.origin.x + r.size.width); }
CGFloat CGRectGetMinY(CGRect r) { return std::min(r.origin.y, r.origin.y + r.size.height); }
CGFloat CGRectGetMidY(CGRect r) { return r.origin.y + r.size.height / 2; }
CGFloat CGRectGetMaxY(CGRect r) { return std::max(r.origin.y, r.origin.y + r.size.height); }
CGFloat CGRectGetWidth(CGRect r) { return std::fabs(r.size.width); }
CGFloat CGRectGetHeight(CGRect r) { return std::fabs(r.size.height); }

CGRect CGRectStandardize(CGRect r) {
    if (CGRectIsNull(r)) return CGRectNull;
    return CGRectMake(CGRectGetMinX(r), CGRectGetMinY(r), CGRectGetWidth(r), CGRectGetHeight(r));
}

bool CGRectEqualToRect(CGRect a, CGRect b) {
    if (CGRectIsNull(a) || CGRectIsNull(b)) return CGRectIsNull(a) && CGRectIsNull(b);
    a = CGRectStandardize(a);
    b = CGRectStandardize(b);
    return CGPointEqualToPoint(a.origin, b.origin) && CGSizeEqualToSize(a.size, b.size);
}

bool CGRectIsNull(CGRect r) { return std::isinf(r.origin.x) || std::isinf(r.origin.y); }
bool CGRectIsEmpty(CGRect r) { return CGRectIsNull(r) || r.size.width == 0 || r.size.height == 0; }
bool CGRectIsInfinite(CGRect r) {
    return CGPointEqualToPoint(r.origin, CGRectInfinite.origin) &&
           CGSizeEqualToSize(r.size, CGRectInfinite.size);
}

CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy) {
    if (CGRectIsNull(rect)) return CGRectNull;
    CGRect r = CGRectStandardize(rect);
    r = CGRectMake(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy);
    return r.size.width < 0 || r.size.height < 0 ? CGRectNull : r;
}

CGRect CGRectIntegral(CGRect r) {
    if (CGRectIsNull(r) || CGRectIsInfinite(r)) return r;
    CGFloat x = std::floor(CGRectGetMinX(r)), y = std::floor(CGRectGetMinY(r));
    return CGRectMake(x, y, std::ceil(CGRectGetMaxX(r)) - x, std::ceil(CGRectGetMaxY(r)) - y);
}

CGRect CGRectUnion(CGRect a, CGRect b) {
    if (CGRectIsNull(a)) return CGRectStandardize(b);
    if (CGRectIsNull(b)) return CGRectStandardize(a);
    if (CGRectIsInfinite(a) || CGRectIsInfinite(b)) return CGRectInfinite;
    CGFloat x = std::min(CGRectGetMinX(a), CGRectGetMinX(b)),
            y = std::min(CGRectGetMinY(a), CGRectGetMinY(b));
    return CGRectMake(x, y, std::max(CGRectGetMaxX(a), CGRectGetMaxX(b)) - x,
                      std::max(CGRectGetMaxY(a), CGRectGetMaxY(b)) - y);
}

CGRect CGRectIntersection(CGRect a, CGRect b) {
    if (CGRectIsNull(a) || CGRectIsNull(b)) return CGRectNull;
    if (CGRectIsInfinite(a)) return CGRectStandardize(b);
    if (CGRectIsInfinite(b)) return CGRectStandardize(a);
    CGFloat x = std::max(CGRectGetMinX(a), CGRectGetMinX(b)),
            y = std::max(CGRectGetMinY(a), CGRectGetMinY(b));
    CGFloat width = std::min(CGRectGetMaxX(a), CGRectGetMaxX(b)) - x;
    CGFloat height = std::min(CGRectGetMaxY(a), CGRectGetMaxY(b)) - y;
    return width < 0 || height < 0 ? CGRectNull : CGRectMake(x, y, width, height);
}

CGRect CGRectOffset(CGRect rect, CGFloat dx, CGFloat dy) {
    CGRect r = CGRectStandardize(rect);
    r.origin.x += dx;
    r.origin.y += dy;
    return r;
}

void CGRectDivide(CGRect rect, CGRect* slice, CGRect* remainder, CGFloat amount, CGRectEdge edge) {
    CGRect r = CGRectStandardize(rect), near = r, far = r;
    bool horizontal = edge == CGRectMinXEdge || edge == CGRectMaxXEdge;
    CGFloat length = horizontal ? r.size.width : r.size.height;
    CGFloat cut = std::clamp<CGFloat>(amount, 0, length);
    // `near` is the part with the smaller coordinates, whichever edge the cut is from.
    bool fromFar = edge == CGRectMaxXEdge || edge == CGRectMaxYEdge;
    CGFloat nearLength = fromFar ? length - cut : cut;
    if (horizontal) {
        near.size.width = nearLength;
        far.origin.x += nearLength;
        far.size.width = length - nearLength;
    } else {
        near.size.height = nearLength;
        far.origin.y += nearLength;
        far.size.height = length - nearLength;
    }
    if (slice) *slice = fromFar ? far : near;
    if (remainder) *remainder = fromFar ? near : far;
}

bool CGRectContainsPoint(CGRect r, CGPoint p) {
    return !CGRectIsEmpty(r) && p.x >= CGRectGetMinX(r) && p.x < CGRectGetMaxX(r) &&
           p.y >= CGRectGetMinY(r) && p.y < CGRectGetMaxY(r);
}

bool CGRectContainsRect(CGRect outer, CGRect inner) {
    return CGRectEqualToRect(CGRectUnion(outer, inner), outer);
}

bool CGRectIntersectsRect(CGRect a, CGRect b) { return !CGRectIsNull(CGRectIntersection(a, b)); }
