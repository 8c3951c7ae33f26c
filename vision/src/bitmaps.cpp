// Resampling by triangles, one direction after the other.
#include "bitmaps.h"

#include <algorithm>
#include <cmath>

namespace vision {
namespace {

/// The source pixels that one pixel of the result is made of, and their weights, which sum to 1.
struct Taps {
    int first = 0;
    std::vector<float> weights;
};

/// For a row or column of `count` pixels. A triangle as wide as two steps, and at least as two source pixels.
std::vector<Taps> taps(double start, double step, int count) {
    double reach = std::max(1.0, step);
    std::vector<Taps> all(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        double centre = start + (i + 0.5) * step - 0.5, sum = 0;
        Taps& each = all[static_cast<std::size_t>(i)];
        each.first = static_cast<int>(std::floor(centre - reach)) + 1;
        for (int at = each.first; at < centre + reach; ++at) {
            each.weights.push_back(static_cast<float>(1 - std::abs(at - centre) / reach));
            sum += each.weights.back();
        }
        for (float& weight : each.weights) weight /= static_cast<float>(sum);
    }
    return all;
}

} // namespace

Grey resampled(const GreyBitmap& source, double x, double y, double step, int width, int height) {
    std::vector<Taps> across = taps(x, step, width), down = taps(y, step, height);
    auto rowLength = static_cast<std::size_t>(width);
    auto inside = [](int at, int size) { return std::clamp(at, 0, size - 1); };
    // The rows that are needed, in their new width.
    int firstRow = down.front().first;
    int rows = down.back().first + static_cast<int>(down.back().weights.size()) - firstRow;
    std::vector<float> narrow(rowLength * static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
        const std::uint8_t* from =
            source.pixels + static_cast<std::size_t>(inside(firstRow + row, source.height)) * source.rowBytes;
        float* to = narrow.data() + static_cast<std::size_t>(row) * rowLength;
        for (const Taps& each : across) {
            float sum = 0;
            int at = each.first;
            for (float weight : each.weights) sum += weight * from[inside(at++, source.width)];
            *to++ = sum;
        }
    }
    Grey result{std::vector<std::uint8_t>(rowLength * static_cast<std::size_t>(height)), width, height};
    std::vector<float> sums(rowLength);
    std::uint8_t* to = result.pixels.data();
    for (const Taps& each : down) {
        std::fill(sums.begin(), sums.end(), 0.5f);
        const float* from = narrow.data() + static_cast<std::size_t>(each.first - firstRow) * rowLength;
        for (float weight : each.weights)
            for (float& sum : sums) sum += weight * *from++;
        for (float sum : sums) *to++ = static_cast<std::uint8_t>(sum);
    }
    return result;
}

Grey mirrored(const GreyBitmap& source) {
    Grey result{{}, source.width, source.height};
    result.pixels.reserve(static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.height));
    for (int y = 0; y < source.height; ++y) {
        const std::uint8_t* row = source.pixels + static_cast<std::size_t>(y) * source.rowBytes;
        std::reverse_copy(row, row + source.width, std::back_inserter(result.pixels));
    }
    return result;
}

} // namespace vision
