// Images as a sampler reads them, against a reference in double precision.
#include "reference.h"

using namespace reference;

class Sampler : public testing::TestWithParam<std::tuple<Wrap, Interpolation>> {
  protected:
    Wrap wrap = std::get<0>(GetParam());
    Interpolation interpolation = std::get<1>(GetParam());
};

TEST_P(Sampler, ReadsTurnedAndScaledPlaces) {
    for (double factor : {2.6, 0.3}) { // larger, and smaller without any means
        Picture p = noise(24, 18, 15);
        Affine m =
            Affine::rotation(0.4).then(Affine::scale(factor, factor * 0.9)).then(Affine::translation(7, -3));
        Affine back = *m.inverse();
        Picture expected = filled(-40, -20, 150, 110, [&](int x, int y) {
            Point s = back.apply(Point{x + 0.5, y + 0.5});
            return readAt(p, s.x, s.y, wrap, interpolation);
        });
        EXPECT_LT(error(sampled(imageOf(p), m, wrap, interpolation), expected), floatError) << factor;
    }
}

TEST_P(Sampler, ReadsTheSameInPartsAndFarAway) {
    Picture p = noise(24, 18, 16);
    double far = 1 << 20;
    // A turn by a right angle, where every place is the centre of a pixel; and such a scale that a tile reads
    // more than is kept of the input.
    Picture expected = filled(int(far) - 20, 0, 24, 26, [&](int x, int y) {
        return readAt(p, y + 0.5, far - x - 0.5, wrap, interpolation);
    });
    Affine turn{0, 1, -1, 0, far, 0};
    EXPECT_LT(error(sampled(imageOf(p), turn, wrap, interpolation), expected), floatError);
    Picture large = noise(2600, 1400, 17);
    Picture few = filled(0, 0, 13, 7, [&](int x, int y) {
        return readAt(large, (x + 0.5) * 200, (y + 0.5) * 200, wrap, interpolation);
    });
    EXPECT_LT(error(sampled(imageOf(large), Affine::scale(0.005, 0.005), wrap, interpolation), few),
              floatError);
}

TEST_P(Sampler, ByWholePixelsIsTheImage) {
    Picture p = noise(24, 18, 18);
    Picture moved = filled(0, 0, 40, 30, [&](int x, int y) {
        return readAt(p, x - 4.5, y - 2.5, wrap, Interpolation::nearest);
    });
    Image image = sampled(imageOf(p), Affine::translation(5, 3), wrap, interpolation);
    EXPECT_LT(error(image, moved), 1e-7);
    EXPECT_EQ(image->extent(), wrap == Wrap::clamp ? Rect::infinite() : (Rect{5, 3, 29, 21}));
}

INSTANTIATE_TEST_SUITE_P(Modes, Sampler,
                         testing::Combine(testing::Values(Wrap::black, Wrap::clamp),
                                          testing::Values(Interpolation::nearest, Interpolation::linear)));

TEST(SamplerExtent, IsWhereReadingFindsSomething) {
    Image image = imageOf(noise(10, 6, 19));
    Affine twice = Affine::scale(2, 2);
    EXPECT_EQ(sampled(image, twice, Wrap::black, Interpolation::nearest)->extent(), (Rect{0, 0, 20, 12}));
    EXPECT_EQ(sampled(image, twice, Wrap::black, Interpolation::linear)->extent(), (Rect{-1, -1, 21, 13}));
    EXPECT_EQ(sampled(image, twice, Wrap::clamp, Interpolation::linear)->extent(), Rect::infinite());
    EXPECT_TRUE(sampled(empty(), twice, Wrap::clamp, Interpolation::linear)->extent().isEmpty());
    EXPECT_TRUE(sampled(image, Affine::scale(0, 1), Wrap::clamp, Interpolation::linear)->extent().isEmpty());
    EXPECT_EQ(sampled(nullptr, twice, Wrap::black, Interpolation::linear), nullptr);
    EXPECT_THROW(sampled(image, Affine::scale(NAN, 1), Wrap::black, Interpolation::linear),
                 std::invalid_argument);
}
