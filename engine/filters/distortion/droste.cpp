// CIDroste: a picture that contains itself, wound up as a spiral.
#include "filter.h"
#include "kernel.h"

#include <cmath>
#include <complex>

namespace engine {

namespace {

using Complex = std::complex<double>;

/// A picture and the rectangle in it where the picture is repeated: smaller, around the place that stays.
struct Nesting {
    Rect outer, inner;
    double ratio; // of the inner picture to the outer, below 1
    Complex fixed;

    Nesting(const Rect& outer, const Rect& inner) : outer(outer), inner(inner) {
        ratio = std::max(inner.width() / outer.width(), inner.height() / outer.height());
        auto middle = [](const Rect& r) { return Complex((r.x0 + r.x1) / 2, (r.y0 + r.y1) / 2); };
        fixed = (middle(inner) - ratio * middle(outer)) / (1 - ratio);
    }
    static bool isInside(const Rect& r, Complex p) {
        return p.real() >= r.x0 && p.real() < r.x1 && p.imag() >= r.y0 && p.imag() < r.y1;
    }
    /// The place in the frame between the two rectangles that looks like this one, counted from what stays.
    Complex inFrame(Complex p) const {
        // Inside and outside differ by few steps once the distance is of the picture's size.
        double size = std::hypot(outer.width(), outer.height());
        double steps = std::floor(std::log(size / std::max(std::abs(p), 1e-300)) / -std::log(ratio));
        p *= std::pow(ratio, -std::clamp(steps, -1e4, 1e4));
        for (int i = 0; i < 64 && isInside(inner, fixed + p); ++i) p /= ratio;
        for (int i = 0; i < 64 && !isInside(outer, fixed + p); ++i) p *= ratio;
        return p;
    }
};

/// The plane's logarithm around the place that stays, turned and scaled so that a full turn also leads to
/// another of the nested pictures: `strands` of them, after `periodicity` turns (H. Lenstra and B. de Smit,
/// "The Mathematical Structure of Escher's Print Gallery", 2003).
class Droste : public Warp {
  public:
    Droste(const Nesting& nesting, double strands, double periodicity, double rotation, double zoom)
        : nesting_(nesting), before_(std::polar(1 / zoom, -rotation)) {
        double angle = std::atan(strands / periodicity * -std::log(nesting.ratio) / (2 * pi));
        power_ = periodicity / std::polar(std::cos(angle), angle);
    }

    std::string name() const override { return "Droste"; }
    Rect extent(const Rect&) const override { return nesting_.outer; }
    Rect region(const Rect&) const override { return nesting_.outer; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            Complex place(x + i + 0.5, y + 0.5), from = (place - nesting_.fixed) * before_;
            if (std::abs(from) < 1e-9) from = 1e-9;
            Complex away = nesting_.fixed + nesting_.inFrame(std::exp(power_ * std::log(from))) - place;
            dx[i] = static_cast<float>(away.real());
            dy[i] = static_cast<float>(away.imag());
        }
    }

  private:
    Nesting nesting_;
    Complex before_, power_;
};

/// The inset is the rectangle with the two points as corners; the picture in it is as large as covers it.
/// (Core Image documents the inputs; the map is the known one, how the inset lies in it is our own: no
/// picture is known.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty() || image->extent().isInfinite()) return image;
    Point a = in.point("inputInsetPoint0"), b = in.point("inputInsetPoint1");
    Rect outer = image->extent();
    Rect inner =
        Rect{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)}.intersect(outer);
    if (inner.isEmpty()) return image;
    Nesting nesting(outer, inner);
    // Without room between the two there is nothing to wind up.
    if (!(nesting.ratio < 0.99) || !(nesting.ratio > 1e-6)) return image;
    // Continued beyond its edge, so that the frames meet without a seam.
    return warp(clampToEdge(image), std::make_shared<Droste>(nesting, in.number("inputStrands", -10, 10),
                                                             in.number("inputPeriodicity", 1, 100),
                                                             in.number("inputRotation", -1e6, 1e6),
                                                             in.number("inputZoom", 0.01, 1e6)));
}

const Registrar filter{
    {"CIDroste",
     "Droste",
     "Draws a picture within itself again and again, as a spiral.",
     ourOwn("the logarithmic spiral of Lenstra and de Smit, 2003; how the inset lies in it is our own"),
     "10.6",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputInsetPoint0", "Inset Point 0", "Position", {200, 200}),
      vectorInput("inputInsetPoint1", "Inset Point 1", "Position", {400, 400}),
      numberInput("inputStrands", "Strands", "Scalar",
                  {.value = 1, .min = -10, .max = 10, .sliderMin = -2, .sliderMax = 2}),
      numberInput("inputPeriodicity", "Periodicity", "Scalar",
                  {.value = 1, .min = 1, .sliderMin = 1, .sliderMax = 5}),
      numberInput("inputRotation", "Rotation", "Angle", {.value = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
      numberInput("inputZoom", "Zoom", "Scalar",
                  {.value = 1, .min = 0.01, .sliderMin = 0.01, .sliderMax = 5})},
     build}};

} // namespace

} // namespace engine
