// The morphology filters, against references that look at every pixel of the neighbourhood.
#include "reference.h"

using namespace reference;

namespace {

/// The largest (or with `sign` -1, smallest) components where `inside` says that a pixel counts.
Picture extreme(const Picture& p, int reach, double sign, const std::function<bool(int, int)>& inside) {
    return filled(p.x0 - reach, p.y0 - reach, p.width + 2 * reach, p.height + 2 * reach, [&](int x, int y) {
        Pixel out;
        out.fill(-1e9);
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx)
                if (inside(dx, dy))
                    for (int c = 0; c < 4; ++c) out[c] = std::max(out[c], sign * p.get(x + dx, y + dy)[c]);
        for (double& v : out) v *= sign;
        return out;
    });
}

Image morphed(const char* name, const Picture& p, double radius) {
    return filter(name, {{"inputImage", imageOf(p)}, {"inputRadius", radius}});
}

} // namespace

TEST(CIMorphologyMaximum, IsTheLargestInADisc) {
    Picture p = noise(40, 30, 5);
    for (double radius : {1.0, 2.0, 4.5, 9.0}) {
        Image image = morphed("CIMorphologyMaximum", p, radius);
        int reach = int(radius);
        EXPECT_EQ(image->extent(), (Rect{-1.0 * reach, -1.0 * reach, 40.0 + reach, 30.0 + reach}));
        auto round = [=](int dx, int dy) { return dx * dx + dy * dy <= radius * radius; };
        EXPECT_LT(error(image, extreme(p, reach, 1, round)), 1e-6) << radius;
    }
    EXPECT_LT(error(morphed("CIMorphologyMaximum", p, 0), p), 1e-6);
}

// Core Image's picture of a picture with sharp corners: at radius 2 the corner of the extent is cut so.
TEST(CIMorphologyMaximum, RoundsTheCornerAsCoreImageDoes) {
    Picture opaque = filled(0, 0, 20, 20, [](int, int) { return Pixel{0.2, 0.3, 0.4, 1}; });
    Picture out = rendered(morphed("CIMorphologyMaximum", opaque, 2), -2, -2, 24, 24);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x) EXPECT_EQ(out.at(x - 2, y - 2)[3], x + y >= 2 ? 1 : 0) << x << ' ' << y;
}

TEST(CIMorphologyMaximum, IsTheSameInTiles) {
    Image image = morphed("CIMorphologyMaximum", noise(40, 30, 6), 6);
    EXPECT_EQ(difference(rendered(image, -8, -8, 60, 50), inTiles(image, -8, -8, 60, 50)), 0);
}

TEST(CIMorphologyMinimum, IsTheSmallestInADisc) {
    Picture p = noise(40, 30, 7);
    Image image = morphed("CIMorphologyMinimum", p, 3);
    EXPECT_EQ(image->extent(), (Rect{3, 3, 37, 27}));
    auto round = [](int dx, int dy) { return dx * dx + dy * dy <= 9; };
    EXPECT_LT(error(image, extreme(p, 3, -1, round)), 1e-6);
    EXPECT_TRUE(morphed("CIMorphologyMinimum", p, 15)->extent().isEmpty());
}

TEST(CIMorphologyGradient, ShowsEdgesOnly) {
    Picture p = filled(0, 0, 40, 30, [](int x, int) {
        return x < 20 ? Pixel{0.2, 0, 0, 1} : Pixel{0.9, 0.5, 0, 1};
    });
    Image image = morphed("CIMorphologyGradient", p, 3);
    Picture out = rendered(image, 0, 0, 40, 30);
    for (int x = 3; x < 37; ++x) {
        bool near = x >= 17 && x < 23;
        EXPECT_NEAR(out.at(x, 15)[0], near ? 0.7 : 0, 1e-6) << x;
        EXPECT_NEAR(out.at(x, 15)[1], near ? 0.5 : 0, 1e-6) << x;
        EXPECT_EQ(out.at(x, 15)[3], 1) << x;
    }
}

TEST(CIMorphologyRectangleMaximum, RoundsSidesToOddNumbers) {
    Picture p = noise(40, 30, 8);
    for (double height : {6.0, 7.0}) {
        Image image = filter("CIMorphologyRectangleMaximum",
                             {{"inputImage", imageOf(p)}, {"inputWidth", 3.0}, {"inputHeight", height}});
        EXPECT_EQ(image->extent(), (Rect{-1, -3, 41, 33}));
        EXPECT_LT(error(image, extreme(p, 3, 1, [](int dx, int) { return std::abs(dx) <= 1; })), 1e-6);
    }
}

TEST(CIMorphologyRectangleMinimum, IsTheSmallestInARectangle) {
    Picture p = noise(40, 30, 9);
    Image image = filter("CIMorphologyRectangleMinimum",
                         {{"inputImage", imageOf(p)}, {"inputWidth", 5.0}, {"inputHeight", 1.0}});
    EXPECT_EQ(image->extent(), (Rect{2, 0, 38, 30}));
    auto line = [](int dx, int dy) { return std::abs(dx) <= 2 && dy == 0; };
    EXPECT_LT(error(image, extreme(p, 2, -1, line)), 1e-6);
}
