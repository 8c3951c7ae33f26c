// Effects that look at the brightness of a pixel alone: as alpha, between two colours, along a gradient.
#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// Rec. 709's.
SIMD_INLINE inline float luminance(float r, float g, float b) {
    return 0.2126f * r + 0.7152f * g + 0.0722f * b;
}

/// White that is as opaque as the pixel is bright.
Image maskToAlpha(const Inputs& in) {
    return pointStep(in.image("inputImage"), "mask to alpha", [](const RenderContext&) -> SpanFunction {
        return [](const Span& s, int, int, int n) {
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i)
                    r[i] = g[i] = b[i] = a[i] = simd::unit(luminance(r[i], g[i], b[i]));
            });
        };
    });
}

/// A mix of two colours, as much of the second as the pixel is bright; alpha stays.
Image falseColor(const Inputs& in) {
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    return pointStep(
        in.image("inputImage"), "false color", [=](const RenderContext& context) -> SpanFunction {
            return [=, first = context.color(color0), second = context.color(color1)](const Span& s, int, int,
                                                                                      int n) {
                simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) {
                        float bright = luminance(r[i], g[i], b[i]), alpha = a[i];
                        r[i] = first[0] * alpha + (second[0] - first[0]) * bright;
                        g[i] = first[1] * alpha + (second[1] - first[1]) * bright;
                        b[i] = first[2] * alpha + (second[2] - first[2]) * bright;
                        a[i] = first[3] * alpha + (second[3] - first[3]) * bright;
                    }
                });
            };
        });
}

const Registrar masks{{"CIMaskToAlpha",
                       "Mask to Alpha",
                       "Turns a picture in grays into white that is opaque where the picture is bright.",
                       "10.4",
                       categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                       {imageInput()},
                       maskToAlpha}};

const Registrar falseColors{{"CIFalseColor",
                             "False Color",
                             "Puts a mix of two colours in place of dark and bright.",
                             "10.4",
                             categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                             {imageInput(), colorInput("inputColor0", "Color 1", "Color", {0.3, 0, 0, 1}),
                              colorInput("inputColor1", "Color 2", "Color", {1, 0.9, 0.8, 1})},
                             falseColor}};

} // namespace

} // namespace engine
