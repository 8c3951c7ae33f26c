// CIColorAbsoluteDifference, against its definition.
#include "reference.h"

using namespace reference;

TEST(CIColorAbsoluteDifference, IsOfStraightColors) {
    Picture p = noise(30, 20, 1), q = noise(25, 30, 2);
    Picture expected = filled(0, 0, 30, 30, [&](int x, int y) {
        Pixel a = p.get(x, y), b = q.get(x, y), out{};
        out[3] = a[3] * b[3];
        for (int c = 0; c < 3; ++c) out[c] = out[3] > 0 ? out[3] * std::abs(a[c] / a[3] - b[c] / b[3]) : 0;
        return out;
    });
    Image image =
        filter("CIColorAbsoluteDifference", {{"inputImage", imageOf(p)}, {"inputImage2", imageOf(q)}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 25, 20}));
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_EQ(filter("CIColorAbsoluteDifference", {{"inputImage", imageOf(p)}}), nullptr);
}
