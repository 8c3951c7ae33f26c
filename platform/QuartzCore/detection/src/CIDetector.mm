// CIDetector: renders an image for the face finder and turns the faces found into features.
#import <QuartzCore/CIDetector.h>
#import <QuartzCore/QuartzCore.h>

#include "FaceLibrary.h"
#include "Tracker.h"

#include <cf/memory.h>
#include <cg/object.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#define NAME(name) NSString* const name = @ #name

NAME(CIDetectorTypeFace);
NAME(CIDetectorAccuracy);
NAME(CIDetectorAccuracyLow);
NAME(CIDetectorAccuracyHigh);
NAME(CIDetectorTracking);
NAME(CIDetectorMinFeatureSize);
NAME(CIDetectorImageOrientation);

static cg::LiveCount live("CIDetector");

namespace {

/// How closely an image is scanned.
struct Effort {
    /// A scan may be larger than the image by these factors, at most; the largest one first.
    std::vector<double> enlargements;
    /// A scan may have this many pixels, at most.
    double pixels;
    vision::Care care;
};
const Effort kLow{{1}, 0.5e6, vision::Care::Normal}, kHigh{{4, 2}, 4e6, vision::Care::Thorough};
/// For a smallest face that is asked for.
constexpr double kMostEnlargement = 4, kMostPixels = 8e6;
/// A scan that is hardly smaller than another one shows nothing new.
constexpr double kHardlySmaller = 0.7;

bool isNumber(id value) { return [value respondsToSelector:@selector(doubleValue)]; }

/// The factors by which the image is scaled for its scans. `smallest` is the side of the smallest face wanted
/// as a fraction of the shorter side, 0 for the default.
std::vector<double> scanScales(CGSize size, const Effort& effort, double smallest) {
    double area = static_cast<double>(size.width) * size.height;
    auto largest = [&](double enlargement, double pixels) {
        return std::min(enlargement, std::sqrt(pixels / area));
    };
    if (smallest > 0) {
        double wanted = vision::kSmallestFace / (smallest * std::min(size.width, size.height));
        return {std::min(wanted, largest(kMostEnlargement, kMostPixels))};
    }
    // A face may be seen in one size of the image and missed in another, so a closer look does not replace
    // the others, of which the last is all that low accuracy has.
    std::vector<double> scales;
    for (double enlargement : effort.enlargements)
        if (double scale = largest(enlargement, effort.pixels);
            scales.empty() || scale < scales.back() * kHardlySmaller)
            scales.push_back(scale);
    if (double low = largest(kLow.enlargements[0], kLow.pixels); low < scales.back()) scales.push_back(low);
    return scales;
}

/// Turns an image of that EXIF orientation upright about the origin, in Core Image's coordinates.
CGAffineTransform turnUpright(int orientation) {
    switch (orientation) {
    case 2: // mirrored left to right
        return {-1, 0, 0, 1, 0, 0};
    case 3: // half a turn
        return {-1, 0, 0, -1, 0, 0};
    case 4: // mirrored top to bottom
        return {1, 0, 0, -1, 0, 0};
    case 5: // its first row is the left side, its first column the top
        return {0, -1, -1, 0, 0, 0};
    case 6: // its first row is the right side, its first column the top: a quarter clockwise
        return {0, -1, 1, 0, 0, 0};
    case 7: // its first row is the right side, its first column the bottom
        return {0, 1, 1, 0, 0, 0};
    case 8: // its first row is the left side, its first column the bottom: a quarter anticlockwise
        return {0, 1, -1, 0, 0, 0};
    default:
        return CGAffineTransformIdentity;
    }
}

/// A bitmap of the image, and the transform back to the image.
struct Scan {
    std::unique_ptr<std::uint8_t[], decltype(&std::free)> grey{nullptr, std::free};
    int width = 0, height = 0;
    double scale = 1;
    /// From Core Image's coordinates of the bitmap, with the origin at its lower left corner, to those of the
    /// image.
    CGAffineTransform toImage;

    vision::GreyBitmap bitmap() const { return {grey.get(), width, height, static_cast<std::size_t>(width)}; }
    CGPoint position(vision::Point p) const {
        CGPoint flipped = {static_cast<CGFloat>(p.x), static_cast<CGFloat>(height - p.y)};
        return CGPointApplyAffineTransform(flipped, toImage);
    }
    std::optional<CGPoint> position(const std::optional<vision::Point>& p) const {
        // From the corner of the pixel to its centre.
        if (!p) return {};
        return position(vision::Point{p->x + 0.5, p->y + 0.5});
    }
    CGRect bounds(const vision::Face& face) const {
        CGPoint a = position(vision::Point{face.x, face.y});
        CGPoint b = position(vision::Point{face.x + face.width, face.y + face.height});
        return CGRectStandardize({a, {b.x - a.x, b.y - a.y}});
    }
};

/// Luminance with the weights of BT.709, the primaries of sRGB; transparent pixels are black. In place: the
/// grey pixels overwrite the beginning of the coloured ones.
void makeGrey(std::uint8_t* pixels, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* p = pixels + 4 * i;
        pixels[i] = static_cast<std::uint8_t>((54u * p[0] + 183u * p[1] + 19u * p[2]) >> 8);
    }
}

} // namespace

struct CIDetectorState {
    vision::FaceFinder* finder = nullptr; // the process's
    CIContext* context = nil;
    Effort effort = kLow;
    double smallest = 0;
    std::optional<ci::Tracker> tracker;
};

@implementation CIDetector

+ (CIDetector*)detectorOfType:(NSString*)type context:(CIContext*)context options:(NSDictionary*)options {
    if (![CIDetectorTypeFace isEqual:type]) return nil;
    return [[[self alloc] initWithContext:context options:options] autorelease];
}

- (id)initWithContext:(CIContext*)context options:(NSDictionary*)options {
    if (!(self = [super init])) return nil;
    live.born();
    if (!(_state = new (std::nothrow) CIDetectorState)) {
        [self release];
        return nil;
    }
    std::string problem;
    _state->finder = ci::faceFinder(problem);
    if (!_state->finder) {
        NSLog(@"CIDetector: cannot find faces: %s", problem.c_str());
        [self release];
        return nil;
    }
    _state->context =
        context ? [context retain] : [[CIContext contextWithCGContext:nullptr options:nil] retain];
    if ([CIDetectorAccuracyHigh isEqual:[options objectForKey:CIDetectorAccuracy]]) _state->effort = kHigh;
    id smallest = [options objectForKey:CIDetectorMinFeatureSize];
    if (isNumber(smallest)) _state->smallest = std::min([smallest doubleValue], 1.0);
    id tracking = [options objectForKey:CIDetectorTracking];
    if ([tracking respondsToSelector:@selector(boolValue)] && [tracking boolValue]) _state->tracker.emplace();
    return self;
}

- (id)init {
    return [self initWithContext:nil options:nil];
}

- (void)dealloc {
    live.gone();
    if (_state) [_state->context release];
    delete _state;
    [super dealloc];
}

/// Renders the image upright in that scale; no pixels if they are too few, or memory is short.
- (Scan)scanOfImage:(CIImage*)image upright:(CGAffineTransform)upright scale:(CGFloat)scale {
    Scan scan;
    scan.scale = static_cast<double>(scale);
    CGRect turned = CGRectApplyAffineTransform([image extent], upright);
    double width = std::floor(turned.size.width * scale), height = std::floor(turned.size.height * scale);
    // Too narrow for half a face, however long it is.
    if (std::min(width, height) < vision::kSmallestFace / 2) return scan;
    scan.width = static_cast<int>(width);
    scan.height = static_cast<int>(height);
    auto count = static_cast<std::size_t>(scan.width) * static_cast<std::size_t>(scan.height);
    scan.grey.reset(static_cast<std::uint8_t*>(std::malloc(4 * count)));
    if (!scan.grey) return scan;

    CGAffineTransform toScan = CGAffineTransformConcat(
        upright, CGAffineTransformMakeTranslation(-turned.origin.x, -turned.origin.y));
    toScan = CGAffineTransformConcat(toScan, CGAffineTransformMakeScale(scale, scale));
    scan.toImage = CGAffineTransformInvert(toScan);
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    [_state->context
            render:[image imageByApplyingTransform:toScan]
          toBitmap:scan.grey.get()
          rowBytes:scan.width * 4
            bounds:CGRectMake(0, 0, static_cast<CGFloat>(scan.width), static_cast<CGFloat>(scan.height))
            format:kCIFormatRGBA8
        colorSpace:space.get()];
    makeGrey(scan.grey.get(), count);
    return scan;
}

- (NSArray*)featuresInImage:(CIImage*)image {
    return [self featuresInImage:image options:nil];
}

- (NSArray*)featuresInImage:(CIImage*)image options:(NSDictionary*)options {
    CGRect extent = image ? [image extent] : CGRectZero;
    // An image that is unbounded on one side only counts as unbounded.
    if (!(extent.size.width < 1e9f) || !(extent.size.height < 1e9f)) extent = CGRectZero;
    id orientation = [options objectForKey:CIDetectorImageOrientation];
    CGAffineTransform upright = turnUpright(isNumber(orientation) ? [orientation intValue] : 1);

    return cf::inMemory([&]() -> NSArray* {
        // All faces are in the pixels of the first scan, which is the closest.
        std::optional<Scan> first;
        std::vector<vision::Face> faces;
        if (!CGRectIsEmpty(extent))
            for (double scale : scanScales(CGRectApplyAffineTransform(extent, upright).size, _state->effort,
                                           _state->smallest)) {
                Scan scan = [self scanOfImage:image upright:upright scale:static_cast<CGFloat>(scale)];
                std::string problem;
                std::vector<vision::Face> found =
                    ci::findFaces(*_state->finder, scan.bitmap(),
                                  first ? vision::Care::Normal : _state->effort.care, problem);
                if (!problem.empty()) NSLog(@"CIDetector: an image was not searched: %s", problem.c_str());
                if (!first) first = std::move(scan);
                for (vision::Face& face : found) face = vision::scaled(face, first->scale / scan.scale);
                vision::addNew(faces, found);
            }
        std::stable_sort(faces.begin(), faces.end(), vision::larger);

        std::vector<CGRect> bounds;
        for (const vision::Face& face : faces) bounds.push_back(first->bounds(face));
        std::vector<ci::Track> tracks;
        if (_state->tracker) tracks = _state->tracker->follow(bounds);

        NSMutableArray* features = [NSMutableArray array];
        for (std::size_t i = 0; i < faces.size(); ++i) {
            CIFaceState state{bounds[i],
                              first->position(faces[i].leftEye),
                              first->position(faces[i].rightEye),
                              first->position(faces[i].mouth),
                              {}};
            if (_state->tracker) state.track = tracks[i];
            CIFaceFeature* feature = [[CIFaceFeature alloc] initWithState:state];
            [features addObject:feature];
            [feature release];
        }
        return features;
    });
}

@end
