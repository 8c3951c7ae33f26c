// Generators against references, and against what Core Image made.
#include "reference.h"

using namespace reference;

TEST(GeneratorFilters, GaussianGradientEndsAtItsRadius) {
    Color from{1, 0.5, 0, 1}, to{0, 0.2, 0.8, 0.5};
    Image image = filter("CIGaussianGradient", {{"inputCenter", Numbers{30.5, 21}},
                                                {"inputRadius", 25.0},
                                                {"inputColor0", from},
                                                {"inputColor1", to}});
    Picture expected = filled(0, 0, 80, 60, [&](int x, int y) {
        double d = std::min(1.0, std::hypot(x + 0.5 - 30.5, y + 0.5 - 21) / 25);
        double t = (1 - std::exp(-4.5 * d * d)) / (1 - std::exp(-4.5));
        const double a[4] = {linear(from.r), linear(from.g), linear(from.b), 1};
        const double b[4] = {linear(to.r) * to.a, linear(to.g) * to.a, linear(to.b) * to.a, to.a};
        Pixel p;
        for (int c = 0; c < 4; ++c) p[c] = a[c] + t * (b[c] - a[c]);
        return p;
    });
    EXPECT_LT(error(image, expected), floatError);
}

TEST(GeneratorFilters, RandomNumbersAreEvenAndIndependent) {
    Image image = filter("CIRandomGenerator", {});
    EXPECT_EQ(image->extent(), Rect::infinite());
    Picture p = rendered(image, -150, -100, 300, 300);
    std::array<std::array<int, 10>, 4> counts{};
    std::array<double, 4> toRight{}, above{};
    double redGreen = 0;
    auto number = [&](int x, int y, int c) {
        Pixel q = p.get(x, y);
        return (c < 3 ? q[c] / q[3] : q[3]) - 0.5;
    };
    for (int y = -100; y < 199; ++y)
        for (int x = -150; x < 149; ++x) {
            for (int c = 0; c < 4; ++c) {
                ++counts[c][std::clamp(int((number(x, y, c) + 0.5) * 10), 0, 9)];
                toRight[c] += number(x, y, c) * number(x + 1, y, c);
                above[c] += number(x, y, c) * number(x, y + 1, c);
            }
            redGreen += number(x, y, 0) * number(x, y, 1);
        }
    double n = 299 * 299, fiveSigma = 5 / std::sqrt(n) / 12; // of the mean of products
    for (int c = 0; c < 4; ++c) {
        for (int count : counts[c]) EXPECT_NEAR(count, n / 10, 5 * std::sqrt(n / 10));
        EXPECT_LT(std::abs(toRight[c] / n), fiveSigma);
        EXPECT_LT(std::abs(above[c] / n), fiveSigma);
    }
    EXPECT_LT(std::abs(redGreen / n), fiveSigma);
    EXPECT_EQ(difference(rendered(image, 0, 0, 20, 20), part(p, 0, 0, 20, 20)), 0);
}

TEST(GeneratorFilters, HaloFadesAsCoreImageDoes) {
    Image image = filter("CILenticularHaloGenerator", {{"inputCenter", Numbers{100, 100}},
                                                       {"inputColor", Color{126 / 255., 1, 232 / 255., 1}},
                                                       {"inputHaloRadius", 50.0},
                                                       {"inputHaloWidth", 50.0},
                                                       {"inputHaloOverlap", 1.0},
                                                       {"inputStriationStrength", 1.0},
                                                       {"inputStriationContrast", 1.0},
                                                       {"inputTime", 1.0}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 200, 200}));
    Picture p = rendered(image, 0, 0, 200, 200);
    // Means of Core Image's alpha over rings, a pixel wide.
    const std::pair<int, double> rings[] = {
        {46, 0},      {52, 0.0139}, {55, 0.0605}, {58, 0.1320}, {61, 0.2134}, {67, 0.3829}, {73, 0.4857},
        {76, 0.4847}, {82, 0.3813}, {88, 0.2153}, {94, 0.0600}, {97, 0.0137}, {100, 0}};
    for (auto [radius, mean] : rings) {
        double sum = 0, squares = 0, count = 0;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) {
                double d = std::hypot(x + 0.5 - 100, y + 0.5 - 100), a = p.get(x, y)[3];
                if (d < radius || d >= radius + 1) continue;
                sum += a, squares += a * a, ++count;
            }
        // The rays are others, so that their means differ a little.
        EXPECT_NEAR(sum / count, mean, 0.06 * mean + 0.001) << radius;
        if (radius == 73) {
            double spread = std::sqrt(squares / count - sum * sum / count / count);
            EXPECT_NEAR(spread, 0.19, 0.04);
        }
    }
    // The colour is the same all over.
    Pixel q = p.get(100, 173);
    EXPECT_NEAR(q[0] / q[3], linear(126 / 255.), 1e-4);
    EXPECT_NEAR(q[2] / q[3], linear(232 / 255.), 1e-4);
}

TEST(GeneratorFilters, SunbeamsShineFromADisc) {
    Image image = filter("CISunbeamsGenerator", {{"inputSunRadius", 10.0}, {"inputMaxStriationRadius", 3.0}});
    EXPECT_EQ(image->extent(), (Rect{110, 110, 190, 190}));
    Picture p = rendered(image, 100, 100, 100, 100);
    double before = 1;
    for (int ring = 0; ring < 40; ring += 5) {
        double sum = 0, count = 0;
        for (int y = 100; y < 200; ++y)
            for (int x = 100; x < 200; ++x) {
                double d = std::hypot(x + 0.5 - 150, y + 0.5 - 150);
                if (d < 9.5) EXPECT_NEAR(p.get(x, y)[3], 1, floatError);
                if (d > 40.5) EXPECT_EQ(p.get(x, y)[3], 0);
                if (d >= ring && d < ring + 5) sum += p.get(x, y)[3], ++count;
            }
        EXPECT_LE(sum / count, before + 1e-6) << ring;
        before = sum / count;
    }
    EXPECT_EQ(difference(inTiles(image, 100, 100, 100, 100, 16), p), 0);
}

TEST(GeneratorFilters, QRCodesAreAsCoreImageWritesThem) {
    const std::string text = "Hello world";
    Image image = filter("CIQRCodeGenerator", {{"inputMessage", Bytes(text.begin(), text.end())},
                                               {"inputCorrectionLevel", std::string("L")}});
    const char* rows[] = {".......................", ".#######.#.###.#######.", ".#.....#...##..#.....#.",
                          ".#.###.#.##.#..#.###.#.", ".#.###.#.##..#.#.###.#.", ".#.###.#.#..#..#.###.#.",
                          ".#.....#..####.#.....#.", ".#######.#.#.#.#######.", "............##.........",
                          ".####..#.######..###.#.", "..#..##.#.#.########.#.", "...##.##.####.#.#...##.",
                          ".##.##..##.##...#.#.#..", "...#.#.#..#..###.....#.", ".........#..#..###.#.#.",
                          ".#######...#######.....", ".#.....#..##..#.#.####.", ".#.###.#..##.#....##...",
                          ".#.###.#.##....#..###..", ".#.###.#.#.#.#..#..#...", ".#.....#.#.##.####...#.",
                          ".#######.####.###..#...", "......................."};
    EXPECT_EQ(image->extent(), (Rect{0, 0, 23, 23}));
    EXPECT_EQ(error(image, filled(0, 0, 23, 23,
                                  [&](int x, int y) {
                                      double white = rows[22 - y][x] == '.';
                                      return Pixel{white, white, white, 1};
                                  })),
              0);
    // The higher level needs a larger code; what no code can hold gives nothing.
    EXPECT_EQ(filter("CIQRCodeGenerator",
                     {{"inputMessage", Bytes(18, 'x')}, {"inputCorrectionLevel", std::string("H")}})
                  ->extent()
                  .width(),
              31);
    EXPECT_TRUE(filter("CIQRCodeGenerator", {{"inputMessage", Bytes(5000, 1)}})->extent().isEmpty());
    EXPECT_TRUE(filter("CIQRCodeGenerator", {})->extent().isEmpty());
}
