// CIColor: components, text and equality.
#include "support.h"

TEST(CIColor, Components) {
    CIColor* c = [CIColor colorWithRed:0.25f green:0.5f blue:0.75f];
    EXPECT_EQ([c numberOfComponents], 4u);
    EXPECT_EQ([c red], 0.25f);
    EXPECT_EQ([c components][2], 0.75f);
    EXPECT_EQ([c alpha], 1);
    EXPECT_EQ(str([c stringRepresentation]), "0.25 0.5 0.75 1");
    EXPECT_EQ(str([c description]), "(0.25 0.5 0.75 1)");
    EXPECT_EQ(CGColorSpaceGetModel([c colorSpace]), kCGColorSpaceModelRGB);
}

TEST(CIColor, FromText) {
    EXPECT_EQ(str([[CIColor colorWithString:@"0.5 0.7 0.3 0.2"] stringRepresentation]), "0.5 0.7 0.3 0.2");
    EXPECT_EQ([[CIColor colorWithString:@"1 0 0"] alpha], 1);
    EXPECT_EQ(str([[CIColor colorWithString:@"tomato"] stringRepresentation]), "0 0 0 1");
    EXPECT_EQ(str([[CIColor colorWithString:@"1 0"] stringRepresentation]), "0 0 0 1");
    EXPECT_EQ([CIColor colorWithString:nil], nil);
}

TEST(CIColor, FromCoreGraphics) {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    const CGFloat components[] = {0.5f, 0.25f};
    auto gray = cg::Retained<CGColorRef>::adopt(CGColorCreate(space.get(), components));
    CIColor* c = [CIColor colorWithCGColor:gray.get()];
    EXPECT_EQ([c numberOfComponents], 2u);
    EXPECT_NEAR([c red], 0.5, 1e-3);
    EXPECT_NEAR([c blue], 0.5, 1e-3);
    EXPECT_EQ([c alpha], 0.25f);
    EXPECT_EQ([c colorSpace], space.get());
    EXPECT_EQ([CIColor colorWithCGColor:nullptr], nil);
    EXPECT_EQ([[CIColor alloc] initWithCGColor:nullptr], nil);
}

TEST(CIColor, EqualityAndCopies) {
    CIColor* a = [CIColor colorWithRed:1 green:0 blue:0];
    EXPECT_TRUE([a isEqual:[CIColor colorWithRed:1 green:0 blue:0 alpha:1]]);
    EXPECT_FALSE([a isEqual:[CIColor colorWithRed:1 green:0 blue:0 alpha:0.5f]]);
    EXPECT_EQ([a hash], [[CIColor colorWithRed:1 green:0 blue:0] hash]);
    EXPECT_EQ([[a copy] autorelease], a);
}
