// CIFilterShape: unions, insets and transforms.
#include "support.h"

#include <cmath>

static void expectRect(CGRect actual, CGRect expected) {
    EXPECT_TRUE(CGRectEqualToRect(actual, expected))
        << actual.origin.x << " " << actual.origin.y << " " << actual.size.width << " " << actual.size.height;
}

TEST(CIFilterShape, UnionKeepsTheHoleBetween) {
    CIFilterShape* a = [CIFilterShape shapeWithRect:CGRectMake(0, 0, 10, 10)];
    CIFilterShape* both = [a unionWithRect:CGRectMake(20, 0, 10, 10)];
    expectRect([both extent], CGRectMake(0, 0, 30, 10));
    expectRect([[both intersectWithRect:CGRectMake(12, 0, 6, 10)] extent], CGRectZero);
    expectRect([[both intersectWith:a] extent], CGRectMake(0, 0, 10, 10));
    EXPECT_TRUE([[both intersectWith:a] isEqual:a]);
}

TEST(CIFilterShape, InsetShrinksEveryPart) {
    CIFilterShape* both =
        [[CIFilterShape shapeWithRect:CGRectMake(0, 0, 10, 10)] unionWithRect:CGRectMake(20, 0, 3, 10)];
    // The narrow part vanishes.
    expectRect([[both insetByX:2 Y:1] extent], CGRectMake(2, 1, 6, 8));
    expectRect([[both insetByX:-2 Y:-1] extent], CGRectMake(-2, -1, 27, 12));
    // Two halves of one rectangle do not shrink at their seam.
    CIFilterShape* halves =
        [[CIFilterShape shapeWithRect:CGRectMake(0, 0, 5, 10)] unionWithRect:CGRectMake(5, 0, 5, 10)];
    EXPECT_TRUE([[halves insetByX:1 Y:1] isEqual:[CIFilterShape shapeWithRect:CGRectMake(1, 1, 8, 8)]]);
}

TEST(CIFilterShape, Transforms) {
    CIFilterShape* square = [CIFilterShape shapeWithRect:CGRectMake(0, 0, 10, 10)];
    expectRect([[square transformBy:CGAffineTransformMake(2, 0, 0, 3, 5, 6) interior:NO] extent],
               CGRectMake(5, 6, 20, 30));
    CGAffineTransform turned = CGAffineTransformMakeRotation(float(M_PI / 4));
    CGRect outer = [[square transformBy:turned interior:NO] extent];
    EXPECT_NEAR(outer.size.width, 10 * M_SQRT2, 1e-4);
    CIFilterShape* inner = [square transformBy:turned interior:YES];
    // Inside everywhere: the corners of the box are not part of it, the middle is.
    expectRect([[inner intersectWithRect:CGRectMake(-7, 0, 3, 3)] extent], CGRectZero);
    EXPECT_FALSE(CGRectIsEmpty([[inner intersectWithRect:CGRectMake(-1, 6, 2, 2)] extent]));
}

TEST(CIFilterShape, Infinite) {
    CIFilterShape* all = [CIFilterShape shapeWithRect:CGRectInfinite];
    EXPECT_TRUE(CGRectIsInfinite([all extent]));
    expectRect([[all intersectWithRect:CGRectMake(1, 2, 3, 4)] extent], CGRectMake(1, 2, 3, 4));
    EXPECT_TRUE(CGRectIsInfinite([[all insetByX:5 Y:5] extent]));
}

TEST(CIFilterShape, NilIsEmpty) {
    CIFilterShape* a = [CIFilterShape shapeWithRect:CGRectMake(0, 0, 10, 10)];
    EXPECT_TRUE([[a unionWith:nil] isEqual:a]);
    expectRect([[a intersectWith:nil] extent], CGRectZero);
    expectRect([[a unionWithRect:CGRectZero] extent], CGRectMake(0, 0, 10, 10));
}
