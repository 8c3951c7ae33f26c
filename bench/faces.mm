// Finding faces in a photograph of twelve megapixels, against the bare library called with every pixel.
#include "bench.h"
#include "photograph.h"

#import <QuartzCore/CIDetector.h>
#import <QuartzCore/QuartzCore.h>

#include <vision/faces.h>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <vector>

namespace {

constexpr int kSide = 3464;
constexpr double kMegapixels = kSide * kSide / 1e6;

CIImage* photograph() {
    CGImageRef pixels = bench::newPhotograph("astronaut.png", kSide, kSide);
    CIImage* image = [CIImage imageWithCGImage:pixels];
    CGImageRelease(pixels);
    return image;
}

void expectOne(std::size_t faces) {
    if (faces == 1) return;
    std::printf("  %zu faces were found where there is one\n", faces);
    std::exit(1);
}

double bareSeconds(CIImage* image) {
    void* library = dlopen(KAZ_VISION, RTLD_NOW);
    auto entry =
        library ? reinterpret_cast<decltype(&visionFaceFinder)>(dlsym(library, "visionFaceFinder")) : nullptr;
    std::string problem;
    vision::FaceFinder* finder = entry ? entry(&problem) : nullptr;
    if (!finder) {
        std::printf("  %s\n", problem.c_str());
        std::exit(1);
    }
    // Green alone will do: converting the colours is not what is measured.
    std::vector<std::uint8_t> colors(std::size_t{4} * kSide * kSide), grey(std::size_t{kSide} * kSide);
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    [context render:image
           toBitmap:colors.data()
           rowBytes:kSide * 4
             bounds:CGRectMake(0, 0, kSide, kSide)
             format:kCIFormatRGBA8
         colorSpace:space];
    CGColorSpaceRelease(space);
    for (std::size_t i = 0; i < grey.size(); ++i) grey[i] = colors[4 * i + 1];
    colors = {};
    expectOne(finder->find({grey.data(), kSide, kSide, kSide}).size()); // loads the landmarks
    return bench::bestOf(3, [&] { expectOne(finder->find({grey.data(), kSide, kSide, kSide}).size()); });
}

void measure(const char* name, NSString* accuracy) {
    @autoreleasepool {
        CIImage* image = photograph();
        NSDictionary* options = [NSDictionary dictionaryWithObject:accuracy forKey:CIDetectorAccuracy];
        CIDetector* detector = nil;
        auto search = [&] { expectOne([[detector featuresInImage:image] count]); };
        double making = bench::bestOf(1, [&] {
            detector = [CIDetector detectorOfType:CIDetectorTypeFace context:nil options:options];
        });
        double first = bench::bestOf(1, search), later = bench::bestOf(5, search);
        bench::report("making the first detector", making * 1e3, "ms");
        bench::report("extra time for the first face", (first - later) * 1e3, "ms");
        double memory = bench::peakMemory(), bare = bareSeconds(image);
        bench::report("the bare library, every pixel", bare * 1e3 / kMegapixels, "ms/MP");
        bench::report(name, later * 1e3 / kMegapixels, "ms/MP", later / bare, "the bare library");
        bench::report("its peak memory", memory, "MiB", memory / bench::peakMemory(), "the bare library's");
    }
}

void measureLow() { measure("low accuracy", CIDetectorAccuracyLow); }
void measureHigh() { measure("high accuracy", CIDetectorAccuracyHigh); }

} // namespace

const bench::Benchmark bench::facesLow = {"faces: low accuracy, 12 megapixels", measureLow};
const bench::Benchmark bench::facesHigh = {"faces: high accuracy, 12 megapixels", measureHigh};
