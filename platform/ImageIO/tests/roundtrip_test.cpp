// Images written to files and read back.
#include "files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <png.h>

using cg::Retained;

namespace {

Retained<CFStringRef> text(const char* t) {
    return Retained<CFStringRef>::adopt(CFStringCreateWithCString(nullptr, t, kCFStringEncodingUTF8));
}

Bytes raw(CGImageRef image) {
    auto data = Retained<CFDataRef>::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image)));
    return Bytes(CFDataGetBytePtr(data.get()), CFDataGetBytePtr(data.get()) + CFDataGetLength(data.get()));
}

constexpr const char* webp = "org.webmproject.webp";

Bytes encodeAt(CGImageRef image, const char* type, double quality) {
    auto properties = Retained<CFMutableDictionaryRef>::adopt(CFDictionaryCreateMutable(
        nullptr, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    auto value = Retained<CFNumberRef>::adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &quality));
    CFDictionarySetValue(properties.get(), kCGImageDestinationLossyCompressionQuality, value.get());
    return encode({image}, type, properties.get());
}

} // namespace

TEST(RoundTrip, LosslessFormatsKeepEverySample) {
    for (const char* type : {"public.png", "public.tiff"})
        for (int kind :
             {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA})
            for (int bits : {8, 16}) {
                SCOPED_TRACE(testing::Message() << type << " kind " << kind << " bits " << bits);
                auto image = decode(pngFile(33, 21, kind, {.bits = bits}));
                auto again = decode(encode({image.get()}, type));
                ASSERT_TRUE(again);
                EXPECT_EQ(CGImageGetBitsPerPixel(again.get()), CGImageGetBitsPerPixel(image.get()));
                EXPECT_EQ(CGImageGetBitmapInfo(again.get()), CGImageGetBitmapInfo(image.get()));
                EXPECT_EQ(raw(again.get()), raw(image.get()));
            }
}

TEST(RoundTrip, FormatsOf8BitsKeepFewColours) {
    auto image = decode(bmpFile24());
    for (const char* type : {"com.microsoft.bmp", "com.compuserve.gif"}) {
        auto again = decode(encode({image.get()}, type));
        ASSERT_TRUE(again) << type;
        for (std::size_t y = 0; y < 2; ++y)
            for (std::size_t x = 0; x < 3; ++x)
                EXPECT_EQ(Drawn(again.get()).at(x, y), Drawn(image.get()).at(x, y)) << type << x << y;
    }
}

TEST(RoundTrip, ManyColoursAreReducedInAGif) {
    auto image = decode(pngFile(64, 64, PNG_COLOR_TYPE_RGB));
    auto again = decode(encode({image.get()}, "com.compuserve.gif"));
    ASSERT_TRUE(again);
    Drawn before(image.get()), after(again.get());
    double difference = 0;
    for (std::size_t y = 0; y < 64; ++y)
        for (std::size_t x = 0; x < 64; ++x)
            for (std::size_t k = 0; k < 3; ++k)
                difference += std::abs(double(before.at(x, y)[k]) - double(after.at(x, y)[k]));
    EXPECT_LT(difference / (64 * 64 * 3), 12);
    EXPECT_GT(difference, 0) << "256 colours cannot hold this picture";
}

TEST(RoundTrip, AGifIsTransparentWhereThePictureMostlyIs) {
    auto image = decode(gifFile());
    auto again = decode(encode({image.get()}, "com.compuserve.gif"));
    ASSERT_TRUE(again);
    ASSERT_EQ(CGImageGetWidth(again.get()), CGImageGetWidth(image.get()));
    for (std::size_t y = 0; y < CGImageGetHeight(image.get()); ++y)
        for (std::size_t x = 0; x < CGImageGetWidth(image.get()); ++x)
            EXPECT_EQ(Drawn(again.get()).at(x, y), Drawn(image.get()).at(x, y)) << x << " " << y;
}

TEST(RoundTrip, ProfilesTravelAlong) {
    auto adobe = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceAdobeRGB1998));
    auto srgb = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    auto image = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB));
    auto tagged = Retained<CGImageRef>::adopt(CGImageCreateCopyWithColorSpace(image.get(), adobe.get()));
    for (const char* type : {"public.png", "public.jpeg", "public.tiff", webp}) {
        auto again = decode(encode({tagged.get()}, type));
        ASSERT_TRUE(again) << type;
        EXPECT_FALSE(CFEqual(CGImageGetColorSpace(again.get()), srgb.get())) << type;
        Pixel before = Drawn(tagged.get()).at(12, 4), after = Drawn(again.get()).at(12, 4);
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(before[k], after[k], 12) << type;
    }
}

TEST(RoundTrip, QualityDecidesTheSize) {
    auto image = decode(pngFile(128, 128, PNG_COLOR_TYPE_RGB));
    for (const char* type : {"public.jpeg", webp}) {
        Bytes low = encodeAt(image.get(), type, 0.2), high = encodeAt(image.get(), type, 0.95);
        EXPECT_LT(low.size() * 2, high.size()) << type;
        Pixel original = Drawn(image.get()).at(60, 60), kept = Drawn(decode(high).get()).at(60, 60);
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(kept[k], original[k], 6) << type;
    }
}

TEST(RoundTrip, WebPOfTheBestQualityLosesNothing) {
    for (int kind :
         {PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA, PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA}) {
        auto image = decode(pngFile(33, 21, kind));
        auto again = decode(encodeAt(image.get(), webp, 1));
        ASSERT_TRUE(again) << kind;
        for (std::size_t y = 0; y < 21; ++y)
            for (std::size_t x = 0; x < 33; ++x)
                EXPECT_EQ(Drawn(again.get()).at(x, y), Drawn(image.get()).at(x, y))
                    << kind << ' ' << x << ' ' << y;
    }
}

TEST(RoundTrip, WebPOfTheBestQualityKeepsTheColoursOfWhatIsTransparent) {
    Bytes pixels;
    for (int i = 0; i < 16 * 16; ++i)
        for (int v : {i, 255 - i, 77, i % 3 ? 0 : 128}) pixels.push_back(static_cast<std::uint8_t>(v));
    auto image = makeImage(16, 16, 8, 32, CGColorSpaceCreateDeviceRGB, kCGImageAlphaLast, pixels);
    EXPECT_EQ(raw(decode(encodeAt(image.get(), webp, 1)).get()), pixels);
}

TEST(RoundTrip, WebPHasALargestSize) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    for (std::size_t width : {16383u, 16384u}) {
        auto context = Retained<CGContextRef>::adopt(
            CGBitmapContextCreate(nullptr, width, 2, 8, 0, space.get(), kCGImageAlphaPremultipliedLast));
        auto image = Retained<CGImageRef>::adopt(CGBitmapContextCreateImage(context.get()));
        EXPECT_EQ(encode({image.get()}, webp).empty(), width > 16383) << width;
    }
}

TEST(RoundTrip, JPEGShowsTransparencyOnWhite) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    auto context = Retained<CGContextRef>::adopt(
        CGBitmapContextCreate(nullptr, 16, 16, 8, 0, space.get(), kCGImageAlphaPremultipliedLast));
    auto image = Retained<CGImageRef>::adopt(CGBitmapContextCreateImage(context.get()));
    Pixel p = Drawn(decode(encode({image.get()}, "public.jpeg")).get()).at(8, 8);
    EXPECT_EQ(p, (Pixel{255, 255, 255, 255}));
}

TEST(RoundTrip, ResolutionAndOrientation) {
    auto image = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB));
    auto properties = Retained<CFMutableDictionaryRef>::adopt(CFDictionaryCreateMutable(
        nullptr, 3, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    auto set = [&](CFStringRef key, double value) {
        auto number = Retained<CFNumberRef>::adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
        CFDictionarySetValue(properties.get(), key, number.get());
    };
    set(kCGImagePropertyDPIWidth, 300);
    set(kCGImagePropertyDPIHeight, 300);
    set(kCGImagePropertyOrientation, 6);
    for (const char* type : {"public.png", "public.jpeg", "public.tiff"}) {
        auto from = source(encode({image.get()}, type, properties.get()));
        auto read =
            Retained<CFDictionaryRef>::adopt(CGImageSourceCopyPropertiesAtIndex(from.get(), 0, nullptr));
        EXPECT_NEAR(number(read, kCGImagePropertyDPIWidth), 300, 0.1) << type;
        EXPECT_EQ(number(read, kCGImagePropertyOrientation), 6) << type;
    }
}

TEST(RoundTrip, TIFFHoldsSeveralPages) {
    auto first = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB)),
         second = decode(pngFile(8, 9, PNG_COLOR_TYPE_GRAY));
    Bytes file = encode({first.get(), second.get()}, "public.tiff");
    EXPECT_EQ(CGImageSourceGetCount(source(file).get()), 2u);
    EXPECT_EQ(CGImageGetHeight(decode(file, 1).get()), 9u);
    EXPECT_TRUE(encode({first.get(), second.get()}, "public.png").empty());
}

TEST(RoundTrip, Files) {
    char path[] = "/tmp/imageio_XXXXXX";
    int descriptor = mkstemp(path);
    ASSERT_GE(descriptor, 0);
    auto url = Retained<CFURLRef>::adopt(
        CFURLCreateWithFileSystemPath(nullptr, text(path).get(), kCFURLPOSIXPathStyle, false));
    auto image = decode(pngFile(16, 16, PNG_COLOR_TYPE_RGB));
    auto destination = Retained<CGImageDestinationRef>::adopt(
        CGImageDestinationCreateWithURL(url.get(), text("public.png").get(), 1, nullptr));
    EXPECT_FALSE(CGImageDestinationFinalize(destination.get())); // nothing added yet
    CGImageDestinationAddImage(destination.get(), image.get(), nullptr);
    EXPECT_TRUE(CGImageDestinationFinalize(destination.get()));
    auto from = Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithURL(url.get(), nullptr));
    EXPECT_EQ(CGImageSourceGetCount(from.get()), 1u);
    std::remove(path);
    EXPECT_FALSE(Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithURL(url.get(), nullptr)));
    EXPECT_EQ(CGImageDestinationCreateWithURL(url.get(), text("public.unknown").get(), 1, nullptr), nullptr);
}
