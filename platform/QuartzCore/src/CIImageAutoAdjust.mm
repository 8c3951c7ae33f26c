// Automatic adjustment: from Core Image's options and features to the analysis, and from its findings to
// filters.
#import <QuartzCore/CIDetector.h>

#include "AutoAdjust.h"
#include "FilterValues.h"
#include "Internal.h"
#include "Raise.h"

#include <ImageIO/ImageIO.h>
#include <cf/memory.h>

namespace {

/// YES unless the options say NO.
bool isWanted(NSDictionary* options, NSString* key) {
    id value = [options objectForKey:key];
    return ![value respondsToSelector:@selector(boolValue)] || [value boolValue];
}

/// The EXIF orientation by the options, or else by the picture's file; nil if neither has one.
NSNumber* orientationOf(CIImage* image, NSDictionary* options) {
    id orientation = [options objectForKey:(NSString*)kCGImagePropertyOrientation];
    if (!orientation) orientation = [[image properties] objectForKey:(NSString*)kCGImagePropertyOrientation];
    return [orientation isKindOfClass:[NSNumber class]] ? orientation : nil;
}

/// Nil on a system that cannot detect faces.
NSArray* detectedFeatures(CIImage* image, NSNumber* orientation) {
    Class detectorClass = NSClassFromString(@"CIDetector");
    if (!detectorClass || !&CIDetectorTypeFace || !&CIDetectorAccuracy || !&CIDetectorAccuracyLow) return nil;
    NSDictionary* settings = [NSDictionary dictionaryWithObject:CIDetectorAccuracyLow
                                                         forKey:CIDetectorAccuracy];
    CIDetector* detector = [detectorClass detectorOfType:CIDetectorTypeFace context:nil options:settings];
    if (!orientation) return [detector featuresInImage:image];
    NSDictionary* turned = [NSDictionary dictionaryWithObject:orientation
                                                       forKey:@"CIDetectorImageOrientation"];
    return [detector featuresInImage:image options:turned];
}

/// The faces among features of any kind.
std::vector<ci::Face> facesAmong(NSArray* features) {
    std::vector<ci::Face> faces;
    for (CIFaceFeature* feature in features) {
        if (![feature respondsToSelector:@selector(hasLeftEyePosition)]) continue;
        ci::Face face{ci::fromCG([feature bounds]), {}};
        if ([feature hasLeftEyePosition])
            face.eyes.push_back({[feature leftEyePosition].x, [feature leftEyePosition].y});
        if ([feature hasRightEyePosition])
            face.eyes.push_back({[feature rightEyePosition].x, [feature rightEyePosition].y});
        faces.push_back(std::move(face));
    }
    return faces;
}

CIFilter* filterFor(const ci::Adjustment& adjustment) {
    CIFilter* filter = [CIFilter filterWithName:[NSString stringWithUTF8String:adjustment.filter.c_str()]];
    [filter setDefaults];
    for (const auto& [key, value] : adjustment.values)
        [filter setValue:ci::objectOf(value) forKey:[NSString stringWithUTF8String:key.c_str()]];
    return filter;
}

} // namespace

@implementation CIImage (AutoAdjustment)

- (NSArray*)autoAdjustmentFilters {
    return [self autoAdjustmentFiltersWithOptions:nil];
}

- (NSArray*)autoAdjustmentFiltersWithOptions:(NSDictionary*)options {
    CGRect extent = [self extent];
    NSMutableArray* filters = [NSMutableArray array];
    if (CGRectIsEmpty(extent) || CGRectIsInfinite(extent)) return filters;
    ci::AdjustOptions wanted{isWanted(options, kCIImageAutoAdjustEnhance),
                             isWanted(options, kCIImageAutoAdjustRedEye)};
    if (!wanted.enhance && !wanted.redEye) return filters;
    id features = [options objectForKey:kCIImageAutoAdjustFeatures];
    if (![features isKindOfClass:[NSArray class]])
        features = detectedFeatures(self, orientationOf(self, options));
    ci::Failure failure;
    auto found =
        ci::adjustments([self recipe], cf::inMemory([&] { return facesAmong(features); }), wanted, failure);
    ci::raise(failure, @"autoAdjustmentFilters");
    for (const ci::Adjustment& adjustment : found) [filters addObject:filterFor(adjustment)];
    return filters;
}

@end
