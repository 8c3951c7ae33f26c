// Filters that weigh the pixels around a pixel, against references in double precision.
#include "reference.h"

#include <algorithm>

using namespace reference;

TEST(Convolution, WeightsGoRowByRowFromTheUpperLeft) {
    struct {
        const char* name;
        int width, height;
    } shapes[] = {{"CIConvolution3X3", 3, 3},
                  {"CIConvolution5X5", 5, 5},
                  {"CIConvolution7X7", 7, 7},
                  {"CIConvolution9Horizontal", 9, 1},
                  {"CIConvolution9Vertical", 1, 9}};
    Picture p = noise(37, 29, 71);
    std::mt19937 random(72);
    for (const auto& shape : shapes) {
        Numbers weights;
        for (int i = 0; i < shape.width * shape.height; ++i)
            weights.push_back((random() % 2001) / 4000. - 0.2);
        for (double bias : {0.0, 0.3}) {
            Picture expected = filled(-10, -10, 57, 49, [&](int x, int y) {
                Pixel out{bias, bias, bias, bias};
                for (int row = 0; row < shape.height; ++row)
                    for (int column = 0; column < shape.width; ++column) {
                        Pixel q = p.get(x + column - shape.width / 2, y - (row - shape.height / 2));
                        for (int c = 0; c < 4; ++c) out[c] += weights[row * shape.width + column] * q[c];
                    }
                return out;
            });
            Image image = filter(
                shape.name, {{"inputImage", imageOf(p)}, {"inputWeights", weights}, {"inputBias", bias}});
            EXPECT_LT(error(image, expected), floatError) << shape.name << bias;
            EXPECT_LT(difference(inTiles(image, -10, -10, 57, 49), expected), floatError) << shape.name;
            int dx = shape.width / 2, dy = shape.height / 2;
            EXPECT_EQ(image->extent(), bias > 0 ? Rect::infinite() : (Rect{0, 0, 37, 29}.grown(dx, dy)));
        }
        EXPECT_LT(error(filter(shape.name, {{"inputImage", imageOf(p)}}), p), 1e-7) << "the standard";
        EXPECT_TRUE(filter(shape.name, {{"inputImage", imageOf(p)}, {"inputWeights", Numbers{}}})
                        ->extent()
                        .isEmpty());
    }
}

TEST(Convolution, MedianOfNine) {
    Picture p = noise(41, 33, 73);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) {
            std::vector<double> nine;
            for (int k = 0; k < 9; ++k) nine.push_back(clamped(p, x + k % 3 - 1, y + k / 3 - 1)[c]);
            std::sort(nine.begin(), nine.end());
            out[c] = nine[4];
        }
        return out;
    });
    Image image = filter("CIMedianFilter", {{"inputImage", imageOf(p)}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 41, 33}));
    EXPECT_LT(error(image, expected), 1e-6);
    EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), 1e-6);
}

TEST(Convolution, NoiseIsSmoothedAndEdgesAreSharpened) {
    Picture p = noise(41, 33, 74);
    for (double level : {0.0, 0.08, 0.3}) {
        double sharpness = 0.6;
        Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
            Pixel out = p.get(x, y), from;
            for (int c = 0; c < 4; ++c) {
                double blurred = 0;
                for (int k = 0; k < 9; ++k) {
                    double weight = (k % 3 == 1 ? 2 : 1) * (k / 3 == 1 ? 2 : 1) / 16.;
                    blurred += weight * clamped(p, x + k % 3 - 1, y + k / 3 - 1)[c];
                }
                from[c] = out[c] - blurred;
            }
            double edge = level > 0 ? std::clamp((std::abs(luminance(from)) - level) / level, 0.0, 1.0) : 1;
            for (int c = 0; c < 4; ++c) {
                out[c] += (edge * (1 + sharpness) - 1) * from[c];
                out[c] = std::clamp(out[c], 0.0, c < 3 ? 1e9 : 1);
            }
            return out;
        });
        Image image =
            filter("CINoiseReduction",
                   {{"inputImage", imageOf(p)}, {"inputNoiseLevel", level}, {"inputSharpness", sharpness}});
        EXPECT_LT(error(image, expected), floatError) << level;
        EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), floatError) << level;
    }
    Image image = imageOf(p);
    EXPECT_EQ(filter("CINoiseReduction",
                     {{"inputImage", image}, {"inputNoiseLevel", 0.0}, {"inputSharpness", 0.0}}),
              image);
}

TEST(Convolution, SharpeningBrightnessLeavesTheColour) {
    Picture p = noise(60, 44, 75, true);
    double radius = 2.2, sharpness = 0.9;
    Picture wide = filled(-20, -20, 100, 84, [&](int x, int y) { return clamped(p, x, y); });
    Picture blurred = trueGaussian(wide, radius);
    Picture expected = filled(0, 0, 60, 44, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double add = sharpness * (luminance(q) - luminance(blurred.get(x, y)));
        return Pixel{q[0] + add, q[1] + add, q[2] + add, q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", radius}, {"inputSharpness", sharpness}};
    Image image = filter("CISharpenLuminance", values);
    EXPECT_EQ(image->extent(), (Rect{0, 0, 60, 44}));
    EXPECT_LT(error(image, expected), halfStep); // the engine's Gaussian ends where it is small
    Image flat = crop(constant({0.7, 0.5, 0.2, 0.5}), {0, 0, 30, 30});
    Picture same = rendered(flat, -5, -5, 40, 40);
    EXPECT_LT(error(filter("CISharpenLuminance", {{"inputImage", flat}}), same), floatError);
}
