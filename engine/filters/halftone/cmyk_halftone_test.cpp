// CICMYKHalftone, against patterns in double precision and the light that it has to keep.
#include "screen_reference.h"

using namespace reference;

TEST(CICMYKHalftone, InksShareGray) {
    Picture p = noise(70, 30, 91);
    for (auto [gcr, ucr] : {std::pair(1.0, 0.5), {0.6, 0.9}, {0.0, 0.5}, {1.0, 0.0}}) {
        Values values = screen(imageOf(p), 10);
        values["inputGCR"] = gcr;
        values["inputUCR"] = ucr;
        Picture expected = filled(0, 0, 70, 30, [&, gcr = gcr, ucr = ucr](int x, int y) {
            Pixel q = straight(p.get(x, y)), out{0, 0, 0, q[3]};
            double gray = 1 - std::max({q[0], q[1], q[2]});
            double black = ucr > 0 ? gcr * std::max(0.0, gray - (1 - ucr)) / ucr : 0, soft = 0.3;
            const double turns[] = {M_PI / 12, 5 * M_PI / 12, 0};
            for (int c = 0; c < 3; ++c) {
                double light = black < 1 ? std::min(q[c] / (1 - black), 1.0) : 0;
                out[c] = q[3] * white(light, at(dots, x, y, 10, turns[c]), soft) *
                         white(1 - black, at(dots, x, y, 10, M_PI / 4), soft);
            }
            return out;
        });
        EXPECT_LT(error(filter("CICMYKHalftone", values), expected), patternError) << gcr << ' ' << ucr;
    }
}

TEST(CICMYKHalftone, KeepsTheLightOfAnArea) {
    Color brown{0.6, 0.4, 0.2, 1};
    Pixel m = mean(rendered(filter("CICMYKHalftone", screen(constant(brown), 12)), 0, 0, 400, 400));
    EXPECT_NEAR(m[0], linear(0.6), 0.02);
    EXPECT_NEAR(m[1], linear(0.4), 0.02);
    EXPECT_NEAR(m[2], linear(0.2), 0.02);
}
