// CIDisplacementDistortion: moves each pixel as far as a second picture says.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// Red moves across and green upwards, by up to half the scale either way and not at all at 0.5. Nothing
/// moves outside of the map.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double scale = in.number("inputScale", 0, 1e5);
    if (scale == 0) return image;
    auto displace = [s = static_cast<float>(scale)](const Span& map, std::ptrdiff_t, int n, float* dx,
                                                    float* dy) {
        eachIndex(n, [=, r = map.plane[0], g = map.plane[1], a = map.plane[3]](int i) SIMD_INLINE {
            dx[i] = s * simd::clamp(r[i] - 0.5f * a[i], -0.5f, 0.5f);
            dy[i] = s * simd::clamp(g[i] - 0.5f * a[i], -0.5f, 0.5f);
        });
    };
    return warp("displacement", image, in.image("inputDisplacementImage"), {scale / 2, displace});
}

InputInfo mapInput() {
    InputInfo info = imageInput("inputDisplacementImage", "Displacement Image");
    info.type.clear();
    return info;
}

const Registrar filter{
    {"CIDisplacementDistortion",
     "Displacement Distortion",
     "Moves each pixel as far as a second picture says.",
     ourOwn("red moves across and green upwards, by up to half the scale"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), mapInput(),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 50, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 200})},
     build}};

} // namespace

} // namespace engine
