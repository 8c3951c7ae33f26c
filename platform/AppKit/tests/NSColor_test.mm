// Colours: components, conversions, and as the current colours.
#include "support.h"

TEST(NSColor, Components) {
    NSColor* color = [NSColor colorWithDeviceRed:0.25f green:0.5f blue:0.75f alpha:0.5f];
    CGFloat all[4];
    [color getComponents:all];
    EXPECT_EQ(all[1], 0.5f);
    EXPECT_EQ([color numberOfComponents], 4);
    EXPECT_EQ([color redComponent], 0.25f);
    EXPECT_EQ([color alphaComponent], 0.5f);
    EXPECT_EQ([[color colorWithAlphaComponent:1] alphaComponent], 1);
    EXPECT_TRUE([color isEqual:[NSColor colorWithDeviceRed:0.25f green:0.5f blue:0.75f alpha:0.5f]]);
    EXPECT_FALSE([color isEqual:[NSColor redColor]]);
}

TEST(NSColor, GrayHasNoRed) {
    NSColor* gray = [NSColor colorWithDeviceWhite:0.5f alpha:1];
    EXPECT_EQ([gray whiteComponent], 0.5f);
    EXPECT_EQ(str([raised([&] { [gray redComponent]; }) name]), str(NSInvalidArgumentException));
    NSColor* rgb = [gray colorUsingColorSpaceName:NSDeviceRGBColorSpace];
    EXPECT_NEAR([rgb redComponent], 0.5, 1e-3);
    EXPECT_NEAR([rgb blueComponent], 0.5, 1e-3);
    EXPECT_EQ([gray colorUsingColorSpaceName:@"NSNoSuchSpace"], nil);
}

TEST(NSColor, SetsTheCurrentColours) {
    Bitmap context(1, 1);
    Current current(context.get());
    [[NSColor greenColor] set];
    NSRectFill(NSMakeRect(0, 0, 1, 1));
    EXPECT_EQ(context.pixel(0, 0), (Pixel{0, 255, 0, 255}));
}
