// kCIFormatRGBAh: 16-bit floats in bitmaps that programs bring and ask for.
#include "support.h"

#include <cmath>
#include <cstring>

/// RGBA pixels of linear light, a row of them.
static CIImage* imageOf(const std::vector<std::uint16_t>& halves) {
    auto space =
        cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    return [CIImage imageWithBitmapData:[NSData dataWithBytes:halves.data() length:2 * halves.size()]
                            bytesPerRow:2 * halves.size()
                                   size:CGSizeMake(static_cast<CGFloat>(halves.size()) / 4, 1)
                                 format:kCIFormatRGBAh
                             colorSpace:space.get()];
}

template <class Sample>
static std::vector<Sample> rendered(CIImage* image, CIFormat format, CGRect bounds) {
    auto space =
        cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    auto width = static_cast<size_t>(bounds.size.width), height = static_cast<size_t>(bounds.size.height);
    std::vector<Sample> pixels(4 * width * height);
    [[CIContext contextWithOptions:nil] render:image
                                      toBitmap:pixels.data()
                                      rowBytes:static_cast<ptrdiff_t>(4 * width * sizeof(Sample))
                                        bounds:bounds
                                        format:format
                                    colorSpace:space.get()];
    return pixels;
}

TEST(HalfFloats, AreReadAsTheNumbersTheyMean) {
    std::vector<std::uint16_t> halves = {0x3C00, 0x3800, 0x4500, 0x3C00, // 1, 0.5, 5
                                         0x0001, 0x83FF, 0x0400, 0x3C00, // denormal ones, and the least other
                                         0x7BFF, 0xFBFF, 0x8000, 0x3C00}; // 65504, -65504, -0
    auto floats = rendered<float>(imageOf(halves), kCIFormatRGBAf, CGRectMake(0, 0, 3, 1));
    std::vector<float> expected = {1, 0.5f, 5, 1, 0x1p-24f, -0x1.ff8p-15f, 0x1p-14f, 1, 65504, -65504, 0, 1};
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(floats[i], expected[i]) << i;
    // What is no number is nothing.
    floats =
        rendered<float>(imageOf({0x7E00, 0x3C00, 0x3C00, 0x3C00}), kCIFormatRGBAf, CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(floats[0], 0);
}

TEST(HalfFloats, AllComeBackAsTheyWere) {
    std::vector<std::uint16_t> halves;
    for (int sample = 0; sample < 0x7C00; ++sample) {
        halves.push_back(static_cast<std::uint16_t>(sample));
        if (halves.size() % 4 == 3) halves.push_back(0x3C00);
    }
    halves.resize(halves.size() / 4 * 4);
    auto width = static_cast<CGFloat>(halves.size() / 4);
    EXPECT_EQ(rendered<std::uint16_t>(imageOf(halves), kCIFormatRGBAh, CGRectMake(0, 0, width, 1)), halves);
}

TEST(HalfFloats, AreRounded) {
    auto half = [](float value) {
        std::vector<float> pixel = {value, 0, 0, 1};
        auto space =
            cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
        CIImage* image = [CIImage imageWithBitmapData:[NSData dataWithBytes:pixel.data() length:16]
                                          bytesPerRow:16
                                                 size:CGSizeMake(1, 1)
                                               format:kCIFormatRGBAf
                                           colorSpace:space.get()];
        return rendered<std::uint16_t>(image, kCIFormatRGBAh, CGRectMake(0, 0, 1, 1))[0];
    };
    EXPECT_EQ(half(1), 0x3C00);
    EXPECT_EQ(half(1 + 0x1p-11f), 0x3C00);    // halfway: to the even one
    EXPECT_EQ(half(1 + 0x3p-11f), 0x3C02);    // halfway
    EXPECT_EQ(half(1 + 0x1.01p-11f), 0x3C01); // above halfway
    EXPECT_EQ(half(-0.1f), 0xAE66);
    EXPECT_EQ(half(65519), 0x7BFF);
    EXPECT_EQ(half(65520), 0x7C00);
    EXPECT_EQ(half(1e9f), 0x7C00);
    EXPECT_EQ(half(0x1p-25f), 0);
    EXPECT_EQ(half(0x1.8p-25f), 1);
}

TEST(HalfFloats, LargePicturesAreRenderedInTheirOrder) {
    // Brighter from row to row, and more rows than are rendered at once.
    CIFilter* gradient = [CIFilter filterWithName:@"CILinearGradient"];
    [gradient setValue:[CIVector vectorWithX:0 Y:0] forKey:@"inputPoint0"];
    [gradient setValue:[CIVector vectorWithX:0 Y:150] forKey:@"inputPoint1"];
    [gradient setValue:[CIColor colorWithRed:0 green:0 blue:0] forKey:@"inputColor0"];
    [gradient setValue:[CIColor colorWithRed:1 green:1 blue:1] forKey:@"inputColor1"];
    CIImage* image = [gradient valueForKey:kCIOutputImageKey];
    CGRect bounds = CGRectMake(0, 0, 3, 150);
    auto halves = rendered<std::uint16_t>(image, kCIFormatRGBAh, bounds);
    auto floats = rendered<float>(image, kCIFormatRGBAf, bounds);
    for (size_t row = 0; row < 150; ++row) {
        float half =
            std::ldexp(static_cast<float>(0x400 | (halves[12 * row] & 0x3FF)), (halves[12 * row] >> 10) - 25);
        EXPECT_NEAR(half, floats[12 * row], 0x1p-11f * floats[12 * row] + 1e-6f) << row;
    }
}

TEST(HalfFloats, AnImageHasFloats) {
    auto image = cg::Retained<CGImageRef>::adopt([[CIContext contextWithOptions:nil]
        createCGImage:imageOf({0x3C00, 0x3800, 0, 0x3C00})
             fromRect:CGRectMake(0, 0, 1, 1)
               format:kCIFormatRGBAh
           colorSpace:nullptr]);
    ASSERT_TRUE(image);
    EXPECT_EQ(CGImageGetBitsPerComponent(image.get()), 32u);
}

TEST(HalfFloats, MemoryThatIsTooSmallIsRefused) {
    std::uint16_t pixels[8];
    NSException* e = raised([&] {
        [[CIContext contextWithOptions:nil] render:[CIImage emptyImage]
                                          toBitmap:pixels
                                          rowBytes:15
                                            bounds:CGRectMake(0, 0, 2, 1)
                                            format:kCIFormatRGBAh
                                        colorSpace:nullptr];
    });
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
}
