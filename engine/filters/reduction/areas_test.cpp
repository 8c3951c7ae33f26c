// CIAreaAverage and CIAreaMaximum and CIAreaMinimum and CIAreaMaximumAlpha and CIAreaMinimumAlpha, against
// references in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// Calls `work` for every pixel of an area that lies partly beside the picture and above it.
const Numbers someArea{10.4, 5, 60, 33.3};
void eachOf(const Picture& p, const std::function<void(const Pixel&)>& work) {
    for (int y = 5; y < 38; ++y)
        for (int x = 10; x < 70; ++x) work(p.get(x, y));
}

Pixel reduced(const char* name, const Picture& p, const Numbers& extent) {
    Image image = filter(name, {{"inputImage", imageOf(p)}, {"inputExtent", extent}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 1, 1})) << name;
    return rendered(image, 0, 0, 1, 1).get(0, 0);
}

void expectNear(const Pixel& got, const Pixel& expected) {
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(got[c], expected[c], 1e-6) << c;
}

Picture bright() {
    return filled(0, 0, 9, 9, [](int x, int y) { return Pixel{0.5 + 0.01 * x, 0.5 + 0.01 * y, 0.5, 1}; });
}

const Picture& scattered() {
    static const Picture p = noise(50, 30, 38);
    return p;
}

} // namespace

TEST(CIAreaAverage, IsTheMeanOfAllPixels) {
    Pixel sum{};
    eachOf(scattered(), [&](const Pixel& q) {
        for (int c = 0; c < 4; ++c) sum[c] += q[c] / (60 * 33);
    });
    expectNear(reduced("CIAreaAverage", scattered(), someArea), sum);
}

TEST(CIAreaAverage, OfAnEndlessAreaIsThatOfThePicture) {
    EXPECT_NEAR(reduced("CIAreaAverage", bright(), {0, 0, 1e38, 1e38})[0], 0.54, 1e-6);
    Values nothing{{"inputImage", imageOf(bright())}, {"inputExtent", Numbers{0, 0, 0, 5}}};
    EXPECT_TRUE(filter("CIAreaAverage", nothing)->extent().isEmpty());
}

TEST(CIAreaMaximum, IsTheMostOfEachComponent) {
    Pixel most{};
    eachOf(scattered(), [&](const Pixel& q) {
        for (int c = 0; c < 4; ++c) most[c] = std::max(most[c], q[c]);
    });
    expectNear(reduced("CIAreaMaximum", scattered(), someArea), most);
}

TEST(CIAreaMinimum, IsTheLeastOfEachComponent) {
    expectNear(reduced("CIAreaMinimum", scattered(), someArea), {}); // of what is beside the picture
    expectNear(reduced("CIAreaMinimum", bright(), {2, 3, 4, 4}), {0.52, 0.53, 0.5, 1});
}

TEST(CIAreaMaximumAlpha, IsTheMostOpaquePixel) {
    Pixel opaque{};
    eachOf(scattered(), [&](const Pixel& q) {
        if (q[3] > opaque[3]) opaque = q;
    });
    expectNear(reduced("CIAreaMaximumAlpha", scattered(), someArea), opaque);
}

TEST(CIAreaMinimumAlpha, IsTheLeastOpaquePixel) {
    expectNear(reduced("CIAreaMinimumAlpha", scattered(), someArea), {});
    Picture p = bright();
    p.at(4, 5) = {0.2, 0.1, 0, 0.25};
    expectNear(reduced("CIAreaMinimumAlpha", p, {2, 3, 4, 4}), {0.2, 0.1, 0, 0.25});
}
