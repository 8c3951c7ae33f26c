// Detection of features, as Mac OS X 10.7 and 10.8 introduced it. Everything here and in CIFeature.h is weak:
// a process has it only if it links CIDetection. Look the classes up by name, and test a constant's address
// before reading it.
#pragma once

#import <QuartzCore/CIFeature.h>
#import <QuartzCore/CIWeakLinking.h>

@class CIContext;
@class CIImage;

/** The only type of detector. */
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorTypeFace;

/**
 * Option of a detector: CIDetectorAccuracyLow (the default) or CIDetectorAccuracyHigh. Low scans the image at
 * its own size or less, in at most half a megapixel, and finds faces of 72 pixels and more; high scans it at
 * up to twice its size, in at most four megapixels, and finds faces of 36 pixels and more.
 */
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorAccuracy;
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorAccuracyLow;
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorAccuracyHigh;
/** Option of a detector: a Boolean NSNumber, YES to follow faces from image to image. */
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorTracking;
/**
 * Option of a detector: a number from 0 to 1, the side of the smallest face wanted as a fraction of the
 * image's shorter side. A large fraction saves time; a small one scans up to eight megapixels, at no more
 * than twice the size.
 */
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorMinFeatureSize;
/** Option of a search: the image's EXIF orientation, a number from 1 to 8; any other means 1. */
CORE_IMAGE_WEAK_EXPORT NSString* const CIDetectorImageOrientation;

/** Finds features in images. Use a detector from one thread at a time. */
@interface CIDetector : NSObject {
  @private
    struct CIDetectorState* _state;
}
/**
 * Nil for an unknown type; also nil, with a line in the log, if the detector's data cannot be read. Images
 * are rendered in the context's working space, or in the default one without a context.
 */
+ (CIDetector*)detectorOfType:(NSString*)type context:(CIContext*)context options:(NSDictionary*)options;
/** The features, largest first. Nil, empty and infinite images have none. */
- (NSArray*)featuresInImage:(CIImage*)image;
/** Positions are in the coordinates of the image as it is, whatever its orientation. */
- (NSArray*)featuresInImage:(CIImage*)image options:(NSDictionary*)options;
@end
