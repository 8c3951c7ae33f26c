// CIStretchCrop: a picture made to fit a size, by stretching it, cropping it, or both.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// One axis of the stretch: from 0..size of the target to 0..length of the source. What is longer than it
/// would be in proportion is so less in the middle than at the ends.
struct Stretch {
    double size, length;
    /// How many pixels of the source one pixel in the middle shows, relative to an even stretch; at least 1.
    double middle;

    /// t k / (1 + (k - 1) |t|) for t from -1 to 1: slope k in the middle, and always rising.
    double from(double place) const {
        double t = 2 * place / size - 1;
        return (1 + t * middle / (1 + (middle - 1) * std::abs(t))) * length / 2;
    }
};

class Stretched : public Warp {
  public:
    Stretched(const Stretch& across, const Stretch& up, Point corner)
        : across_(across), up_(up), corner_(corner) {}

    std::string name() const override { return "stretch"; }
    Rect extent(const Rect&) const override { return {0, 0, across_.size, up_.size}; }
    Rect region(const Rect&) const override {
        return {corner_.x, corner_.y, corner_.x + across_.length, corner_.y + up_.length};
    }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        auto away = [](const Stretch& stretch, double corner, int pixel) {
            double centre = pixel + 0.5;
            return static_cast<float>(corner + stretch.from(std::clamp(centre, 0.0, stretch.size)) - centre);
        };
        for (int i = 0; i < n; ++i) dx[i] = away(across_, corner_.x, x + i);
        std::fill_n(dy, n, away(up_, corner_.y, y));
    }

  private:
    Stretch across_, up_;
    Point corner_;
};

/// The picture is scaled evenly in the direction in which it has less room. In the other one it is stretched
/// to the size; with a crop amount, so much of the way to filling the size in proportion is made by scaling
/// both, and what stands out is cut off on both sides. A center stretch amount of 0 keeps the proportions of
/// the middle, 1 stretches evenly. (Core Image documents what the amounts do at 0 and 1; the formula between
/// is our own: no picture is known.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty() || image->extent().isInfinite()) return image;
    auto limited = [](double v) { return std::round(std::clamp(v, 1.0, 16384.0)); };
    double width = limited(in.point("inputSize").x), height = limited(in.point("inputSize").y);
    double crop = in.number("inputCropAmount", 0, 1), even = in.number("inputCenterStretchAmount", 0, 1);
    Rect source = image->extent().integral();
    double fitX = width / source.width(), fitY = height / source.height();
    double small = std::min(fitX, fitY), large = std::max(fitX, fitY);
    // The scale of the direction that is not stretched, and with it that of the middle.
    double scale = small + crop * (large - small);
    image = transform(image, Affine::translation(-source.x0, -source.y0).then(Affine::scale(scale, scale)));
    double wide = source.width() * scale, tall = source.height() * scale;
    double middle = 1 + (1 - even) * (large / scale - 1);
    auto cut = [](double size, double length) { return Stretch{size, std::min(size, length), 1}; };
    Stretch across = fitX > fitY ? Stretch{width, wide, middle} : cut(width, wide);
    Stretch up = fitX > fitY ? cut(height, tall) : Stretch{height, tall, middle};
    Point corner{(wide - across.length) / 2, (tall - up.length) / 2};
    return warp(clampToEdge(image), std::make_shared<Stretched>(across, up, corner));
}

const Registrar filter{{"CIStretchCrop",
                        "Stretch Crop",
                        "Stretches and crops a picture to a size.",
                        ourOwn("Core Image documents the amounts at 0 and 1; the formula between is our own"),
                        "10.6",
                        categories("DistortionEffect Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputSize", "Size", "Position", {1280, 720}),
                         numberInput("inputCropAmount", "Crop Amount", "Scalar",
                                     {.value = 0.25, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
                         numberInput("inputCenterStretchAmount", "Center Stretch Amount", "Scalar",
                                     {.value = 0.25, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
                        build}};

} // namespace

} // namespace engine
