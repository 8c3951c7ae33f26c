// Images whose pixels an object provides when they are rendered.
#include "support.h"

/// Pixels of (10 x, 10 y, 7) with y counted from the top; counts what it is asked for.
@interface Provider : NSObject {
  @public
    int calls;
    size_t pixels, tallest;
    id userInfo;
    bool raises;
}
@end

@implementation Provider
- (void)provideImageData:(void*)data
             bytesPerRow:(size_t)rowbytes
                  origin:(size_t)x
                        :(size_t)y
                    size:(size_t)width
                        :(size_t)height
                userInfo:(id)info {
    if (raises) [NSException raise:NSRangeException format:@"no pixels"];
    ++calls;
    pixels += width * height;
    tallest = std::max(tallest, height);
    userInfo = info;
    for (size_t row = 0; row < height; ++row)
        for (size_t column = 0; column < width; ++column) {
            auto* p = static_cast<std::uint8_t*>(data) + row * rowbytes + 4 * column;
            p[0] = static_cast<std::uint8_t>(10 * (x + column));
            p[1] = static_cast<std::uint8_t>(10 * (y + row));
            p[2] = 7;
            p[3] = 255;
        }
}
@end

static CIImage* provided(id provider, size_t width, size_t height, NSDictionary* options = nil) {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    return [CIImage imageWithImageProvider:provider
                                      size:width:height
                                    format:kCIFormatRGBA8
                                colorSpace:space.get()
                                   options:options];
}

static NSException* render(CIImage* image, std::vector<std::uint8_t>& pixels) {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    CGRect extent = [image extent];
    auto rowBytes = 4 * static_cast<size_t>(extent.size.width);
    pixels.resize(rowBytes * static_cast<size_t>(extent.size.height));
    return raised([&] {
        [[CIContext contextWithOptions:nil] render:image
                                          toBitmap:pixels.data()
                                          rowBytes:static_cast<ptrdiff_t>(rowBytes)
                                            bounds:extent
                                            format:kCIFormatRGBA8
                                        colorSpace:space.get()];
    });
}

TEST(CIImageProvider, IsAskedWhenTheImageIsRendered) {
    Provider* provider = [[[Provider alloc] init] autorelease];
    CIImage* image = provided(
        provider, 20, 25,
        @{kCIImageProviderTileSize : @[ @20, @8 ],
          kCIImageProviderUserInfo : @"info"});
    EXPECT_TRUE(CGRectEqualToRect([image extent], CGRectMake(0, 0, 20, 25)));
    EXPECT_EQ(provider->calls, 0);
    std::vector<std::uint8_t> pixels;
    EXPECT_EQ(render(image, pixels), nil);
    EXPECT_EQ(provider->calls, 4);
    EXPECT_EQ(provider->pixels, 20u * 25u);
    EXPECT_EQ(provider->tallest, 8u);
    EXPECT_EQ(str(provider->userInfo), "info");
    for (size_t y = 0; y < 25; ++y)
        for (size_t x = 0; x < 20; ++x) {
            EXPECT_EQ(pixels[4 * (20 * y + x)], 10 * x);
            EXPECT_EQ(pixels[4 * (20 * y + x) + 1], 10 * y);
        }
}

TEST(CIImageProvider, ItsExceptionEndsTheRendering) {
    std::vector<std::uint8_t> pixels;
    Provider* provider = [[[Provider alloc] init] autorelease];
    provider->raises = true;
    NSException* e = render(provided(provider, 4, 4), pixels);
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
    EXPECT_TRUE([[e reason] hasSuffix:@"the image provider raised NSRangeException: no pixels"])
        << str([e reason]);
}

TEST(CIImageProvider, LivesAsLongAsTheImage) {
    Provider* provider = [[Provider alloc] init];
    @autoreleasepool {
        provided(provider, 4, 4);
        EXPECT_EQ([provider retainCount], 2u);
    }
    EXPECT_EQ([provider retainCount], 1u);
    [provider release];
}

TEST(CIImageProvider, IsNeeded) {
    EXPECT_EQ(provided(nil, 4, 4), nil);
    EXPECT_EQ(provided([[[Provider alloc] init] autorelease], 0, 4), nil);
}
