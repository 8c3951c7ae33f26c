// CIGlassDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIGlassDistortion, BendsByTheSlopeOfItsTexture) {
    Picture p = noise(60, 60, 88), texture = noise(16, 12, 89, true);
    Image image =
        distorted("CIGlassDistortion", p, {{"inputTexture", imageOf(texture)}, {"inputScale", 7.0}});
    auto height = [&](int x, int y) {
        // The centre, in whole pixels, is where a copy begins.
        Pixel t = texture.get(((x - 31) % 16 + 16) % 16, ((y - 27) % 12 + 12) % 12);
        return (t[0] + t[1] + t[2]) / 3;
    };
    Picture expected = filled(-40, -40, 140, 140, [&](int x, int y) {
        return bilinear(p, x + 0.5 + 7 * (height(x + 1, y) - height(x - 1, y)),
                        y + 0.5 + 7 * (height(x, y + 1) - height(x, y - 1)));
    });
    EXPECT_LT(error(image, expected), distortionError);
    EXPECT_LT(tileError(image), distortionError);
}
