// CISampler: extent, definition and modes.
#include "support.h"

#include <cmath>

namespace {

void expectRect(CGRect actual, CGRect expected) {
    EXPECT_TRUE(CGRectEqualToRect(actual, expected))
        << actual.origin.x << " " << actual.origin.y << " " << actual.size.width << " " << actual.size.height;
}

NSAffineTransform* scaled(CGFloat factor) {
    NSAffineTransform* transform = [NSAffineTransform transform];
    [transform scaleBy:factor];
    return transform;
}

/// A sampler drawn through a filter that changes no pixel: an exposure of 0.
Bitmap drawn(CISampler* sampler, size_t width, size_t height) {
    CIFilter* filter = [CIFilter filterWithName:@"CIExposureAdjust"];
    [filter setValue:sampler forKey:@"inputImage"];
    EXPECT_EQ([filter valueForKey:@"inputImage"], sampler);
    Bitmap canvas(width, height);
    CIContext* context = [CIContext contextWithCGContext:canvas.get() options:nil];
    CGRect r = CGRectMake(0, 0, CGFloat(width), CGFloat(height));
    [context drawImage:[filter valueForKey:@"outputImage"] inRect:r fromRect:r];
    return canvas;
}

/// One row of black and white pixels, seven times as large.
CISampler* stripes(NSString* wrap, NSString* interpolation) {
    std::uint8_t bytes[4 * 4];
    for (std::size_t i = 0; i < 16; ++i) bytes[i] = i % 4 == 3 || i / 4 % 2 ? 255 : 0;
    NSData* data = [NSData dataWithBytes:bytes length:sizeof bytes];
    CIImage* image = [CIImage imageWithBitmapData:data
                                      bytesPerRow:16
                                             size:CGSizeMake(4, 1)
                                           format:kCIFormatRGBA8
                                       colorSpace:nullptr];
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithObject:scaled(7)
                                                                      forKey:kCISamplerAffineMatrix];
    if (wrap) [options setObject:wrap forKey:kCISamplerWrapMode];
    if (interpolation) [options setObject:interpolation forKey:kCISamplerFilterMode];
    return [CISampler samplerWithImage:image options:options];
}

} // namespace

TEST(CISampler, TheExtentIsTheTransformedImageWhateverTheWrapMode) {
    CIImage* image = [CIImage imageWithCGImage:makePicture(4, 3).get()];
    expectRect([[CISampler samplerWithImage:image] extent], CGRectMake(0, 0, 4, 3));
    for (NSString* mode in @[ kCISamplerWrapBlack, kCISamplerWrapClamp ]) {
        CISampler* sampler =
            [CISampler samplerWithImage:image
                          keysAndValues:kCISamplerAffineMatrix, scaled(2), kCISamplerWrapMode, mode, nil];
        expectRect([sampler extent], CGRectMake(0, 0, 8, 6));
    }
    EXPECT_EQ([CISampler samplerWithImage:nil], nil);
}

TEST(CISampler, TheDefinitionIsWhereSomethingCanBeRead) {
    CIImage* image = [CIImage imageWithCGImage:makePicture(4, 3).get()];
    auto definition = [&](NSString* wrap, NSString* interpolation, CGFloat scale) {
        return [[[CISampler samplerWithImage:image
                               keysAndValues:kCISamplerAffineMatrix, scaled(scale), kCISamplerWrapMode, wrap,
                                             kCISamplerFilterMode, interpolation, nil] definition] extent];
    };
    expectRect(definition(@"black", @"linear", 1), CGRectMake(0, 0, 4, 3));
    expectRect(definition(@"black", @"nearest", 2), CGRectMake(0, 0, 8, 6));
    expectRect(definition(@"black", @"linear", 2), CGRectMake(-1, -1, 10, 8));
    EXPECT_TRUE(CGRectIsInfinite(definition(@"clamp", @"nearest", 2)));
}

TEST(CISampler, ReadsTheNearestPixelOrMixesTheNeighbours) {
    // Place 10.5 of 28 is 1.5 of 4 pixels, the centre of the second; place 7.5 is a little right of an edge.
    Bitmap nearest = drawn(stripes(@"black", @"nearest"), 28, 7);
    Bitmap linear = drawn(stripes(@"black", @"linear"), 28, 7);
    expectNear(nearest.pixel(10, 3), {255, 255, 255, 255}, 0);
    expectNear(linear.pixel(10, 3), {255, 255, 255, 255}, 0);
    expectNear(nearest.pixel(7, 3), {255, 255, 255, 255}, 0);
    expectNear(nearest.pixel(6, 3), {0, 0, 0, 255}, 0);
    // 7.5 / 7 - 0.5 = 0.571 of the way to white in linear light, coded as sRGB.
    double light = 7.5 / 7 - 0.5;
    int coded = int(std::lround(255 * (1.055 * std::pow(light, 1 / 2.4) - 0.055)));
    expectNear(linear.pixel(7, 3), {coded, coded, coded, 255}, 1);
}

TEST(CISampler, ReadsNothingOrTheEdgeOutside) {
    Bitmap black = drawn(stripes(@"black", @"nearest"), 40, 20);
    Bitmap clamp = drawn(stripes(@"clamp", @"nearest"), 40, 20);
    expectNear(black.pixel(27, 19), {255, 255, 255, 255}, 0);
    expectNear(black.pixel(28, 19), {0, 0, 0, 0}, 0);
    expectNear(black.pixel(27, 12), {0, 0, 0, 0}, 0);
    expectNear(clamp.pixel(28, 19), {255, 255, 255, 255}, 0);
    expectNear(clamp.pixel(39, 0), {255, 255, 255, 255}, 0);
    expectNear(clamp.pixel(2, 0), {0, 0, 0, 255}, 0);
}

TEST(CISampler, ModesThatAreUnknownOrMissingAreBlackAndLinear) {
    for (NSString* odd in @[ @"repeat", @"", @"Clamp", @"NEAREST" ]) {
        Bitmap canvas = drawn(stripes(odd, odd), 40, 7);
        Bitmap expected = drawn(stripes(@"black", @"linear"), 40, 7);
        for (size_t x = 0; x < 40; ++x) EXPECT_EQ(canvas.pixel(x, 3), expected.pixel(x, 3)) << str(odd) << x;
    }
    EXPECT_EQ(drawn(stripes(nil, nil), 40, 7).pixel(7, 3),
              drawn(stripes(@"black", @"linear"), 40, 7).pixel(7, 3));
}

TEST(CISampler, AMatrixThatIsNotFiniteRaises) {
    CIImage* image = [CIImage imageWithCGImage:makePicture(4, 3).get()];
    CISampler* sampler = [CISampler samplerWithImage:image
                                       keysAndValues:kCISamplerAffineMatrix, scaled(NAN), nil];
    EXPECT_EQ(str([raised([&] { [sampler definition]; }) name]), str(NSInvalidArgumentException));
    CIFilter* filter = [CIFilter filterWithName:@"CIExposureAdjust"];
    [filter setValue:sampler forKey:@"inputImage"];
    EXPECT_EQ(str([raised([&] { [filter outputImage]; }) name]), str(NSInvalidArgumentException));
    // A matrix of another class counts as none.
    sampler = [CISampler samplerWithImage:image keysAndValues:kCISamplerAffineMatrix, @"no matrix", nil];
    expectRect([sampler extent], CGRectMake(0, 0, 4, 3));
}
