// CIVector: elements, text and equality.
#include "support.h"

TEST(CIVector, KnowsItsElements) {
    CIVector* v = [CIVector vectorWithX:1.5f Y:2 Z:-3];
    EXPECT_EQ([v count], 3u);
    EXPECT_EQ([v X], 1.5f);
    EXPECT_EQ([v Z], -3);
    EXPECT_EQ([v W], 0);
    EXPECT_EQ([v valueAtIndex:7], 0);
    EXPECT_EQ(str([v stringRepresentation]), "[1.5 2 -3]");
    EXPECT_EQ(str([v description]), "[1.5 2 -3]");
}

TEST(CIVector, FromStructures) {
    EXPECT_EQ(str([[CIVector vectorWithCGRect:CGRectMake(1, 2, 3, 4)] stringRepresentation]), "[1 2 3 4]");
    EXPECT_EQ(str([[CIVector vectorWithCGPoint:CGPointMake(1, 2)] stringRepresentation]), "[1 2]");
    CGAffineTransform t = CGAffineTransformMake(1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(
        [[CIVector vectorWithCGAffineTransform:t] CGAffineTransformValue], t));
    EXPECT_TRUE(CGAffineTransformIsIdentity([[CIVector vectorWithX:1] CGAffineTransformValue]));
}

TEST(CIVector, FromText) {
    EXPECT_EQ(str([[CIVector vectorWithString:@"[1 2.5, -3e2]"] stringRepresentation]), "[1 2.5 -300]");
    EXPECT_EQ([[CIVector vectorWithString:@" 4 5 "] count], 2u);
    EXPECT_EQ([[CIVector vectorWithString:@"[]"] count], 0u);
    EXPECT_EQ([CIVector vectorWithString:@"[1 two]"], nil);
    EXPECT_EQ([CIVector vectorWithString:nil], nil);
    EXPECT_EQ([CIVector vectorWithString:@"[1 2"], nil);
}

TEST(CIVector, EqualityAndCopies) {
    CIVector* a = [CIVector vectorWithX:1 Y:2];
    CIVector* b = [CIVector vectorWithX:1 Y:2];
    EXPECT_TRUE([a isEqual:b]);
    EXPECT_EQ([a hash], [b hash]);
    EXPECT_FALSE([a isEqual:[CIVector vectorWithX:1]]);
    EXPECT_FALSE([a isEqual:@"[1 2]"]);
    NSUInteger before = [a retainCount];
    CIVector* copy = [a copy];
    EXPECT_EQ(copy, a);
    EXPECT_EQ([a retainCount], before + 1);
    [copy release];
}

TEST(CIVector, HasOneReferenceWhenMade) {
    CIVector* v = [[CIVector alloc] initWithX:1];
    EXPECT_EQ([v retainCount], 1u);
    [v release];
    EXPECT_EQ([[CIVector vectorWithValues:nullptr count:3] count], 0u);
}
