// CIAffineTile, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIAffineTile, RepeatsThePicture) {
    Picture p = noise(20, 16, 41);
    p.x0 = 5, p.y0 = -3;
    auto tile = [&](int x, int y) {
        auto mod = [](int a, int b) { return ((a % b) + b) % b; };
        return p.get(5 + mod(x - 5, 20), -3 + mod(y + 3, 16));
    };
    Picture plain = filled(-700, -50, 1400, 100, tile);
    EXPECT_LT(error(filter("CIAffineTile", {{"inputImage", imageOf(p)}}), plain), 1e-7);
    // Turned, the seams are mixed like any neighbours.
    Affine m = Affine::rotation(0.3).then(Affine::scale(1.7, 1.7)), back = *m.inverse();
    Picture turned = filled(-60, -60, 120, 120, [&](int x, int y) {
        Point s = back.apply(Point{x + 0.5, y + 0.5});
        int i = int(std::floor(s.x - 0.5)), j = int(std::floor(s.y - 0.5));
        double u = s.x - 0.5 - i, v = s.y - 0.5 - j;
        Pixel out;
        for (int c = 0; c < 4; ++c)
            out[c] = (1 - v) * ((1 - u) * tile(i, j)[c] + u * tile(i + 1, j)[c]) +
                     v * ((1 - u) * tile(i, j + 1)[c] + u * tile(i + 1, j + 1)[c]);
        return out;
    });
    EXPECT_LT(error(filter("CIAffineTile", {{"inputImage", imageOf(p)}, {"inputTransform", m}}), turned),
              floatError);
    // An infinite image stays as it is.
    Image endless = constant({1, 0, 0, 1});
    EXPECT_EQ(filter("CIAffineTile", {{"inputImage", endless}}), endless);
}
