// Counts of live objects, and leaks.
#include "support.h"

TEST(LiveObjects, EveryClassIsCounted) {
    auto all = liveObjects();
    for (const char* name :
         {"CIImage", "CIFilter", "CIColor", "CIVector", "CIContext", "CIFilterShape", "CISampler", "CIKernel",
          "CIImageAccumulator", "CIFilterGenerator", "CGImage", "CGColorSpace", "CGContext", "CGColor"})
        EXPECT_EQ(all.count(name), 1u) << name;
    const char* name;
    int count;
    EXPECT_EQ(PlatformLiveObjects(&name, &count, 1), 1);
    EXPECT_EQ(PlatformLiveObjects(nullptr, nullptr, 0), 0);
}

TEST(LiveObjects, UninitialisedObjectsCanBeReleased) {
    auto before = liveObjects();
    for (Class c : {[CIImage class],
                    [CIFilter class],
                    [CIColor class],
                    [CIVector class],
                    [CIContext class],
                    [CIImageAccumulator class],
                    [CIFilterGenerator class],
                    [CIFilterShape class]})
        [[c alloc] release];
    EXPECT_EQ(liveObjects(), before);
}

TEST(LiveObjects, ASessionLeavesNothingBehind) {
    auto before = liveObjects();
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
        EXPECT_GT(liveObjects()["CIImage"], before["CIImage"]);
        EXPECT_GT(liveObjects()["CIFilter"], before["CIFilter"]);
    }
    for (const auto& [name, count] : liveObjects()) EXPECT_EQ(count, before[name]) << name;
}
