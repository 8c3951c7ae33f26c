// rows ROW: renders a row of the peers table with Core Image, and prints the best time in milliseconds and
// the peak memory in MiB. The peers' side of each row is in peers.py.
#include "../bench.h"
#include "../filtered.h"
#include "../photograph.h"

#include <cstdio>
#include <cstring>

namespace {

using bench::filtered;

constexpr size_t kWidth = 4000, kHeight = 3000;

CIImage* colorChain(CIImage* image) {
    image = filtered(@"CIExposureAdjust", image, @"inputEV", 0.3);
    image = filtered(@"CIColorControls", image, @"inputSaturation", 1.2);
    image = filtered(@"CIHueAdjust", image, @"inputAngle", 0.2);
    image = filtered(@"CIGammaAdjust", image, @"inputPower", 0.9);
    image = filtered(@"CIColorInvert", image, nil);
    image = filtered(@"CIColorMatrix", image, nil);
    image = filtered(@"CISepiaTone", image, @"inputIntensity", 0.4);
    return filtered(@"CIGammaAdjust", image, @"inputPower", 1.1);
}

CIImage* threeLayers(CIImage* image) {
    CIImage* half = filtered(@"CIColorMatrix", image,
                             [NSDictionary dictionaryWithObject:[CIVector vectorWithX:0 Y:0 Z:0 W:0.5]
                                                         forKey:@"inputAVector"]);
    for (int moved = 100; moved <= 200; moved += 100) {
        CIImage* layer = [half
            imageByApplyingTransform:CGAffineTransformMakeTranslation(moved, static_cast<CGFloat>(moved))];
        image = filtered(@"CISourceOverCompositing", layer,
                         [NSDictionary dictionaryWithObject:image forKey:@"inputBackgroundImage"]);
    }
    return image;
}

CIImage* turned(CIImage* image) {
    CGAffineTransform t = CGAffineTransformMakeTranslation(kWidth / 2, kHeight / 2);
    t = CGAffineTransformScale(CGAffineTransformRotate(t, 0.3f), 1.2f, 1.2f);
    return
        [image imageByApplyingTransform:CGAffineTransformTranslate(t, -(kWidth / 2.0f), -(kHeight / 2.0f))];
}

CIImage* convolved(CIImage* image) {
    CGFloat weights[25];
    for (int i = 0; i < 25; ++i) weights[i] = static_cast<CGFloat>(((i * 7) % 11 + 1) / 146.0);
    return filtered(@"CIConvolution5X5", image,
                    [NSDictionary dictionaryWithObject:[CIVector vectorWithValues:weights count:25]
                                                forKey:@"inputWeights"]);
}

CIImage* twirled(CIImage* image) {
    return filtered(@"CITwirlDistortion", image,
                    [NSDictionary dictionaryWithObjectsAndKeys:[CIVector vectorWithX:2000 Y:1500],
                                                               @"inputCenter", [NSNumber numberWithInt:1500],
                                                               @"inputRadius", nil]);
}

struct Row {
    const char* name;
    CIImage* (*recipe)(CIImage* image);
    int shrink = 1;
};

const Row kRows[] = {
    {"colour chain of 8", colorChain},
    {"Gaussian blur 5", [](CIImage* i) { return filtered(@"CIGaussianBlur", i, @"inputRadius", 5); }},
    {"Gaussian blur 20", [](CIImage* i) { return filtered(@"CIGaussianBlur", i, @"inputRadius", 20); }},
    {"box blur 20", [](CIImage* i) { return filtered(@"CIBoxBlur", i, @"inputRadius", 20); }},
    {"median 3 x 3", [](CIImage* i) { return filtered(@"CIMedianFilter", i, nil); }},
    {"unsharp mask", [](CIImage* i) { return filtered(@"CIUnsharpMask", i, @"inputRadius", 2.5); }},
    {"rotation with scale", turned},
    {"twirl", twirled},
    {"quarter size, Lanczos",
     [](CIImage* i) { return filtered(@"CILanczosScaleTransform", i, @"inputScale", 0.25); }, 4},
    {"three layers", threeLayers},
    {"5 x 5 convolution", convolved},
    {"motion blur 40", [](CIImage* i) { return filtered(@"CIMotionBlur", i, @"inputRadius", 40); }},
    {"pixellate 16", [](CIImage* i) { return filtered(@"CIPixellate", i, @"inputScale", 16); }},
    {"crystallize 20", [](CIImage* i) { return filtered(@"CICrystallize", i, @"inputRadius", 20); }},
};

void measure(const Row& row) {
    size_t width = kWidth / row.shrink, height = kHeight / row.shrink;
    CGImageRef photograph = bench::newPhotograph("coffee.png", kWidth, kHeight);
    CGContextRef bitmap = bench::newBitmap(width, height);
    CIImage* image = row.recipe([CIImage imageWithCGImage:photograph]);
    CIContext* context = [CIContext contextWithCGContext:bitmap options:nil];
    CGRect whole = CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height));
    double best = bench::bestOf(3, [&] { [context drawImage:image inRect:whole fromRect:whole]; });
    std::printf("%.1f %.0f\n", best * 1e3, bench::peakMemory());
    CGContextRelease(bitmap);
    CGImageRelease(photograph);
}

} // namespace

int main(int argc, char** argv) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    bool ran = false;
    for (const Row& row : kRows) {
        if (argc < 2) std::printf("%s\n", row.name);
        if (argc < 2 || std::strcmp(row.name, argv[1]) != 0) continue;
        measure(row);
        ran = true;
    }
    [pool release];
    return argc > 1 && !ran;
}
