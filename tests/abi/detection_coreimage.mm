// Detectors and features that the tests control.
#include "detection_coreimage.h"

#import <QuartzCore/CIDetector.h>

#include <objc/runtime.h>

@interface CraftedFace : CIFaceFeature {
  @public
    Face face;
}
@end

@implementation CraftedFace
- (CGRect)bounds {
    return CGRectMake(1, 2, 3, 4);
}
- (BOOL)hasLeftEyePosition {
    return face.leftEye;
}
- (BOOL)hasRightEyePosition {
    return face.rightEye;
}
- (BOOL)hasMouthPosition {
    return face.mouth;
}
- (BOOL)hasTrackingID {
    return face.trackingID;
}
- (BOOL)hasTrackingFrameCount {
    return face.trackingFrameCount;
}
- (CGPoint)leftEyePosition {
    return CGPointMake(5, 6);
}
- (CGPoint)rightEyePosition {
    return CGPointMake(7, 8);
}
- (CGPoint)mouthPosition {
    return CGPointMake(9, 10.5f);
}
- (int)trackingID {
    return 11;
}
- (int)trackingFrameCount {
    return 12;
}
@end

namespace {

std::vector<void*> given;
const char *thrownName, *thrownReason;
DetectorArguments arguments;
int orientation;

NSArray* findGiven(id, SEL, CIImage*) {
    NSMutableArray* features = [NSMutableArray array];
    for (void* feature : given) [features addObject:(id)feature];
    return features;
}

NSArray* raiseInstead(id, SEL, CIImage*) {
    @throw [NSException exceptionWithName:[NSString stringWithUTF8String:thrownName]
                                   reason:[NSString stringWithUTF8String:thrownReason]
                                 userInfo:nil];
}

id recordDetector(id, SEL, NSString* type, CIContext* context, NSDictionary* options) {
    NSString* accuracy = [options objectForKey:CIDetectorAccuracy];
    arguments = {type ? [type UTF8String] : "", context, accuracy ? [accuracy UTF8String] : ""};
    return nil;
}

NSArray* recordSearch(id, SEL, CIImage*, NSDictionary* options) {
    orientation = [[options objectForKey:CIDetectorImageOrientation] intValue];
    return nil;
}

void replace(Class owner, SEL selector, IMP implementation, const char* types) {
    class_replaceMethod(owner, selector, implementation, types);
}

} // namespace

void detectorsFind(std::vector<void*> features) {
    given = std::move(features);
    replace([CIDetector class], @selector(featuresInImage:), reinterpret_cast<IMP>(findGiven), "@@:@");
}

void breakDetectors(const char* name, const char* reason) {
    thrownName = name;
    thrownReason = reason;
    replace([CIDetector class], @selector(featuresInImage:), reinterpret_cast<IMP>(raiseInstead), "@@:@");
}

void* newPlainFeature() { return [[CIFeature alloc] init]; }
void* newFaceFeature() { return [[CIFaceFeature alloc] init]; }
void* newFace(Face face) {
    CraftedFace* made = [[CraftedFace alloc] init];
    made->face = face;
    return made;
}
int retainCount(void* object) { return static_cast<int>([(id)object retainCount]); }
void releaseNative(void* object) { [(id)object release]; }

void recordDetectors() {
    replace(object_getClass([CIDetector class]), @selector(detectorOfType:context:options:),
            reinterpret_cast<IMP>(recordDetector), "@@:@@@");
}
DetectorArguments lastDetector() { return arguments; }

void recordSearches() {
    replace([CIDetector class], @selector(featuresInImage:options:), reinterpret_cast<IMP>(recordSearch),
            "@@:@@");
}
int lastOrientation() { return orientation; }
