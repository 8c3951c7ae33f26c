// Transforms of images, against references in double precision.
#include "reference.h"

using namespace reference;

TEST(Transform, TurnsBilinearly) {
    Picture p = noise(60, 60, 11);
    Affine m = Affine::rotation(0.4).then(Affine::translation(5, 3));
    Affine back = *m.inverse();
    Image image = transform(imageOf(p), m);
    Picture got = rendered(image, -30, 0, 100, 90);
    int inside = 0;
    for (int y = 0; y < 90; ++y)
        for (int x = -30; x < 70; ++x) {
            Point s = back.apply(Point{x + 0.5, y + 0.5});
            if (s.x < 1 || s.y < 1 || s.x > 59 || s.y > 59) continue;
            ++inside;
            Pixel want = bilinear(p, s.x, s.y);
            for (int c = 0; c < 4; ++c) ASSERT_NEAR(got.get(x, y)[c], want[c], floatError) << x << ' ' << y;
        }
    EXPECT_GT(inside, 3000);
}

TEST(Transform, KeepsAnOpaquePictureOpaqueUpToItsEdge) {
    Picture p = filled(0, 0, 10, 10, [](int, int) { return Pixel{0.5, 0.5, 0.5, 1}; });
    for (double f : {0.1, 0.3, 0.5, 2.5, 7.0}) {
        Image image = transform(imageOf(p), Affine::scale(f, f));
        int n = int(10 * f);
        Picture got = rendered(image, -2, -2, n + 6, n + 6);
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x) ASSERT_NEAR(got.get(x, y)[3], 1, 1e-5) << f << ' ' << x << ' ' << y;
        EXPECT_EQ(got.get(-1, 0), Pixel{}) << f;
        EXPECT_EQ(got.get(n + 1, 0), Pixel{}) << f;
    }
    // Half a pixel of it is half of a pixel.
    EXPECT_NEAR(rendered(transform(imageOf(p), Affine::translation(0.5, 0)), 0, 0, 1, 1).get(0, 0)[3], 0.5,
                1e-6);
}

TEST(Transform, MakesSmallerByMeans) {
    Picture p = noise(64, 48, 12);
    Picture expected = filled(0, 0, 16, 12, [&](int x, int y) {
        Pixel sum{};
        for (int k = 0; k < 16; ++k)
            for (int c = 0; c < 4; ++c) sum[c] += p.get(4 * x + k % 4, 4 * y + k / 4)[c] / 16;
        return sum;
    });
    EXPECT_LT(error(transform(imageOf(p), Affine::scale(0.25, 0.25)), expected), floatError);
    // The same when the target is smaller than the source.
    std::vector<float> out(4 * 16 * 12);
    render(imageOf(p), {0, 0, 64, 48}, {linearLayout(16, 12), out.data(), 16 * 16}, {0, 0, 16, 12});
    EXPECT_NEAR(out[4 * (11 * 16 + 3)], expected.get(3, 0)[0], floatError);
}

TEST(Transform, MakesEndlessImagesTiny) {
    Image board = filter("CICheckerboardGenerator", {});
    Picture got = rendered(transform(board, Affine::scale(1e-7, 1e-7)), -8, -8, 16, 16);
    EXPECT_NEAR(got.get(3, 3)[3], 1, 1e-4);
}

TEST(Transform, NeedsFiniteNumbers) {
    Image image = imageOf(noise(4, 4, 12));
    EXPECT_THROW(transform(image, Affine::scale(NAN, 1)), std::invalid_argument);
    EXPECT_TRUE(transform(image, Affine::scale(0, 1))->extent().isEmpty());
    EXPECT_EQ(transform(nullptr, {}), nullptr);
}
