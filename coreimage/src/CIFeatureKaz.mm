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
    method("bounds as CGRectKaz", bounds),
    method("type as string", type),
};

REALmethodDefinition featureSharedMethods[] = {
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
    method("leftEyePosition as CGPointKaz", leftEyePosition),
    method("rightEyePosition as CGPointKaz", rightEyePosition),
    method("mouthPosition as CGPointKaz", mouthPosition),
    method("hasLeftEyePosition as boolean", hasLeftEyePosition),
    method("hasMouthPosition as boolean", hasMouthPosition),
    method("hasRightEyePosition as boolean", hasRightEyePosition),
    method("hasTrackingID as boolean", hasTrackingID),
    method("hasTrackingFrameCount as boolean", hasTrackingFrameCount),
    method("trackingID as integer", trackingID),
    method("trackingFrameCount as integer", trackingFrameCount),
};

void CIFeatureConstructor(REALobject self) { constructWrapper(self); }
void CIFeatureDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

REALclassDefinition CIFeatureKazClass = classDefinition(
    {.name = "CIFeatureKaz", .constructor = CIFeatureConstructor, .destructor = CIFeatureDestructor},
    featureProperties, featureMethods, {}, featureSharedMethods);

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
