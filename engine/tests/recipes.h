// Graphs and sources that several tests render.
#pragma once

#include "reference.h"

#include <atomic>

namespace reference {

inline Values with(const Image& image, const char* key, double value) {
    return {{"inputImage", image}, {key, value}};
}

inline Image chainOfEight(Image image) {
    image = filter("CIExposureAdjust", with(image, "inputEV", 0.3));
    image = filter("CIGammaAdjust", with(image, "inputPower", 0.8));
    image = filter("CISepiaTone", with(image, "inputIntensity", 0.4));
    image = filter("CIVignette", with(image, "inputIntensity", 0.7));
    image = filter("CIHueAdjust", with(image, "inputAngle", 0.5));
    image = filter("CIColorControls", with(image, "inputSaturation", 1.2));
    image = filter("CIColorInvert", {{"inputImage", image}});
    return filter("CIGammaAdjust", with(image, "inputPower", 1.1));
}

/// Steps of every kind in one graph.
inline Image complicated(const Picture& p) {
    Image image = imageOf(p);
    Image turned = transform(chainOfEight(image), Affine::rotation(0.3).then(Affine::scale(1.3, 0.8)));
    Image blurred = filter("CIGaussianBlur", with(turned, "inputRadius", 9.5));
    Image twirled = filter(
        "CITwirlDistortion",
        {{"inputImage", composite(image, blurred)}, {"inputCenter", Numbers{60, 60}}, {"inputRadius", 70.0}});
    Image boxed = filter("CIBoxBlur", with(twirled, "inputRadius", 4.5));
    return composite(transform(boxed, Affine::scale(0.4, 0.4)),
                     composite(filter("CIGaussianBlur", with(boxed, "inputRadius", 2)), boxed));
}

/// Counts the rows that are asked for. Row r, from the top, is the gray r modulo 256; row `failAt` cannot be
/// read.
class CountedRows : public RowSource {
  public:
    CountedRows(int w, int h, int strip = 64)
        : layout_{w, h, Format::RGBA8, Alpha::opaque, color::ColorSpace::sRGB()}, strip_(strip) {}
    int stripRows() const override { return strip_; }
    const PixelLayout& layout() const override { return layout_; }
    void readRows(int first, int count, std::uint8_t* out) override {
        if (inside_.exchange(true)) overlapped = true;
        for (int r = 0; r < count; ++r, out += 4 * layout_.width) {
            if (first + r == failAt) throw std::runtime_error("row cannot be read");
            std::fill_n(out, 4 * layout_.width, static_cast<std::uint8_t>(first + r));
            ++rows;
        }
        inside_ = false;
    }
    std::atomic<int> rows{0};
    std::atomic<bool> overlapped{false};
    int failAt = -1;

  private:
    PixelLayout layout_;
    int strip_;
    std::atomic<bool> inside_{false};
};

} // namespace reference
