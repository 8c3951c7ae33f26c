// CIImage: from every source, cropped and transformed.
#include "support.h"

#include <cmath>
#include <cstdio>

using cg::Retained;

static void expectRect(CGRect actual, CGRect expected) {
    EXPECT_TRUE(CGRectEqualToRect(actual, expected))
        << actual.origin.x << " " << actual.origin.y << " " << actual.size.width << " " << actual.size.height;
}

/// The image drawn 1:1 with its origin at the lower left of a canvas.
static Bitmap drawn(CIImage* image, size_t width, size_t height) {
    Bitmap canvas(width, height);
    CIContext* context = [CIContext contextWithCGContext:canvas.get() options:nil];
    CGRect r = CGRectMake(0, 0, CGFloat(width), CGFloat(height));
    [context drawImage:image inRect:r fromRect:r];
    return canvas;
}

TEST(CIImage, OfACGImage) {
    auto picture = makePicture(4, 3);
    CIImage* image = [CIImage imageWithCGImage:picture.get()];
    expectRect([image extent], CGRectMake(0, 0, 4, 3));
    EXPECT_EQ([image colorSpace], CGImageGetColorSpace(picture.get()));
    EXPECT_EQ([image url], nil);
    EXPECT_EQ([[image properties] count], 0u);
    Bitmap canvas = drawn(image, 4, 3);
    for (size_t y = 0; y < 3; ++y)
        for (size_t x = 0; x < 4; ++x)
            expectNear(canvas.pixel(x, y), {int(40 * x), int(60 * y), 128, 255}, 1);
    EXPECT_EQ([CIImage imageWithCGImage:nullptr], nil);
    EXPECT_EQ([[CIImage alloc] initWithCGImage:nullptr], nil);
}

TEST(CIImage, EveryLayoutOfACGImage) {
    struct Layout {
        size_t bits, pixelBits;
        CGColorSpaceRef (*space)();
        CGBitmapInfo info;
        std::vector<std::uint8_t> bytes;
        Pixel expected;
    };
    auto rgb = CGColorSpaceCreateDeviceRGB;
    const Layout layouts[] = {
        {8, 32, rgb, kCGImageAlphaLast, {200, 100, 0, 128}, {100, 50, 0, 128}},
        {8, 32, rgb, kCGImageAlphaPremultipliedFirst, {128, 100, 50, 0}, {100, 50, 0, 128}},
        {8,
         32,
         rgb,
         kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little,
         {0, 50, 100, 128},
         {100, 50, 0, 128}},
        {8,
         32,
         rgb,
         kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little,
         {128, 0, 50, 100},
         {100, 50, 0, 128}},
        {8, 32, rgb, kCGImageAlphaNoneSkipFirst, {7, 10, 20, 30}, {10, 20, 30, 255}},
        {8, 24, rgb, kCGImageAlphaNone, {10, 20, 30}, {10, 20, 30, 255}},
        {16, 48, rgb, kCGImageAlphaNone, {10, 10, 20, 20, 30, 30}, {10, 20, 30, 255}},
        {16,
         64,
         rgb,
         kCGImageAlphaNoneSkipLast | kCGBitmapByteOrder16Little,
         {10, 10, 20, 20, 30, 30, 0, 0},
         {10, 20, 30, 255}},
        {8, 8, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, {90}, {90, 90, 90, 255}},
        {16, 16, CGColorSpaceCreateDeviceGray, kCGImageAlphaNone, {90, 90}, {90, 90, 90, 255}},
        {8, 16, CGColorSpaceCreateDeviceGray, kCGImageAlphaLast, {90, 255}, {90, 90, 90, 255}},
        {8, 32, CGColorSpaceCreateDeviceCMYK, kCGImageAlphaNone, {0, 0, 0, 255}, {0, 0, 0, 255}},
    };
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(testing::Message() << layout.pixelBits << " bits, info " << layout.info);
        auto space = Retained<CGColorSpaceRef>::adopt(layout.space());
        auto data = Retained<CFDataRef>::adopt(
            CFDataCreate(nullptr, layout.bytes.data(), static_cast<CFIndex>(layout.bytes.size())));
        auto provider = Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
        auto image = Retained<CGImageRef>::adopt(
            CGImageCreate(1, 1, layout.bits, layout.pixelBits, layout.bytes.size(), space.get(), layout.info,
                          provider.get(), nullptr, false, kCGRenderingIntentDefault));
        ASSERT_TRUE(image);
        expectNear(drawn([CIImage imageWithCGImage:image.get()], 1, 1).pixel(0, 0), layout.expected, 1);
    }
}

TEST(CIImage, MaskedImagesAreTransparent) {
    auto picture = makePicture(2, 1);
    const std::uint8_t bytes[] = {0, 255};
    auto data = Retained<CFDataRef>::adopt(CFDataCreate(nullptr, bytes, 2));
    auto provider = Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data.get()));
    auto mask = Retained<CGImageRef>::adopt(CGImageMaskCreate(2, 1, 8, 8, 2, provider.get(), nullptr, false));
    auto masked = Retained<CGImageRef>::adopt(CGImageCreateWithMask(picture.get(), mask.get()));
    Bitmap canvas = drawn([CIImage imageWithCGImage:masked.get()], 2, 1);
    expectNear(canvas.pixel(0, 0), {0, 0, 128, 255}, 1);
    expectNear(canvas.pixel(1, 0), {0, 0, 0, 0}, 0);
}

TEST(CIImage, OfData) {
    NSData* png = pngOf(makePicture(4, 3).get());
    CIImage* image = [CIImage imageWithData:png];
    expectRect([image extent], CGRectMake(0, 0, 4, 3));
    EXPECT_EQ([[[image properties] objectForKey:@"PixelWidth"] intValue], 4);
    expectNear(drawn(image, 4, 3).pixel(2, 1), {80, 60, 128, 255}, 1);
    EXPECT_EQ([CIImage imageWithData:[png subdataWithRange:NSMakeRange(0, [png length] - 20)]], nil);
    EXPECT_EQ([CIImage imageWithData:[@"not a picture" dataUsingEncoding:NSUTF8StringEncoding]], nil);
    EXPECT_EQ([CIImage imageWithData:[NSData data]], nil);
    EXPECT_EQ([CIImage imageWithData:nil], nil);
}

TEST(CIImage, OfAFile) {
    NSString* path = [NSTemporaryDirectory() stringByAppendingPathComponent:@"quartzcore_test.png"];
    [pngOf(makePicture(4, 3).get()) writeToFile:path atomically:YES];
    NSURL* url = [NSURL fileURLWithPath:path];
    CIImage* image = [CIImage imageWithContentsOfURL:url];
    expectRect([image extent], CGRectMake(0, 0, 4, 3));
    EXPECT_EQ(str([[image url] absoluteString]), str([url absoluteString]));
    std::remove([path UTF8String]);
    EXPECT_EQ([CIImage imageWithContentsOfURL:url], nil);
    EXPECT_EQ([CIImage imageWithContentsOfURL:nil], nil);
}

TEST(CIImage, OfAURLThatNothingLoadsIsNilAtOnce) {
    NSDate* start = [NSDate date];
    for (NSString* text : {@"CIColorInvert", @"//host/picture.png", @"mailto:somebody", @"x-unknown:a"})
        EXPECT_EQ([CIImage imageWithContentsOfURL:[NSURL URLWithString:text]], nil) << str(text);
    EXPECT_LT(-[start timeIntervalSinceNow], 10);
}

TEST(CIImage, ColorSpaceOptionReadsTheNumbersInIt) {
    auto linear = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    NSData* png = pngOf(makePicture(2, 1).get());
    NSDictionary* options = [NSDictionary dictionaryWithObject:(id)linear.get() forKey:kCIImageColorSpace];
    CIImage* image = [CIImage imageWithData:png options:options];
    EXPECT_EQ([image colorSpace], linear.get());
    // 128/255 as linear light is 188 in sRGB.
    EXPECT_NEAR(drawn(image, 2, 1).pixel(0, 0)[2], 188, 1);
    EXPECT_NEAR(drawn([CIImage imageWithData:png options:[NSDictionary dictionary]], 2, 1).pixel(0, 0)[2],
                128, 1);
    NSDictionary* nonsense = [NSDictionary dictionaryWithObject:@"sRGB" forKey:kCIImageColorSpace];
    EXPECT_NEAR(drawn([CIImage imageWithData:png options:nonsense], 2, 1).pixel(0, 0)[2], 128, 1);
}

TEST(CIImage, OfBitmapData) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    const std::uint8_t argb[] = {255, 10, 20, 30, 255, 40, 50, 60};
    NSData* data = [NSData dataWithBytes:argb length:8];
    auto make = [&](size_t rowBytes, CGSize size, CIFormat format, CGColorSpaceRef s) {
        return [CIImage imageWithBitmapData:data bytesPerRow:rowBytes size:size format:format colorSpace:s];
    };
    CIImage* image = make(8, CGSizeMake(2, 1), kCIFormatARGB8, space.get());
    expectRect([image extent], CGRectMake(0, 0, 2, 1));
    expectNear(drawn(image, 2, 1).pixel(1, 0), {40, 50, 60, 255}, 1);
    EXPECT_EQ(make(8, CGSizeMake(2, 2), kCIFormatARGB8, space.get()), nil); // too few bytes
    EXPECT_EQ(make(7, CGSizeMake(2, 1), kCIFormatARGB8, space.get()), nil); // rows too short
    EXPECT_EQ(make(8, CGSizeMake(0.5f, 1), kCIFormatARGB8, space.get()), nil);
    EXPECT_EQ(make(8, CGSizeMake(NAN, 1), kCIFormatARGB8, space.get()), nil);
    EXPECT_EQ(make(8, CGSizeMake(2, 1), 99, space.get()), nil);
    auto gray = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    EXPECT_EQ(make(8, CGSizeMake(2, 1), kCIFormatARGB8, gray.get()), nil);
    EXPECT_EQ(kCIFormatARGB8, 23);
    EXPECT_EQ(kCIFormatRGBA16, 27);
    EXPECT_EQ(kCIFormatRGBAf, 34);
}

TEST(CIImage, OfAColor) {
    CIImage* image = [CIImage imageWithColor:[CIColor colorWithRed:1 green:0.5f blue:0 alpha:0.5f]];
    EXPECT_TRUE(CGRectIsInfinite([image extent]));
    expectNear(drawn(image, 2, 2).pixel(1, 1), {128, 64, 0, 128}, 1);
    EXPECT_EQ([CIImage imageWithColor:nil], nil);
}

TEST(CIImage, EmptyImage) {
    EXPECT_TRUE(CGRectIsEmpty([[CIImage emptyImage] extent]));
    expectNear(drawn([CIImage emptyImage], 1, 1).pixel(0, 0), {0, 0, 0, 0}, 0);
}

TEST(CIImage, CropsAndTransforms) {
    CIImage* image = [CIImage imageWithCGImage:makePicture(4, 4).get()];
    CIImage* cropped = [image imageByCroppingToRect:CGRectMake(1, 0, 2, 2)];
    expectRect([cropped extent], CGRectMake(1, 0, 2, 2));
    Bitmap canvas = drawn(cropped, 4, 4);
    EXPECT_EQ(canvas.pixel(0, 3)[3], 0);
    expectNear(canvas.pixel(1, 3), {40, 180, 128, 255}, 1);
    EXPECT_EQ(canvas.pixel(1, 1)[3], 0);
    CIImage* moved = [image imageByApplyingTransform:CGAffineTransformMakeTranslation(10, 20)];
    expectRect([moved extent], CGRectMake(10, 20, 4, 4));
    expectRect([[moved definition] extent], CGRectMake(10, 20, 4, 4));
    NSException* e = raised([&] { [image imageByApplyingTransform:CGAffineTransformMakeScale(NAN, 1)]; });
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
}

TEST(CIImage, CopiesAndDescriptions) {
    CIImage* image = [CIImage imageWithCGImage:makePicture(4, 3).get()];
    EXPECT_EQ([[image copy] autorelease], image);
    EXPECT_TRUE([[image description] hasPrefix:@"<CIImage: 0x"]);
    EXPECT_TRUE([[image description] hasSuffix:@"extent [0 0 4 3]>"]);
    EXPECT_TRUE([[image debugDescription] hasPrefix:@"1 pass, 1 step\n"])
        << [[image debugDescription] UTF8String];
}
