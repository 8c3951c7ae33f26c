// A picture in cells of one colour each, to compare with.
#pragma once

#include "reference.h"

namespace reference {

/// Each pixel of the rectangle is the mean of the pixels with the same cell.
inline Picture means(const Picture& p, int x0, int y0, int w, int h,
                     const std::function<std::pair<int, int>(int, int)>& cell) {
    std::map<std::pair<int, int>, std::pair<Pixel, int>> sums;
    for (int y = y0 - 40; y < y0 + h + 40; ++y)
        for (int x = x0 - 40; x < x0 + w + 40; ++x) {
            auto& [sum, count] = sums[cell(x, y)];
            for (int c = 0; c < 4; ++c) sum[c] += p.get(x, y)[c];
            ++count;
        }
    return filled(x0, y0, w, h, [&](int x, int y) {
        auto [sum, count] = sums[cell(x, y)];
        for (double& v : sum) v /= count;
        return sum;
    });
}

} // namespace reference
