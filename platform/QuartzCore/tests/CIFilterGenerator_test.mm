// CIFilterGenerator: filters that are connected, exported, registered, written and read.
#include "support.h"

namespace {

/// Exposure after an inversion: "inputImage", "inputStops" and "outputImage".
struct Chain {
    CIFilterGenerator* generator = [CIFilterGenerator filterGenerator];
    CIFilter* invert = [CIFilter filterWithName:@"CIColorInvert"];
    CIFilter* exposure = [CIFilter filterWithName:@"CIExposureAdjust"];

    Chain() {
        [exposure setDefaults];
        [generator connectObject:invert withKey:nil toObject:exposure withKey:kCIInputImageKey];
        [generator exportKey:kCIInputImageKey fromObject:invert withName:nil];
        [generator exportKey:kCIInputEVKey fromObject:exposure withName:@"inputStops"];
        [generator exportKey:kCIOutputImageKey fromObject:exposure withName:nil];
    }
};

CIImage* gray(CGFloat level) {
    return [CIImage imageWithColor:[CIColor colorWithRed:level green:level blue:level]];
}

int levelOf(CIImage* image) {
    std::uint8_t p[4] = {};
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    if (!image) return -1;
    [[CIContext contextWithOptions:nil] render:image
                                      toBitmap:p
                                      rowBytes:4
                                        bounds:CGRectMake(0, 0, 1, 1)
                                        format:kCIFormatRGBA8
                                    colorSpace:space.get()];
    return p[0];
}

/// What the filter makes of a grey.
int levelBy(CIFilter* filter, CGFloat level) {
    [filter setValue:gray(level) forKey:kCIInputImageKey];
    return levelOf([filter valueForKey:kCIOutputImageKey]);
}

/// The same by hand.
int expected(CGFloat level, double stops) {
    CIFilter* invert = [CIFilter filterWithName:@"CIColorInvert"];
    CIFilter* exposure = [CIFilter filterWithName:@"CIExposureAdjust"];
    [invert setValue:gray(level) forKey:kCIInputImageKey];
    [exposure setValue:[invert valueForKey:kCIOutputImageKey] forKey:kCIInputImageKey];
    [exposure setValue:@(stops) forKey:kCIInputEVKey];
    return levelOf([exposure valueForKey:kCIOutputImageKey]);
}

/// A file that is gone at the end.
struct Scratch {
    NSString* path = [NSTemporaryDirectory()
        stringByAppendingPathComponent:[[NSProcessInfo processInfo] globallyUniqueString]];
    NSURL* url = [NSURL fileURLWithPath:path];
    ~Scratch() { [[NSFileManager defaultManager] removeFileAtPath:path handler:nil]; }
};

} // namespace

TEST(CIFilterGenerator, MakesFiltersOfConnectedOnes) {
    Chain chain;
    CIFilter* filter = [chain.generator filter];
    EXPECT_EQ(str([[filter inputKeys] componentsJoinedByString:@" "]), "inputImage inputStops");
    EXPECT_EQ(str([[filter outputKeys] componentsJoinedByString:@" "]), "outputImage");
    [filter setValue:@(-1) forKey:@"inputStops"];
    EXPECT_EQ([[filter valueForKey:@"inputStops"] doubleValue], -1);
    EXPECT_EQ(levelBy(filter, 0.25f), expected(0.25f, -1));
    EXPECT_NE(levelBy(filter, 0.25f), expected(0.25f, 0));
    EXPECT_EQ(levelOf([filter outputImage]), expected(0.25f, -1));
    [filter setValue:nil forKey:kCIInputImageKey];
    EXPECT_EQ([filter valueForKey:kCIOutputImageKey], nil);
}

TEST(CIFilterGenerator, EachFilterHasFiltersOfItsOwn) {
    Chain chain;
    [chain.exposure setValue:@(-1) forKey:kCIInputEVKey];
    CIFilter* filter = [chain.generator filter];
    CIFilter* copy = [[filter copy] autorelease];
    CIFilter* other = [chain.generator filter];
    [chain.exposure setValue:@2 forKey:kCIInputEVKey];
    [copy setValue:@(-2) forKey:@"inputStops"];
    [other setValue:@(-3) forKey:@"inputStops"];
    EXPECT_EQ(levelBy(filter, 0.25f), expected(0.25f, -1));
    EXPECT_EQ(levelBy(copy, 0.25f), expected(0.25f, -2));
    EXPECT_EQ(levelBy(other, 0.25f), expected(0.25f, -3));
    EXPECT_EQ([chain.invert valueForKey:kCIInputImageKey], nil);
}

TEST(CIFilterGenerator, ExportedKeysHaveAttributes) {
    Chain chain;
    [chain.generator setAttributes:@{
        kCIAttributeDisplayName : @"Stops",
        kCIAttributeMax : @3
    }
                    forExportedKey:@"inputStops"];
    [chain.generator setAttributes:@{kCIAttributeMax : @3} forExportedKey:@"inputNone"];
    NSDictionary* keys = [chain.generator exportedKeys];
    EXPECT_EQ([keys count], 3u);
    NSDictionary* stops = [keys objectForKey:@"inputStops"];
    EXPECT_EQ(str([stops objectForKey:kCIFilterGeneratorExportedKey]), "inputEV");
    EXPECT_EQ([stops objectForKey:kCIFilterGeneratorExportedKeyTargetObject], chain.exposure);
    EXPECT_EQ(str([stops objectForKey:kCIFilterGeneratorExportedKeyName]), "inputStops");
    EXPECT_EQ(str([stops objectForKey:kCIAttributeDisplayName]), "Stops");

    NSDictionary* attributes = [[[chain.generator filter] attributes] objectForKey:@"inputStops"];
    EXPECT_EQ(str([attributes objectForKey:kCIAttributeDisplayName]), "Stops");
    EXPECT_EQ(str([attributes objectForKey:kCIAttributeClass]), "NSNumber"); // the filter's own
    EXPECT_EQ([[attributes objectForKey:kCIAttributeMax] intValue], 3);
    CIFilter* filter = [chain.generator filter];
    [filter setValue:@2 forKey:@"inputStops"];
    [filter setDefaults];
    EXPECT_EQ([[filter valueForKey:@"inputStops"] doubleValue], 0);

    [chain.generator removeExportedKey:@"inputStops"];
    filter = [chain.generator filter];
    EXPECT_EQ(str([raised([&] { [filter setValue:@1 forKey:@"inputStops"]; }) name]),
              "NSUnknownKeyException");
    EXPECT_EQ(str([raised([&] { [filter setValue:@1 forKey:@"outputImage"]; }) name]),
              "NSUnknownKeyException");
}

TEST(CIFilterGenerator, ConnectsObjectsAndValues) {
    Chain chain;
    // An object as it is, and the key of one that is no filter.
    [chain.generator connectObject:@(-2) withKey:nil toObject:chain.exposure withKey:kCIInputEVKey];
    EXPECT_EQ(levelBy([chain.generator filter], 0.25f), expected(0.25f, -2));
    CIVector* vector = [CIVector vectorWithX:5 Y:-1];
    [chain.generator connectObject:vector withKey:@"Y" toObject:chain.exposure withKey:kCIInputEVKey];
    EXPECT_EQ(levelBy([chain.generator filter], 0.25f), expected(0.25f, -1)); // in place of the former
    [chain.generator disconnectObject:vector withKey:@"Y" toObject:chain.exposure withKey:kCIInputEVKey];
    EXPECT_EQ(levelBy([chain.generator filter], 0.25f), expected(0.25f, 0));
    [chain.generator disconnectObject:chain.invert
                              withKey:nil
                             toObject:chain.exposure
                              withKey:kCIInputImageKey];
    EXPECT_EQ(levelBy([chain.generator filter], 0.25f), -1);
}

TEST(CIFilterGenerator, OneSourceServesSeveralInputs) {
    // The difference of a picture and itself is black, whichever way it took.
    CIFilterGenerator* generator = [CIFilterGenerator filterGenerator];
    CIFilter* invert = [CIFilter filterWithName:@"CIColorInvert"];
    CIFilter* difference = [CIFilter filterWithName:@"CIDifferenceBlendMode"];
    [generator exportKey:kCIOutputImageKey fromObject:difference withName:nil];
    [generator exportKey:kCIInputImageKey fromObject:invert withName:nil];
    [generator connectObject:invert withKey:nil toObject:difference withKey:kCIInputBackgroundImageKey];
    [generator connectObject:invert withKey:nil toObject:difference withKey:kCIInputImageKey];
    EXPECT_EQ(levelBy([generator filter], 0.25f), 0);
}

TEST(CIFilterGenerator, CirclesAndMissingObjectsAreRefused) {
    Chain chain;
    auto refused = [&](id source, id target, NSString* key) {
        return raised([&] {
                   [chain.generator connectObject:source withKey:nil toObject:target withKey:key];
               }) != nil;
    };
    EXPECT_TRUE(refused(chain.exposure, chain.invert, kCIInputImageKey));
    EXPECT_TRUE(refused(chain.invert, chain.invert, kCIInputImageKey));
    EXPECT_TRUE(refused(nil, chain.invert, kCIInputImageKey));
    EXPECT_TRUE(refused(chain.invert, nil, kCIInputImageKey));
    EXPECT_TRUE(refused(chain.invert, chain.exposure, nil));
    EXPECT_TRUE(refused(chain.invert, @"no filter", kCIInputImageKey));
    EXPECT_EQ(levelBy([chain.generator filter], 0.25f), expected(0.25f, 0));
}

TEST(CIFilterGenerator, RegistersAsItIs) {
    Chain chain;
    [chain.generator setClassAttributes:@{
        kCIAttributeFilterDisplayName : @"Inverted",
        kCIAttributeFilterCategories : @[ kCICategoryFilterGenerator ],
    }];
    [chain.exposure setValue:@(-1) forKey:kCIInputEVKey];
    [chain.generator registerFilterName:@"AnInversion"];
    [chain.exposure setValue:@1 forKey:kCIInputEVKey];
    [chain.generator removeExportedKey:kCIInputImageKey];
    EXPECT_TRUE([[CIFilter filterNamesInCategory:kCICategoryFilterGenerator] isEqual:@[ @"AnInversion" ]]);
    CIFilter* filter = [CIFilter filterWithName:@"AnInversion"];
    EXPECT_EQ(str([filter name]), "AnInversion");
    EXPECT_EQ(str([[filter attributes] objectForKey:kCIAttributeFilterDisplayName]), "Inverted");
    EXPECT_EQ(levelBy(filter, 0.25f), expected(0.25f, -1));
    EXPECT_EQ(str([CIFilter localizedNameForCategory:kCICategoryFilterGenerator]), "Filter Generator");
}

TEST(CIFilterGenerator, IsWrittenAndRead) {
    CIFilterGenerator* generator = [CIFilterGenerator filterGenerator];
    CIFilter* board = [CIFilter filterWithName:@"CICheckerboardGenerator"];
    CIFilter* turn = [CIFilter filterWithName:@"CIAffineTransform"];
    NSAffineTransform* transform = [NSAffineTransform transform];
    [transform translateXBy:3 yBy:4];
    [board setValue:[CIVector vectorWithX:1.5f Y:2] forKey:kCIInputCenterKey];
    [board setValue:[CIColor colorWithRed:0.25f green:0.5f blue:1] forKey:@"inputColor0"];
    [board setValue:@7 forKey:kCIInputWidthKey];
    [turn setValue:transform forKey:kCIInputTransformKey];
    [generator connectObject:board withKey:nil toObject:turn withKey:kCIInputImageKey];
    [generator connectObject:[CIColor colorWithRed:1 green:0 blue:0]
                     withKey:nil
                    toObject:board
                     withKey:@"inputColor1"];
    [generator exportKey:kCIOutputImageKey fromObject:turn withName:nil];
    [generator exportKey:kCIInputCenterKey fromObject:board withName:@"inputPlace"];
    [generator setAttributes:@{kCIAttributeDefault : [CIVector vectorWithX:9 Y:9]}
              forExportedKey:@"inputPlace"];
    [generator setClassAttributes:@{kCIAttributeFilterDisplayName : @"Board"}];
    Scratch file;
    ASSERT_TRUE([generator writeToURL:file.url atomically:YES]);

    CIFilterGenerator* read = [CIFilterGenerator filterGeneratorWithContentsOfURL:file.url];
    ASSERT_TRUE(read != nil);
    EXPECT_TRUE([[read classAttributes] isEqual:[generator classAttributes]]);
    NSDictionary* place = [[read exportedKeys] objectForKey:@"inputPlace"];
    EXPECT_EQ(str([[place objectForKey:kCIAttributeDefault] stringRepresentation]), "[9 9]");
    CIFilter* copied = [place objectForKey:kCIFilterGeneratorExportedKeyTargetObject];
    EXPECT_EQ(str([copied name]), "CICheckerboardGenerator");
    EXPECT_EQ(str([[copied valueForKey:kCIInputCenterKey] stringRepresentation]), "[1.5 2]");
    EXPECT_EQ(str([[copied valueForKey:@"inputColor0"] stringRepresentation]), "0.25 0.5 1 1");
    EXPECT_EQ([[copied valueForKey:kCIInputWidthKey] intValue], 7);
    // The same picture.
    auto bytes = [](CIFilterGenerator* g) {
        std::vector<std::uint8_t> p(4 * 16 * 16);
        [[CIContext contextWithOptions:nil] render:[[g filter] outputImage]
                                          toBitmap:p.data()
                                          rowBytes:64
                                            bounds:CGRectMake(0, 0, 16, 16)
                                            format:kCIFormatRGBA8
                                        colorSpace:nullptr];
        return p;
    };
    EXPECT_EQ(bytes(read), bytes(generator));
}

TEST(CIFilterGenerator, ImagesAreWrittenAsTheirFiles) {
    Scratch picture, file;
    ASSERT_TRUE([pngOf(makePicture(2, 2).get()) writeToURL:picture.url atomically:NO]);
    Chain chain;
    [chain.invert setValue:[CIImage imageWithContentsOfURL:picture.url] forKey:kCIInputImageKey];
    ASSERT_TRUE([chain.generator writeToURL:file.url atomically:NO]);
    CIFilter* filter = [[CIFilterGenerator filterGeneratorWithContentsOfURL:file.url] filter];
    EXPECT_TRUE(CGRectEqualToRect([[filter outputImage] extent], CGRectMake(0, 0, 2, 2)));
    // An image of no file cannot be written, nor a value of another class.
    [chain.invert setValue:gray(1) forKey:kCIInputImageKey];
    EXPECT_FALSE([chain.generator writeToURL:file.url atomically:NO]);
    [chain.invert setValue:nil forKey:kCIInputImageKey];
    [chain.generator setClassAttributes:@{@"url" : file.url}];
    EXPECT_FALSE([chain.generator writeToURL:file.url atomically:NO]);
}

TEST(CIFilterGenerator, DamagedFilesAreRefused) {
    Scratch file;
    auto reads = [&](NSString* text) {
        [text writeToURL:file.url atomically:NO encoding:NSUTF8StringEncoding error:nullptr];
        return [CIFilterGenerator filterGeneratorWithContentsOfURL:file.url] != nil;
    };
    EXPECT_EQ([CIFilterGenerator filterGeneratorWithContentsOfURL:nil], nil);
    EXPECT_EQ([CIFilterGenerator filterGeneratorWithContentsOfURL:file.url], nil);
    EXPECT_TRUE(reads(@"{ filters = ({ name = CIColorInvert; values = {}; }); }"));
    EXPECT_FALSE(reads(@"{ filters = ({ name = CINoSuchFilter; values = {}; }); }"));
    EXPECT_FALSE(reads(@"{ filters = ({ name = CIColorInvert; values = { inputNone = 1; }; }); }"));
    EXPECT_FALSE(reads(@"{ filters = (CIColorInvert); }"));
    EXPECT_FALSE(reads(@"{ filters = (); }"));
    EXPECT_FALSE(reads(@"( )"));
    EXPECT_FALSE(reads(@"{"));
    EXPECT_FALSE(reads(@"{ filters = ({ name = CIColorInvert; values = {}; }); connections = ({}); }"));
    EXPECT_FALSE(reads(@"{ filters = ({ name = CIColorInvert; values = {}; }); exportedKeys = ({ name = a; "
                       @"of = { filter = 5; key = inputImage; }; attributes = {}; }); }"));
}

TEST(CIFilterGenerator, LeavesNothingBehind) {
    int filters = liveObjects()["CIFilter"], images = liveObjects()["CIImage"],
        generators = liveObjects()["CIFilterGenerator"];
    @autoreleasepool {
        Chain chain;
        levelBy([chain.generator filter], 0.5f);
        [[chain.generator copy] release];
        EXPECT_EQ(liveObjects()["CIFilterGenerator"], generators + 1);
    }
    EXPECT_EQ(liveObjects()["CIFilter"], filters);
    EXPECT_EQ(liveObjects()["CIImage"], images);
    EXPECT_EQ(liveObjects()["CIFilterGenerator"], generators);
}
