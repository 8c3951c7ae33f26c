// CIContext: drawing to contexts, images and memory.
#include "support.h"

#include <cmath>
#include <cstring>

using cg::Retained;

static CIImage* picture(size_t width, size_t height) {
    return [CIImage imageWithCGImage:makePicture(width, height).get()];
}

static CIContext* on(const Bitmap& canvas, NSDictionary* options = nil) {
    return [CIContext contextWithCGContext:canvas.get() options:options];
}

/// The bytes of an image, row by row.
static std::vector<std::uint8_t> bytesOf(CGImageRef image) {
    auto data = Retained<CFDataRef>::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image)));
    return {CFDataGetBytePtr(data.get()), CFDataGetBytePtr(data.get()) + CFDataGetLength(data.get())};
}

TEST(CIContext, DrawsAtAPoint) {
    Bitmap canvas(8, 8);
    [on(canvas) drawImage:picture(4, 4) atPoint:CGPointMake(2, 1) fromRect:CGRectMake(0, 0, 4, 4)];
    // The picture's lower left pixel (row 3 from its top) is at (2, 1) from below.
    expectNear(canvas.pixel(2, 6), {0, 180, 128, 255}, 1);
    EXPECT_EQ(canvas.pixel(1, 6)[3], 0);
    EXPECT_EQ(canvas.pixel(2, 7)[3], 0);
}

TEST(CIContext, DrawsScaled) {
    Bitmap canvas(8, 8);
    CIImage* color =
        [[CIImage imageWithColor:[CIColor colorWithRed:1 green:0
                                                  blue:0]] imageByCroppingToRect:CGRectMake(0, 0, 2, 2)];
    [on(canvas) drawImage:color inRect:CGRectMake(0, 0, 8, 4) fromRect:[color extent]];
    expectNear(canvas.pixel(4, 6), {255, 0, 0, 255}, 1);
    EXPECT_EQ(canvas.pixel(4, 1)[3], 0);
}

TEST(CIContext, BlendsOverWhatIsThere) {
    Bitmap canvas(1, 1);
    CGContextSetRGBFillColor(canvas.get(), 0, 0, 1, 1);
    CGContextFillRect(canvas.get(), CGRectMake(0, 0, 1, 1));
    CIImage* red = [CIImage imageWithColor:[CIColor colorWithRed:1 green:0 blue:0 alpha:0.5f]];
    [on(canvas) drawImage:red inRect:CGRectMake(0, 0, 1, 1) fromRect:CGRectMake(0, 0, 1, 1)];
    Pixel p = canvas.pixel(0, 0);
    EXPECT_EQ(p[3], 255);
    EXPECT_GT(p[0], 100);
    EXPECT_GT(p[2], 100);
}

TEST(CIContext, EveryLayoutShowsTheSamePicture) {
    struct Order {
        CGBitmapInfo info;
        int r, g, b;
    };
    for (const Order& order :
         {Order{kCGImageAlphaPremultipliedLast, 0, 1, 2}, Order{kCGImageAlphaPremultipliedFirst, 1, 2, 3},
          Order{kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little, 2, 1, 0},
          Order{kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little, 3, 2, 1},
          Order{kCGImageAlphaNoneSkipLast, 0, 1, 2}, Order{kCGImageAlphaNoneSkipFirst, 1, 2, 3}}) {
        Bitmap canvas(4, 4, order.info);
        [on(canvas) drawImage:picture(4, 4) inRect:CGRectMake(0, 0, 4, 4) fromRect:CGRectMake(0, 0, 4, 4)];
        Pixel p = canvas.pixel(3, 1);
        EXPECT_NEAR(p[size_t(order.r)], 120, 1) << order.info;
        EXPECT_NEAR(p[size_t(order.g)], 60, 1) << order.info;
        EXPECT_NEAR(p[size_t(order.b)], 128, 1) << order.info;
    }
}

TEST(CIContext, FollowsTransformClipAndAlpha) {
    CIImage* white = [CIImage imageWithColor:[CIColor colorWithRed:1 green:1 blue:1]];
    CGRect unit = CGRectMake(0, 0, 4, 4);
    Bitmap moved(8, 8);
    CGContextTranslateCTM(moved.get(), 4, 0);
    [on(moved) drawImage:white inRect:unit fromRect:unit];
    EXPECT_EQ(moved.pixel(3, 7)[3], 0);
    EXPECT_EQ(moved.pixel(4, 7)[3], 255);

    Bitmap clipped(8, 8);
    CGContextClipToRect(clipped.get(), CGRectMake(0, 0, 2, 8));
    [on(clipped) drawImage:white inRect:unit fromRect:unit];
    EXPECT_EQ(clipped.pixel(1, 7)[3], 255);
    EXPECT_EQ(clipped.pixel(2, 7)[3], 0);

    Bitmap faded(8, 8);
    CGContextSetAlpha(faded.get(), 0.5f);
    [on(faded) drawImage:white inRect:unit fromRect:unit];
    EXPECT_NEAR(faded.pixel(1, 7)[3], 128, 1);

    Bitmap turned(8, 8);
    CGContextTranslateCTM(turned.get(), 8, 0);
    CGContextRotateCTM(turned.get(), float(M_PI / 2));
    [on(turned) drawImage:white inRect:unit fromRect:unit];
    EXPECT_EQ(turned.pixel(5, 6)[3], 255);
    EXPECT_EQ(turned.pixel(2, 6)[3], 0);
}

TEST(CIContext, ClippingDoesNotMoveThePicture) {
    Bitmap whole(8, 8), part(8, 8);
    CGRect r = CGRectMake(0, 0, 4, 4);
    [on(whole) drawImage:picture(4, 4) inRect:r fromRect:r];
    CGContextClipToRect(part.get(), CGRectMake(1, 1, 2, 2));
    [on(part) drawImage:picture(4, 4) inRect:r fromRect:r];
    EXPECT_EQ(part.pixel(2, 5), whole.pixel(2, 5));
    EXPECT_EQ(part.pixel(1, 6), whole.pixel(1, 6));
    EXPECT_EQ(part.pixel(3, 5)[3], 0);
}

TEST(CIContext, InfiniteOnInfiniteFillsTheClip) {
    Bitmap canvas(4, 4);
    CIImage* red = [CIImage imageWithColor:[CIColor colorWithRed:1 green:0 blue:0]];
    [on(canvas) drawImage:red inRect:[red extent] fromRect:[red extent]];
    expectNear(canvas.pixel(0, 0), {255, 0, 0, 255}, 0);
    expectNear(canvas.pixel(3, 3), {255, 0, 0, 255}, 0);
}

TEST(CIContext, MakesImagesInEveryFormat) {
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    auto argb = Retained<CGImageRef>::adopt([context createCGImage:picture(4, 4)
                                                          fromRect:CGRectMake(1, 0, 2, 2)]);
    ASSERT_TRUE(argb);
    EXPECT_EQ(CGImageGetWidth(argb.get()), 2u);
    EXPECT_EQ(CGImageGetAlphaInfo(argb.get()), CGImageAlphaInfo(kCGImageAlphaPremultipliedFirst));
    auto bytes = bytesOf(argb.get());
    // Row 2 from the top, column 1.
    EXPECT_NEAR(bytes[1], 40, 1);
    EXPECT_NEAR(bytes[2], 120, 1);

    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    auto deep = Retained<CGImageRef>::adopt([context createCGImage:picture(4, 4)
                                                          fromRect:CGRectMake(0, 0, 1, 1)
                                                            format:kCIFormatRGBA16
                                                        colorSpace:space.get()]);
    EXPECT_EQ(CGImageGetBitsPerComponent(deep.get()), 16u);
    EXPECT_EQ(CGImageGetColorSpace(deep.get()), space.get());
    std::uint16_t words[4];
    std::memcpy(words, bytesOf(deep.get()).data(), 8);
    EXPECT_NEAR(words[2] / 65535., std::pow((128 / 255. + 0.055) / 1.055, 2.4), 1e-3);

    auto floats = Retained<CGImageRef>::adopt([context createCGImage:picture(4, 4)
                                                            fromRect:CGRectMake(0, 0, 1, 1)
                                                              format:kCIFormatRGBAf
                                                          colorSpace:space.get()]);
    float values[4];
    std::memcpy(values, bytesOf(floats.get()).data(), 16);
    EXPECT_NEAR(values[2], 0.21586, 1e-4);
    EXPECT_EQ(values[3], 1);
}

TEST(CIContext, RefusesImpossibleImages) {
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    CIImage* image = picture(4, 4);
    auto gray = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    EXPECT_EQ([context createCGImage:image fromRect:CGRectInfinite], nullptr);
    EXPECT_EQ([context createCGImage:image fromRect:CGRectZero], nullptr);
    EXPECT_EQ([context createCGImage:image fromRect:CGRectNull], nullptr);
    EXPECT_EQ([context createCGImage:image fromRect:CGRectMake(0, 0, 1e6f, 1e6f)], nullptr);
    EXPECT_EQ([context createCGImage:nil fromRect:CGRectMake(0, 0, 1, 1)], nullptr);
    EXPECT_EQ([context createCGImage:image fromRect:CGRectMake(0, 0, 1, 1) format:99 colorSpace:nullptr],
              nullptr);
    EXPECT_EQ([context createCGImage:image
                            fromRect:CGRectMake(0, 0, 1, 1)
                              format:kCIFormatARGB8
                          colorSpace:gray.get()],
              nullptr);
    [context drawImage:image
                inRect:CGRectMake(0, 0, 1, 1)
              fromRect:CGRectMake(0, 0, 1, 1)]; // nowhere to draw
}

TEST(CIContext, RendersToMemory) {
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    std::vector<std::uint8_t> memory(2 * 16, 0xEE);
    [context render:picture(3, 2)
           toBitmap:memory.data()
           rowBytes:16
             bounds:CGRectMake(0, 0, 3, 2)
             format:kCIFormatRGBA8
         colorSpace:space.get()];
    EXPECT_NEAR(memory[8], 80, 1);
    EXPECT_EQ(memory[12], 0xEE);
    EXPECT_NEAR(memory[17], 60, 1);
    NSException* e = raised([&] {
        [context render:picture(3, 2)
               toBitmap:memory.data()
               rowBytes:16
                 bounds:CGRectMake(0, 0, 3, 2)
                 format:99
             colorSpace:space.get()];
    });
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
}

TEST(CIContext, RetainsItsCGContext) {
    Bitmap canvas(1, 1);
    CFIndex before = CFGetRetainCount(canvas.get());
    @autoreleasepool {
        on(canvas);
        EXPECT_EQ(CFGetRetainCount(canvas.get()), before + 1);
    }
    EXPECT_EQ(CFGetRetainCount(canvas.get()), before);
}

TEST(CIContext, TakesItsOptions) {
    Bitmap canvas(1, 1);
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    NSDictionary* options = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSNumber numberWithBool:YES], @"software_renderer", (id)space.get(),
                                     @"output_color_space", (id)space.get(), @"working_color_space", nil];
    auto image = Retained<CGImageRef>::adopt([on(canvas, options) createCGImage:picture(4, 4)
                                                                       fromRect:CGRectMake(0, 0, 1, 1)]);
    EXPECT_EQ(CGImageGetColorSpace(image.get()), space.get());
    [on(canvas, options) clearCaches];
    [on(canvas, options) reclaimResources];
}

TEST(CIContext, KnowsTheSpaceThatFiltersComputeIn) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceAdobeRGB1998));
    auto working = [](id choice) {
        NSDictionary* options = choice ? @{kCIContextWorkingColorSpace : choice} : nil;
        return [[CIContext contextWithOptions:options] workingColorSpace];
    };
    EXPECT_EQ(working((id)space.get()), space.get());
    EXPECT_EQ(working([NSNull null]), nullptr);
    EXPECT_EQ(CGColorSpaceGetModel(working(nil)), kCGColorSpaceModelRGB);
}

TEST(CIContext, WithoutAContextItMakesImagesAndDrawsNothing) {
    CIContext* context = [CIContext contextWithOptions:@{kCIContextUseSoftwareRenderer : @1}];
    CGRect r = CGRectMake(0, 0, 4, 4);
    EXPECT_TRUE(Retained<CGImageRef>::adopt([context createCGImage:picture(4, 4) fromRect:r]));
    EXPECT_EQ(raised([&] { [context drawImage:picture(4, 4) inRect:r fromRect:r]; }), nil);
}

TEST(CIContext, EveryFormatHasItsOrderOfComponents) {
    auto bytes = [](CIFormat format) {
        auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
        std::uint8_t memory[16] = {};
        [[CIContext contextWithOptions:nil] render:[CIImage imageWithColor:[CIColor colorWithRed:1
                                                                                           green:0.6f
                                                                                            blue:0.2f]]
                                          toBitmap:memory
                                          rowBytes:16
                                            bounds:CGRectMake(0, 0, 1, 1)
                                            format:format
                                        colorSpace:space.get()];
        return std::vector<int>(memory, memory + 4);
    };
    EXPECT_EQ(bytes(kCIFormatARGB8), (std::vector<int>{255, 255, 153, 51}));
    EXPECT_EQ(bytes(kCIFormatRGBA8), (std::vector<int>{255, 153, 51, 255}));
    EXPECT_EQ(bytes(kCIFormatBGRA8), (std::vector<int>{51, 153, 255, 255}));
    // The same order in an image.
    auto bgra = Retained<CGImageRef>::adopt([[CIContext contextWithOptions:nil]
        createCGImage:[CIImage imageWithColor:[CIColor colorWithRed:1 green:0.6f blue:0.2f]]
             fromRect:CGRectMake(0, 0, 1, 1)
               format:kCIFormatBGRA8
           colorSpace:nullptr]);
    EXPECT_EQ(CGImageGetBitmapInfo(bgra.get()),
              CGBitmapInfo(kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little));
}
