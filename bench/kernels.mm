// Kernels in Core Image's kernel language, each against the built-in filter of the same formula.
#include "bench.h"
#include "filtered.h"
#include "photograph.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

using bench::filtered;

constexpr size_t kWidth = 4000, kHeight = 3000;

struct Pair {
    const char* name;
    NSString* kernel;
    NSArray* arguments; // after the image
    CIImage* builtIn;
};

std::vector<unsigned char> rendered(CIImage* image) {
    CGContextRef bitmap = bench::newBitmap(kWidth, kHeight);
    CGRect whole = CGRectMake(0, 0, kWidth, kHeight);
    [[CIContext contextWithCGContext:bitmap options:nil] drawImage:image inRect:whole fromRect:whole];
    auto* pixels = static_cast<unsigned char*>(CGBitmapContextGetData(bitmap));
    std::vector<unsigned char> bytes(pixels, pixels + kWidth * kHeight * 4);
    CGContextRelease(bitmap);
    return bytes;
}

// Ends the program if a kernel and its filter differ by more than a step.
void compare(const Pair& pair, CIImage* made) {
    auto a = rendered(made), b = rendered(pair.builtIn);
    for (size_t i = 0; i < a.size(); ++i)
        if (std::abs(a[i] - b[i]) > 1) {
            bench::report(std::string(pair.name) + ": difference", std::abs(a[i] - b[i]), "steps");
            std::exit(1);
        }
}

void measure() {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CGImageRef photograph = bench::newPhotograph("coffee.png", kWidth, kHeight);
    CGContextRef bitmap = bench::newBitmap(kWidth, kHeight);
    CIContext* context = [CIContext contextWithCGContext:bitmap options:nil];
    CIImage* image = [CIImage imageWithCGImage:photograph];
    CIVector* centre = [CIVector vectorWithX:2000 Y:1500];
    const CGFloat weights[]{0, -0.5f, 0, -0.5f, 3, -0.5f, 0, -0.5f, 0};
    const Pair pairs[]{
        {"CIColorInvert",
         @"kernel vec4 invert(sampler s) { vec4 c = unpremultiply(sample(s, samplerCoord(s)));\n"
          "return premultiply(vec4(1.0 - c.rgb, c.a)); }",
         @[], filtered(@"CIColorInvert", image)},
        {"CIExposureAdjust",
         @"kernel vec4 exposure(sampler s, float ev) { vec4 c = sample(s, samplerCoord(s));\n"
          "return vec4(c.rgb * exp2(ev), c.a); }",
         @[ @0.5 ], filtered(@"CIExposureAdjust", image, @"inputEV", 0.5)},
        {"CIBumpDistortion",
         @"kernel vec4 bump(sampler s, vec2 centre, float radius, float scale) { vec2 d = samplerCoord(s) - "
         @"centre;\n"
          "float nearer = smoothstep(0.0, 1.0, 1.0 - length(d) / radius);\n"
          "return sample(s, centre + d * (1.0 - scale * nearer)); }",
         @[ centre, @1400, @0.5 ],
         filtered(
             @"CIBumpDistortion", image,
             @{@"inputCenter" : centre,
               @"inputRadius" : @1400,
               @"inputScale" : @0.5})},
        {"CIConvolution3X3",
         @"kernel vec4 sharper(sampler s) { vec2 d = samplerCoord(s); vec4 sum = 3.0 * sample(s, d);\n"
          "for (float i = -1.0; i <= 1.0; i += 2.0)\n"
          "  sum -= 0.5 * (sample(s, d + vec2(i, 0.0)) + sample(s, d + vec2(0.0, i)));\n"
          "return sum; }",
         @[],
         filtered(@"CIConvolution3X3", image,
                  @{@"inputWeights" : [CIVector vectorWithValues:weights count:9]})}};
    CGRect whole = CGRectMake(0, 0, kWidth, kHeight);
    auto seconds = [&](CIImage* picture) {
        return bench::bestOf(1, [&] { [context drawImage:picture inRect:whole fromRect:whole]; });
    };
    for (const Pair& pair : pairs) {
        CIKernel* kernel = [CIKernel kernelWithString:pair.kernel];
        NSArray* arguments = [@[ image ] arrayByAddingObjectsFromArray:pair.arguments];
        CIImage* made = [[CIFilter filterWithName:@"CIColorInvert"]
                apply:kernel
            arguments:arguments
              options:@{kCIApplyOptionDefinition : [image definition]}];
        compare(pair, made);
        // In turns, so that a busy machine disturbs both alike.
        double builtIn = 1e30, written = 1e30;
        for (int round = 0; round < 5; ++round) {
            builtIn = std::min(builtIn, seconds(pair.builtIn));
            written = std::min(written, seconds(made));
        }
        bench::report(std::string("as a kernel: ") + pair.name, written * 1e3, "ms", written / builtIn,
                      "the filter");
    }
    CGContextRelease(bitmap);
    CGImageRelease(photograph);
    [pool release];
}

} // namespace

const bench::Benchmark bench::kernels = {"kernels beside built-in filters, 4000 x 3000", measure};
