// Detection of features, as Mac OS X 10.7 brought it. Everything here is weak: a system may lack it, and this
// platform does so far. Look the classes up by name, and test a constant's address before reading it.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#import <Foundation/Foundation.h>

@class CIContext;
@class CIImage;

extern NSString* const CIDetectorTypeFace __attribute__((weak));
extern NSString* const CIDetectorAccuracy __attribute__((weak));
extern NSString* const CIDetectorAccuracyLow __attribute__((weak));
extern NSString* const CIDetectorAccuracyHigh __attribute__((weak));
extern NSString* const CIFeatureTypeFace __attribute__((weak));

@interface CIDetector : NSObject
// Nil for a type that is not known. The context may be nil.
+ (CIDetector*)detectorOfType:(NSString*)type context:(CIContext*)context options:(NSDictionary*)options;
// An array of features, empty when nothing was found.
- (NSArray*)featuresInImage:(CIImage*)image;
- (NSArray*)featuresInImage:(CIImage*)image options:(NSDictionary*)options;
@end

@interface CIFeature : NSObject
- (NSString*)type;
- (CGRect)bounds;
@end

@interface CIFaceFeature : CIFeature
- (BOOL)hasLeftEyePosition;
- (CGPoint)leftEyePosition;
- (BOOL)hasRightEyePosition;
- (CGPoint)rightEyePosition;
- (BOOL)hasMouthPosition;
- (CGPoint)mouthPosition;
- (BOOL)hasTrackingID;
- (int)trackingID;
- (BOOL)hasTrackingFrameCount;
- (int)trackingFrameCount;
@end
