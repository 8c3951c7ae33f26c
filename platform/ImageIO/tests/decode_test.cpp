// Files of every format, decoded.
#include "files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <png.h>

using cg::Retained;

namespace {

std::string typeOf(const Bytes& file) {
    char text[64] = "";
    auto from = source(file);
    CFStringRef type = CGImageSourceGetType(from.get());
    if (type) CFStringGetCString(type, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

Retained<CFDictionaryRef> properties(const Bytes& file) {
    auto from = source(file);
    return Retained<CFDictionaryRef>::adopt(CGImageSourceCopyPropertiesAtIndex(from.get(), 0, nullptr));
}

/// The pixel of testPixels() there, without alpha.
Pixel expected(const Bytes& pixels, int width, int samples, int x, int y) {
    const std::uint8_t* p = &pixels[static_cast<std::size_t>((y * width + x) * samples)];
    return samples == 1 ? Pixel{p[0], p[0], p[0], 255} : Pixel{p[0], p[1], p[2], 255};
}

} // namespace

TEST(Decode, RecognisesFormatsByTheirBytes) {
    EXPECT_EQ(typeOf(jpegFile(8, 8, 3)), "public.jpeg");
    EXPECT_EQ(typeOf(pngFile(8, 8, PNG_COLOR_TYPE_RGB)), "public.png");
    EXPECT_EQ(typeOf(gifFile()), "com.compuserve.gif");
    EXPECT_EQ(typeOf(webpFile(8, 8, false)), "org.webmproject.webp");
    EXPECT_EQ(typeOf(bmpFile24()), "com.microsoft.bmp");
}

TEST(Decode, JPEG) {
    Bytes pixels = testPixels(64, 48, 3);
    auto image = decode(jpegFile(64, 48, 3));
    ASSERT_TRUE(image);
    EXPECT_EQ(CGImageGetAlphaInfo(image.get()), CGImageAlphaInfo(kCGImageAlphaNoneSkipLast));
    Drawn drawn(image.get());
    // Quality 95 and halved colour resolution: smooth parts stay within a few levels.
    expectNear(drawn.at(28, 28), expected(pixels, 64, 3, 28, 28), 12);
    EXPECT_EQ(drawn.at(3, 3)[3], 255);
    auto gray = decode(jpegFile(64, 48, 1));
    EXPECT_EQ(CGImageGetBitsPerPixel(gray.get()), 8u);
    EXPECT_EQ(CGColorSpaceGetModel(CGImageGetColorSpace(gray.get())), kCGColorSpaceModelMonochrome);
}

TEST(Decode, AdobesCMYKIsInverted) {
    // With Adobe's marker the stored values mean the opposite.
    Bytes pixels = testPixels(32, 32, 4);
    for (bool adobe : {true, false}) {
        auto image = decode(jpegFile(32, 32, 4, adobe));
        ASSERT_TRUE(image);
        EXPECT_EQ(CGColorSpaceGetModel(CGImageGetColorSpace(image.get())), kCGColorSpaceModelCMYK);
        auto data = Retained<CFDataRef>::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image.get())));
        const UInt8* p = CFDataGetBytePtr(data.get()) + (12 * 32 + 12) * 4;
        for (int k = 0; k < 4; ++k) {
            int stored = pixels[static_cast<std::size_t>((12 * 32 + 12) * 4 + k)];
            EXPECT_NEAR(p[k], adobe ? 255 - stored : stored, 8) << k;
        }
    }
}

TEST(Decode, PNGOfEveryKind) {
    struct Kind {
        int type, samples, bits;
        bool interlaced;
    };
    for (const Kind& kind : {Kind{PNG_COLOR_TYPE_RGB, 3, 8, false}, Kind{PNG_COLOR_TYPE_RGB, 3, 8, true},
                             Kind{PNG_COLOR_TYPE_RGB, 3, 16, false}, Kind{PNG_COLOR_TYPE_GRAY, 1, 8, false},
                             Kind{PNG_COLOR_TYPE_GRAY, 1, 16, true}}) {
        SCOPED_TRACE(testing::Message() << "type " << kind.type << " bits " << kind.bits);
        Bytes pixels = testPixels(20, 20, kind.samples);
        auto image = decode(pngFile(20, 20, kind.type, {.bits = kind.bits, .interlaced = kind.interlaced}));
        ASSERT_TRUE(image);
        EXPECT_EQ(CGImageGetBitsPerComponent(image.get()), std::size_t(kind.bits));
        Drawn drawn(image.get());
        for (int at : {0, 7, 19})
            EXPECT_EQ(drawn.at(std::size_t(at), 5), expected(pixels, 20, kind.samples, at, 5));
    }
}

TEST(Decode, PNGAlphaIsStraight) {
    Bytes pixels = testPixels(20, 20, 4);
    auto image = decode(pngFile(20, 20, PNG_COLOR_TYPE_RGB_ALPHA));
    EXPECT_EQ(CGImageGetAlphaInfo(image.get()), CGImageAlphaInfo(kCGImageAlphaLast));
    const std::uint8_t* p = &pixels[(10 * 20 + 10) * 4];
    Pixel premultiplied = {int(std::lround(p[0] * p[3] / 255.)), int(std::lround(p[1] * p[3] / 255.)),
                           int(std::lround(p[2] * p[3] / 255.)), p[3]};
    expectNear(Drawn(image.get()).at(10, 10), premultiplied, 1);
}

TEST(Decode, PNGPalettesAndFewBits) {
    auto palette = decode(pngFile(8, 2, PNG_COLOR_TYPE_PALETTE, {.bits = 2}));
    ASSERT_TRUE(palette);
    Drawn drawn(palette.get());
    EXPECT_EQ(drawn.at(0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(drawn.at(1, 1), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(drawn.at(7, 1), (Pixel{255, 255, 255, 255}));
    double indexed =
        number(properties(pngFile(8, 2, PNG_COLOR_TYPE_PALETTE, {.bits = 2})), kCGImagePropertyIsIndexed);
    EXPECT_EQ(indexed, 1);
}

TEST(Decode, PNGGammaIsApplied) {
    // Linear data: 50/255 is much brighter than it looks in sRGB.
    auto linear = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB, {.gamma = 1}));
    auto plain = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB, {.gamma = 1 / 2.2}));
    EXPECT_EQ(Drawn(plain.get()).at(0, 0)[2], 50);
    int expected = int(std::lround(255 * (1.055 * std::pow(50 / 255., 1 / 2.4) - 0.055)));
    EXPECT_NEAR(Drawn(linear.get()).at(0, 0)[2], expected, 1);
}

TEST(Decode, GIFFramesBuildOnTheOnesBefore) {
    Bytes file = gifFile();
    EXPECT_EQ(CGImageSourceGetCount(source(file).get()), 2u);
    Drawn first(decode(file, 0).get()), second(decode(file, 1).get());
    EXPECT_EQ(first.at(0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(first.at(2, 2), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(second.at(2, 2), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(second.at(4, 4), (Pixel{255, 0, 0, 255})); // the first frame shows around the second
    EXPECT_FALSE(decode(file, 2));
}

TEST(Decode, WebP) {
    for (bool alpha : {false, true}) {
        Bytes pixels = testPixels(24, 16, alpha ? 4 : 3);
        auto image = decode(webpFile(24, 16, alpha));
        ASSERT_TRUE(image);
        const std::uint8_t* p = &pixels[std::size_t(5 * 24 + 9) * (alpha ? 4 : 3)];
        double a = alpha ? p[3] / 255. : 1;
        expectNear(Drawn(image.get()).at(9, 5),
                   {int(std::lround(p[0] * a)), int(std::lround(p[1] * a)), int(std::lround(p[2] * a)),
                    alpha ? p[3] : 255},
                   1);
    }
}

TEST(Decode, BMP) {
    Drawn drawn(decode(bmpFile24()).get());
    EXPECT_EQ(drawn.at(0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(drawn.at(1, 0), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(drawn.at(2, 1), (Pixel{128, 128, 128, 255}));
    EXPECT_NEAR(number(properties(bmpFile24()), kCGImagePropertyDPIWidth), 100, 0.1);
}

TEST(Decode, BMPWithRuns) {
    // 4x2, 8 bits, run-length coded: the lower row is 3 of colour 1 and one of colour 0, the upper 0 1 0 1.
    Bytes file(54 + 8);
    auto put = [&](std::size_t at, std::uint32_t value) {
        for (int k = 0; k < 4; ++k) file[at + std::size_t(k)] = std::uint8_t(value >> 8 * k);
    };
    file[0] = 'B', file[1] = 'M', file[26] = 1, file[28] = 8;
    put(10, 62);
    put(14, 40);
    put(18, 4);
    put(22, 2);
    put(30, 1);
    put(46, 2);
    put(58, 0x0000FF); // colour 1 is blue: B G R order in memory
    Bytes runs = {3, 1, 1, 0, 0, 0, 0, 4, 0, 1, 0, 1, 0, 1};
    file.insert(file.end(), runs.begin(), runs.end());
    auto image = decode(file);
    ASSERT_TRUE(image);
    Drawn drawn(image.get());
    EXPECT_EQ(drawn.at(2, 1), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(drawn.at(3, 1), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(drawn.at(1, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(drawn.at(2, 0), (Pixel{0, 0, 0, 255}));
}

TEST(Decode, Properties) {
    auto p = properties(pngFile(20, 10, PNG_COLOR_TYPE_GRAY_ALPHA, {.bits = 16}));
    EXPECT_EQ(number(p, kCGImagePropertyPixelWidth), 20);
    EXPECT_EQ(number(p, kCGImagePropertyPixelHeight), 10);
    EXPECT_EQ(number(p, kCGImagePropertyDepth), 16);
    EXPECT_EQ(number(p, kCGImagePropertyHasAlpha), 1);
    EXPECT_TRUE(
        CFEqual(CFDictionaryGetValue(p.get(), kCGImagePropertyColorModel), kCGImagePropertyColorModelGray));
}
