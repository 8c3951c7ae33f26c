// CIConvolution3X3, 5X5, 7X7, 9Horizontal and 9Vertical, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// The weights go row by row from the upper left.
void expectWeighted(const char* name, int width, int height) {
    Picture p = noise(37, 29, 71);
    std::mt19937 random(72);
    Numbers weights;
    for (int i = 0; i < width * height; ++i) weights.push_back((random() % 2001) / 4000. - 0.2);
    for (double bias : {0.0, 0.3}) {
        Picture expected = filled(-10, -10, 57, 49, [&](int x, int y) {
            Pixel out{bias, bias, bias, bias};
            for (int row = 0; row < height; ++row)
                for (int column = 0; column < width; ++column) {
                    Pixel q = p.get(x + column - width / 2, y - (row - height / 2));
                    for (int c = 0; c < 4; ++c) out[c] += weights[row * width + column] * q[c];
                }
            return out;
        });
        Image image =
            filter(name, {{"inputImage", imageOf(p)}, {"inputWeights", weights}, {"inputBias", bias}});
        EXPECT_LT(error(image, expected), floatError) << bias;
        EXPECT_LT(difference(inTiles(image, -10, -10, 57, 49), expected), floatError) << bias;
        int dx = width / 2, dy = height / 2;
        EXPECT_EQ(image->extent(), bias > 0 ? Rect::infinite() : (Rect{0, 0, 37, 29}.grown(dx, dy)));
    }
    EXPECT_LT(error(filter(name, {{"inputImage", imageOf(p)}}), p), 1e-7) << "the standard";
    Image none = filter(name, {{"inputImage", imageOf(p)}, {"inputWeights", Numbers{}}});
    EXPECT_TRUE(none->extent().isEmpty());
}

} // namespace

TEST(CIConvolution3X3, SumsWeightedPixels) { expectWeighted("CIConvolution3X3", 3, 3); }

TEST(CIConvolution5X5, SumsWeightedPixels) { expectWeighted("CIConvolution5X5", 5, 5); }

TEST(CIConvolution7X7, SumsWeightedPixels) { expectWeighted("CIConvolution7X7", 7, 7); }

TEST(CIConvolution9Horizontal, SumsWeightedPixels) { expectWeighted("CIConvolution9Horizontal", 9, 1); }

TEST(CIConvolution9Vertical, SumsWeightedPixels) { expectWeighted("CIConvolution9Vertical", 1, 9); }
