// Faces in real photographs, against positions that were marked by eye.
#include "support.h"

#import <QuartzCore/CIDetector.h>

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

/// Animals, things, streets, textures, and what a microscope and a telescope show.
constexpr const char* kFaceless[] = {
    "0001.jpg",          "0002.jpg",  "2011_000025.jpg", "640px-IceBlockNearJoekullsarlon.jpg",
    "apc2016_obj3.jpg",  "brick.png", "cell.png",        "chelsea.png",
    "clock_motion.png",  "coffee.png", "coins.png",      "daisy.jpg",
    "grass.png",         "gravel.png", "horse.png",      "hubble_deep_field.jpg",
    "ihc.png",           "moon.png",  "motorcycle_left.png", "motorcycle_right.png",
    "ohoopee2.jpg",      "page.png",  "retina.jpg",      "rocket.jpg",
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

/// Where it is in the image, within a quarter of the distance of the eyes.
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
    expectFace(faces, inImage(mark.leftEye, extent), inImage(mark.rightEye, extent), inImage(mark.mouth, extent));
}

// --- photographs --------------------------------------------------------------------------------------------

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

} // namespace
