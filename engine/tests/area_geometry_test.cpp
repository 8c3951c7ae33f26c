// Filters that sum up areas in a row of pixels, and those that scale and turn, against references in double
// precision.
#include "reference.h"

#include <algorithm>

using namespace reference;

namespace {

constexpr double pi = 3.141592653589793;

double lanczos(double x) {
    auto sinc = [](double v) { return v == 0 ? 1 : std::sin(pi * v) / (pi * v); };
    return std::abs(x) < 3 ? sinc(x) * sinc(x / 3) : 0;
}

} // namespace

TEST(AreaRows, MeansOfRowsAndColumns) {
    Picture p = noise(40, 30, 101);
    // Partly outside of the picture, where all is transparent.
    Values values{{"inputImage", imageOf(p)}, {"inputExtent", Numbers{25, 12, 22, 26}}};
    Picture columns(0, 0, 22, 1), rows(0, 0, 26, 1);
    for (int y = 0; y < 26; ++y)
        for (int x = 0; x < 22; ++x)
            for (int c = 0; c < 4; ++c) {
                columns.at(x, 0)[c] += p.get(25 + x, 12 + y)[c] / 26;
                rows.at(y, 0)[c] += p.get(25 + x, 12 + y)[c] / 22;
            }
    Image column = filter("CIColumnAverage", values), row = filter("CIRowAverage", values);
    EXPECT_EQ(column->extent(), (Rect{0, 0, 22, 1}));
    EXPECT_EQ(row->extent(), (Rect{0, 0, 26, 1}));
    EXPECT_LT(error(column, columns), 1e-6);
    EXPECT_LT(error(row, rows), 1e-6);
    EXPECT_LT(difference(inTiles(row, 0, 0, 26, 1), rows), 1e-6);
    values["inputExtent"] = Numbers{0, 0, -0.0, 5};
    EXPECT_TRUE(filter("CIRowAverage", values)->extent().isEmpty());
}

TEST(AreaRows, HistogramsCountEachComponent) {
    Picture p = noise(40, 30, 102);
    Picture expected(0, 0, 10, 1);
    double all = 38 * 34;
    for (int y = -6; y < 28; ++y)
        for (int x = 5; x < 43; ++x) {
            Pixel q = p.get(x, y);
            for (int c = 0; c < 4; ++c) {
                double v = c == 3 ? q[3] : q[3] > 0 ? double(float(q[c])) / float(q[3]) : 0;
                expected.at(std::clamp(int(v * 10), 0, 9), 0)[c] += 0.5 / all;
            }
        }
    Values values{{"inputImage", imageOf(p)},
                  {"inputExtent", Numbers{5, -6, 38, 34}},
                  {"inputCount", 10.0},
                  {"inputScale", 0.5}};
    Image image = filter("CIAreaHistogram", values);
    EXPECT_EQ(image->extent(), (Rect{0, 0, 10, 1}));
    EXPECT_LT(error(image, expected), 1e-6);
    Picture got = rendered(image, 0, 0, 10, 1);
    for (int c = 0; c < 4; ++c) {
        double sum = 0;
        for (const Pixel& q : got.pixels) sum += q[c];
        EXPECT_NEAR(sum, 0.5, 1e-6);
    }
}

TEST(Scaling, LanczosIsAConvolutionWithItsKernel) {
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

TEST(Scaling, StraightenedPicturesFillTheirFrame) {
    Picture ramp = filled(0, 0, 60, 40, [](int x, int y) {
        return Pixel{(x + 0.5) / 60, (y + 0.5) / 40, 0.5, 1};
    });
    for (double angle : {0.3, -1.1, 2.0}) {
        Image image = filter("CIStraightenFilter", {{"inputImage", imageOf(ramp)}, {"inputAngle", angle}});
        EXPECT_EQ(image->extent(), (Rect{0, 0, 60, 40}));
        // The smallest scale at which no corner of the frame lies outside of the picture.
        double scale = 0;
        for (double sign : {-1., 1.}) {
            double x = 30 * std::cos(angle) + sign * 20 * std::sin(angle);
            double y = -30 * std::sin(angle) + sign * 20 * std::cos(angle);
            scale = std::max({scale, std::abs(x) / 30, std::abs(y) / 20});
        }
        Picture got = rendered(image, 0, 0, 60, 40);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 60; ++x) {
                double dx = (x + 0.5 - 30) / scale, dy = (y + 0.5 - 20) / scale;
                double u = 30 + dx * std::cos(angle) + dy * std::sin(angle);
                double v = 20 - dx * std::sin(angle) + dy * std::cos(angle);
                // Within half a pixel of the edge of the picture there is only the edge.
                EXPECT_NEAR(got.get(x, y)[0], std::clamp(u, 0.5, 59.5) / 60, 1e-4);
                EXPECT_NEAR(got.get(x, y)[1], std::clamp(v, 0.5, 39.5) / 40, 1e-4);
                EXPECT_NEAR(got.get(x, y)[3], 1, 1e-5);
            }
    }
}

TEST(Scaling, PerspectiveOfAPart) {
    // Onto a rectangle, the part is merely moved.
    Picture p = noise(40, 30, 104);
    Picture expected = filled(95, 195, 30, 25, [&](int x, int y) {
        bool inside = x >= 100 && x < 116 && y >= 200 && y < 212;
        return inside ? p.get(x - 100 + 9, y - 200 + 7) : Pixel{};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputExtent", Numbers{9, 7, 16, 12}},
                  {"inputBottomLeft", Numbers{100, 200}},
                  {"inputBottomRight", Numbers{116, 200}},
                  {"inputTopRight", Numbers{116, 212}},
                  {"inputTopLeft", Numbers{100, 212}}};
    EXPECT_LT(error(filter("CIPerspectiveTransformWithExtent", values), expected), 5 * floatError);
    // The whole of it is what the filter without an extent makes.
    values["inputExtent"] = Numbers{0, 0, 40, 30};
    values["inputTopRight"] = Numbers{130, 222};
    Picture whole = rendered(filter("CIPerspectiveTransform", values), 95, 195, 40, 30);
    EXPECT_LT(error(filter("CIPerspectiveTransformWithExtent", values), whole), 1e-7);
    EXPECT_GT(whole.get(110, 205)[3] + whole.get(111, 206)[3] + whole.get(112, 207)[3], 0);
}
