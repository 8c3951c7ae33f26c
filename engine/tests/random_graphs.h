// Graphs of random filters with random values, the same for the same seed.
#pragma once

#include "reference.h"

namespace reference {

class RandomGraphs {
  public:
    explicit RandomGraphs(unsigned seed) : random_(seed) {
        for (unsigned k = 0; k < 3; ++k)
            sources_.push_back(imageOf(noise(61 + 23 * int(k), 83 - 19 * int(k), seed + k, k == 0)));
    }

    /// `depth` filters, each reading earlier ones or a picture. The names of those that were used go to
    /// `names`.
    Image graph(int depth, std::string& names) {
        std::vector<Image> images = sources_;
        for (int i = 0; i < depth; ++i) {
            const FilterInfo* info = pick(filters_);
            names += (names.empty() ? "" : " > ") + info->name;
            // The last one is read by the next, so that all but dead ends show.
            images.push_back(filtered(*info, [&] { return chance(0.6) ? images.back() : pick(images); }));
        }
        return images.back();
    }

    /// The filter with random values; `image` gives its pictures.
    Image filtered(const FilterInfo& info, const std::function<Image()>& image) {
        Values values;
        for (const InputInfo& input : info.inputs)
            if (auto value = valueFor(input, image)) values[input.key] = *value;
        Image result = engine::apply(info, values);
        return result ? result : empty();
    }

    const std::vector<Image>& sources() const { return sources_; }

  private:
    double number(double low, double high) {
        return low + (high - low) * static_cast<double>(random_() >> 8) / (1 << 24);
    }
    bool chance(double p) { return number(0, 1) < p; }
    template <class T>
    const T& pick(const std::vector<T>& from) {
        return from[random_() % from.size()];
    }

    std::optional<Value> valueFor(const InputInfo& input, const std::function<Image()>& image) {
        switch (input.kind) {
        case InputKind::image:
            return image();
        case InputKind::number: {
            double low = input.sliderMin.value_or(input.min.value_or(0)),
                   high = input.sliderMax.value_or(input.max.value_or(low + 10));
            return number(low, std::min(high, low + 60));
        }
        case InputKind::vector:
            if (input.type == "Position") return Numbers{number(-10, 100), number(-10, 100)};
            if (input.type == "Rectangle")
                return Numbers{number(-10, 40), number(-10, 40), number(5, 80), number(5, 80)};
            return std::nullopt;
        case InputKind::color:
            return Color{number(0, 1), number(0, 1), number(0, 1), number(0, 1)};
        case InputKind::transform:
            return Affine::rotation(number(-3, 3))
                .then(Affine::scale(number(0.3, 2), number(0.3, 2)))
                .then(Affine::translation(number(-20, 20), number(-20, 20)));
        case InputKind::text:
            return std::string("HTTP://EXAMPLE.COM");
        default:
            return std::nullopt;
        }
    }

    std::mt19937 random_;
    std::vector<const FilterInfo*> filters_ = allFilters();
    std::vector<Image> sources_;
};

} // namespace reference
