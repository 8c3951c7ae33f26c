// The wrapper classes of Core Image, in terms of the object model that the family shares.
#pragma once

#include <coreimage/classes.h>
#include <objects/wrapper.h>

#import <QuartzCore/QuartzCore.h>

namespace coreimage {

using namespace objects;

inline constexpr WrapperType kColor = {"CIColorKaz", "CIColor"};
inline constexpr WrapperType kContext = {"CIContextKaz", "CIContext"};
inline constexpr WrapperType kDetector = {"CIDetectorKaz", "CIDetector"};
inline constexpr WrapperType kFaceFeature = {"CIFaceFeatureKaz", "CIFaceFeature"};
inline constexpr WrapperType kFeature = {"CIFeatureKaz", "CIFeature"};
inline constexpr WrapperType kFilter = {"CIFilterKaz", "CIFilter"};
inline constexpr WrapperType kFilterShape = {"CIFilterShapeKaz", "CIFilterShape"};
inline constexpr WrapperType kImage = {"CIImageKaz", "CIImage"};
inline constexpr WrapperType kSampler = {"CISamplerKaz", "CISampler"};
inline constexpr WrapperType kVector = {"CIVectorKaz", "CIVector"};

// A new wrapper of a shape that it retains, not looked up in the registry; null for nil.
inline REALobject newFilterShape(CIFilterShape* shape) {
    return newUnregistered(kFilterShape.hostClass, shape);
}

} // namespace coreimage
