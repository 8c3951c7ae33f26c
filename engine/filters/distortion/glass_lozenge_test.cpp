// CIGlassLozenge, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIGlassLozenge, BendsLightAroundALine) {
    Picture p = noise(60, 60, 85);
    for (double refraction : {1.7, 0.8}) {
        Image image = distorted("CIGlassLozenge", p,
                                {{"inputPoint0", Numbers{20, 15}},
                                 {"inputPoint1", Numbers{38, 30}},
                                 {"inputRadius", 13.0},
                                 {"inputRefraction", refraction}});
        Picture expected = comesFrom(p, [&](Point q) {
            Point a{20 - centre.x, 15 - centre.y}, s{18, 15};
            double along =
                std::clamp(((q.x - a.x) * s.x + (q.y - a.y) * s.y) / (18 * 18 + 15 * 15), 0.0, 1.0);
            Point foot{a.x + along * s.x, a.y + along * s.y};
            double d = std::hypot(q.x - foot.x, q.y - foot.y);
            double f = d < 13 ? 1 - 13 * refracted(d / 13, refraction) / d : 1;
            return Point{foot.x + f * (q.x - foot.x), foot.y + f * (q.y - foot.y)};
        });
        EXPECT_LT(error(image, expected), distortionError) << refraction;
        EXPECT_LT(tileError(image), distortionError) << refraction;
    }
}
