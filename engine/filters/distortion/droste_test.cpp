// CIDroste: the picture repeats itself in the inset.
#include "reference.h"

using namespace reference;

namespace {

/// Smooth colours, so that a place is told by them.
Picture scene() {
    return filled(0, 0, 160, 160, [](int x, int y) {
        return Pixel{0.5 + 0.4 * std::sin(0.06 * x + 0.03 * y), 0.5 + 0.4 * std::cos(0.05 * y), x / 160.0, 1};
    });
}

Image wound(const Picture& p, Values values) {
    values["inputImage"] = imageOf(p);
    values.try_emplace("inputInsetPoint0", Numbers{60, 60});
    values.try_emplace("inputInsetPoint1", Numbers{100, 100});
    return filter("CIDroste", values);
}

void expectNear(const Pixel& a, const Pixel& b, double error) {
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(a[c], b[c], error) << c;
}

} // namespace

TEST(CIDroste, WithoutStrandsNestsThePicture) {
    Picture p = scene();
    Image image = wound(p, {{"inputStrands", 0.0}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 160, 160}));
    Picture out = rendered(image, 0, 0, 160, 160);
    // The frame is the picture, the inset the whole picture at a quarter, and so on.
    expectNear(out.at(20, 130), p.at(20, 130), 1e-4);
    expectNear(out.at(140, 50), p.at(140, 50), 1e-4);
    expectNear(out.at(65, 93), bilinear(p, 80 + 4 * (65.5 - 80), 80 + 4 * (93.5 - 80)), 1e-3);
    expectNear(out.at(77, 83), bilinear(p, 80 + 16 * (77.5 - 80), 80 + 16 * (83.5 - 80)), 1e-2);
}

// A full turn around the middle leads from one of the nested pictures to the next, without a seam.
TEST(CIDroste, WindsThePictureUp) {
    Picture out = rendered(wound(scene(), {}), 0, 0, 160, 160);
    for (const Pixel& q : out.pixels) EXPECT_NEAR(q[3], 1, 1e-5);
    Picture still = rendered(wound(scene(), {{"inputStrands", 0.0}}), 0, 0, 160, 160);
    EXPECT_GT(difference(out, still), 0.3);
    // The logarithm is cut to the left of the middle; both sides of the cut show the same.
    for (int x : {10, 30, 45}) {
        Pixel above = out.at(x, 80), below = out.at(x, 79);
        expectNear(above, below, 0.08);
    }
}

TEST(CIDroste, ZoomsByWholePictures) {
    Picture p = scene();
    Picture once = rendered(wound(p, {{"inputStrands", 0.0}}), 0, 0, 160, 160);
    Picture zoomed = rendered(wound(p, {{"inputStrands", 0.0}, {"inputZoom", 4.0}}), 0, 0, 160, 160);
    EXPECT_LT(difference(part(once, 10, 10, 40, 140), part(zoomed, 10, 10, 40, 140)), 1e-3);
}

TEST(CIDroste, WithoutInsetIsThePicture) {
    Picture p = scene();
    EXPECT_LT(error(wound(p, {{"inputInsetPoint1", Numbers{60, 60}}}), p), 1e-6);
}
