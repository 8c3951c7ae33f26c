// Faces in real photographs, against positions that were marked by eye.
#import <QuartzCore/CIDetector.h>
#import <QuartzCore/QuartzCore.h>

#include <CoreGraphics/CGTesting.h>
#include <ImageIO/ImageIO.h>
#include <testing/bitmap.h>
#include <testing/cocoa.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace {

struct Mark {
    double x, y;
};

/// A face as a person sees it: pixels of the photograph, counted from its upper left corner.
struct MarkedFace {
    const char* photo;
    Mark leftEye, rightEye, mouth;
};

// Marked on the photographs enlarged four to seven times under a grid.
constexpr MarkedFace kFaces[] = {
    {"astronaut.png", {203, 101}, {246, 104}, {223, 146}},
    {"grace_hopper_512x512.jpg", {222.5, 173}, {305, 170}, {266, 262}},
    {"head.png", {51.5, 86}, {96, 89.5}, {71, 133}},
    {"square.jpg", {63.5, 74}, {97, 74}, {81, 110}},
    {"example.jpg", {271, 130.5}, {336, 131}, {305, 194}},
    {"2011_000003.jpg", {240, 148}, {255.5, 151}, {246, 166.5}},
    {"2011_000003.jpg", {470.5, 121.5}, {487.5, 123.5}, {479, 140}},
    {"2011_000006.jpg", {205.5, 137.5}, {218, 136.5}, {212, 152}},
    {"2011_000006.jpg", {254.5, 136}, {267, 135.5}, {261.5, 148}},
    {"2011_000006.jpg", {314.5, 139}, {327, 139}, {320.5, 154}},
};

/// Animals, things, streets, textures, and pictures from a microscope and a telescope.
constexpr const char* kFaceless[] = {
    "0001.jpg",
    "0002.jpg",
    "2011_000025.jpg",
    "640px-IceBlockNearJoekullsarlon.jpg",
    "apc2016_obj3.jpg",
    "brick.png",
    "cell.png",
    "chelsea.png",
    "clock_motion.png",
    "coffee.png",
    "coins.png",
    "grass.png",
    "gravel.png",
    "horse.png",
    "hubble_deep_field.jpg",
    "ihc.png",
    "moon.png",
    "motorcycle_left.png",
    "motorcycle_right.png",
    "page.png",
    "retina.jpg",
    "rocket.jpg",
    "text.png",
};

CIImage* photo(const char* name) {
    const char* folder = std::getenv("KAZ_PHOTOS");
    NSString* path = [NSString stringWithFormat:@"%s/%s", folder ? folder : ".", name];
    CIImage* image = [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:path]];
    EXPECT_NE(image, nil) << [path UTF8String];
    return image;
}

NSDictionary* highAccuracy() {
    return [NSDictionary dictionaryWithObject:CIDetectorAccuracyHigh forKey:CIDetectorAccuracy];
}

CIDetector* detector(NSDictionary* options = nil) {
    return [CIDetector detectorOfType:CIDetectorTypeFace context:nil options:options];
}

double distance(CGPoint a, CGPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }

/// A mark in the image's own coordinates: the middle of a pixel, counted from below.
CGPoint inImage(Mark mark, CGRect extent) {
    return CGPointMake(static_cast<CGFloat>(mark.x + 0.5),
                       static_cast<CGFloat>(extent.size.height - mark.y - 0.5));
}

/// The face whose eyes are nearest to those of the mark; nil unless its bounds hold both eyes and the mouth.
CIFaceFeature* faceAt(NSArray* faces, CGPoint left, CGPoint right, CGPoint mouth) {
    for (CIFaceFeature* face in faces)
        if (CGRectContainsPoint([face bounds], left) && CGRectContainsPoint([face bounds], right) &&
            CGRectContainsPoint([face bounds], mouth))
            return face;
    return nil;
}

/// Expects the face at its marks, within a quarter of the distance between the eyes.
void expectFace(NSArray* faces, CGPoint left, CGPoint right, CGPoint mouth) {
    CIFaceFeature* face = faceAt(faces, left, right, mouth);
    ASSERT_NE(face, nil) << "no face at " << left.x << ", " << left.y;
    double tolerance = distance(left, right) / 4;
    EXPECT_TRUE([face hasLeftEyePosition] && [face hasRightEyePosition] && [face hasMouthPosition]);
    EXPECT_LT(distance([face leftEyePosition], left), tolerance) << "left eye";
    EXPECT_LT(distance([face rightEyePosition], right), tolerance) << "right eye";
    EXPECT_LT(distance([face mouthPosition], mouth), tolerance) << "mouth";
}

void expectMarkedFace(NSArray* faces, const MarkedFace& mark, CGRect extent) {
    expectFace(faces, inImage(mark.leftEye, extent), inImage(mark.rightEye, extent),
               inImage(mark.mouth, extent));
}

CIImage* moved(CIImage* image, CGFloat x, CGFloat y) {
    return [image imageByApplyingTransform:CGAffineTransformMakeTranslation(x, y)];
}

constexpr MarkedFace kAstronaut = kFaces[0];
constexpr CGRect kAstronautExtent = {{0, 0}, {512, 512}};

/// The picture with one colour in a rectangle that is counted from the upper left.
CIImage* covered(CIImage* image, CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect extent = [image extent];
    CIImage* patch = [[CIImage imageWithColor:[CIColor colorWithRed:0.5 green:0.5 blue:0.5]]
        imageByCroppingToRect:CGRectMake(x, extent.size.height - y - height, width, height)];
    CIFilter* over = [CIFilter filterWithName:@"CISourceOverCompositing"];
    [over setValue:patch forKey:@"inputImage"];
    [over setValue:image forKey:@"inputBackgroundImage"];
    return [over valueForKey:@"outputImage"];
}

// --- photographs ------------------------------------------------------------------------------------------

TEST(Faces, EveryMarkedFaceIsFoundAndNothingElse) {
    for (const MarkedFace& mark : kFaces) {
        SCOPED_TRACE(mark.photo);
        CIImage* image = photo(mark.photo);
        NSArray* faces = [detector(highAccuracy()) featuresInImage:image];
        expectMarkedFace(faces, mark, [image extent]);
        auto marked = std::count_if(std::begin(kFaces), std::end(kFaces),
                                    [&](const MarkedFace& f) { return !std::strcmp(f.photo, mark.photo); });
        EXPECT_EQ([faces count], static_cast<NSUInteger>(marked));
    }
}

TEST(Faces, LargeFacesAreFoundAtLowAccuracy) {
    for (const MarkedFace& mark : kFaces) {
        if (mark.rightEye.x - mark.leftEye.x < 33) continue;
        SCOPED_TRACE(mark.photo);
        CIImage* image = photo(mark.photo);
        NSArray* faces = [detector() featuresInImage:image];
        expectMarkedFace(faces, mark, [image extent]);
        EXPECT_EQ([faces count], 1u);
    }
}

TEST(Faces, NoneInPicturesWithoutFaces) {
    static_assert(std::size(kFaceless) >= 20);
    for (const char* name : kFaceless) {
        EXPECT_EQ([[detector(highAccuracy()) featuresInImage:photo(name)] count], 0u) << name;
        EXPECT_EQ([[detector() featuresInImage:photo(name)] count], 0u) << name;
    }
}

/// Photographs of groups, and how many of their faces high accuracy finds.
struct Group {
    const char* photo;
    int faces;
};
constexpr Group kGroups[] = {
    {"2007_007763.jpg", 7}, {"2008_002079.jpg", 6}, {"2008_002470.jpg", 6},
    {"2008_004176.jpg", 7}, {"2008_007676.jpg", 7}, {"bald_guys.jpg", 23}, // of 24
};

CIImage* reduced(const char* name, double scale) {
    CIFilter* filter = [CIFilter filterWithName:@"CILanczosScaleTransform"];
    [filter setDefaults];
    [filter setValue:photo(name) forKey:@"inputImage"];
    [filter setValue:[NSNumber numberWithDouble:scale] forKey:@"inputScale"];
    return [filter valueForKey:@"outputImage"];
}

/// The share of the smaller one's area that two faces have in common.
double shared(CIFaceFeature* a, CIFaceFeature* b) {
    auto area = [](CGRect r) { return CGRectIsNull(r) ? 0 : double(r.size.width) * r.size.height; };
    return area(CGRectIntersection([a bounds], [b bounds])) / std::min(area([a bounds]), area([b bounds]));
}

TEST(Faces, HighAccuracyFindsEveryFaceThatLowDoes) {
    auto expectAll = [](NSArray* few, NSArray* many) {
        for (CIFaceFeature* face in few) {
            bool kept = false;
            for (CIFaceFeature* other in many) kept |= shared(face, other) > 0.5;
            EXPECT_TRUE(kept) << "the face at " << [face bounds].origin.x << ", " << [face bounds].origin.y;
        }
    };
    for (const Group& group : kGroups) {
        SCOPED_TRACE(group.photo);
        CIImage* image = photo(group.photo);
        NSArray* high = [detector(highAccuracy()) featuresInImage:image];
        EXPECT_EQ([high count], static_cast<NSUInteger>(group.faces));
        expectAll([detector() featuresInImage:image], high);
    }
}

TEST(Faces, HighAccuracyFindsFacesOf20Pixels) {
    // These faces measure 37 pixels and more.
    struct {
        const char* photo;
        NSUInteger least;
    } groups[] = {{"2008_002470.jpg", 5}, {"2008_004176.jpg", 6}, {"2011_000006.jpg", 3}};
    for (auto& group : groups) {
        NSArray* faces = [detector(highAccuracy()) featuresInImage:reduced(group.photo, 20.0 / 37)];
        EXPECT_GE([faces count], group.least) << group.photo;
    }
}

TEST(Faces, SmallFacesHaveTheirEyesAndMouths) {
    constexpr double scale = 0.6;
    for (const MarkedFace& mark : kFaces) {
        if (std::strcmp(mark.photo, "2011_000006.jpg")) continue;
        CIImage* image = reduced(mark.photo, scale);
        auto there = [&](Mark m) {
            return CGPointMake(static_cast<CGFloat>((m.x + 0.5) * scale),
                               static_cast<CGFloat>([image extent].size.height - (m.y + 0.5) * scale));
        };
        expectFace([detector(highAccuracy()) featuresInImage:image], there(mark.leftEye),
                   there(mark.rightEye), there(mark.mouth));
    }
}

TEST(Faces, ProfilesAreFoundAtHighAccuracyWithoutEyesAndMouths) {
    // A man who looks to the right, and his mirror image.
    CIImage* image = photo("lenc.jpg");
    CGFloat width = [image extent].size.width;
    for (bool mirrored : {false, true}) {
        CIImage* turned = mirrored ? [image imageByApplyingTransform:{-1, 0, 0, 1, width, 0}] : image;
        EXPECT_EQ([[detector() featuresInImage:turned] count], 0u);
        NSArray* faces = [detector(highAccuracy()) featuresInImage:turned];
        ASSERT_EQ([faces count], 1u);
        CIFaceFeature* face = [faces objectAtIndex:0];
        CGPoint nose = CGPointMake(mirrored ? width - 140 : 140, 225 - 117);
        EXPECT_TRUE(CGRectContainsPoint([face bounds], nose));
        EXPECT_LT([face bounds].size.width, 110);
        EXPECT_FALSE([face hasLeftEyePosition] || [face hasRightEyePosition] || [face hasMouthPosition]);
    }
}

// --- detectors --------------------------------------------------------------------------------------------

TEST(Detector, AnUnknownTypeGivesNil) {
    EXPECT_EQ([CIDetector detectorOfType:@"CIDetectorTypeHand" context:nil options:nil], nil);
    EXPECT_EQ([CIDetector detectorOfType:nil context:nil options:nil], nil);
}

TEST(Detector, MissingDataGiveNil) {
    setenv("KAZ_FACE_LANDMARKS", "no-such-file.dat", 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(detector(), nil);
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("no-such-file.dat"), std::string::npos) << log;
}

TEST(Detector, WithDamagedDataFacesGoWithoutEyesAndMouth) {
    [@"no landmarks" writeToFile:@"damaged.dat" atomically:NO];
    setenv("KAZ_FACE_LANDMARKS", "damaged.dat", 1);
    testing::internal::CaptureStderr();
    NSArray* faces = [detector() featuresInImage:photo("astronaut.png")];
    std::string log = testing::internal::GetCapturedStderr();
    ASSERT_EQ([faces count], 1u);
    CIFaceFeature* face = [faces objectAtIndex:0];
    EXPECT_FALSE([face hasLeftEyePosition] || [face hasRightEyePosition] || [face hasMouthPosition]);
    EXPECT_TRUE(CGPointEqualToPoint([face mouthPosition], CGPointZero));
    EXPECT_NE(log.find("damaged.dat"), std::string::npos) << log;
    [[NSFileManager defaultManager] removeFileAtPath:@"damaged.dat" handler:nil];
}

TEST(Detector, WithDamagedProfilesOtherFacesAreFound) {
    [@"<width>20</width><stageThreshold>1</stageThreshold><rects><_>0 0 30 30 1.</_></rects>"
        writeToFile:@"damaged.xml"
         atomically:NO];
    setenv("KAZ_FACE_PROFILES", "damaged.xml", 1);
    testing::internal::CaptureStderr();
    NSArray* faces = [detector(highAccuracy()) featuresInImage:photo("astronaut.png")];
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ([faces count], 1u);
    EXPECT_NE(log.find("damaged.xml"), std::string::npos) << log;
    [[NSFileManager defaultManager] removeFileAtPath:@"damaged.xml" handler:nil];
}

TEST(Detector, HighAccuracyFindsFacesThatLowDoesNot) {
    CIImage* image = photo("2011_000006.jpg");
    EXPECT_EQ([[detector() featuresInImage:image] count], 0u);
    EXPECT_EQ([[detector(highAccuracy()) featuresInImage:image] count], 3u);
}

TEST(Detector, WithoutAKnownAccuracyItIsLow) {
    CIImage* image = photo("2011_000006.jpg");
    for (id value in @[ CIDetectorAccuracyLow, @"CIDetectorAccuracyMedium", [NSNumber numberWithInt:1] ]) {
        NSDictionary* options = [NSDictionary dictionaryWithObject:value forKey:CIDetectorAccuracy];
        EXPECT_EQ([[detector(options) featuresInImage:image] count], 0u);
    }
}

TEST(Detector, FacesBelowTheSmallestSizeAreLeftOut) {
    auto withSize = [](double size) {
        return [detector([NSDictionary
            dictionaryWithObjectsAndKeys:[NSNumber numberWithDouble:size], CIDetectorMinFeatureSize,
                                         CIDetectorAccuracyHigh, CIDetectorAccuracy, nil])
            featuresInImage:photo("2011_000006.jpg")];
    };
    // These faces are about a tenth as high as the picture.
    EXPECT_EQ([withSize(0.5) count], 0u);
    EXPECT_EQ([withSize(0.2) count], 0u);
    EXPECT_EQ([withSize(0.05) count], 3u);
    EXPECT_EQ([withSize(-1) count], 3u);
    EXPECT_EQ([withSize(NAN) count], 3u);
    EXPECT_EQ([withSize(100) count], 0u);
}

TEST(Detector, ASmallestSizeMakesLowAccuracyLookCloser) {
    NSDictionary* options = [NSDictionary dictionaryWithObject:[NSNumber numberWithDouble:0.09]
                                                        forKey:CIDetectorMinFeatureSize];
    EXPECT_EQ([[detector(options) featuresInImage:photo("2011_000006.jpg")] count], 3u);
}

TEST(Detector, TheLargestFaceComesFirst) {
    // The woman of one photograph beside a smaller copy of herself.
    CIImage* image = photo("astronaut.png");
    CIImage* smaller = [image imageByApplyingTransform:CGAffineTransformMakeScale(0.6f, 0.6f)];
    for (bool smallerLeft : {false, true}) {
        CIFilter* over = [CIFilter filterWithName:@"CISourceOverCompositing"];
        [over setValue:smallerLeft ? smaller : image forKey:@"inputImage"];
        [over setValue:smallerLeft ? moved(image, 320, 0) : moved(smaller, 520, 0)
                forKey:@"inputBackgroundImage"];
        NSArray* faces = [detector(highAccuracy()) featuresInImage:[over valueForKey:@"outputImage"]];
        ASSERT_EQ([faces count], 2u);
        EXPECT_GT([[faces objectAtIndex:0] bounds].size.width,
                  [[faces objectAtIndex:1] bounds].size.width * 1.3);
    }
}

} // namespace

@interface CountingContext : CIContext {
  @public
    int renderings;
}
@end

@implementation CountingContext
- (void)render:(CIImage*)image
      toBitmap:(void*)data
      rowBytes:(ptrdiff_t)rowBytes
        bounds:(CGRect)r
        format:(CIFormat)format
    colorSpace:(CGColorSpaceRef)colorSpace {
    ++renderings;
    [super render:image toBitmap:data rowBytes:rowBytes bounds:r format:format colorSpace:colorSpace];
}
@end

namespace {

TEST(Detector, ImagesAreRenderedThroughTheContextOnceForEachScan) {
    CountingContext* context = [[[CountingContext alloc] init] autorelease];
    auto renderings = [&](NSDictionary* options, CGFloat scale) {
        context->renderings = 0;
        CIImage* image =
            [photo("astronaut.png") imageByApplyingTransform:CGAffineTransformMakeScale(scale, scale)];
        CIDetector* finder = [CIDetector detectorOfType:CIDetectorTypeFace context:context options:options];
        EXPECT_EQ([[finder featuresInImage:image] count], 1u);
        return context->renderings;
    };
    EXPECT_EQ(renderings(nil, 1), 1);
    // Four times as large, twice, and as it is; a large one, which is not enlarged, in two sizes.
    EXPECT_EQ(renderings(highAccuracy(), 0.5), 3);
    EXPECT_EQ(renderings(highAccuracy(), 4), 2);
}

TEST(Detector, KeepsItsContextAlive) {
    CIDetector* finder;
    @autoreleasepool {
        CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
        finder = [[CIDetector detectorOfType:CIDetectorTypeFace context:context options:nil] retain];
    }
    EXPECT_EQ([[finder featuresInImage:photo("astronaut.png")] count], 1u);
    [finder release];
}

// --- images -----------------------------------------------------------------------------------------------

TEST(Detector, ImagesWithoutPixelsHaveNoFeatures) {
    CIImage* endless = [CIImage imageWithColor:[CIColor colorWithRed:1 green:0 blue:0]];
    for (CIImage* image in @[ endless, [CIImage emptyImage] ]) {
        NSArray* none = [detector() featuresInImage:image];
        ASSERT_NE(none, nil);
        EXPECT_EQ([none count], 0u);
    }
    NSArray* none = [detector() featuresInImage:nil];
    ASSERT_NE(none, nil);
    EXPECT_EQ([none count], 0u);
}

TEST(Detector, ImagesOfAFewPixelsAreSearched) {
    CIImage* image = photo("astronaut.png");
    for (CGRect area : {CGRectMake(0, 0, 1, 1), CGRectMake(10, 10, 0.5, 0.5), CGRectMake(0, 0, 512, 1),
                        CGRectMake(0, 0, 1, 512), CGRectMake(0, 0, 30, 30)})
        EXPECT_EQ([[detector(highAccuracy()) featuresInImage:[image imageByCroppingToRect:area]] count], 0u);
}

TEST(Detector, StripsOfAnyLengthHaveNoFaces) {
    CIImage* image = photo("astronaut.png");
    for (CGAffineTransform stretch :
         {CGAffineTransformMakeScale(1.7e6f, 1e-6f), CGAffineTransformMakeScale(1e-6f, 1.7e6f),
          CGAffineTransformMakeScale(1e5f, 0.05f), CGAffineTransformMakeScale(1e7f, 1)})
        for (NSDictionary* options in @[ @{}, highAccuracy() ])
            EXPECT_EQ([[detector(options) featuresInImage:[image imageByApplyingTransform:stretch]] count],
                      0u);
}

TEST(Detector, PositionsFollowTheExtent) {
    CIImage* image = photo("astronaut.png");
    struct Offset {
        CGFloat x, y;
    };
    for (Offset by : {Offset{1000, -300}, Offset{-512.25f, 17.5f}}) {
        NSArray* faces = [detector() featuresInImage:moved(image, by.x, by.y)];
        auto there = [&](Mark mark) {
            CGPoint p = inImage(mark, kAstronautExtent);
            return CGPointMake(p.x + by.x, p.y + by.y);
        };
        expectFace(faces, there(kAstronaut.leftEye), there(kAstronaut.rightEye), there(kAstronaut.mouth));
    }
}

TEST(Detector, ACroppedImageKeepsItsCoordinates) {
    CIImage* image = [photo("astronaut.png") imageByCroppingToRect:CGRectMake(120, 300, 200, 200)];
    expectMarkedFace([detector() featuresInImage:image], kAstronaut, kAstronautExtent);
}

TEST(Detector, ALargeImageIsSearchedReduced) {
    // 150 megapixels, which would be 600 MB.
    constexpr CGFloat by = 24;
    CIImage* image = [photo("astronaut.png") imageByApplyingTransform:CGAffineTransformMakeScale(by, by)];
    auto there = [&](Mark mark) {
        CGPoint p = inImage(mark, kAstronautExtent);
        return CGPointMake(p.x * by, p.y * by);
    };
    for (NSDictionary* options in @[ @{}, highAccuracy() ])
        expectFace([detector(options) featuresInImage:image], there(kAstronaut.leftEye),
                   there(kAstronaut.rightEye), there(kAstronaut.mouth));
}

TEST(Detector, TheOutputOfFiltersIsSearchedToo) {
    CIFilter* sepia = [CIFilter filterWithName:@"CISepiaTone"];
    [sepia setDefaults];
    [sepia setValue:photo("astronaut.png") forKey:@"inputImage"];
    expectMarkedFace([detector() featuresInImage:[sepia valueForKey:@"outputImage"]], kAstronaut,
                     kAstronautExtent);
}

// --- orientation ------------------------------------------------------------------------------------------

/// How EXIF defines the orientations: where the first row and the first column of the stored pixels are in
/// the upright picture. Gives the stored place of an upright one (both counted from the upper left) in a
/// picture of that upright size.
Mark stored(int orientation, Mark upright, double width, double height) {
    double fromLeft = upright.x, fromTop = upright.y;
    double fromRight = width - 1 - upright.x, fromBottom = height - 1 - upright.y;
    switch (orientation) {
    case 1: // row 0 top, column 0 left
        return {fromLeft, fromTop};
    case 2: // top, right
        return {fromRight, fromTop};
    case 3: // bottom, right
        return {fromRight, fromBottom};
    case 4: // bottom, left
        return {fromLeft, fromBottom};
    case 5: // row 0 left, column 0 top
        return {fromTop, fromLeft};
    case 6: // right, top
        return {fromTop, fromRight};
    case 7: // right, bottom
        return {fromBottom, fromRight};
    default: // left, bottom
        return {fromBottom, fromLeft};
    }
}

/// The pixels of a photograph, part of it, as a camera in that orientation stores them.
CIImage* storedPhoto(const char* name, int orientation, int width, int height) {
    Bitmap canvas(static_cast<size_t>(width), static_cast<size_t>(height));
    CIImage* image = photo(name);
    CGRect top = CGRectMake(0, [image extent].size.height - height, width, height);
    [[CIContext contextWithCGContext:canvas.get() options:nil] drawImage:image
                                                                  inRect:CGRectMake(0, 0, width, height)
                                                                fromRect:top];
    bool sideways = orientation >= 5;
    int w = sideways ? height : width, h = sideways ? width : height;
    NSMutableData* bytes = [NSMutableData dataWithLength:static_cast<NSUInteger>(w * h * 4)];
    auto* pixels = static_cast<std::uint8_t*>([bytes mutableBytes]);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            Mark at = stored(orientation, {double(x), double(y)}, width, height);
            Pixel pixel = canvas.pixel(static_cast<size_t>(x), static_cast<size_t>(y));
            for (size_t k = 0; k < 4; ++k)
                pixels[(static_cast<size_t>(at.y) * w + static_cast<size_t>(at.x)) * 4 + k] =
                    static_cast<std::uint8_t>(pixel[k]);
        }
    return [CIImage imageWithBitmapData:bytes
                            bytesPerRow:static_cast<size_t>(w) * 4
                                   size:CGSizeMake(w, h)
                                 format:kCIFormatRGBA8
                             colorSpace:nullptr];
}

class Orientation : public testing::TestWithParam<int> {};

TEST_P(Orientation, TheFaceIsFoundAndItsPlaceIsTheStoredOne) {
    constexpr int width = 400, height = 300;
    CIImage* image = storedPhoto("astronaut.png", GetParam(), width, height);
    NSDictionary* options = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:GetParam()]
                                                        forKey:CIDetectorImageOrientation];
    CIImage* shifted = moved(image, 70, -40);
    CGRect extent = [shifted extent];
    NSArray* faces = [detector() featuresInImage:shifted options:options];
    ASSERT_EQ([faces count], 1u);
    auto there = [&](Mark mark) {
        CGPoint p = inImage(stored(GetParam(), mark, width, height), extent);
        return CGPointMake(p.x + extent.origin.x, p.y + extent.origin.y);
    };
    expectFace(faces, there(kAstronaut.leftEye), there(kAstronaut.rightEye), there(kAstronaut.mouth));
}

TEST_P(Orientation, WithoutItsOptionAnImageLyingOnItsSideShowsNoFace) {
    int orientation = GetParam();
    CIImage* image = storedPhoto("astronaut.png", orientation, 400, 300);
    // Upright and mirrored faces are found either way.
    NSUInteger expected = orientation <= 2 ? 1 : 0;
    EXPECT_EQ([[detector() featuresInImage:image] count], expected);
    EXPECT_EQ([[detector() featuresInImage:image
                                   options:@{CIDetectorImageOrientation : [NSNumber numberWithInt:9]}] count],
              expected);
}

INSTANTIATE_TEST_SUITE_P(Exif, Orientation, testing::Range(1, 9));

// --- tracking ---------------------------------------------------------------------------------------------

NSDictionary* tracking() { return @{CIDetectorTracking : [NSNumber numberWithBool:YES]}; }

TEST(Tracking, WithoutItFacesHaveNoNumbers) {
    for (NSDictionary* options in @[ @{}, @{CIDetectorTracking : [NSNumber numberWithBool:NO]} ]) {
        CIFaceFeature* face = [[detector(options) featuresInImage:photo("astronaut.png")] lastObject];
        ASSERT_NE(face, nil);
        EXPECT_FALSE([face hasTrackingID] || [face hasTrackingFrameCount]);
        EXPECT_EQ([face trackingID], 0);
        EXPECT_EQ([face trackingFrameCount], 0);
    }
}

TEST(Tracking, AFaceThatMovesKeepsItsNumber) {
    CIDetector* finder = detector(tracking());
    CIImage* image = photo("astronaut.png");
    int number = 0;
    for (int frame = 1; frame <= 5; ++frame) {
        CIImage* cropped =
            [moved(image, 9 * frame, -7 * frame) imageByCroppingToRect:CGRectMake(0, 0, 512, 512)];
        NSArray* faces = [finder featuresInImage:cropped];
        ASSERT_EQ([faces count], 1u);
        CIFaceFeature* face = [faces objectAtIndex:0];
        EXPECT_TRUE([face hasTrackingID] && [face hasTrackingFrameCount]);
        if (frame == 1) number = [face trackingID];
        EXPECT_NE(number, 0);
        EXPECT_EQ([face trackingID], number);
        EXPECT_EQ([face trackingFrameCount], frame);
    }
}

TEST(Tracking, SeveralFacesAreToldApart) {
    CIDetector* finder = detector(
        @{CIDetectorTracking : [NSNumber numberWithBool:YES], CIDetectorAccuracy : CIDetectorAccuracyHigh});
    CIImage* image = photo("2011_000006.jpg");
    auto numbers = [&](CGFloat shift) {
        NSArray* faces = [finder featuresInImage:moved(image, shift, 0)];
        std::vector<std::pair<CGFloat, int>> fromLeft;
        for (CIFaceFeature* face in faces) fromLeft.push_back({[face bounds].origin.x, [face trackingID]});
        std::sort(fromLeft.begin(), fromLeft.end());
        std::vector<int> ids;
        for (auto& [x, id] : fromLeft) ids.push_back(id);
        return ids;
    };
    std::vector<int> first = numbers(0);
    ASSERT_EQ(first.size(), 3u);
    EXPECT_NE(first[0], first[1]);
    EXPECT_NE(first[1], first[2]);
    EXPECT_NE(first[0], first[2]);
    EXPECT_EQ(numbers(8), first);
    EXPECT_EQ(numbers(16), first);
}

TEST(Tracking, ANewFaceGetsANewNumber) {
    CIDetector* finder = detector(tracking());
    CIImage* image = photo("astronaut.png");
    int first = [[[finder featuresInImage:image] lastObject] trackingID];
    // Too far away to be the same face.
    CIFaceFeature* other = [[finder featuresInImage:moved(image, 300, 0)] lastObject];
    EXPECT_NE([other trackingID], first);
    EXPECT_EQ([other trackingFrameCount], 1);
}

TEST(Tracking, AFaceThatWasHiddenForAMomentIsKnownAgain) {
    CIDetector* finder = detector(tracking());
    CIImage* image = photo("astronaut.png");
    CIImage* nothing =
        [[CIImage imageWithColor:[CIColor colorWithRed:0 green:0
                                                  blue:0]] imageByCroppingToRect:kAstronautExtent];
    int first = [[[finder featuresInImage:image] lastObject] trackingID];
    for (int i = 0; i < 2; ++i) EXPECT_EQ([[finder featuresInImage:nothing] count], 0u);
    CIFaceFeature* back = [[finder featuresInImage:image] lastObject];
    EXPECT_EQ([back trackingID], first);
    EXPECT_EQ([back trackingFrameCount], 2);
    for (int i = 0; i < 10; ++i) [finder featuresInImage:nothing];
    EXPECT_NE([[[finder featuresInImage:image] lastObject] trackingID], first);
}

TEST(Tracking, DetectorsTrackByThemselves) {
    CIImage* image = photo("astronaut.png");
    [detector(tracking()) featuresInImage:image];
    EXPECT_EQ([[[detector(tracking()) featuresInImage:image] lastObject] trackingFrameCount], 1);
}

// --- features ---------------------------------------------------------------------------------------------

TEST(Features, AFaceHasATypeAndAnswersToKeys) {
    CIFaceFeature* face = [[detector() featuresInImage:photo("astronaut.png")] lastObject];
    ASSERT_NE(face, nil);
    EXPECT_EQ(str([face type]), "Face");
    EXPECT_EQ(str([face valueForKey:@"type"]), str(CIFeatureTypeFace));
    EXPECT_EQ([[face valueForKey:@"hasMouthPosition"] boolValue], YES);
    EXPECT_EQ([[face valueForKey:@"hasTrackingID"] boolValue], NO);
    EXPECT_EQ([[face valueForKey:@"trackingID"] intValue], 0);
    NSRect bounds = [[face valueForKey:@"bounds"] rectValue];
    EXPECT_EQ(bounds.origin.y, [face bounds].origin.y);
    EXPECT_EQ(bounds.size.width, [face bounds].size.width);
    NSPoint mouth = [[face valueForKey:@"mouthPosition"] pointValue];
    EXPECT_EQ(mouth.x, [face mouthPosition].x);
    EXPECT_EQ(mouth.y, [face mouthPosition].y);
}

TEST(Features, APlainFeatureHasNoTypeAndNoArea) {
    CIFeature* feature = [[[CIFeature alloc] init] autorelease];
    EXPECT_EQ([feature type], nil);
    EXPECT_TRUE(CGRectEqualToRect([feature bounds], CGRectZero));
    CIFaceFeature* face = [[[CIFaceFeature alloc] init] autorelease];
    EXPECT_FALSE([face hasLeftEyePosition]);
    EXPECT_TRUE(CGRectEqualToRect([face bounds], CGRectZero));
}

TEST(Features, CoveredPartsAreNotFound) {
    CIImage* image = photo("astronaut.png");
    CIFaceFeature* face = [[detector() featuresInImage:covered(image, 195, 132, 57, 26)] lastObject];
    ASSERT_NE(face, nil);
    EXPECT_FALSE([face hasMouthPosition]);
    EXPECT_TRUE([face hasLeftEyePosition] && [face hasRightEyePosition]);
    face = [[detector() featuresInImage:covered(image, 187, 92, 33, 20)] lastObject];
    ASSERT_NE(face, nil);
    EXPECT_FALSE([face hasLeftEyePosition]);
    EXPECT_TRUE([face hasMouthPosition] && [face hasRightEyePosition]);
    face = [[detector() featuresInImage:covered(image, 231, 94, 33, 20)] lastObject];
    ASSERT_NE(face, nil);
    EXPECT_FALSE([face hasRightEyePosition]);
    EXPECT_TRUE([face hasMouthPosition] && [face hasLeftEyePosition]);
}

TEST(Features, NothingIsLeftBehind) {
    const char* names[64];
    int before[64], after[64];
    @autoreleasepool {
        [detector(tracking()) featuresInImage:photo("astronaut.png")];
    }
    int n = PlatformLiveObjects(names, before, 64);
    @autoreleasepool {
        CIDetector* finder = detector(tracking());
        for (int i = 0; i < 3; ++i) EXPECT_EQ([[finder featuresInImage:photo("astronaut.png")] count], 1u);
    }
    ASSERT_EQ(PlatformLiveObjects(names, after, 64), n);
    bool counted = false;
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(after[i], before[i]) << names[i];
        counted |= !std::strcmp(names[i], "CIFeature");
    }
    EXPECT_TRUE(counted);
}

} // namespace
