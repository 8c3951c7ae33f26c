// Rendering a photograph of twelve megapixels, against copying its pixels once.
#include "bench.h"
#include "filtered.h"
#include "photograph.h"

#include <cstring>
#include <vector>

namespace {

using bench::filtered;

constexpr size_t kWidth = 4000, kHeight = 3000;

double copySeconds() {
    std::vector<unsigned char> from(kWidth * kHeight * 4, 1), to(from.size());
    return bench::bestOf(7, [&] {
        std::memcpy(to.data(), from.data(), from.size());
        asm volatile("" : : "r"(to.data()) : "memory"); // keeps the compiler from dropping the copy
    });
}

// Renders what `recipe` makes of the photograph, and reports how many copies of the photograph take as long.
template <class Recipe>
void measure(const char* name, Recipe&& recipe) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    double copy = copySeconds();
    CGImageRef photograph = bench::newPhotograph("coffee.png", kWidth, kHeight);
    CGContextRef bitmap = bench::newBitmap(kWidth, kHeight);
    CIImage* image = recipe([CIImage imageWithCGImage:photograph]);
    CIContext* context = [CIContext contextWithCGContext:bitmap options:nil];
    CGRect whole = CGRectMake(0, 0, kWidth, kHeight);
    double render = bench::bestOf(5, [&] { [context drawImage:image inRect:whole fromRect:whole]; });
    bench::report("copying the picture once", copy * 1e3, "ms");
    bench::report(name, render * 1e3, "ms", render / copy, "the copy");
    CGContextRelease(bitmap);
    CGImageRelease(photograph);
    [pool release];
}

void measureColorChain() {
    measure("a chain of 8 colour filters", [](CIImage* image) {
        image = filtered(@"CIExposureAdjust", image, @"inputEV", 0.3);
        image = filtered(@"CIColorControls", image, @"inputSaturation", 1.2);
        image = filtered(@"CIHueAdjust", image, @"inputAngle", 0.2);
        image = filtered(@"CIGammaAdjust", image, @"inputPower", 0.9);
        image = filtered(@"CIColorInvert", image);
        image = filtered(@"CIColorMatrix", image);
        image = filtered(@"CISepiaTone", image, @"inputIntensity", 0.4);
        return filtered(@"CIVignette", image, @"inputIntensity", 0.7);
    });
}

void measureGaussianBlur() {
    measure("CIGaussianBlur, radius 20",
            [](CIImage* image) { return filtered(@"CIGaussianBlur", image, @"inputRadius", 20); });
}

// Finding the filters (without faces) and applying them, against rendering the photograph as it is.
void measureAutoAdjustment() {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    double copy = copySeconds();
    CGImageRef photograph = bench::newPhotograph("coffee.png", kWidth, kHeight);
    CGContextRef bitmap = bench::newBitmap(kWidth, kHeight);
    CIImage* image = filtered(@"CIExposureAdjust", [CIImage imageWithCGImage:photograph], @"inputEV", -2);
    CIContext* context = [CIContext contextWithCGContext:bitmap options:nil];
    CGRect whole = CGRectMake(0, 0, kWidth, kHeight);
    auto renderSeconds = [&](CIImage* picture) {
        return bench::bestOf(5, [&] { [context drawImage:picture inRect:whole fromRect:whole]; });
    };
    double plain = renderSeconds(image);
    NSDictionary* noFaces = [NSDictionary dictionaryWithObject:[NSArray array]
                                                        forKey:kCIImageAutoAdjustFeatures];
    NSArray* filters = nil;
    double analysis = bench::bestOf(5, [&] { filters = [image autoAdjustmentFiltersWithOptions:noFaces]; });
    CIImage* adjusted = image;
    for (CIFilter* filter in filters) {
        [filter setValue:adjusted forKey:@"inputImage"];
        adjusted = [filter valueForKey:@"outputImage"];
    }
    bench::report("copying the picture once", copy * 1e3, "ms");
    bench::report("rendering it as it is", plain * 1e3, "ms", plain / copy, "the copy");
    bench::report("finding the filters", analysis * 1e3, "ms", analysis / plain, "the rendering");
    double applied = renderSeconds(adjusted);
    bench::report("rendering it adjusted", applied * 1e3, "ms", applied / plain, "the rendering");
    CGContextRelease(bitmap);
    CGImageRelease(photograph);
    [pool release];
}

} // namespace

const bench::Benchmark bench::colorChain = {"render: 8 colour filters, 4000 x 3000", measureColorChain};
const bench::Benchmark bench::gaussianBlur = {"render: CIGaussianBlur, 4000 x 3000", measureGaussianBlur};
const bench::Benchmark bench::autoAdjustment = {"automatic adjustment, 4000 x 3000", measureAutoAdjustment};
