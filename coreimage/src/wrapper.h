// The wrapper classes of Core Image, in terms of the object model that the family shares.
#pragma once

#include <bridge/arrays.h>
#include <coreimage/classes.h>
#include <objects/graphics.h>
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

// A new wrapper of a shape that it retains, not looked up in the wrapper registry; null for nil.
inline REALobject newFilterShape(CIFilterShape* shape) {
    return newUnregistered(kFilterShape.hostClass, shape);
}

// The part of an image that CreateCGImage renders: the rectangle, with each size below 1 taken from the
// extent.
inline CGRect sourceRectangle(REALobject rect, CGRect extent) {
    CGRect source = rectangleOf(rect);
    if (source.size.width < 1) source.size.width = extent.size.width;
    if (source.size.height < 1) source.size.height = extent.size.height;
    return source;
}

// Takes over an empty object array and fills it from the NSArray that `list` returns, with the wrapper that
// `wrap` finds for each object. Null when Cocoa raises.
template <class List>
REALarray filledWithWrappers(REALarray array, List&& list, REALobject (*wrap)(id native)) {
    host::Held filled(array);
    return guardedInPool([&] {
        FillObjectArray(filled.get(), list(), wrap);
        return filled.release();
    });
}

} // namespace coreimage
