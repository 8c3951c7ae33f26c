// CITorusLensDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CITorusLensDistortion, BendsLightInARing) {
    Picture p = noise(60, 60, 85);
    for (double refraction : {1.7, 0.8}) {
        Image image =
            distorted("CITorusLensDistortion", p,
                      {{"inputRadius", 22.0}, {"inputWidth", 12.0}, {"inputRefraction", refraction}});
        Picture expected = comesFrom(p, [&](Point q) {
            double d = std::hypot(q.x, q.y), e = (d - 16) / 6;
            double f = std::abs(e) < 1 ? 1 - 6 * refracted(e, refraction) / d : 1;
            return Point{q.x * f, q.y * f};
        });
        EXPECT_LT(error(image, expected), distortionError) << refraction;
    }
}
