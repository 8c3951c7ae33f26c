// CILanczosScaleTransform, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

double lanczos(double x) {
    auto sinc = [](double v) { return v == 0 ? 1 : std::sin(M_PI * v) / (M_PI * v); };
    return std::abs(x) < 3 ? sinc(x) * sinc(x / 3) : 0;
}

} // namespace

TEST(CILanczosScaleTransform, IsAConvolutionWithItsKernel) {
    Picture p = noise(40, 30, 103);
    const struct { double scale, aspect; } cases[] = {{2.3, 1}, {0.37, 1}, {0.8, 1.5}, {1, 0.5}};
    for (auto [scale, aspect] : cases) {
        double sx = scale * aspect, sy = scale;
        auto weight = [](double middle, int j, double s) {
            return lanczos((j + 0.5 - middle) * std::min(s, 1.0));
        };
        auto inside = [](int x, double end) {
            return std::clamp(std::min(x + 1.0, end) - std::max(x, 0), 0., 1.);
        };
        int w = int(std::ceil(40 * sx)), h = int(std::ceil(30 * sy));
        Picture expected = filled(-2, -2, w + 4, h + 4, [&](int x, int y) {
            Pixel out{};
            double cx = (x + 0.5) / sx, cy = (y + 0.5) / sy, sum = 0;
            for (int j = -20; j < 50; ++j)
                for (int i = -20; i < 60; ++i) {
                    double k = weight(cx, i, sx) * weight(cy, j, sy);
                    if (k == 0) continue;
                    Pixel q = p.get(std::clamp(i, 0, 39), std::clamp(j, 0, 29));
                    for (int c = 0; c < 4; ++c) out[c] += k * q[c];
                    sum += k;
                }
            for (double& v : out) v *= inside(x, 40 * sx) * inside(y, 30 * sy) / sum;
            return out;
        });
        Values values{{"inputImage", imageOf(p)}, {"inputScale", scale}, {"inputAspectRatio", aspect}};
        Image image = filter("CILanczosScaleTransform", values);
        EXPECT_LT(error(image, expected), floatError) << scale << ' ' << aspect;
        EXPECT_LT(difference(inTiles(image, -2, -2, w + 4, h + 4), expected), floatError) << scale;
        EXPECT_EQ(image->extent(), (Rect{0, 0, 40 * sx, 30 * sy}));
    }
}
