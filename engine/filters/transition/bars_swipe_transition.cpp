// CIBarsSwipeTransition: a picture cut into bars that slide away one after the other.
#include "kernel.h"
#include "transition.h"

#include <cmath>

namespace engine::transitions {

namespace {

/// Bars along a direction that slide along it, each later than the one before by an offset. (Core Image does
/// not document its formula.)
class Sliding : public Warp {
  public:
    Sliding(const Inputs& in, const Rect& extent)
        : dx_(std::cos(in.number("inputAngle", -1e6, 1e6))),
          dy_(std::sin(in.number("inputAngle", -1e6, 1e6))), width_(in.number("inputWidth", 2, 1e6)),
          offset_(in.number("inputBarOffset", 1, 1e6)) {
        Rect turned = Affine{dx_, -dy_, dy_, dx_, 0, 0}.apply(extent);
        first_ = turned.y0;
        double later = (std::ceil(turned.height() / width_) - 1) * offset_;
        way_ = time(in) * (turned.width() + later);
    }

    std::string name() const override { return "bars"; }
    Rect extent(const Rect& source) const override { return moved(source, way_); }
    Rect region(const Rect& area) const override { return moved(area, -way_); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            double bar = std::floor(((y + 0.5) * dx_ - (x + i + 0.5) * dy_ - first_) / width_);
            double slid = std::clamp(way_ - bar * offset_, 0.0, way_);
            dx[i] = static_cast<float>(-slid * dx_);
            dy[i] = static_cast<float>(-slid * dy_);
        }
    }

  private:
    Rect moved(const Rect& r, double way) const {
        return r.unite({r.x0 + way * dx_, r.y0 + way * dy_, r.x1 + way * dx_, r.y1 + way * dy_});
    }

    double dx_, dy_, width_, offset_, first_, way_;
};

/// An infinite picture has nowhere to slide to; it stays until the time is over.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    if (image->extent().isInfinite()) return time(in) < 1 ? image : target ? target : empty();
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    Image sliding = warp(image, std::make_shared<Sliding>(in, image->extent()));
    return crop(composite(sliding, target), extent);
}

const Registrar filter{{"CIBarsSwipeTransition",
                        "Bars Swipe Transition",
                        "Cuts a picture into bars, which slide away one after the other.",
                        "10.5",
                        categories("Transition Video StillImage BuiltIn"),
                        {imageInput(), targetInput(),
                         numberInput("inputAngle", "Angle", "Angle",
                                     {.value = pi, .identity = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
                         numberInput("inputWidth", "Width", "Distance",
                                     {.value = 30, .min = 2, .sliderMin = 2, .sliderMax = 300}),
                         numberInput("inputBarOffset", "Bar Offset", "Scalar",
                                     {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100}),
                         timeInput()},
                        build}};

} // namespace

} // namespace engine::transitions
