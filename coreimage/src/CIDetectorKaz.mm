// CIDetectorKaz: finds faces in images.
#include "CIFeatureKaz.h"

#include <bridge/dictionaries.h>

#include <objc/runtime.h>

namespace coreimage {
namespace {

CIDetector* detector(REALobject self) { return nativeHandle<CIDetector*>(self); }

// A detector made here is not registered, and a second call overwrites the first one's reference.
void initWithType(REALobject self, REALstring type, REALobject context, REALobject options) {
    if (raisesWhenNull(type, "type is empty")) return;
    prepared([&] {
        // By name: systems before 10.7 have no detectors.
        Class detectorClass = static_cast<Class>(objc_getClass("CIDetector"));
        instanceData<id>(self) = [[detectorClass detectorOfType:bridge::temporaryString(type)
                                                        context:nativeHandle<CIContext*>(context)
                                                        options:NewNSDictionary(options)] retain];
    });
}

// `find` returns the features in the image. The array is made before the image is looked at.
template <class Find>
REALarray featuresWith(REALobject image, Find&& find) {
    host::Held array(REALCreateArray(kREALArrayObject, -1));
    CIImage* native = nativeHandle<CIImage*>(image);
    if (raisesWhenNull(native, "image is nil")) return nullptr;
    return filledWithWrappers(
        array.release(), [&] { return find(native); }, NewCIFeatureKaz);
}

REALarray featuresInImage(REALobject self, REALobject image) {
    return featuresWith(image, [&](CIImage* native) { return [detector(self) featuresInImage:native]; });
}

REALarray featuresInImage2(REALobject self, REALobject image, REALobject options) {
    return featuresWith(image, [&](CIImage* native) {
        return [detector(self) featuresInImage:native options:NewNSDictionary(options)];
    });
}

REALstring typeFace() { return systemConstant(&CIDetectorTypeFace); }
REALstring accuracy() { return systemConstant(&CIDetectorAccuracy); }
REALstring accuracyLow() { return systemConstant(&CIDetectorAccuracyLow); }
REALstring accuracyHigh() { return systemConstant(&CIDetectorAccuracyHigh); }

REALproperty properties[] = {handleProperty()};

REALmethodDefinition methods[] = {
    /// Makes a detector of CIDetectorTypeFace; the context may be Nil, and options name the accuracy. Raises
    /// NilObjectException for an empty type.
    ///     Dim quick As New CIDetectorKaz(CIDetectorKaz.CIDetectorTypeFace, Nil, options)
    method("Constructor(type as string, context as CIContextKaz, options as dictionary)", initWithType),
    constructorWithHandle<kDetector>(),
    /// Returns the faces in an image. Raises NilObjectException without an image.
    ///     Print Str(self.featuresInImage(photo).Ubound + 1)
    method("featuresInImage(image as CIImageKaz) as CIFeatureKaz()", featuresInImage),
    /// Returns the faces in an image, with options for this image alone. Raises NilObjectException without an
    /// image.
    ///     Print Str(self.featuresInImage(photo, New Dictionary).Ubound + 1)
    method("featuresInImage(image as CIImageKaz, options as dictionary) as CIFeatureKaz()", featuresInImage2),
};

REALmethodDefinition sharedMethods[] = {
    /// The type of detector that finds faces.
    ///     Print CIDetectorKaz.CIDetectorTypeFace
    method("CIDetectorTypeFace as string", typeFace),
    /// The option that chooses between speed and accuracy.
    ///     Print CIDetectorKaz.CIDetectorAccuracy
    method("CIDetectorAccuracy as string", accuracy),
    /// Value of CIDetectorAccuracy: faster, and finds fewer faces.
    ///     Print CIDetectorKaz.CIDetectorAccuracyLow
    method("CIDetectorAccuracyLow as string", accuracyLow),
    /// Value of CIDetectorAccuracy: slower, and finds more faces.
    ///     Print CIDetectorKaz.CIDetectorAccuracyHigh
    method("CIDetectorAccuracyHigh as string", accuracyHigh),
};

void CIDetectorConstructor(REALobject self) { constructWrapper(self); }
void CIDetectorDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// Finds faces in images. Needs a system with detectors: on older ones its texts are empty and it finds
/// nothing.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("2011_000006.jpg"))
///     Dim options As New Dictionary
///     options.Value(CIDetectorKaz.CIDetectorAccuracy) = CIDetectorKaz.CIDetectorAccuracyLow
///     Dim detector As New CIDetectorKaz(CIDetectorKaz.CIDetectorTypeFace, Nil, options)
REALclassDefinition CIDetectorKazClass = classDefinition(
    {.name = "CIDetectorKaz", .constructor = CIDetectorConstructor, .destructor = CIDetectorDestructor},
    properties, methods, {}, sharedMethods);

} // namespace coreimage
