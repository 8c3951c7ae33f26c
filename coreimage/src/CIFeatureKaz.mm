// CIFeatureKaz and CIFaceFeatureKaz: what a detector found in an image.
#include "CIFeatureKaz.h"

#include <objc/runtime.h>

namespace coreimage {
namespace {

CIFaceFeature* face(REALobject self) { return nativeHandle<CIFaceFeature*>(self); }

template <class Read>
REALobject pointResult(REALobject self, Read&& read) {
    return guarded([&]() -> REALobject {
        if (!face(self)) return nullptr;
        return newPoint(read());
    });
}

// --- CIFeatureKaz -----------------------------------------------------------------------------------------

REALobject bounds(REALobject self) {
    return guarded([&]() -> REALobject {
        if (!face(self)) return nullptr;
        return newRectangle([nativeHandle<CIFeature*>(self) bounds]);
    });
}

REALstring type(REALobject self) {
    return stringResult([&] { return [nativeHandle<CIFeature*>(self) type]; });
}

REALstring featureTypeFace() { return systemConstant(&CIFeatureTypeFace); }

REALproperty featureProperties[] = {handleProperty()};

REALmethodDefinition featureMethods[] = {
    constructorWithHandle<kFeature>(),
    /// The rectangle around the feature, in the image's pixels; Nil while the object is empty.
    ///     Print self.bounds.Description
    method("bounds as CGRectKaz", bounds),
    /// What was found: CIFeatureTypeFace for a face.
    ///     Print self.type
    method("type as string", type),
};

REALmethodDefinition featureSharedMethods[] = {
    /// The type of a face; empty on systems without detectors.
    ///     Print CIFeatureKaz.CIFeatureTypeFace
    method("CIFeatureTypeFace as string", featureTypeFace),
};

// --- CIFaceFeatureKaz -------------------------------------------------------------------------------------

REALobject leftEyePosition(REALobject self) {
    return pointResult(self, [&] { return [face(self) leftEyePosition]; });
}

REALobject rightEyePosition(REALobject self) {
    return pointResult(self, [&] { return [face(self) rightEyePosition]; });
}

REALobject mouthPosition(REALobject self) {
    return pointResult(self, [&] { return [face(self) mouthPosition]; });
}

bool hasLeftEyePosition(REALobject self) {
    return guarded([&] { return bool([face(self) hasLeftEyePosition]); });
}

bool hasMouthPosition(REALobject self) {
    return guarded([&] { return bool([face(self) hasMouthPosition]); });
}

bool hasRightEyePosition(REALobject self) {
    return guarded([&] { return bool([face(self) hasRightEyePosition]); });
}

bool hasTrackingID(REALobject self) {
    return guarded([&] { return bool([face(self) hasTrackingID]); });
}

bool hasTrackingFrameCount(REALobject self) {
    return guarded([&] { return bool([face(self) hasTrackingFrameCount]); });
}

std::int32_t trackingID(REALobject self) {
    return guarded([&] { return static_cast<std::int32_t>([face(self) trackingID]); });
}

std::int32_t trackingFrameCount(REALobject self) {
    return guarded([&] { return static_cast<std::int32_t>([face(self) trackingFrameCount]); });
}

REALmethodDefinition faceMethods[] = {
    constructorWithHandle<kFaceFeature>(),
    /// The centre of the left eye; only meaningful if hasLeftEyePosition. Nil while the object is empty.
    ///     If self.hasLeftEyePosition Then Print self.leftEyePosition.Description
    method("leftEyePosition as CGPointKaz", leftEyePosition),
    /// The centre of the right eye; only meaningful if hasRightEyePosition. Nil while the object is empty.
    ///     If self.hasRightEyePosition Then Print self.rightEyePosition.Description
    method("rightEyePosition as CGPointKaz", rightEyePosition),
    /// The centre of the mouth; only meaningful if hasMouthPosition. Nil while the object is empty.
    ///     If self.hasMouthPosition Then Print self.mouthPosition.Description
    method("mouthPosition as CGPointKaz", mouthPosition),
    /// Whether the left eye was found.
    ///     Print Str(self.hasLeftEyePosition)
    method("hasLeftEyePosition as boolean", hasLeftEyePosition),
    /// Whether the mouth was found.
    ///     Print Str(self.hasMouthPosition)
    method("hasMouthPosition as boolean", hasMouthPosition),
    /// Whether the right eye was found.
    ///     Print Str(self.hasRightEyePosition)
    method("hasRightEyePosition as boolean", hasRightEyePosition),
    /// Whether the detector follows this face from image to image.
    ///     Print Str(self.hasTrackingID)
    method("hasTrackingID as boolean", hasTrackingID),
    /// Whether the detector counts the images in which it followed this face.
    ///     Print Str(self.hasTrackingFrameCount)
    method("hasTrackingFrameCount as boolean", hasTrackingFrameCount),
    /// The number that a face keeps from image to image; only meaningful if hasTrackingID.
    ///     Print Str(self.trackingID)
    method("trackingID as integer", trackingID),
    /// In how many images the face has been followed; only meaningful if hasTrackingFrameCount.
    ///     Print Str(self.trackingFrameCount)
    method("trackingFrameCount as integer", trackingFrameCount),
};

void CIFeatureConstructor(REALobject self) { constructWrapper(self); }
void CIFeatureDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// Something that a detector found in an image.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("2011_000006.jpg"))
///     Dim options As New Dictionary
///     options.Value(CIDetectorKaz.CIDetectorAccuracy) = CIDetectorKaz.CIDetectorAccuracyHigh
///     Dim detector As New CIDetectorKaz(CIDetectorKaz.CIDetectorTypeFace, Nil, options)
///     Dim feature As CIFeatureKaz = detector.featuresInImage(photo)(0)
REALclassDefinition CIFeatureKazClass = classDefinition(
    {.name = "CIFeatureKaz", .constructor = CIFeatureConstructor, .destructor = CIFeatureDestructor},
    featureProperties, featureMethods, {}, featureSharedMethods);

/// A face, with its eyes and mouth where they were found; positions are in the image's pixels.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("2011_000006.jpg"))
///     Dim options As New Dictionary
///     options.Value(CIDetectorKaz.CIDetectorAccuracy) = CIDetectorKaz.CIDetectorAccuracyHigh
///     Dim detector As New CIDetectorKaz(CIDetectorKaz.CIDetectorTypeFace, Nil, options)
///     Dim face As CIFaceFeatureKaz = CIFaceFeatureKaz(detector.featuresInImage(photo)(0))
REALclassDefinition CIFaceFeatureKazClass = classDefinition(
    {.name = "CIFaceFeatureKaz", .superclass = "CIFeatureKaz", .dataSize = 0}, {}, faceMethods);

REALobject NewCIFeatureKaz(id feature) {
    Class faceClass = static_cast<Class>(objc_getClass("CIFaceFeature"));
    return wrapped(faceClass && [feature isKindOfClass:faceClass] ? kFaceFeature : kFeature, feature);
}

REALstring systemConstant(NSString* const* constant) {
    return stringResult([&] { return constant ? *constant : nil; });
}

} // namespace coreimage
