// CIDiscBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIDiscBlur, IsTheMeanOfADisc) {
    Picture p = noise(44, 36, 81);
    for (double radius : {0.6, 1.0, 5.3, 20.0}) {
        // The part of each pixel's row within the disc, by summing thin strips.
        double r = radius;
        int reach = int(std::ceil(radius));
        auto weight = [&](int dx, int dy) {
            double half = 0;
            for (int k = 0; k < 4000; ++k) {
                double y = dy - 0.5 + (k + 0.5) / 4000;
                half += std::sqrt(std::max(r * r - y * y, 0.0)) / 4000;
            }
            return std::clamp(half - (std::abs(dx) - 0.5), 0.0, 1.0) -
                   (dx == 0 ? std::clamp(0.5 - half, 0.0, 1.0) : 0);
        };
        std::vector<double> weights;
        double sum = 0;
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                weights.push_back(weight(dx, dy));
                sum += weights.back();
            }
        Picture expected = filled(-23, -23, 90, 82, [&](int x, int y) {
            Pixel out{};
            auto w = weights.begin();
            for (int dy = -reach; dy <= reach; ++dy)
                for (int dx = -reach; dx <= reach; ++dx, ++w)
                    for (int c = 0; c < 4; ++c) out[c] += *w / sum * p.get(x + dx, y + dy)[c];
            return out;
        });
        Image image = filter("CIDiscBlur", {{"inputImage", imageOf(p)}, {"inputRadius", radius}});
        EXPECT_EQ(image->extent(), (Rect{0, 0, 44, 36}.grown(reach + 2, reach + 2)));
        EXPECT_LT(error(image, expected), floatError) << radius;
        EXPECT_LT(difference(inTiles(image, -23, -23, 90, 82), expected), floatError) << radius;
    }
}
