// Automatic adjustment of photographs that are exposed well and badly, and of faces given by the test.
#include "support.h"

#import <QuartzCore/CIDetector.h>

#include <cmath>
#include <cstdlib>
#include <sys/resource.h>

/// A face as a detector returns it.
@interface ToldFace : NSObject {
    CGRect _bounds;
    CGPoint _left, _right;
}
@end

@implementation ToldFace
+ (ToldFace*)faceIn:(CGRect)bounds left:(CGPoint)left right:(CGPoint)right {
    ToldFace* face = [[[self alloc] init] autorelease];
    face->_bounds = bounds;
    face->_left = left;
    face->_right = right;
    return face;
}
- (CGRect)bounds {
    return _bounds;
}
- (BOOL)hasLeftEyePosition {
    return YES;
}
- (CGPoint)leftEyePosition {
    return _left;
}
- (BOOL)hasRightEyePosition {
    return YES;
}
- (CGPoint)rightEyePosition {
    return _right;
}
@end

namespace {

// --- pictures ---------------------------------------------------------------------------------------------

CIImage* photograph(const char* name) {
    const char* folder = std::getenv("KAZ_PHOTOS");
    NSString* path = [NSString stringWithFormat:@"%s/%s", folder ? folder : ".", name];
    CIImage* image = [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:path]];
    EXPECT_TRUE(image != nil) << "the sample photographs are missing: " << name;
    return image;
}

CIImage* filtered(NSString* name, CIImage* image, NSString* key, id value) {
    return [[CIFilter filterWithName:name
                       keysAndValues:@"inputImage", image, key, value, nil] valueForKey:@"outputImage"];
}

CIImage* exposed(CIImage* image, double ev) {
    return filtered(@"CIExposureAdjust", image, @"inputEV", [NSNumber numberWithDouble:ev]);
}

CIImage* applied(NSArray* filters, CIImage* image) {
    for (CIFilter* filter in filters) {
        [filter setValue:image forKey:@"inputImage"];
        image = [filter valueForKey:@"outputImage"];
    }
    return image;
}

/// Without faces, whether or not the system can detect them.
NSDictionary* noFaces() {
    return [NSDictionary dictionaryWithObject:[NSArray array] forKey:kCIImageAutoAdjustFeatures];
}

CIImage* adjusted(CIImage* image) {
    return applied([image autoAdjustmentFiltersWithOptions:noFaces()], image);
}

constexpr size_t side = 128;

/// The image in a square.
Bitmap shown(CIImage* image) {
    Bitmap canvas(side, side);
    [[CIContext contextWithCGContext:canvas.get() options:nil] drawImage:image
                                                                  inRect:CGRectMake(0, 0, side, side)
                                                                fromRect:[image extent]];
    return canvas;
}

double luma(const Pixel& p) { return 0.2126 * p[0] + 0.7152 * p[1] + 0.0722 * p[2]; }

struct Look {
    double mean, contrast;
};

Look lookOf(CIImage* image) {
    Bitmap canvas = shown(image);
    double sum = 0, squares = 0;
    for (size_t y = 0; y < side; ++y)
        for (size_t x = 0; x < side; ++x) {
            double l = luma(canvas.pixel(x, y));
            sum += l, squares += l * l;
        }
    double mean = sum / (side * side);
    return {mean, std::sqrt(squares / (side * side) - mean * mean)};
}

double meanDifference(CIImage* a, CIImage* b) {
    Bitmap one = shown(a), other = shown(b);
    double sum = 0;
    for (size_t y = 0; y < side; ++y)
        for (size_t x = 0; x < side; ++x)
            for (size_t c = 0; c < 3; ++c) sum += std::abs(one.pixel(x, y)[c] - other.pixel(x, y)[c]);
    return sum / (3 * side * side);
}

CIImage* patch(CGRect r, double red, double green, double blue) {
    CIColor* color = [CIColor colorWithRed:static_cast<CGFloat>(red)
                                     green:static_cast<CGFloat>(green)
                                      blue:static_cast<CGFloat>(blue)];
    return [[CIImage imageWithColor:color] imageByCroppingToRect:r];
}

CIImage* over(CIImage* above, CIImage* below) {
    return filtered(@"CISourceOverCompositing", above, @"inputBackgroundImage", below);
}

/// A face of one colour on gray, with pupils of another: 400 x 300 pixels times the scale.
struct Portrait {
    CIImage* image;
    ToldFace* face;
    CGPoint left, right;
    double pupil; // radius
};

Portrait portrait(double skin[3], double pupil[3], double scale = 1) {
    auto point = [=](double x, double y) {
        return CGPointMake(static_cast<CGFloat>(x * scale), static_cast<CGFloat>(y * scale));
    };
    auto rect = [=](double x, double y, double w, double h) {
        CGPoint origin = point(x, y), size = point(w, h);
        return CGRectMake(origin.x, origin.y, size.x, size.y);
    };
    Portrait p{nil, nil, point(160, 180), point(240, 180), 5 * scale};
    p.image = over(patch(rect(120, 60, 160, 190), skin[0], skin[1], skin[2]),
                   patch(rect(0, 0, 400, 300), 0.5, 0.5, 0.5));
    for (CGPoint eye : {p.left, p.right}) {
        CIFilter* disc = [CIFilter filterWithName:@"CIRadialGradient"];
        [disc setDefaults];
        [disc setValue:[CIVector vectorWithX:eye.x Y:eye.y] forKey:@"inputCenter"];
        [disc setValue:[NSNumber numberWithDouble:p.pupil] forKey:@"inputRadius0"];
        [disc setValue:[NSNumber numberWithDouble:p.pupil] forKey:@"inputRadius1"];
        auto f = [](double v) { return static_cast<CGFloat>(v); };
        [disc setValue:[CIColor colorWithRed:f(pupil[0]) green:f(pupil[1]) blue:f(pupil[2])]
                forKey:@"inputColor0"];
        [disc setValue:[CIColor colorWithRed:0 green:0 blue:0 alpha:0] forKey:@"inputColor1"];
        p.image = over([[disc valueForKey:@"outputImage"] imageByCroppingToRect:[p.image extent]], p.image);
    }
    // A detector is a little off.
    p.face = [ToldFace faceIn:rect(120, 60, 160, 190) left:point(162, 179) right:point(239, 182)];
    return p;
}

NSDictionary* optionsWithFace(id face) {
    return [NSDictionary dictionaryWithObject:[NSArray arrayWithObject:face]
                                       forKey:kCIImageAutoAdjustFeatures];
}

NSMutableDictionary* optionsWithoutFaces() {
    return [NSMutableDictionary dictionaryWithDictionary:noFaces()];
}

std::string names(NSArray* filters) {
    return str([[filters valueForKey:@"name"] componentsJoinedByString:@" "]);
}

CIFilter* named(NSArray* filters, NSString* name) {
    for (CIFilter* filter in filters)
        if ([[filter name] isEqualToString:name]) return filter;
    return nil;
}

constexpr char enhancing[] = "CIVibrance CIToneCurve CIHighlightShadowAdjust";

double goodSkin[] = {0.85, 0.66, 0.55}, red[] = {0.75, 0.08, 0.1}, black[] = {0.05, 0.04, 0.04};

class Photographs : public testing::TestWithParam<const char*> {};

} // namespace

// --- exposure ---------------------------------------------------------------------------------------------

TEST_P(Photographs, ThatAreUnderExposedComeBack) {
    CIImage* original = photograph(GetParam());
    CIImage* dark = exposed(original, -2);
    Look was = lookOf(original), before = lookOf(dark), after = lookOf(adjusted(dark));
    EXPECT_LT(before.mean, 0.6 * was.mean) << "there is something to do";
    EXPECT_LT(std::abs(after.mean - was.mean), 0.3 * std::abs(before.mean - was.mean));
    EXPECT_LT(std::abs(after.contrast - was.contrast), 0.4 * std::abs(before.contrast - was.contrast));
    EXPECT_LT(meanDifference(adjusted(dark), original), 0.35 * meanDifference(dark, original));
}

TEST_P(Photographs, ThatAreExposedWellHardlyChange) {
    CIImage* original = photograph(GetParam());
    Look was = lookOf(original), after = lookOf(adjusted(original));
    EXPECT_NEAR(after.mean, was.mean, 12);
    EXPECT_GT(after.contrast, 0.95 * was.contrast);
    EXPECT_LT(meanDifference(adjusted(original), original), 12);
}

TEST_P(Photographs, AreAdjustedOnceAndForAll) {
    CIImage* once = adjusted(exposed(photograph(GetParam()), -2));
    EXPECT_LT(meanDifference(adjusted(once), once), 12);
}

INSTANTIATE_TEST_SUITE_P(Sample, Photographs,
                         testing::Values("astronaut.png", "chelsea.png", "coffee.png", "rocket.jpg",
                                         "motorcycle_left.png", "camera.png"),
                         [](const auto& info) {
                             std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(AutoAdjust, HazeGoesAndContrastComes) {
    CIFilter* haze = [CIFilter
        filterWithName:@"CIToneCurve"
         keysAndValues:@"inputImage", photograph("coffee.png"), @"inputPoint0",
                       [CIVector vectorWithX:0 Y:0.2f], @"inputPoint1", [CIVector vectorWithX:0.25f Y:0.35f],
                       @"inputPoint3", [CIVector vectorWithX:0.75f Y:0.65f], @"inputPoint4",
                       [CIVector vectorWithX:1 Y:0.8f], nil];
    CIImage* hazy = [haze valueForKey:@"outputImage"];
    EXPECT_GT(lookOf(adjusted(hazy)).contrast, 1.1 * lookOf(hazy).contrast);
}

TEST(AutoAdjust, DeepShadowsAreLit) {
    // Two thirds of the picture in a shadow of four stops.
    CIImage* photo = photograph("chelsea.png");
    CGRect whole = [photo extent], shade = whole;
    shade.size.width = std::floor(whole.size.width * 0.66f);
    CIImage* backlit = over([exposed(photo, -4) imageByCroppingToRect:shade], photo);
    NSArray* filters = [backlit autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_GT([[named(filters, @"CIHighlightShadowAdjust") valueForKey:@"inputShadowAmount"] doubleValue],
              0.1);
    CIImage* lit = applied(filters, backlit);
    EXPECT_GT(lookOf([lit imageByCroppingToRect:shade]).mean,
              1.4 * lookOf([backlit imageByCroppingToRect:shade]).mean);
}

TEST(AutoAdjust, GrayGetsNoColour) {
    NSArray* filters = [photograph("camera.png") autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_EQ([[named(filters, @"CIVibrance") valueForKey:@"inputAmount"] doubleValue], 0);
}

TEST(AutoAdjust, DullColoursGetMore) {
    CIImage* dull = filtered(@"CIColorControls", photograph("coffee.png"), @"inputSaturation",
                             [NSNumber numberWithDouble:0.3]);
    NSArray* filters = [dull autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_GT([[named(filters, @"CIVibrance") valueForKey:@"inputAmount"] doubleValue], 0.05);
}

// --- filters and options ----------------------------------------------------------------------------------

TEST(AutoAdjust, FiltersComeInOrderWithAllInputsButTheImage) {
    CIImage* image = exposed(photograph("astronaut.png"), -1);
    NSArray* filters = [image autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_EQ(names(filters), enhancing);
    for (CIFilter* filter in filters)
        for (NSString* key in [filter inputKeys])
            EXPECT_EQ([filter valueForKey:key] == nil, [key isEqualToString:@"inputImage"]) << str(key);
    NSArray* again = [image autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_NE([filters objectAtIndex:0], [again objectAtIndex:0]) << "filters are the caller's to change";
}

TEST(AutoAdjust, OptionsLeaveOut) {
    Portrait p = portrait(goodSkin, red);
    auto with = [&](NSString* key, id value) {
        NSMutableDictionary* options = [NSMutableDictionary dictionaryWithDictionary:optionsWithFace(p.face)];
        if (key) [options setObject:value forKey:key];
        return names([p.image autoAdjustmentFiltersWithOptions:options]);
    };
    NSNumber* no = [NSNumber numberWithBool:NO];
    std::string all = std::string("CIRedEyeCorrections CIFaceBalance ") + enhancing;
    EXPECT_EQ(with(nil, nil), all);
    EXPECT_EQ(with(kCIImageAutoAdjustEnhance, [NSNumber numberWithBool:YES]), all);
    EXPECT_EQ(with(kCIImageAutoAdjustEnhance, no), "CIRedEyeCorrections");
    EXPECT_EQ(with(kCIImageAutoAdjustRedEye, no), std::string("CIFaceBalance ") + enhancing);
    NSMutableDictionary* neither = optionsWithoutFaces();
    [neither setObject:no forKey:kCIImageAutoAdjustEnhance];
    EXPECT_EQ([[p.image autoAdjustmentFiltersWithOptions:neither] count], 0u) << "no eyes, no enhancement";
    [neither setObject:no forKey:kCIImageAutoAdjustRedEye];
    EXPECT_EQ([[p.image autoAdjustmentFiltersWithOptions:neither] count], 0u);
}

TEST(AutoAdjust, OptionsOfTheWrongKindAreIgnored) {
    CIImage* image = photograph("coffee.png");
    NSDictionary* options =
        [NSDictionary dictionaryWithObjectsAndKeys:@"faces", kCIImageAutoAdjustFeatures, [NSArray array],
                                                   kCIImageAutoAdjustEnhance, [NSNull null],
                                                   kCIImageAutoAdjustRedEye, @"left", @"Orientation", nil];
    EXPECT_NE(names([image autoAdjustmentFiltersWithOptions:options]).find(enhancing), std::string::npos);
    NSArray* odd = [NSArray arrayWithObjects:@"a text", [NSNull null], image, nil];
    options = [NSDictionary dictionaryWithObject:odd forKey:kCIImageAutoAdjustFeatures];
    EXPECT_EQ(names([image autoAdjustmentFiltersWithOptions:options]), enhancing)
        << "none of these is a face";
}

TEST(AutoAdjust, NothingToSeeNothingToDo) {
    CIColor* green = [CIColor colorWithRed:0 green:1 blue:0];
    CIColor* clear = [CIColor colorWithRed:0 green:1 blue:0 alpha:0.01f];
    CGRect square = CGRectMake(0, 0, 50, 50);
    EXPECT_EQ([[[CIImage imageWithColor:green] autoAdjustmentFilters] count], 0u) << "infinite";
    EXPECT_EQ([[[CIImage emptyImage] autoAdjustmentFilters] count], 0u);
    CIImage* invisible = [[CIImage imageWithColor:clear] imageByCroppingToRect:square];
    EXPECT_EQ([[invisible autoAdjustmentFilters] count], 0u);
    EXPECT_EQ(names([[[CIImage imageWithColor:green] imageByCroppingToRect:square] autoAdjustmentFilters]),
              enhancing);
    CIImage* speck =
        [[CIImage imageWithColor:green] imageByCroppingToRect:CGRectMake(0.4f, 0.4f, 0.2f, 0.2f)];
    EXPECT_NO_THROW([speck autoAdjustmentFilters]);
}

TEST(AutoAdjust, PlainPicturesStayWhole) {
    for (double v : {0.0, 0.3, 1.0}) {
        CIImage* plain = patch(CGRectMake(0, 0, 40, 40), v, v, v);
        Pixel p = shown(adjusted(plain)).pixel(20, 20);
        EXPECT_EQ(p[3], 255);
        EXPECT_GE(p[0], int(255 * v) - 40) << v;
        EXPECT_NEAR(p[0], p[2], 1) << "gray stays gray";
    }
}

TEST(AutoAdjust, FacesAreDetectedWhereTheSystemCan) {
    NSArray* filters = [photograph("astronaut.png") autoAdjustmentFilters];
    EXPECT_EQ(named(filters, @"CIFaceBalance") != nil, NSClassFromString(@"CIDetector") != nil);
    EXPECT_EQ(named(filters, @"CIRedEyeCorrections"), nil);
}

// --- faces ------------------------------------------------------------------------------------------------

TEST(AutoAdjust, RedEyesAreFoundAndCured) {
    for (double scale : {1.0, 12.5}) {
        Portrait p = portrait(goodSkin, red, scale);
        NSDictionary* options = optionsWithFace(p.face);
        NSArray* filters = [p.image autoAdjustmentFiltersWithOptions:options];
        CIFilter* correction = named(filters, @"CIRedEyeCorrections");
        ASSERT_TRUE(correction != nil) << scale;
        CIVector* pupils = [correction valueForKey:@"inputCorrectionInfo"];
        ASSERT_EQ([pupils count], 6u);
        int k = 0;
        for (CGPoint eye : {p.left, p.right}) {
            EXPECT_NEAR([pupils valueAtIndex:k++], eye.x, 1.5 * scale);
            EXPECT_NEAR([pupils valueAtIndex:k++], eye.y, 1.5 * scale);
            double radius = [pupils valueAtIndex:k++];
            EXPECT_GT(radius, p.pupil);
            EXPECT_LT(radius, 2 * p.pupil);
        }
        [correction setValue:p.image forKey:@"inputImage"];
        CIImage* cured = [correction valueForKey:@"outputImage"];
        auto window = [&](double x, double y) {
            auto f = [](double v) { return static_cast<CGFloat>(v); };
            return CGRectMake(f(x - 1), f(y - 1), 2, 2);
        };
        Pixel eye = shown([cured imageByCroppingToRect:window(p.left.x, p.left.y)]).pixel(64, 64);
        EXPECT_LT(eye[0], 40) << "no red";
        Pixel cheek =
            shown([cured imageByCroppingToRect:window(p.left.x, p.left.y - 30 * scale)]).pixel(64, 64);
        Pixel skin =
            shown([p.image imageByCroppingToRect:window(p.left.x, p.left.y - 30 * scale)]).pixel(64, 64);
        EXPECT_EQ(cheek, skin);
    }
}

TEST(AutoAdjust, DarkEyesAreLeftAlone) {
    Portrait p = portrait(goodSkin, black);
    EXPECT_EQ(
        named([p.image autoAdjustmentFiltersWithOptions:optionsWithFace(p.face)], @"CIRedEyeCorrections"),
        nil);
    // Everything is as red as a pupil, so that none can be seen.
    Portrait painted = portrait(red, red);
    EXPECT_EQ(named([painted.image autoAdjustmentFiltersWithOptions:optionsWithFace(painted.face)],
                    @"CIRedEyeCorrections"),
              nil);
}

TEST(AutoAdjust, SkinUnderABlueLightIsBalanced) {
    auto chroma = [](const Pixel& p, double& i, double& q) {
        i = (0.595716 * p[0] - 0.274453 * p[1] - 0.321263 * p[2]) / 255;
        q = (0.211456 * p[0] - 0.522591 * p[1] + 0.311135 * p[2]) / 255;
    };
    CGRect cheek = CGRectMake(190, 100, 20, 20);
    auto distance = [&](CIImage* image, CIImage* good) {
        double i, q, gi, gq;
        chroma(shown([image imageByCroppingToRect:cheek]).pixel(64, 64), i, q);
        chroma(shown([good imageByCroppingToRect:cheek]).pixel(64, 64), gi, gq);
        return std::hypot(i - gi, q - gq);
    };
    double blueSkin[] = {0.6, 0.62, 0.75};
    Portrait good = portrait(goodSkin, black), blue = portrait(blueSkin, black);
    auto balanced = [](const Portrait& p) {
        CIFilter* filter =
            named([p.image autoAdjustmentFiltersWithOptions:optionsWithFace(p.face)], @"CIFaceBalance");
        return applied([NSArray arrayWithObject:filter], p.image);
    };
    EXPECT_LT(distance(balanced(blue), good.image), 0.5 * distance(blue.image, good.image));
    EXPECT_LT(distance(balanced(good), good.image), 0.02) << "good skin stays";
    // The same under-exposed: darkness is not a colour cast.
    CIImage* dark = exposed(good.image, -2);
    CIFilter* filter =
        named([dark autoAdjustmentFiltersWithOptions:optionsWithFace(good.face)], @"CIFaceBalance");
    EXPECT_LT([[filter valueForKey:@"inputStrength"] doubleValue], 0.25);
    EXPECT_LT(distance(applied([NSArray arrayWithObject:filter], dark), dark), 0.02);
}

TEST(AutoAdjust, AFaceOutsideThePictureIsIgnored) {
    CIImage* image = photograph("coffee.png");
    ToldFace* face = [ToldFace faceIn:CGRectMake(5000, 5000, 100, 100)
                                 left:CGPointMake(5030, 5060)
                                right:CGPointMake(NAN, INFINITY)];
    EXPECT_EQ(names([image autoAdjustmentFiltersWithOptions:optionsWithFace(face)]), enhancing);
}

// --- size -------------------------------------------------------------------------------------------------

TEST(AutoAdjust, MemoryDoesNotGrowWithThePicture) {
    // 96 megapixels of one byte each.
    const size_t width = 12000, height = 8000;
    NSMutableData* bytes = [NSMutableData dataWithLength:width * height];
    auto* pixels = static_cast<std::uint8_t*>([bytes mutableBytes]);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            pixels[y * width + x] = static_cast<std::uint8_t>((x + y) * 60 / 20000);
    auto gray = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData((CFDataRef)bytes));
    auto big = cg::Retained<CGImageRef>::adopt(CGImageCreate(width, height, 8, 8, width, gray.get(),
                                                             kCGImageAlphaNone, provider.get(), nullptr,
                                                             false, kCGRenderingIntentDefault));
    CIImage* image = [CIImage imageWithCGImage:big.get()];
    auto peak = [] {
        rusage usage;
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    };
    long before = peak();
    NSArray* filters = [image autoAdjustmentFiltersWithOptions:noFaces()];
    EXPECT_LT(peak() - before, 64) << "MiB";
    CIVector* white = [named(filters, @"CIToneCurve") valueForKey:@"inputPoint4"];
    EXPECT_LT([white X], 0.5) << "it is dark";
}
