// CIKernel and its kinds: making them, applying them, and what is refused. Compiled with blocks.
#include "support.h"

#include <cmath>

namespace {

CIImage* picture() { return [CIImage imageWithCGImage:makePicture(6, 4).get()]; }

std::vector<std::uint8_t> bytesOf(CIImage* image, CGRect r) {
    std::vector<std::uint8_t> bytes(static_cast<size_t>(r.size.width * r.size.height) * 4);
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    [context render:image
           toBitmap:bytes.data()
           rowBytes:static_cast<ptrdiff_t>(r.size.width) * 4
             bounds:r
             format:kCIFormatRGBA8
         colorSpace:space.get()];
    return bytes;
}

/// The greatest difference between two images inside a rectangle.
int difference(CIImage* a, CIImage* b, CGRect r) {
    auto p = bytesOf(a, r), q = bytesOf(b, r);
    int most = 0;
    for (size_t i = 0; i < p.size(); ++i) most = std::max(most, std::abs(p[i] - q[i]));
    return most;
}

CIKernel* kernel(NSString* text) { return [[CIKernel kernelsWithString:text] objectAtIndex:0]; }

CIImage* filtered(NSString* name, NSDictionary* values) {
    CIFilter* filter = [CIFilter filterWithName:name];
    [filter setDefaults];
    for (NSString* key in values) [filter setValue:[values objectForKey:key] forKey:key];
    return [filter valueForKey:kCIOutputImageKey];
}

/// Any filter, to apply kernels with.
CIFilter* someFilter() { return [CIFilter filterWithName:@"CIColorInvert"]; }

void expectRect(CGRect actual, CGRect expected) {
    EXPECT_TRUE(CGRectEqualToRect(actual, expected))
        << actual.origin.x << " " << actual.origin.y << " " << actual.size.width << " " << actual.size.height;
}

NSString* const copies = @"kernel vec4 copies(sampler s) { return sample(s, samplerCoord(s)); }";

} // namespace

static int regionsTold;
static NSString* toldInfo;

@implementation CIFilter (RegionTelling)
- (CGRect)regionOf:(int)index destRect:(CGRect)r userInfo:(id)info {
    EXPECT_EQ(index, 0);
    ++regionsTold;
    toldInfo = info;
    return CGRectInset(r, -5, -5);
}
- (CGRect)failingRegionOf:(int)index destRect:(CGRect)r userInfo:(id)info {
    [NSException raise:NSRangeException format:@"no such region"];
    return r;
}
@end

TEST(CIKernel, ATextBecomesKernelsOfTheirKinds) {
    NSArray* all = [CIKernel
        kernelsWithString:@"kernel vec4 general(sampler s, float x) { return sample(s, vec2(x)); }\n"
                          @"kernel vec4 color(__sample s) { return s; }\n"
                          @"kernel vec2 warp(float x) { return vec2(x); }\n"
                          @"kernel vec4 generator() { return vec4(1.0); }"];
    ASSERT_EQ([all count], 4u);
    const struct {
        NSString* name;
        Class kind;
    } expected[]{{@"general", [CIKernel class]},
                 {@"color", [CIColorKernel class]},
                 {@"warp", [CIWarpKernel class]},
                 {@"generator", [CIKernel class]}};
    for (NSUInteger i = 0; i < 4; ++i) {
        EXPECT_EQ(str([[all objectAtIndex:i] name]), str(expected[i].name));
        EXPECT_EQ([[all objectAtIndex:i] class], expected[i].kind);
    }
    EXPECT_EQ([[CIKernel kernelWithString:@"kernel vec4 color(__sample s) { return s; }"] class],
              [CIColorKernel class]);
    EXPECT_EQ([[CIColorKernel kernelWithString:@"kernel vec4 generator() { return vec4(1.0); }"] class],
              [CIColorKernel class]);
    EXPECT_EQ([CIColorKernel kernelWithString:copies], nil);
    EXPECT_EQ([CIWarpKernel kernelWithString:copies], nil);
    EXPECT_EQ([[[CIKernel alloc] init] autorelease], nil);
}

TEST(CIKernel, ATextWithAMistakeIsNoKernelAndTheLogSaysWhy) {
    testing::internal::CaptureStderr();
    EXPECT_EQ([CIKernel kernelsWithString:@"kernel vec4 k(sampler s)\n{ return sample(s); }"], nil);
    EXPECT_EQ([CIKernel kernelWithString:@"kernel vec4"], nil);
    EXPECT_EQ([CIKernel kernelsWithString:nil], nil);
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("CIKernel: line 2: there is no sample(sampler); expected sample(sampler, vec2)"),
              std::string::npos)
        << log;
    EXPECT_NE(log.find("CIKernel: line 1: expected the name of a function, found the end of the text"),
              std::string::npos)
        << log;
}

TEST(CIKernel, AFilterAppliesOneWithArgumentsAndOptions) {
    CIKernel* haze =
        kernel(@"kernel vec4 haze(sampler s, __color c, float amount, vec2 across, vec4 plus) {\n"
               @"  vec4 t = unpremultiply(sample(s, samplerCoord(s) + across));\n"
               @"  return premultiply(mix(t, c, amount) + plus); }");
    CIImage* image = picture();
    CISampler* sampler = [CISampler samplerWithImage:image];
    CIImage* made = [someFilter() apply:haze, sampler, [CIColor colorWithRed:1 green:0 blue:0],
                                        [NSNumber numberWithFloat:1], [CIVector vectorWithX:0 Y:0],
                                        [CIVector vectorWithX:0 Y:0 Z:0 W:0], kCIApplyOptionDefinition,
                                        [sampler definition], nil];
    expectRect([made extent], CGRectMake(0, 0, 6, 4));
    CIImage* red = [CIImage imageWithColor:[CIColor colorWithRed:1 green:0 blue:0]];
    EXPECT_EQ(difference(made, red, CGRectMake(0, 0, 6, 4)), 0);
    NSArray* arguments = @[
        image, [CIColor colorWithRed:1 green:0 blue:0], @0, [CIVector vectorWithX:1 Y:0],
        [CIVector vectorWithX:0 Y:0 Z:0 W:0]
    ];
    made = [someFilter() apply:haze arguments:arguments options:nil];
    expectRect([made extent], CGRectMake(0, 0, 6, 4));
    CIImage* moved = [image imageByApplyingTransform:CGAffineTransformMakeTranslation(-1, 0)];
    EXPECT_LE(difference(made, moved, CGRectMake(0, 0, 5, 4)), 1);
    EXPECT_EQ(([someFilter() apply:nil, nil]), nil);
}

TEST(CIKernel, TheOptionsSayHowLargeTheImageIs) {
    auto extent = [](NSDictionary* options, NSArray* arguments) {
        CIKernel* two = kernel(@"kernel vec4 two(sampler a, sampler b) { return sample(a, destCoord()); }");
        return [[someFilter() apply:two arguments:arguments options:options] extent];
    };
    NSArray* both = @[
        [CISampler samplerWithImage:picture()],
        [picture() imageByApplyingTransform:CGAffineTransformMakeTranslation(10, 20)]
    ];
    expectRect(extent(nil, both), CGRectMake(0, 0, 16, 24));
    NSArray* numbers = @[ @1, @2, @30, @40 ];
    expectRect(extent(@{kCIApplyOptionExtent : numbers}, both), CGRectMake(1, 2, 30, 40));
    expectRect(extent(@{kCIApplyOptionDefinition : numbers}, both), CGRectMake(1, 2, 30, 40));
    CIFilterShape* shape = [CIFilterShape shapeWithRect:CGRectMake(0, 0, 5, 5)];
    expectRect(extent(@{kCIApplyOptionDefinition : shape}, both), CGRectMake(0, 0, 5, 5));
    expectRect(extent(@{kCIApplyOptionDefinition : shape, kCIApplyOptionExtent : numbers}, both),
               CGRectMake(1, 2, 4, 3));
    CIKernel* generator = kernel(@"kernel vec4 generator() { return vec4(1.0); }");
    EXPECT_TRUE(CGRectIsInfinite([[someFilter() apply:generator, nil] extent]));
    NSException* e = raised([&] {
        extent(
            @{kCIApplyOptionExtent : @[ @1, @2 ]}, both);
    });
    EXPECT_EQ(str([e name]), str(NSInvalidArgumentException));
    EXPECT_EQ(str([e reason]), "CIKernel two: the value of extent must be a CIFilterShape or an "
                               "NSArray of four numbers");
}

TEST(CIKernel, TheROISelectorIsAskedWhereTheTextDoesNotShowWhatIsRead) {
    CIKernel* shifted =
        kernel(@"kernel vec4 shifted(sampler s) { return sample(s, samplerCoord(s) + vec2(1.0, 0.0)); }");
    CIKernel* waving = kernel(
        @"kernel vec4 waving(sampler s) { vec2 d = destCoord(); return sample(s, d + 2.0 * sin(d.yx)); }");
    NSDictionary* options = @{kCIApplyOptionUserInfo : @"info"};
    for (CIKernel* k : {shifted, waving}) [k setROISelector:@selector(regionOf:destRect:userInfo:)];
    CIImage* plain = [someFilter()
            apply:kernel(@"kernel vec4 waving(sampler s) { vec2 d = destCoord(); return sample(s, d + "
                         @"2.0 * sin(d.yx)); }")
        arguments:@[ picture() ]
          options:nil];
    regionsTold = 0;
    bytesOf([someFilter() apply:shifted arguments:@[ picture() ] options:options], CGRectMake(0, 0, 6, 4));
    EXPECT_EQ(regionsTold, 0);
    CIImage* wave = [someFilter() apply:waving arguments:@[ picture() ] options:options];
    EXPECT_EQ(regionsTold, 0); // nothing is computed before it is rendered
    EXPECT_EQ(difference(wave, plain, CGRectMake(0, 0, 6, 4)), 0);
    EXPECT_GT(regionsTold, 0);
    EXPECT_EQ(str(toldInfo), "info");

    [waving setROISelector:@selector(failingRegionOf:destRect:userInfo:)];
    wave = [someFilter() apply:waving arguments:@[ picture() ] options:nil];
    NSException* e = raised([&] { bytesOf(wave, CGRectMake(0, 0, 6, 4)); });
    EXPECT_TRUE([[e reason] hasSuffix:@"the ROI selector raised NSRangeException: no such region"])
        << str([e reason]);
    [waving setROISelector:@selector(uppercaseString)];
    e = raised([&] { [someFilter() apply:waving arguments:@[ picture() ] options:nil]; });
    EXPECT_EQ(str([e reason]),
              "CIKernel waving: CIColorInvert has no method uppercaseString for the ROI selector");
}

TEST(CIKernel, BlocksTellTheRegion) {
    CIImage* image = picture();
    __block int asked = 0;
    CIImage* made;
    CIWarpKernel* up = [CIWarpKernel
        kernelWithString:
            @"kernel vec2 up(float h) { vec2 d = destCoord(); return vec2(d.x, abs(d.y + h)); }"];
    {
        made = [up applyWithExtent:CGRectMake(0, 0, 6, 2)
                       roiCallback:^(int index, CGRect r) {
                           EXPECT_EQ(index, 0);
                           ++asked;
                           return CGRectInset(r, 0, -2);
                       }
                        inputImage:image
                         arguments:@[ @2 ]];
    }
    CIImage* moved = [image imageByApplyingTransform:CGAffineTransformMakeTranslation(0, -2)];
    EXPECT_EQ(difference(made, moved, CGRectMake(0, 0, 6, 2)), 0);
    EXPECT_GT(asked, 0);
    expectRect([made extent], CGRectMake(0, 0, 6, 2));
    // The same through a filter, where the image is the first argument.
    EXPECT_EQ(difference([someFilter() apply:up, image, @2, nil], moved, CGRectMake(0, 0, 6, 2)), 0);
    made = [kernel(copies) applyWithExtent:CGRectMake(1, 1, 2, 2) roiCallback:nil arguments:@[ image ]];
    expectRect([made extent], CGRectMake(1, 1, 2, 2));
    EXPECT_EQ(difference(made, image, CGRectMake(1, 1, 2, 2)), 0);
    made = [up applyWithExtent:CGRectMake(0, 0, 6, 2)
                   roiCallback:^(int, CGRect r) {
                       [NSException raise:NSRangeException format:@"none"];
                       return r;
                   }
                    inputImage:image
                     arguments:@[ @2 ]];
    NSException* e = raised([&] { bytesOf(made, CGRectMake(0, 0, 6, 2)); });
    EXPECT_TRUE([[e reason] hasSuffix:@"the ROI callback raised NSRangeException: none"]) << str([e reason]);
}

TEST(CIKernel, AColorKernelComputesEachPixelFromItself) {
    CIColorKernel* swap = (CIColorKernel*)[CIKernel
        kernelWithString:@"kernel vec4 swap(__sample s, float k) { return s.grba * k; }"];
    CIImage* made = [swap applyWithExtent:CGRectMake(0, 0, 6, 4) arguments:@[ picture(), @1 ]];
    auto before = bytesOf(picture(), CGRectMake(0, 0, 6, 4)), after = bytesOf(made, CGRectMake(0, 0, 6, 4));
    for (size_t i = 0; i < before.size(); i += 4) {
        EXPECT_NEAR(after[i], before[i + 1], 1);
        EXPECT_NEAR(after[i + 1], before[i], 1);
        EXPECT_NEAR(after[i + 2], before[i + 2], 1);
    }
}

TEST(CIKernel, ArgumentsThatDoNotSuitRaise) {
    CIKernel* k = kernel(@"kernel vec4 k(sampler s, float x, __color c) { return c; }");
    auto reason = [&](NSArray* arguments) {
        return str([raised([&] { [someFilter() apply:k arguments:arguments options:nil]; }) reason]);
    };
    CIColor* color = [CIColor colorWithRed:1 green:0 blue:0];
    EXPECT_EQ(reason(@[ picture(), @1, color ]), "(nil)");
    EXPECT_EQ(reason(@[ picture(), @1 ]), "CIKernel k: the kernel k takes 3 arguments, not 2");
    EXPECT_EQ(reason(@[ @1, @1, color ]),
              "CIKernel k: argument 1 of the kernel k (s) has to be an image or a sampler");
    EXPECT_EQ(reason(@[ picture(), color, color ]),
              "CIKernel k: argument 2 of the kernel k (x) has to be a number");
    EXPECT_EQ(reason(@[ picture(), @1, @"red" ]),
              "CIKernel k: argument 3 must be a CISampler, CIImage, NSNumber, CIVector or CIColor, not a " +
                  str(NSStringFromClass([@"red" class])));
    NSException* many = raised([&] { [someFilter() apply:kernel(copies), picture(), @1, color, nil]; });
    EXPECT_EQ(str([many reason]), "CIKernel copies: the kernel copies takes 1 argument, not 3");
    NSException* few = raised([&] { [someFilter() apply:k, picture(), nil]; });
    EXPECT_EQ(str([few reason]), "CIKernel k: the kernel k takes 3 arguments, not 1");
    CIKernel* warp = kernel(@"kernel vec2 w() { return vec2(1.0); }");
    EXPECT_EQ(str([raised([&] { [someFilter() apply:warp arguments:@[] options:nil]; }) reason]),
              "CIWarpKernel w: the warp w needs an image to read");
    NSAffineTransform* broken = [NSAffineTransform transform];
    [broken scaleBy:NAN];
    CISampler* nowhere = [CISampler samplerWithImage:picture()
                                       keysAndValues:kCISamplerAffineMatrix, broken, nil];
    EXPECT_EQ(reason(@[ nowhere, @1, color ]), "CISampler: a sampler's matrix needs finite numbers");
}

TEST(CIKernel, SamplersAreReadWithTheirMatrixAndModes) {
    NSAffineTransform* twice = [NSAffineTransform transform];
    [twice scaleBy:2];
    for (NSString* wrap in @[ kCISamplerWrapBlack, kCISamplerWrapClamp ])
        for (NSString* mode in @[ kCISamplerFilterNearest, kCISamplerFilterLinear ]) {
            CISampler* sampler =
                [CISampler samplerWithImage:picture()
                              keysAndValues:kCISamplerAffineMatrix, twice, kCISamplerWrapMode, wrap,
                                            kCISamplerFilterMode, mode, nil];
            CIImage* expected = filtered(
                @"CIExposureAdjust",
                @{@"inputImage" : sampler,
                  @"inputEV" : @0});
            CIImage* made = [someFilter() apply:kernel(copies), sampler, nil];
            EXPECT_LE(difference(made, expected, CGRectMake(-3, -3, 20, 20)), 1) << str(wrap) << str(mode);
        }
}

TEST(CIKernel, AKernelEqualsTheBuiltInFilterOfItsFormula) {
    CGRect all = CGRectMake(-2, -2, 44, 34);
    CIImage* image = [picture() imageByApplyingTransform:CGAffineTransformMakeScale(6.5, 7.25)];
    CIKernel* invert =
        kernel(@"kernel vec4 invert(sampler s) { vec4 c = unpremultiply(sample(s, samplerCoord(s)));\n"
               @"return premultiply(vec4(1.0 - c.rgb, c.a)); }");
    EXPECT_LE(difference([someFilter() apply:invert, image, nil],
                         filtered(@"CIColorInvert", @{@"inputImage" : image}), all),
              1);

    CIKernel* exposure =
        kernel(@"kernel vec4 exposure(sampler s, float ev) { vec4 c = sample(s, samplerCoord(s));\n"
               @"return vec4(c.rgb * exp2(ev), c.a); }");
    EXPECT_LE(difference([someFilter() apply:exposure, image, @0.7, nil],
                         filtered(
                             @"CIExposureAdjust",
                             @{@"inputImage" : image,
                               @"inputEV" : @0.7}),
                         all),
              1);

    CIKernel* bump =
        kernel(@"kernel vec2 bump(vec2 centre, float radius, float scale) { vec2 d = destCoord() - centre;\n"
               @"float s = smoothstep(0.0, 1.0, 1.0 - length(d) / radius);\n"
               @"return centre + d * (1.0 - scale * s); }");
    CIVector* centre = [CIVector vectorWithX:18 Y:13];
    EXPECT_LE(difference([someFilter() apply:bump, image, centre, @12, @0.5, nil],
                         filtered(
                             @"CIBumpDistortion", @{
                                 @"inputImage" : image,
                                 @"inputCenter" : centre,
                                 @"inputRadius" : @12,
                                 @"inputScale" : @0.5
                             }),
                         CGRectMake(0, 0, 39, 29)),
              1);

    const CGFloat weights[]{0.1f, 0.2f, -0.1f, 0.3f, 0.4f, 0.05f, -0.2f, 0.1f, 0.15f};
    CIVector* matrix = [CIVector vectorWithValues:weights count:9];
    NSMutableString* text = [NSMutableString
        stringWithString:
            @"kernel vec4 convolve(sampler s) { vec2 d = samplerCoord(s); vec4 sum = vec4(0.0);\n"];
    for (int i = 0; i < 9; ++i)
        [text appendFormat:@"sum += %f * sample(s, d + vec2(%d.0, %d.0));\n", double(weights[i]), i % 3 - 1,
                           1 - i / 3];
    [text appendString:@"return sum; }"];
    EXPECT_LE(difference([someFilter() apply:kernel(text), image, nil],
                         filtered(@"CIConvolution3X3", @{@"inputImage" : image, @"inputWeights" : matrix}),
                         CGRectMake(1, 1, 37, 27)),
              1);
}

TEST(CIKernel, ImagesKeepWhatTheyNeed) {
    CIImage* image;
    @autoreleasepool {
        CIKernel* waving = kernel(@"kernel vec4 waving(sampler s) { vec2 d = destCoord(); return sample(s, d "
                                  @"+ 2.0 * sin(d.yx)); }");
        [waving setROISelector:@selector(regionOf:destRect:userInfo:)];
        image = [[someFilter() apply:waving
                           arguments:@[ picture() ]
                             options:@{
                                 kCIApplyOptionUserInfo : @[ @1 ]
                             }] retain];
    }
    EXPECT_GT(bytesOf(image, CGRectMake(0, 0, 6, 4))[2], 0);
    [image release];
}
