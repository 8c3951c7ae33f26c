// CIRowAverage and CIColumnAverage, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

const Numbers someArea{25, 12, 22, 26}; // partly outside of the picture, where all is transparent

} // namespace

TEST(CIRowAverage, IsTheMeanOfEachRow) {
    Picture p = noise(40, 30, 101), expected(0, 0, 26, 1);
    for (int y = 0; y < 26; ++y)
        for (int x = 0; x < 22; ++x)
            for (int c = 0; c < 4; ++c) expected.at(y, 0)[c] += p.get(25 + x, 12 + y)[c] / 22;
    Values values{{"inputImage", imageOf(p)}, {"inputExtent", someArea}};
    Image image = filter("CIRowAverage", values);
    EXPECT_EQ(image->extent(), (Rect{0, 0, 26, 1}));
    EXPECT_LT(error(image, expected), 1e-6);
    EXPECT_LT(difference(inTiles(image, 0, 0, 26, 1), expected), 1e-6);
    values["inputExtent"] = Numbers{0, 0, -0.0, 5};
    EXPECT_TRUE(filter("CIRowAverage", values)->extent().isEmpty());
}

TEST(CIColumnAverage, IsTheMeanOfEachColumn) {
    Picture p = noise(40, 30, 101), expected(0, 0, 22, 1);
    for (int y = 0; y < 26; ++y)
        for (int x = 0; x < 22; ++x)
            for (int c = 0; c < 4; ++c) expected.at(x, 0)[c] += p.get(25 + x, 12 + y)[c] / 26;
    Image image = filter("CIColumnAverage", {{"inputImage", imageOf(p)}, {"inputExtent", someArea}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 22, 1}));
    EXPECT_LT(error(image, expected), 1e-6);
}
