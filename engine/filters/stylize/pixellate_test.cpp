// CIPixellate, against a reference in double precision.
#include "cells_reference.h"

using namespace reference;

TEST(CIPixellate, MakesSquaresOfOneColour) {
    Picture p = noise(41, 33, 91);
    for (double scale : {1.0, 7.0, 9.5}) {
        Picture expected = means(p, -12, -12, 65, 57, [&](int x, int y) {
            return std::pair(int(std::floor((x + 0.5 - 20.3) / scale + 0.5)),
                             int(std::floor((y + 0.5 - 11) / scale + 0.5)));
        });
        Image image =
            filter("CIPixellate",
                   {{"inputImage", imageOf(p)}, {"inputScale", scale}, {"inputCenter", Numbers{20.3, 11}}});
        EXPECT_LT(error(image, expected), floatError) << scale;
        EXPECT_LT(difference(inTiles(image, -12, -12, 65, 57), expected), floatError) << scale;
        EXPECT_TRUE(image->extent().contains({0, 0, 41, 33}));
    }
}
