// Distortions, against where their pixels come from in double precision.
#include "reference.h"

using namespace reference;

namespace {

constexpr double placeError = 1e-4; // places are kept in single precision, times the steepest edge

const Point centre{31.2, 27.7};

Picture comesFrom(const Picture& p, const std::function<Point(Point)>& place) {
    return filled(-40, -40, 140, 140, [&](int x, int y) {
        Point from = place({x + 0.5 - centre.x, y + 0.5 - centre.y});
        return bilinear(p, centre.x + from.x, centre.y + from.y);
    });
}

Image distorted(const char* name, const Picture& p, Values values) {
    values["inputImage"] = imageOf(p);
    if (findFilter(name)->findInput("inputCenter")) values["inputCenter"] = Numbers{centre.x, centre.y};
    return filter(name, values);
}

double tileError(const Image& image) {
    return difference(rendered(image, -40, -40, 140, 140), inTiles(image, -40, -40, 140, 140, 16));
}

/// How far light is moved by a half circle of glass with radius 1.
double refracted(double q, double refraction) {
    double in = std::asin(std::abs(q)), out = std::asin(std::min(std::abs(q) / refraction, 1.0));
    return std::copysign(std::cos(in) * std::tan(in - out), q);
}

} // namespace

TEST(Distortions, RidgesMoveAlongALine) {
    Picture p = noise(60, 60, 80);
    for (double scale : {0.7, -0.9}) {
        Image image = distorted("CIBumpDistortionLinear", p,
                                {{"inputRadius", 19.0}, {"inputAngle", 0.5}, {"inputScale", scale}});
        Picture expected = comesFrom(p, [&](Point q) {
            double d = q.y * std::cos(0.5) - q.x * std::sin(0.5), inside = std::max(0.0, 1 - d * d / 361);
            double move = scale * inside * inside * d;
            return Point{q.x + move * std::sin(0.5), q.y - move * std::cos(0.5)};
        });
        EXPECT_LT(error(image, expected), placeError);
        EXPECT_LT(tileError(image), placeError);
    }
}

TEST(Distortions, SplashesDrawTheRimOutwards) {
    Picture p = noise(60, 60, 81);
    Image image = distorted("CICircleSplashDistortion", p, {{"inputRadius", 14.0}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    EXPECT_LT(error(image, comesFrom(p,
                                     [](Point q) {
                                         double f = std::min(1.0, 14 / std::hypot(q.x, q.y));
                                         return Point{q.x * f, q.y * f};
                                     })),
              placeError);
    EXPECT_LT(tileError(image), placeError);
    EXPECT_EQ(image->regionOfInterest(0, {900, 900, 901, 901}),
              (Rect{centre.x - 15, centre.y - 15, centre.x + 15, centre.y + 15}));
}

TEST(Distortions, HolesPushOutwards) {
    Picture p = noise(60, 60, 82);
    Image image = distorted("CIHoleDistortion", p, {{"inputRadius", 11.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double d = std::hypot(q.x, q.y), f = d > 11 ? 1 - 121 / (d * d) : 0;
        return Point{q.x * f, q.y * f};
    });
    for (int y = -40; y < 100; ++y)
        for (int x = -40; x < 100; ++x)
            for (double& v : expected.at(x, y))
                v *= std::clamp(std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y) - 10.5, 0.0, 1.0);
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(tileError(image), placeError);
}

TEST(Distortions, WrapsLieOnACircle) {
    Picture p = noise(60, 20, 83);
    Image image = distorted("CICircularWrap", p, {{"inputRadius", 16.0}, {"inputAngle", 0.6}});
    Picture expected = comesFrom(p, [](Point q) {
        // Turned back, the middle of the picture is at the top.
        Point t{q.x * std::cos(0.6) + q.y * std::sin(0.6), q.y * std::cos(0.6) - q.x * std::sin(0.6)};
        return Point{30 + 16 * std::atan2(t.x, t.y) - centre.x, std::hypot(t.x, t.y) - 16 - centre.y};
    });
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(tileError(image), placeError);
}

TEST(Distortions, VorticesTurnTheMiddleMost) {
    Picture p = noise(60, 60, 84);
    Image image = distorted("CIVortexDistortion", p, {{"inputRadius", 24.0}, {"inputAngle", 7.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double turn = -7 * std::pow(std::max(0.0, 1 - std::hypot(q.x, q.y) / 24), 4);
        return Point{q.x * std::cos(turn) - q.y * std::sin(turn),
                     q.x * std::sin(turn) + q.y * std::cos(turn)};
    });
    EXPECT_LT(error(image, expected), placeError);
}

TEST(Distortions, LensesBendLight) {
    Picture p = noise(60, 60, 85);
    for (double refraction : {1.7, 0.8}) {
        Image torus =
            distorted("CITorusLensDistortion", p,
                      {{"inputRadius", 22.0}, {"inputWidth", 12.0}, {"inputRefraction", refraction}});
        Picture expected = comesFrom(p, [&](Point q) {
            double d = std::hypot(q.x, q.y), e = (d - 16) / 6;
            double f = std::abs(e) < 1 ? 1 - 6 * refracted(e, refraction) / d : 1;
            return Point{q.x * f, q.y * f};
        });
        EXPECT_LT(error(torus, expected), placeError) << refraction;
        Image lozenge = distorted("CIGlassLozenge", p,
                                  {{"inputPoint0", Numbers{20, 15}},
                                   {"inputPoint1", Numbers{38, 30}},
                                   {"inputRadius", 13.0},
                                   {"inputRefraction", refraction}});
        expected = comesFrom(p, [&](Point q) {
            Point a{20 - centre.x, 15 - centre.y}, s{18, 15};
            double along =
                std::clamp(((q.x - a.x) * s.x + (q.y - a.y) * s.y) / (18 * 18 + 15 * 15), 0.0, 1.0);
            Point foot{a.x + along * s.x, a.y + along * s.y};
            double d = std::hypot(q.x - foot.x, q.y - foot.y);
            double f = d < 13 ? 1 - 13 * refracted(d / 13, refraction) / d : 1;
            return Point{foot.x + f * (q.x - foot.x), foot.y + f * (q.y - foot.y)};
        });
        EXPECT_LT(error(lozenge, expected), placeError) << refraction;
        EXPECT_LT(tileError(lozenge), placeError);
    }
}

TEST(Distortions, MapsMoveByRedAndGreen) {
    Picture p = noise(60, 60, 86), map = noise(40, 50, 87);
    Image image = distorted("CIDisplacementDistortion", p,
                            {{"inputDisplacementImage", imageOf(map)}, {"inputScale", 9.0}});
    Picture expected = filled(-40, -40, 140, 140, [&](int x, int y) {
        Pixel m = map.get(x, y);
        return bilinear(p, x + 0.5 + 9 * (m[0] - m[3] / 2), y + 0.5 + 9 * (m[1] - m[3] / 2));
    });
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(tileError(image), placeError);
    // Without a map, or by nothing, it stays as it is.
    EXPECT_LT(error(distorted("CIDisplacementDistortion", p, {}), p), floatError);
}

TEST(Distortions, GlassBendsByTheSlopeOfItsTexture) {
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
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(tileError(image), placeError);
}
