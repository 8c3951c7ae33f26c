// Data providers, and images with their parts and copies.
#include <testing/bitmap.h>

using cg::Retained;

namespace {

int released = 0;

Retained<CGImageRef> rgba(size_t width, size_t height, const Bytes& bytes) {
    return makeImage(width, height, 8, 32, CGColorSpaceCreateDeviceRGB, kCGImageAlphaLast, bytes);
}

} // namespace

TEST(DataProvider, CallsReleaseOnceInTheEnd) {
    static const char bytes[] = "abcd";
    released = 0;
    CGDataProviderRef provider =
        CGDataProviderCreateWithData(&released, bytes, 4, [](void* info, const void* data, size_t size) {
            EXPECT_EQ(data, bytes);
            EXPECT_EQ(size, 4u);
            ++*static_cast<int*>(info);
        });
    CGDataProviderRetain(provider);
    CGDataProviderRelease(provider);
    EXPECT_EQ(released, 0);
    auto copy = Retained<CFDataRef>::adopt(CGDataProviderCopyData(provider));
    EXPECT_EQ(CFDataGetLength(copy.get()), 4);
    CGDataProviderRelease(provider);
    EXPECT_EQ(released, 1);
}

TEST(DataProvider, ReadsFilesAndNothingElse) {
    auto provider = [](const char* text) {
        auto string =
            Retained<CFStringRef>::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
        auto url = Retained<CFURLRef>::adopt(CFURLCreateWithString(nullptr, string.get(), nullptr));
        return Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithURL(url.get()));
    };
    EXPECT_TRUE(provider("file:///proc/self/status"));
    EXPECT_FALSE(provider("http://localhost/proc/self/status"));
    EXPECT_FALSE(provider("file:///no/such/file"));
    EXPECT_EQ(CGDataProviderCreateWithURL(nullptr), nullptr);
}

TEST(Image, AnswersHowItWasMade) {
    auto image = rgba(2, 3, Bytes(24));
    ASSERT_TRUE(image);
    EXPECT_EQ(CGImageGetWidth(image.get()), 2u);
    EXPECT_EQ(CGImageGetHeight(image.get()), 3u);
    EXPECT_EQ(CGImageGetBitsPerComponent(image.get()), 8u);
    EXPECT_EQ(CGImageGetBitsPerPixel(image.get()), 32u);
    EXPECT_EQ(CGImageGetBytesPerRow(image.get()), 8u);
    EXPECT_EQ(CGImageGetAlphaInfo(image.get()), CGImageAlphaInfo(kCGImageAlphaLast));
    EXPECT_FALSE(CGImageIsMask(image.get()));
}

TEST(Image, RefusesImpossibleImages) {
    EXPECT_FALSE(rgba(2, 3, Bytes(23)));                       // a byte is missing
    EXPECT_FALSE(rgba(0, 3, Bytes(24)));                       // no area
    EXPECT_FALSE(rgba(SIZE_MAX / 2, SIZE_MAX / 2, Bytes(24))); // would wrap around
    EXPECT_FALSE(makeImage(2, 2, 8, 16, CGColorSpaceCreateDeviceRGB, kCGImageAlphaNone, Bytes(64)));
    EXPECT_FALSE(makeImage(2, 2, 5, 16, CGColorSpaceCreateDeviceRGB, kCGImageAlphaNone, Bytes(64)));
    EXPECT_FALSE(makeImage(2, 2, 32, 128, CGColorSpaceCreateDeviceRGB, kCGImageAlphaLast, Bytes(64)));
    EXPECT_EQ(CGImageGetWidth(nullptr), 0u);
    EXPECT_EQ(CGImageCreateWithMask(nullptr, nullptr), nullptr);
}

TEST(Image, PartsShareTheBytes) {
    Bytes bytes(4 * 4 * 4);
    for (size_t i = 0; i < 16; ++i) bytes[i * 4] = std::uint8_t(i), bytes[i * 4 + 3] = 255;
    auto image = rgba(4, 4, bytes);
    auto part =
        Retained<CGImageRef>::adopt(CGImageCreateWithImageInRect(image.get(), CGRectMake(1, 2, 2, 2)));
    ASSERT_TRUE(part);
    EXPECT_EQ(CGImageGetWidth(part.get()), 2u);
    auto data = Retained<CFDataRef>::adopt(CGDataProviderCopyData(CGImageGetDataProvider(part.get())));
    // Row 2 from the top, column 1.
    EXPECT_EQ(CFDataGetBytePtr(data.get())[0], 9);
    EXPECT_EQ(CGImageCreateWithImageInRect(image.get(), CGRectMake(4, 0, 2, 2)), nullptr);
}

TEST(Image, PartOfABitImageBeginsAtItsBit) {
    // 10 pixels of 1 bit: 0110 1001 11
    auto image = makeImage(10, 1, 1, 1, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, {0x69, 0xc0});
    auto part =
        Retained<CGImageRef>::adopt(CGImageCreateWithImageInRect(image.get(), CGRectMake(3, 0, 7, 1)));
    Bitmap target(7, 1, kCGImageAlphaNone, CGColorSpaceCreateDeviceGray);
    CGContextDrawImage(target.get(), CGRectMake(0, 0, 7, 1), part.get());
    const int expected[] = {0, 255, 0, 0, 255, 255, 255};
    for (size_t x = 0; x < 7; ++x) EXPECT_EQ(*target.at(x, 0), expected[x]) << x;
}

TEST(Image, CopyInAnotherSpaceKeepsTheNumbers) {
    auto image = rgba(1, 1, {10, 20, 30, 255});
    auto adobe = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceAdobeRGB1998));
    auto copy = Retained<CGImageRef>::adopt(CGImageCreateCopyWithColorSpace(image.get(), adobe.get()));
    EXPECT_EQ(CGImageGetColorSpace(copy.get()), adobe.get());
    EXPECT_EQ(CGImageGetDataProvider(copy.get()), CGImageGetDataProvider(image.get()));
    auto gray = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    EXPECT_EQ(CGImageCreateCopyWithColorSpace(image.get(), gray.get()), nullptr);
}
