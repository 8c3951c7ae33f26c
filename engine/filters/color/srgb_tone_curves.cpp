// CISRGBToneCurveToLinear and CILinearToSRGBToneCurve: sRGB's transfer function and its inverse.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// The curves of IEC 61966-2-1 on the numbers of each straight colour.
Image toLinear(const Inputs& in) {
    return eachStraightColor(in.image("inputImage"), "sRGB to linear",
                             [](float v) SIMD_INLINE { return simd::srgbToLinear(v); });
}
Image toSrgb(const Inputs& in) {
    return eachStraightColor(in.image("inputImage"), "linear to sRGB",
                             [](float v) SIMD_INLINE { return simd::linearToSrgb(v); });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                Image (*build)(const Inputs&)) {
    return {name,           displayName,
            description,    source,
            "10.10",        categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
            {imageInput()}, build};
}

const Registrar linear{info("CISRGBToneCurveToLinear", "sRGB Tone Curve to Linear",
                            "Takes colours as coded by sRGB and makes them linear.",
                            publicDefinition("IEC 61966-2-1"), toLinear)};
const Registrar coding{info("CILinearToSRGBToneCurve", "Linear to sRGB Tone Curve",
                            "Takes colours as linear and codes them as sRGB does.",
                            publicDefinition("IEC 61966-2-1"), toSrgb)};

} // namespace

} // namespace engine
