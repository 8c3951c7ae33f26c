// Rectangles and affine transforms.
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include <cmath>

static void expectRect(CGRect actual, CGRect expected) {
    EXPECT_FLOAT_EQ(actual.origin.x, expected.origin.x);
    EXPECT_FLOAT_EQ(actual.origin.y, expected.origin.y);
    EXPECT_FLOAT_EQ(actual.size.width, expected.size.width);
    EXPECT_FLOAT_EQ(actual.size.height, expected.size.height);
}

TEST(Geometry, NegativeSizesAreTurnedAround) {
    CGRect r = CGRectMake(10, 20, -4, -6);
    expectRect(CGRectStandardize(r), CGRectMake(6, 14, 4, 6));
    EXPECT_EQ(CGRectGetMinX(r), 6);
    EXPECT_EQ(CGRectGetMaxY(r), 20);
    EXPECT_TRUE(CGRectEqualToRect(r, CGRectMake(6, 14, 4, 6)));
}

TEST(Geometry, IntersectionOfDistantRectsIsNull) {
    CGRect a = CGRectMake(0, 0, 10, 10);
    EXPECT_TRUE(CGRectIsNull(CGRectIntersection(a, CGRectMake(20, 0, 5, 5))));
    EXPECT_FALSE(CGRectIntersectsRect(a, CGRectMake(20, 0, 5, 5)));
    CGRect touching = CGRectIntersection(a, CGRectMake(10, 0, 5, 5));
    EXPECT_TRUE(CGRectIsEmpty(touching));
    EXPECT_FALSE(CGRectIsNull(touching));
    expectRect(CGRectIntersection(a, CGRectMake(5, -5, 10, 10)), CGRectMake(5, 0, 5, 5));
}

TEST(Geometry, InfiniteAndNull) {
    CGRect a = CGRectMake(1, 2, 3, 4);
    EXPECT_TRUE(CGRectIsInfinite(CGRectInfinite));
    expectRect(CGRectIntersection(CGRectInfinite, a), a);
    EXPECT_TRUE(CGRectIsInfinite(CGRectUnion(a, CGRectInfinite)));
    expectRect(CGRectUnion(CGRectNull, a), a);
    EXPECT_TRUE(CGRectIsEmpty(CGRectNull));
    EXPECT_FALSE(CGRectIsEmpty(CGRectInfinite));
    EXPECT_TRUE(CGRectIsNull(CGRectStandardize(CGRectNull)));
}

TEST(Geometry, UnionIntegralInsetDivide) {
    expectRect(CGRectUnion(CGRectMake(0, 0, 1, 1), CGRectMake(5, 5, 1, 2)), CGRectMake(0, 0, 6, 7));
    expectRect(CGRectIntegral(CGRectMake(0.5f, -0.5f, 2, 2)), CGRectMake(0, -1, 3, 3));
    expectRect(CGRectInset(CGRectMake(0, 0, 10, 10), 2, 3), CGRectMake(2, 3, 6, 4));
    EXPECT_TRUE(CGRectIsNull(CGRectInset(CGRectMake(0, 0, 10, 10), 6, 0)));
    CGRect slice, rest;
    CGRectDivide(CGRectMake(0, 0, 10, 4), &slice, &rest, 3, CGRectMaxXEdge);
    expectRect(slice, CGRectMake(7, 0, 3, 4));
    expectRect(rest, CGRectMake(0, 0, 7, 4));
}

TEST(Geometry, Contains) {
    CGRect r = CGRectMake(0, 0, 2, 2);
    EXPECT_TRUE(CGRectContainsPoint(r, {0, 0}));
    EXPECT_FALSE(CGRectContainsPoint(r, {2, 1}));
    EXPECT_TRUE(CGRectContainsRect(r, CGRectMake(1, 1, 1, 1)));
    EXPECT_FALSE(CGRectContainsRect(r, CGRectMake(1, 1, 2, 1)));
}

TEST(AffineTransform, StepsComeBeforeTheTransform) {
    CGAffineTransform t = CGAffineTransformTranslate(CGAffineTransformMakeScale(2, 3), 10, 20);
    CGPoint p = CGPointApplyAffineTransform({1, 1}, t);
    EXPECT_FLOAT_EQ(p.x, 22);
    EXPECT_FLOAT_EQ(p.y, 63);
}

TEST(AffineTransform, InverseUndoes) {
    CGAffineTransform t = CGAffineTransformRotate(CGAffineTransformMake(2, 0.5f, -1, 3, 7, -2), 0.7f);
    CGAffineTransform back = CGAffineTransformConcat(t, CGAffineTransformInvert(t));
    EXPECT_NEAR(back.a, 1, 1e-6);
    EXPECT_NEAR(back.b, 0, 1e-6);
    EXPECT_NEAR(back.tx, 0, 1e-5);
    CGAffineTransform singular = CGAffineTransformMakeScale(0, 1);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGAffineTransformInvert(singular), singular));
}

TEST(AffineTransform, RectBecomesItsBoundingBox) {
    CGRect r =
        CGRectApplyAffineTransform(CGRectMake(0, 0, 2, 1), CGAffineTransformMakeRotation(float(M_PI / 2)));
    EXPECT_NEAR(r.origin.x, -1, 1e-6);
    EXPECT_NEAR(r.origin.y, 0, 1e-6);
    EXPECT_NEAR(r.size.width, 1, 1e-6);
    EXPECT_NEAR(r.size.height, 2, 1e-6);
}
