// Bitmap contexts: filling, stroking, clipping, blending and drawing images.
#include <testing/bitmap.h>

#include <cmath>
#include <cstring>

using cg::Retained;

namespace {

void fill(const Bitmap& bitmap, CGRect rect, CGFloat r, CGFloat g, CGFloat b, CGFloat a = 1) {
    CGContextSetRGBFillColor(bitmap.get(), r, g, b, a);
    CGContextFillRect(bitmap.get(), rect);
}

CGRect whole(const Bitmap& bitmap) {
    return CGRectMake(0, 0, CGFloat(CGBitmapContextGetWidth(bitmap.get())),
                      CGFloat(CGBitmapContextGetHeight(bitmap.get())));
}

/// Red, green over blue, white.
Retained<CGImageRef> corners() {
    return makeImage(2, 2, 8, 24, CGColorSpaceCreateDeviceRGB, kCGImageAlphaNone,
                     {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255});
}

} // namespace

TEST(BitmapContext, OwnMemoryIsClearedAndAligned) {
    Bitmap bitmap(3, 2);
    ASSERT_TRUE(bitmap.context);
    EXPECT_GE(CGBitmapContextGetBytesPerRow(bitmap.get()), 12u);
    EXPECT_EQ(bitmap.pixel(2, 1), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(CGBitmapContextGetAlphaInfo(bitmap.get()), CGImageAlphaInfo(kCGImageAlphaPremultipliedLast));
}

TEST(BitmapContext, RefusesUnsupportedLayouts) {
    auto rgb = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    auto create = [&](size_t w, size_t bits, size_t row, CGBitmapInfo info) {
        return Retained<CGContextRef>::adopt(
            CGBitmapContextCreate(nullptr, w, 4, bits, row, rgb.get(), info));
    };
    EXPECT_FALSE(create(4, 8, 0, kCGImageAlphaLast));
    EXPECT_FALSE(create(4, 8, 0, kCGImageAlphaNone));
    EXPECT_FALSE(create(4, 8, 15, kCGImageAlphaPremultipliedLast));
    EXPECT_FALSE(create(0, 8, 0, kCGImageAlphaPremultipliedLast));
    EXPECT_FALSE(create(4, 5, 0, kCGImageAlphaPremultipliedLast));
    EXPECT_TRUE(create(4, 16, 0, kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Little));
    EXPECT_TRUE(create(
        4, 32, 0, kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little | kCGBitmapFloatComponents));
}

TEST(BitmapContext, EveryOrderOfBytes) {
    struct Case {
        CGBitmapInfo info;
        Pixel expected;
    };
    const Case cases[] = {
        {kCGImageAlphaPremultipliedLast, {255, 128, 0, 255}},
        {kCGImageAlphaPremultipliedFirst, {255, 255, 128, 0}},
        {kCGImageAlphaNoneSkipLast, {255, 128, 0, 255}},
        {kCGImageAlphaNoneSkipFirst, {255, 255, 128, 0}},
        {kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Big, {255, 128, 0, 255}},
        {kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little, {0, 128, 255, 255}},
        {kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little, {255, 0, 128, 255}},
        {kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little, {0, 128, 255, 255}},
    };
    for (const Case& c : cases) {
        Bitmap bitmap(1, 1, c.info);
        ASSERT_TRUE(bitmap.context) << c.info;
        fill(bitmap, whole(bitmap), 1, 128 / 255.f, 0);
        EXPECT_EQ(bitmap.pixel(0, 0), c.expected) << c.info;
    }
}

TEST(BitmapContext, RowZeroIsTheTop) {
    Bitmap bitmap(2, 3);
    fill(bitmap, CGRectMake(0, 0, 2, 1), 1, 0, 0);
    EXPECT_EQ(bitmap.pixel(0, 2), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{0, 0, 0, 0}));
}

TEST(BitmapContext, FractionsOfPixelsAreCovered) {
    Bitmap bitmap(4, 1);
    fill(bitmap, CGRectMake(0.25f, 0, 2.5f, 1), 1, 1, 1);
    EXPECT_EQ(bitmap.pixel(0, 0)[3], 191); // three quarters
    EXPECT_EQ(bitmap.pixel(1, 0)[3], 255);
    EXPECT_EQ(bitmap.pixel(2, 0)[3], 191);
    EXPECT_EQ(bitmap.pixel(3, 0)[3], 0);
}

TEST(BitmapContext, BlendsSourceOver) {
    Bitmap bitmap(1, 1);
    fill(bitmap, whole(bitmap), 1, 0, 0);
    fill(bitmap, whole(bitmap), 0, 0, 1, 0.5f);
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{128, 0, 128, 255}));
    CGContextSetBlendMode(bitmap.get(), kCGBlendModeCopy);
    fill(bitmap, whole(bitmap), 0, 1, 0, 0.5f);
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{0, 128, 0, 128}));
}

TEST(BitmapContext, BlendModes) {
    struct Case {
        CGBlendMode mode;
        Pixel expected;
    };
    // Backdrop 0.8, 0.4, 0.2 opaque; source 0.6, 0.6, 0.6 opaque.
    const Case cases[] = {
        {kCGBlendModeMultiply, {122, 61, 31, 255}},         {kCGBlendModeScreen, {235, 194, 173, 255}},
        {kCGBlendModeDarken, {153, 102, 51, 255}},          {kCGBlendModeLighten, {204, 153, 153, 255}},
        {kCGBlendModeDifference, {51, 51, 102, 255}},       {kCGBlendModeExclusion, {112, 133, 143, 255}},
        {kCGBlendModeDestinationOver, {204, 102, 51, 255}}, {kCGBlendModeXOR, {0, 0, 0, 0}},
        {kCGBlendModePlusLighter, {255, 255, 204, 255}},    {kCGBlendModeClear, {0, 0, 0, 0}}};
    for (const Case& c : cases) {
        Bitmap bitmap(1, 1);
        fill(bitmap, whole(bitmap), 0.8f, 0.4f, 0.2f);
        CGContextSetBlendMode(bitmap.get(), c.mode);
        fill(bitmap, whole(bitmap), 0.6f, 0.6f, 0.6f);
        Pixel p = bitmap.pixel(0, 0);
        for (size_t k = 0; k < 4; ++k)
            EXPECT_NEAR(p[k], c.expected[k], 1) << "mode " << c.mode << " component " << k;
    }
}

TEST(BitmapContext, LuminosityKeepsHueOfTheBackdrop) {
    Bitmap bitmap(1, 1);
    fill(bitmap, whole(bitmap), 0.8f, 0.4f, 0.4f);
    CGContextSetBlendMode(bitmap.get(), kCGBlendModeLuminosity);
    fill(bitmap, whole(bitmap), 0.3f, 0.3f, 0.3f);
    Pixel p = bitmap.pixel(0, 0);
    EXPECT_EQ(p[1], p[2]);
    EXPECT_GT(p[0], p[1]);
    EXPECT_NEAR(0.3 * p[0] + 0.59 * p[1] + 0.11 * p[2], 0.3 * 255, 1.5);
}

TEST(BitmapContext, TransformAndState) {
    Bitmap bitmap(8, 8);
    CGContextSaveGState(bitmap.get());
    CGContextTranslateCTM(bitmap.get(), 2, 4);
    CGContextScaleCTM(bitmap.get(), 2, 2);
    fill(bitmap, CGRectMake(0, 0, 1, 1), 0, 1, 0);
    EXPECT_TRUE(
        CGPointEqualToPoint(CGContextConvertPointToDeviceSpace(bitmap.get(), {1, 1}), CGPointMake(4, 6)));
    CGContextRestoreGState(bitmap.get());
    CGContextRestoreGState(bitmap.get()); // one too many
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(bitmap.get())));
    // User 2..4, 4..6 is 2..4 from the top.
    EXPECT_EQ(bitmap.pixel(2, 2)[3], 255);
    EXPECT_EQ(bitmap.pixel(3, 3)[3], 255);
    EXPECT_EQ(bitmap.pixel(4, 3)[3], 0);
    EXPECT_EQ(bitmap.pixel(2, 4)[3], 0);
}

TEST(BitmapContext, ClipsToRectsAndPaths) {
    Bitmap bitmap(10, 10);
    CGContextClipToRect(bitmap.get(), CGRectMake(2, 2, 4, 4));
    EXPECT_TRUE(CGRectEqualToRect(CGContextGetClipBoundingBox(bitmap.get()), CGRectMake(2, 2, 4, 4)));
    fill(bitmap, whole(bitmap), 1, 1, 1);
    EXPECT_EQ(bitmap.pixel(1, 5)[3], 0);
    EXPECT_EQ(bitmap.pixel(2, 5)[3], 255);
    EXPECT_EQ(bitmap.pixel(6, 5)[3], 0);
    // A later clip never makes the area larger.
    CGContextClipToRect(bitmap.get(), CGRectMake(8, 8, 1, 1));
    EXPECT_TRUE(CGRectIsNull(CGContextGetClipBoundingBox(bitmap.get())));
    fill(bitmap, whole(bitmap), 1, 0, 0);
    EXPECT_EQ(bitmap.pixel(8, 1)[3], 0);

    Bitmap disc(20, 20);
    CGContextAddEllipseInRect(disc.get(), whole(disc));
    CGContextClip(disc.get());
    fill(disc, whole(disc), 1, 1, 1);
    EXPECT_EQ(disc.pixel(0, 0)[3], 0);
    EXPECT_EQ(disc.pixel(10, 10)[3], 255);
}

TEST(BitmapContext, EllipseHasItsArea) {
    Bitmap bitmap(100, 100);
    CGContextSetRGBFillColor(bitmap.get(), 1, 1, 1, 1);
    CGContextFillEllipseInRect(bitmap.get(), CGRectMake(10.3f, 20.7f, 60, 40));
    double area = 0;
    for (size_t y = 0; y < 100; ++y)
        for (size_t x = 0; x < 100; ++x) area += bitmap.pixel(x, y)[3] / 255.;
    EXPECT_NEAR(area, M_PI * 30 * 20, 2);
}

TEST(BitmapContext, EvenOddLeavesHoles) {
    Bitmap bitmap(9, 9);
    CGContextSetRGBFillColor(bitmap.get(), 1, 1, 1, 1);
    for (bool evenOdd : {false, true}) {
        CGContextClearRect(bitmap.get(), whole(bitmap));
        CGContextAddRect(bitmap.get(), CGRectMake(0, 0, 9, 9));
        CGContextAddRect(bitmap.get(), CGRectMake(3, 3, 3, 3));
        evenOdd ? CGContextEOFillPath(bitmap.get()) : CGContextFillPath(bitmap.get());
        EXPECT_EQ(bitmap.pixel(4, 4)[3], evenOdd ? 0 : 255);
        EXPECT_EQ(bitmap.pixel(1, 4)[3], 255);
        EXPECT_TRUE(CGContextIsPathEmpty(bitmap.get()));
    }
}

TEST(BitmapContext, StrokesAreCentredOnTheirLine) {
    Bitmap bitmap(10, 10);
    CGContextSetRGBStrokeColor(bitmap.get(), 1, 0, 0, 1);
    CGContextStrokeRectWithWidth(bitmap.get(), CGRectMake(3, 3, 4, 4), 2);
    EXPECT_EQ(bitmap.pixel(2, 5)[0], 255);
    EXPECT_EQ(bitmap.pixel(3, 5)[0], 255);
    EXPECT_EQ(bitmap.pixel(4, 5)[0], 0);
    EXPECT_EQ(bitmap.pixel(1, 5)[0], 0);
    EXPECT_EQ(bitmap.pixel(2, 2)[0], 255); // the corner is mitred
}

TEST(BitmapContext, LinesOfAnyDirectionHaveTheirArea) {
    Bitmap bitmap(60, 60);
    CGContextSetRGBStrokeColor(bitmap.get(), 1, 1, 1, 1);
    CGContextSetLineWidth(bitmap.get(), 3);
    const CGPoint line[] = {{10, 12}, {40, 52}};
    CGContextStrokeLineSegments(bitmap.get(), line, 2);
    double area = 0;
    for (size_t y = 0; y < 60; ++y)
        for (size_t x = 0; x < 60; ++x) area += bitmap.pixel(x, y)[3] / 255.;
    EXPECT_NEAR(area, 3 * 50, 0.5);
}

TEST(BitmapContext, ClearRectClearsThePaddingToo) {
    Bitmap bitmap(2, 1, kCGImageAlphaNoneSkipLast);
    fill(bitmap, whole(bitmap), 1, 1, 1);
    CGContextClearRect(bitmap.get(), CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(bitmap.pixel(1, 0), (Pixel{255, 255, 255, 255}));
}

TEST(BitmapContext, NothingIsWrittenOutsideOfTheCallersPixels) {
    Bytes memory(5 * 16 + 8, 0xEE);
    auto rgb = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    auto context = Retained<CGContextRef>::adopt(
        CGBitmapContextCreate(memory.data(), 3, 5, 8, 16, rgb.get(), kCGImageAlphaPremultipliedLast));
    CGContextSetRGBFillColor(context.get(), 0, 0, 0, 1);
    CGContextFillRect(context.get(), CGRectInfinite);
    CGContextFillEllipseInRect(context.get(), CGRectMake(-1e20f, -1e20f, 2e20f, 2e20f));
    CGContextFillRect(context.get(), CGRectMake(NAN, 0, 1, 1));
    for (size_t y = 0; y < 5; ++y) {
        EXPECT_EQ(memory[y * 16 + 11], 255);
        for (size_t x = 12; x < 16; ++x) EXPECT_EQ(memory[y * 16 + x], 0xEE);
    }
}

TEST(DrawImage, IsUpright) {
    Bitmap bitmap(2, 2);
    auto image = corners();
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(bitmap.pixel(1, 0), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(bitmap.pixel(0, 1), (Pixel{0, 0, 255, 255}));
}

TEST(DrawImage, FollowsTheTransform) {
    Bitmap bitmap(2, 2);
    CGContextTranslateCTM(bitmap.get(), 2, 0);
    CGContextRotateCTM(bitmap.get(), float(M_PI / 2));
    CGContextSetInterpolationQuality(bitmap.get(), kCGInterpolationNone);
    auto image = corners();
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    // A quarter turn to the left: the upper right corner comes to the upper left.
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(bitmap.pixel(0, 1), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(bitmap.pixel(1, 1), (Pixel{0, 0, 255, 255}));
}

TEST(DrawImage, EnlargingInterpolatesOrPicksTheNearest) {
    auto image = makeImage(2, 1, 8, 8, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, {0, 200});
    Bitmap bitmap(8, 1, kCGImageAlphaNone, CGColorSpaceCreateDeviceGray);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    const int smooth[] = {0, 0, 25, 75, 125, 175, 200, 200};
    for (size_t x = 0; x < 8; ++x) EXPECT_EQ(*bitmap.at(x, 0), smooth[x]) << x;
    CGContextSetInterpolationQuality(bitmap.get(), kCGInterpolationNone);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    for (size_t x = 0; x < 8; ++x) EXPECT_EQ(*bitmap.at(x, 0), x < 4 ? 0 : 200) << x;
}

TEST(DrawImage, ReducingAverages) {
    // Lines of black and white become gray, not one of the two.
    Bytes lines(64 * 64);
    for (size_t i = 0; i < lines.size(); ++i) lines[i] = i % 2 ? 255 : 0;
    auto image = makeImage(64, 64, 8, 8, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, lines);
    Bitmap bitmap(8, 8, kCGImageAlphaNone, CGColorSpaceCreateDeviceGray);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    for (size_t x = 0; x < 8; ++x) EXPECT_NEAR(*bitmap.at(x, 3), 128, 1);
}

TEST(DrawImage, LargeImagesAreDrawnInTilesWithoutSeams) {
    Bytes ramp(700 * 300);
    for (size_t y = 0; y < 300; ++y)
        for (size_t x = 0; x < 700; ++x) ramp[y * 700 + x] = std::uint8_t(x * 255 / 699);
    auto image = makeImage(700, 300, 8, 8, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, ramp);
    Bitmap bitmap(350, 150, kCGImageAlphaNone, CGColorSpaceCreateDeviceGray);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    for (size_t y = 0; y < 150; ++y)
        for (size_t x = 0; x < 350; ++x)
            ASSERT_NEAR(*bitmap.at(x, y), (2 * double(x) + 0.5) * 255 / 699, 1) << x << "," << y;
}

TEST(DrawImage, ColoursAreMatched) {
    // Adobe RGB's green is outside of sRGB; a gray stays the same gray.
    auto adobe = [] { return CGColorSpaceCreateWithName(kCGColorSpaceAdobeRGB1998); };
    auto image = makeImage(2, 1, 8, 24, adobe, kCGImageAlphaNone, {128, 128, 128, 100, 200, 100});
    Bitmap bitmap(2, 1);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    Pixel gray = bitmap.pixel(0, 0), green = bitmap.pixel(1, 0);
    for (size_t k = 0; k < 3; ++k) EXPECT_NEAR(gray[k], 128, 2);
    EXPECT_LT(green[0], 80); // sRGB needs less red for it
    EXPECT_NEAR(green[1], 200, 4);
}

TEST(DrawImage, SixteenBitsInBothOrders) {
    for (bool little : {false, true}) {
        Bytes bytes = little ? Bytes{0x34, 0x12} : Bytes{0x12, 0x34};
        CGBitmapInfo order = little ? kCGBitmapByteOrder16Little : kCGBitmapByteOrderDefault;
        auto image = makeImage(1, 1, 16, 16, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone | order, bytes);
        ASSERT_TRUE(image);
        auto rgb = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
        auto target = Retained<CGContextRef>::adopt(CGBitmapContextCreate(
            nullptr, 1, 1, 16, 0, rgb.get(), kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Little));
        CGContextDrawImage(target.get(), CGRectMake(0, 0, 1, 1), image.get());
        std::uint16_t pixel[4];
        std::memcpy(pixel, CGBitmapContextGetData(target.get()), sizeof pixel);
        EXPECT_EQ(pixel[0], 0x1234);
        EXPECT_EQ(pixel[2], 0x1234);
        EXPECT_EQ(pixel[3], 0xffff);
    }
}

TEST(DrawImage, CMYKBecomesRGB) {
    auto image =
        makeImage(2, 1, 8, 32, CGColorSpaceCreateDeviceCMYK, kCGImageAlphaNone, {0, 0, 0, 0, 255, 0, 0, 255});
    ASSERT_TRUE(image);
    Bitmap bitmap(2, 1);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(bitmap.pixel(1, 0), (Pixel{0, 0, 0, 255}));
}

TEST(DrawImage, MasksHideParts) {
    auto image =
        makeImage(2, 1, 8, 24, CGColorSpaceCreateDeviceRGB, kCGImageAlphaNone, {255, 0, 0, 0, 255, 0});
    // A gray image shows where it is bright, an image mask where it is dark.
    auto gray = makeImage(2, 1, 8, 8, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, {255, 0});
    auto mask = makeMask(2, 1, {0, 255});
    for (CGImageRef shape : {gray.get(), mask.get()}) {
        auto masked = Retained<CGImageRef>::adopt(CGImageCreateWithMask(image.get(), shape));
        ASSERT_TRUE(masked);
        Bitmap bitmap(2, 1);
        CGContextDrawImage(bitmap.get(), whole(bitmap), masked.get());
        EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{255, 0, 0, 255}));
        EXPECT_EQ(bitmap.pixel(1, 0), (Pixel{0, 0, 0, 0}));
        auto part =
            Retained<CGImageRef>::adopt(CGImageCreateWithImageInRect(masked.get(), CGRectMake(1, 0, 1, 1)));
        Bitmap second(1, 1);
        CGContextDrawImage(second.get(), whole(second), part.get());
        EXPECT_EQ(second.pixel(0, 0), (Pixel{0, 0, 0, 0}));
    }
    EXPECT_EQ(CGImageCreateWithMask(mask.get(), gray.get()), nullptr);
    EXPECT_EQ(CGImageCreateWithMask(image.get(), image.get()), nullptr);
}

TEST(DrawImage, AMaskPaintsTheFillColour) {
    auto mask = makeMask(2, 1, {0, 255});
    Bitmap bitmap(2, 1);
    CGContextSetRGBFillColor(bitmap.get(), 0, 0, 1, 1);
    CGContextDrawImage(bitmap.get(), whole(bitmap), mask.get());
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(bitmap.pixel(1, 0), (Pixel{0, 0, 0, 0}));
}

TEST(DrawImage, ClipsToAMask) {
    auto mask = makeMask(2, 2, {0, 255, 255, 0});
    Bitmap bitmap(2, 2);
    CGContextClipToMask(bitmap.get(), whole(bitmap), mask.get());
    fill(bitmap, whole(bitmap), 1, 1, 1);
    EXPECT_EQ(bitmap.pixel(0, 0)[3], 255);
    EXPECT_EQ(bitmap.pixel(1, 0)[3], 0);
    EXPECT_EQ(bitmap.pixel(0, 1)[3], 0);
    EXPECT_EQ(bitmap.pixel(1, 1)[3], 255);
}

TEST(DrawImage, AlphaOfStateAndImageMultiply) {
    auto image = makeImage(1, 1, 8, 32, CGColorSpaceCreateDeviceRGB, kCGImageAlphaLast, {200, 100, 0, 128});
    Bitmap bitmap(1, 1);
    CGContextSetAlpha(bitmap.get(), 0.5f);
    CGContextDrawImage(bitmap.get(), whole(bitmap), image.get());
    EXPECT_EQ(bitmap.pixel(0, 0), (Pixel{50, 25, 0, 64}));
}

TEST(DrawImage, ContextsMakeIndependentImages) {
    Bitmap bitmap(1, 1);
    fill(bitmap, whole(bitmap), 1, 0, 0);
    auto image = Retained<CGImageRef>::adopt(CGBitmapContextCreateImage(bitmap.get()));
    fill(bitmap, whole(bitmap), 0, 0, 1);
    Bitmap second(1, 1);
    CGContextDrawImage(second.get(), whole(second), image.get());
    EXPECT_EQ(second.pixel(0, 0), (Pixel{255, 0, 0, 255}));
}

TEST(DrawImage, AlphaOnlyContextsKeepCoverage) {
    auto context =
        Retained<CGContextRef>::adopt(CGBitmapContextCreate(nullptr, 2, 1, 8, 0, nullptr, kCGImageAlphaOnly));
    ASSERT_TRUE(context);
    CGContextSetRGBFillColor(context.get(), 1, 0, 0, 0.5f);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    auto* bytes = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_EQ(bytes[0], 128);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(CGBitmapContextGetColorSpace(context.get()), nullptr);
}
