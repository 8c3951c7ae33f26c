// CIImageAccumulator: what is rendered stays, and an image of it does not change.
#include "support.h"

#include <array>

static CIImage* plain(CGFloat red, CGFloat green, CGFloat blue) {
    return [CIImage imageWithColor:[CIColor colorWithRed:red green:green blue:blue]];
}

/// The pixel whose lower left corner is (x, y), in sRGB.
static std::array<int, 4> pixelOf(CIImage* image, CGFloat x, CGFloat y) {
    std::uint8_t p[4] = {};
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    [[CIContext contextWithOptions:nil] render:image
                                      toBitmap:p
                                      rowBytes:4
                                        bounds:CGRectMake(x, y, 1, 1)
                                        format:kCIFormatRGBA8
                                    colorSpace:space.get()];
    return {p[0], p[1], p[2], p[3]};
}

using Pixel = std::array<int, 4>;

TEST(CIImageAccumulator, BeginsTransparentAndKeepsWhatIsSet) {
    CIImageAccumulator* paper = [CIImageAccumulator imageAccumulatorWithExtent:CGRectMake(-2, 3, 8, 6)
                                                                        format:kCIFormatARGB8];
    EXPECT_TRUE(CGRectEqualToRect([paper extent], CGRectMake(-2, 3, 8, 6)));
    EXPECT_EQ([paper format], kCIFormatARGB8);
    EXPECT_TRUE(CGRectEqualToRect([[paper image] extent], CGRectMake(-2, 3, 8, 6)));
    EXPECT_EQ(pixelOf([paper image], 0, 4), (Pixel{0, 0, 0, 0}));
    [paper setImage:plain(1, 0, 0)];
    EXPECT_EQ(pixelOf([paper image], -2, 3), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixelOf([paper image], 5, 8), (Pixel{255, 0, 0, 255}));
    [paper setImage:nil];
    EXPECT_EQ(pixelOf([paper image], 0, 4), (Pixel{255, 0, 0, 255}));
    [paper clear];
    EXPECT_EQ(pixelOf([paper image], 0, 4), (Pixel{0, 0, 0, 0}));
}

TEST(CIImageAccumulator, OnlyTheDirtyPartIsReplaced) {
    CIImageAccumulator* paper = [CIImageAccumulator imageAccumulatorWithExtent:CGRectMake(10, 20, 8, 6)
                                                                        format:kCIFormatRGBA16];
    [paper setImage:plain(1, 0, 0)];
    [paper setImage:plain(0, 0, 1) dirtyRect:CGRectMake(12, 21, 2, 3)];
    Pixel red{255, 0, 0, 255}, blue{0, 0, 255, 255};
    for (int y = 20; y < 26; ++y)
        for (int x = 10; x < 18; ++x) {
            bool dirty = x >= 12 && x < 14 && y >= 21 && y < 24;
            EXPECT_EQ(pixelOf([paper image], static_cast<CGFloat>(x), static_cast<CGFloat>(y)),
                      dirty ? blue : red)
                << x << ' ' << y;
        }
    // Beyond its edges nothing is written.
    [paper setImage:plain(0, 1, 0) dirtyRect:CGRectMake(16, 24, 100, 100)];
    EXPECT_EQ(pixelOf([paper image], 17, 25), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(pixelOf([paper image], 15, 25), red);
    [paper setImage:plain(0, 1, 0) dirtyRect:CGRectMake(100, 100, 1, 1)];
    EXPECT_EQ(pixelOf([paper image], 12, 21), blue);
}

TEST(CIImageAccumulator, AnImageKeepsWhatItShowed) {
    CIImageAccumulator* paper = [CIImageAccumulator imageAccumulatorWithExtent:CGRectMake(0, 0, 4, 4)
                                                                        format:kCIFormatARGB8];
    [paper setImage:plain(1, 0, 0)];
    CIImage* before = [paper image];
    [paper setImage:plain(0, 1, 0) dirtyRect:CGRectMake(0, 0, 2, 2)];
    EXPECT_EQ(pixelOf(before, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixelOf([paper image], 0, 0), (Pixel{0, 255, 0, 255}));
    [paper clear];
    EXPECT_EQ(pixelOf(before, 0, 0), (Pixel{255, 0, 0, 255}));
}

TEST(CIImageAccumulator, BuildsUponItself) {
    CIImageAccumulator* paper = [CIImageAccumulator imageAccumulatorWithExtent:CGRectMake(0, 0, 8, 1)
                                                                        format:kCIFormatRGBAf];
    [paper setImage:[plain(1, 1, 1) imageByCroppingToRect:CGRectMake(0, 0, 1, 1)]];
    // A row of pixels, each a step of the first to the right.
    for (int step = 0; step < 7; ++step) {
        CIFilter* over = [CIFilter filterWithName:@"CISourceOverCompositing"];
        [over setValue:[[paper image] imageByApplyingTransform:CGAffineTransformMakeTranslation(1, 0)]
                forKey:kCIInputImageKey];
        [over setValue:[paper image] forKey:kCIInputBackgroundImageKey];
        [paper setImage:[over valueForKey:kCIOutputImageKey]];
        EXPECT_EQ(pixelOf([paper image], static_cast<CGFloat>(step + 1), 0)[3], 255) << step;
        if (step < 6) EXPECT_EQ(pixelOf([paper image], static_cast<CGFloat>(step + 2), 0)[3], 0) << step;
    }
}

TEST(CIImageAccumulator, FloatsKeepWhatIsBeyondWhite) {
    auto brightness = [](CIFormat format) {
        CIImageAccumulator* paper = [CIImageAccumulator imageAccumulatorWithExtent:CGRectMake(0, 0, 1, 1)
                                                                            format:format];
        CIFilter* brighter = [CIFilter filterWithName:@"CIExposureAdjust"];
        for (double stops : {3.0, -3.0}) {
            CIImage* image = stops > 0 ? plain(0.5f, 0.5f, 0.5f) : [paper image];
            [brighter setValue:image forKey:kCIInputImageKey];
            [brighter setValue:@(stops) forKey:kCIInputEVKey];
            [paper setImage:[brighter valueForKey:kCIOutputImageKey]];
        }
        return pixelOf([paper image], 0, 0)[0];
    };
    EXPECT_NEAR(brightness(kCIFormatRGBAf), 128, 1);
    EXPECT_NEAR(brightness(kCIFormatRGBAh), 128, 1);
    EXPECT_NEAR(brightness(kCIFormatARGB8), 99, 2); // an eighth of white
}

TEST(CIImageAccumulator, RefusesWhatCannotBe) {
    auto make = [](CGRect r, CIFormat f, CGColorSpaceRef space) {
        return [CIImageAccumulator imageAccumulatorWithExtent:r format:f colorSpace:space];
    };
    auto gray = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    CGRect good = CGRectMake(0, 0, 2, 2);
    EXPECT_NE(make(good, kCIFormatARGB8, nullptr), nil);
    EXPECT_EQ(make(CGRectZero, kCIFormatARGB8, nullptr), nil);
    EXPECT_EQ(make(CGRectInfinite, kCIFormatARGB8, nullptr), nil);
    EXPECT_EQ(make(CGRectMake(0, 0, 1e6f, 1e6f), kCIFormatARGB8, nullptr), nil);
    EXPECT_EQ(make(good, 99, nullptr), nil);
    EXPECT_EQ(make(good, kCIFormatARGB8, gray.get()), nil);
    EXPECT_EQ([[CIImageAccumulator alloc] init], nil);
}
