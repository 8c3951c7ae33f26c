// Counts of live objects, and leaks.
#include "support.h"

#include <CoreGraphics/CGTesting.h>

#include <cstring>
#include <map>

static std::map<std::string, int> live() {
    const char* names[64];
    int counts[64];
    std::map<std::string, int> all;
    int n = PlatformLiveObjects(names, counts, 64);
    for (int i = 0; i < n; ++i) all[names[i]] = counts[i];
    return all;
}

TEST(LiveObjects, EveryClassIsCounted) {
    auto all = live();
    for (const char* name : {"CIImage", "CIFilter", "CIColor", "CIVector", "CIContext", "CIFilterShape",
                             "CISampler", "CIKernel", "CGImage", "CGColorSpace", "CGContext", "CGColor"})
        EXPECT_EQ(all.count(name), 1u) << name;
    const char* name;
    int count;
    EXPECT_EQ(PlatformLiveObjects(&name, &count, 1), 1);
    EXPECT_EQ(PlatformLiveObjects(nullptr, nullptr, 0), 0);
}

TEST(LiveObjects, UninitialisedObjectsCanBeReleased) {
    auto before = live();
    for (Class c : {[CIImage class],
                    [CIFilter class],
                    [CIColor class],
                    [CIVector class],
                    [CIContext class],
                    [CIFilterShape class]})
        [[c alloc] release];
    EXPECT_EQ(live(), before);
}

TEST(LiveObjects, ASessionLeavesNothingBehind) {
    auto before = live();
    @autoreleasepool {
        Bitmap canvas(16, 16);
        CIContext* context = [CIContext contextWithCGContext:canvas.get() options:nil];
        CIFilter* filter = [CIFilter filterWithName:@"CISepiaTone"];
        [filter setDefaults];
        [filter setValue:[CIImage imageWithData:pngOf(makePicture(6, 4).get())] forKey:@"inputImage"];
        CIImage* output = [filter valueForKey:@"outputImage"];
        [context drawImage:output inRect:CGRectMake(0, 0, 16, 16) fromRect:[output extent]];
        CGImageRelease([context createCGImage:output fromRect:[output extent]]);
        [[output definition] unionWithRect:CGRectMake(0, 0, 100, 100)];
        [CISampler samplerWithImage:output];
        [CIVector vectorWithString:@"no vector"];
        [CIImage imageWithData:[NSData data]];
        EXPECT_GT(live()["CIImage"], before["CIImage"]);
        EXPECT_GT(live()["CIFilter"], before["CIFilter"]);
    }
    for (const auto& [name, count] : live()) EXPECT_EQ(count, before[name]) << name;
}
