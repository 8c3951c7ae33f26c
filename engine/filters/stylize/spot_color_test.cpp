// CISpotColor, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISpotColor, PutsColoursInPlaceOfNearOnes) {
    Picture p = noise(61, 43, 99);
    const struct {
        double centre[3], to[3], closeness, contrast;
    } spots[] = {{{0.2, 0.3, 0.4}, {1, 0, 0.5}, 0.3, 0.5},
                 {{0.7, 0.8, 0.6}, {0.1, 0.9, 0.3}, 0.4, 0},
                 {{0.9, 0.4, 0.6}, {0.2, 0.2, 1}, 0.35, 0.9}};
    Picture expected = mapped(p, [&](Pixel q) {
        Pixel out = q;
        for (const auto& spot : spots) {
            double square = 0;
            for (int c = 0; c < 3; ++c) square += std::pow(coded(q[c]) - spot.centre[c], 2);
            double t = (spot.closeness - std::sqrt(square)) / (spot.closeness * (1 - spot.contrast));
            t = std::clamp(t, 0.0, 1.0);
            for (int c = 0; c < 3; ++c) out[c] += t * (linear(spot.to[c]) - out[c]);
        }
        return out;
    });
    Values values{{"inputImage", imageOf(p)}};
    for (int i = 0; i < 3; ++i) {
        auto key = [&](const char* name) { return name + std::to_string(i + 1); };
        const auto& [from, to, closeness, contrast] = spots[i];
        values[key("inputCenterColor")] = Color{from[0], from[1], from[2], 1};
        values[key("inputReplacementColor")] = Color{to[0], to[1], to[2], 1};
        values[key("inputCloseness")] = closeness;
        values[key("inputContrast")] = contrast;
    }
    // Coded components are good to 7e-6, the steepest ramp makes 29 of each.
    EXPECT_LT(error(filter("CISpotColor", values), expected), 1e-3);
}
