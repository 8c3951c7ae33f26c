// CIStraightenFilter: turns a picture and enlarges it to fill its frame.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// Turned about its middle, enlarged until it fills its old extent, and cut to that. A positive angle turns
/// to the left.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double angle = in.number("inputAngle", -1e6, 1e6);
    if (!image || angle == 0) return image;
    const Rect& e = image->extent();
    if (e.isEmpty() || e.isInfinite()) return image;
    double cosine = std::abs(std::cos(angle)), sine = std::abs(std::sin(angle));
    double longer = std::max(e.width(), e.height()) / std::min(e.width(), e.height());
    double scale = cosine + sine * longer;
    Point middle{(e.x0 + e.x1) / 2, (e.y0 + e.y1) / 2};
    Affine turn = Affine::translation(-middle.x, -middle.y)
                      .then(Affine::rotation(angle))
                      .then(Affine::scale(scale, scale))
                      .then(Affine::translation(middle.x, middle.y));
    // Where the corners meet the extent, pixels would otherwise be mixed with nothing.
    return crop(transform(clampToEdge(image), turn), e);
}

const Registrar filter{
    {"CIStraightenFilter",
     "Straighten",
     "Turns a picture and enlarges it to fill its frame.",
     ourOwn("turned, and enlarged until it fills its old extent"),
     "10.7",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputAngle", "Angle", "Angle",
                                {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
     build}};

} // namespace

} // namespace engine
