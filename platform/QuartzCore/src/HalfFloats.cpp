// Pixels of 16-bit floats.
#include "HalfFloats.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <stdexcept>

namespace ci {

namespace {

/// Rows of halves that the engine reads as rows of floats.
class HalfRows final : public engine::RowSource {
  public:
    HalfRows(const engine::PixelLayout& layout, const void* pixels, std::size_t rowBytes,
             std::shared_ptr<const void> owner)
        : layout_(layout), pixels_(static_cast<const std::uint8_t*>(pixels)), rowBytes_(rowBytes),
          owner_(std::move(owner)) {}

    const engine::PixelLayout& layout() const override { return layout_; }
    void readRows(int first, int count, std::uint8_t* out) override {
        auto* to = reinterpret_cast<float*>(out);
        auto samples = 4 * static_cast<std::size_t>(layout_.width);
        for (int row = first; row < first + count; ++row, to += samples) {
            auto* from =
                reinterpret_cast<const std::uint16_t*>(pixels_ + static_cast<std::size_t>(row) * rowBytes_);
            std::transform(from, from + samples, to, floatOfHalf);
        }
    }

  private:
    engine::PixelLayout layout_;
    const std::uint8_t* pixels_;
    std::size_t rowBytes_;
    std::shared_ptr<const void> owner_;
};

} // namespace

float floatOfHalf(std::uint16_t half) {
    std::uint32_t sign = (half & 0x8000u) << 16, rest = half & 0x7FFFu;
    // The exponents of the two differ by 112, and a product by 2^112 is right for denormal numbers, too.
    float magnitude = std::bit_cast<float>(rest << 13) * 0x1p112f;
    if (rest >= 0x7C00) magnitude = rest == 0x7C00 ? INFINITY : NAN;
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | sign);
}

std::uint16_t halfOfFloat(float value) {
    auto bits = std::bit_cast<std::uint32_t>(value);
    std::uint32_t sign = (bits & 0x80000000u) >> 16;
    bits &= 0x7FFFFFFF;
    std::uint32_t half;
    if (bits > 0x7F800000) {
        half = 0x7E00;
    } else if (bits >= 0x477FF000) { // 65520 and more
        half = 0x7C00;
    } else if (bits < 0x38800000) {
        // The sum with 0.5 rounds a denormal result to whole multiples of 2^-24.
        half = std::bit_cast<std::uint32_t>(std::bit_cast<float>(bits) + 0.5f) - 0x3F000000;
    } else {
        std::uint32_t odd = bits >> 13 & 1;
        half = (bits - (112u << 23) + 0xFFF + odd) >> 13;
    }
    return static_cast<std::uint16_t>(half | sign);
}

engine::Image imageOfHalves(const engine::PixelLayout& layout, const void* pixels, std::size_t rowBytes,
                            std::shared_ptr<const void> owner) {
    return engine::bitmap(std::make_shared<HalfRows>(layout, pixels, rowBytes, std::move(owner)));
}

void renderHalves(const engine::Image& image, const engine::Rect& area, const engine::Target& target,
                  const engine::Options& options) {
    constexpr int stripRows = 64;
    auto samples = 4 * static_cast<std::size_t>(target.layout.width);
    if (!target.pixels || target.rowBytes < 2 * samples)
        throw std::invalid_argument("the target's rows are shorter than their pixels");
    std::vector<float> floats(samples * static_cast<std::size_t>(std::min(stripRows, target.layout.height)));
    engine::Target strip = target;
    strip.pixels = floats.data();
    strip.rowBytes = samples * sizeof(float);
    for (int row = 0; row < target.layout.height; row += stripRows) {
        int rows = strip.layout.height = std::min(stripRows, target.layout.height - row);
        engine::Rect part = engine::Rect::ofSize(area.x0, area.y1 - row - rows, area.width(), rows);
        engine::render(image, part, strip, engine::Rect::ofSize(0, 0, area.width(), rows), options);
        for (int i = 0; i < rows; ++i) {
            const float* from = floats.data() + static_cast<std::size_t>(i) * samples;
            std::transform(
                from, from + samples,
                reinterpret_cast<std::uint16_t*>(static_cast<std::uint8_t*>(target.pixels) +
                                                 static_cast<std::size_t>(row + i) * target.rowBytes),
                halfOfFloat);
        }
    }
}

} // namespace ci
