// The arithmetic of affine transforms.
#include <CoreGraphics/CGAffineTransform.h>

#include <algorithm>
#include <cmath>

const CGAffineTransform CGAffineTransformIdentity = {1, 0, 0, 1, 0, 0};

CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx, CGFloat ty) {
    return {a, b, c, d, tx, ty};
}

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty) { return {1, 0, 0, 1, tx, ty}; }
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) { return {sx, 0, 0, sy, 0, 0}; }
CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle) {
    CGFloat s = std::sin(angle), c = std::cos(angle);
    return {c, s, -s, c, 0, 0};
}

bool CGAffineTransformIsIdentity(CGAffineTransform t) {
    return CGAffineTransformEqualToTransform(t, CGAffineTransformIdentity);
}

CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty) {
    return CGAffineTransformConcat(CGAffineTransformMakeTranslation(tx, ty), t);
}
CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy) {
    return CGAffineTransformConcat(CGAffineTransformMakeScale(sx, sy), t);
}
CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat angle) {
    return CGAffineTransformConcat(CGAffineTransformMakeRotation(angle), t);
}

CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) {
    // In double precision: the products of floats are exact there.
    double a = t.a, b = t.b, c = t.c, d = t.d, tx = t.tx, ty = t.ty;
    double determinant = a * d - b * c;
    if (determinant == 0 || !std::isfinite(determinant)) return t;
    return {static_cast<CGFloat>(d / determinant),
            static_cast<CGFloat>(-b / determinant),
            static_cast<CGFloat>(-c / determinant),
            static_cast<CGFloat>(a / determinant),
            static_cast<CGFloat>((c * ty - d * tx) / determinant),
            static_cast<CGFloat>((b * tx - a * ty) / determinant)};
}

CGAffineTransform CGAffineTransformConcat(CGAffineTransform t1, CGAffineTransform t2) {
    return {t1.a * t2.a + t1.b * t2.c,           t1.a * t2.b + t1.b * t2.d,
            t1.c * t2.a + t1.d * t2.c,           t1.c * t2.b + t1.d * t2.d,
            t1.tx * t2.a + t1.ty * t2.c + t2.tx, t1.tx * t2.b + t1.ty * t2.d + t2.ty};
}

bool CGAffineTransformEqualToTransform(CGAffineTransform s, CGAffineTransform t) {
    return s.a == t.a && s.b == t.b && s.c == t.c && s.d == t.d && s.tx == t.tx && s.ty == t.ty;
}

CGPoint CGPointApplyAffineTransform(CGPoint p, CGAffineTransform t) {
    return CGPointMake(t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty);
}

CGSize CGSizeApplyAffineTransform(CGSize s, CGAffineTransform t) {
    return CGSizeMake(t.a * s.width + t.c * s.height, t.b * s.width + t.d * s.height);
}

CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t) {
    if (CGRectIsNull(rect) || CGRectIsInfinite(rect)) return rect;
    CGPoint origin = CGPointApplyAffineTransform(rect.origin, t);
    // The corners are the origin plus the images of the two sides; each side widens the box on one end.
    CGFloat xs[] = {t.a * rect.size.width, t.c * rect.size.height};
    CGFloat ys[] = {t.b * rect.size.width, t.d * rect.size.height};
    return CGRectMake(origin.x + std::min<CGFloat>(xs[0], 0) + std::min<CGFloat>(xs[1], 0),
                      origin.y + std::min<CGFloat>(ys[0], 0) + std::min<CGFloat>(ys[1], 0),
                      std::fabs(xs[0]) + std::fabs(xs[1]), std::fabs(ys[0]) + std::fabs(ys[1]));
}
