// The filters that automatic adjustment is made of, the single-colour ones and the masks, against references
// in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// Straight colour made darker or brighter.
Pixel times(const Pixel& q, double f) { return {q[0] * f, q[1] * f, q[2] * f, q[3]}; }

/// Cubic Hermite interpolation with Fritsch and Butland's slopes.
double curveAt(const std::vector<Point>& p, double x) {
    auto slope = [&](std::size_t i) { return (p[i + 1].y - p[i].y) / (p[i + 1].x - p[i].x); };
    auto width = [&](std::size_t i) { return p[i + 1].x - p[i].x; };
    auto tangent = [&](std::size_t i) {
        auto atEnd = [&](std::size_t near, std::size_t far) {
            double h0 = width(near), h1 = width(far), d0 = slope(near), d1 = slope(far);
            double m = d0 + h0 / (h0 + h1) * (d0 - d1);
            if (m * d0 <= 0) return 0.0;
            return d0 * d1 < 0 ? std::copysign(std::min(std::abs(m), 3 * std::abs(d0)), d0) : m;
        };
        if (i == 0) return atEnd(0, 1);
        if (i == 4) return atEnd(3, 2);
        double before = slope(i - 1), after = slope(i);
        if (before * after <= 0) return 0.0;
        double share = (width(i - 1) + 2 * width(i)) / (3 * (width(i - 1) + width(i)));
        return before * after / (share * after + (1 - share) * before);
    };
    if (x <= p[0].x) return p[0].y;
    if (x >= p[4].x) return p[4].y;
    std::size_t i = 0;
    while (x > p[i + 1].x) ++i;
    double h = width(i), t = (x - p[i].x) / h;
    return (1 + 2 * t) * (1 - t) * (1 - t) * p[i].y + t * (1 - t) * (1 - t) * h * tangent(i) +
           t * t * (3 - 2 * t) * p[i + 1].y + t * t * (t - 1) * h * tangent(i + 1);
}

Image toneCurve(const Image& image, const std::vector<Point>& p) {
    Values values{{"inputImage", image}};
    for (int i = 0; i < 5; ++i) values["inputPoint" + std::to_string(i)] = Numbers{p[i].x, p[i].y};
    return filter("CIToneCurve", values);
}

} // namespace

// --------------------------------------------------------------------------------------------- tone and
// colour

TEST(Adjustment, VibranceChangesDullColoursMost) {
    Picture p = noise(61, 17, 31);
    for (double amount : {0.7, -0.6}) {
        Picture expected = mapped(p, [&](Pixel q) {
            double y = luminance(q), high = std::max({q[0], q[1], q[2]}), low = std::min({q[0], q[1], q[2]});
            double t = q[0] > q[2] ? std::clamp((q[1] - q[2]) / (q[0] - q[2]), 0.0, 1.0) : 0;
            double gain = 1 + amount * (high > 0 ? low / high : 1) * (1 - 2 * t + 2 * t * t);
            return Pixel{y + gain * (q[0] - y), y + gain * (q[1] - y), y + gain * (q[2] - y), q[3]};
        });
        Values values{{"inputImage", imageOf(p)}, {"inputAmount", amount}};
        EXPECT_LT(error(filter("CIVibrance", values), expected), floatError) << amount;
    }
}

TEST(Adjustment, ToneCurveIsASmoothCurveOfCodedColour) {
    Picture p = noise(61, 17, 32);
    const std::vector<std::vector<Point>> curves{
        {{0, 0}, {0.25, 0.35}, {0.5, 0.65}, {0.75, 0.85}, {1, 1}},
        {{0.08, 0}, {0.2, 0.1}, {0.5, 0.5}, {0.6, 0.8}, {0.9, 0.95}},
        {{0, 1}, {0.25, 0.3}, {0.5, 0.6}, {0.75, 0.2}, {1, 0}}, // up and down
        {{0, 0.2}, {0.3, 0.2}, {0.5, 0.2}, {0.75, 0.9}, {1, 0.7}},
    };
    for (const auto& curve : curves) {
        Picture expected = mapped(p, [&](Pixel q) {
            for (int c = 0; c < 3; ++c) q[c] = linear(curveAt(curve, coded(q[c])));
            return q;
        });
        EXPECT_LT(error(toneCurve(imageOf(p), curve), expected), floatError);
        auto shuffled = curve;
        std::swap(shuffled[1], shuffled[3]);
        EXPECT_LT(error(toneCurve(imageOf(p), shuffled), expected), floatError) << "the order of points";
    }
}

TEST(Adjustment, ToneCurveNeverLeavesItsPoints) {
    // The points of a step, where other splines swing.
    std::vector<Point> step{{0, 0.1}, {0.45, 0.1}, {0.5, 0.5}, {0.55, 0.9}, {1, 0.9}};
    Picture ramp = filled(0, 0, 400, 1, [](int x, int) {
        double v = linear(x / 399.);
        return Pixel{v, v, v, 1};
    });
    Picture got = rendered(toneCurve(imageOf(ramp), step), 0, 0, 400, 1);
    double last = 0;
    for (int x = 0; x < 400; ++x) {
        double v = coded(got.get(x, 0)[0]);
        ASSERT_GT(v, 0.1 - 1e-5);
        ASSERT_LT(v, 0.9 + 1e-5);
        ASSERT_GE(v, last - 1e-5) << x;
        last = v;
    }
    EXPECT_GT(last, 0.89);
}

TEST(Adjustment, PointsAboveEachOtherMakeAStep) {
    Picture p = filled(0, 0, 2, 1, [](int x, int) {
        double v = linear(x ? 0.6 : 0.4);
        return Pixel{v, v, v, 1};
    });
    Picture got =
        rendered(toneCurve(imageOf(p), {{0, 0}, {0.5, 0}, {0.5, 0.5}, {0.5, 1}, {1, 1}}), 0, 0, 2, 1);
    EXPECT_NEAR(got.get(0, 0)[0], 0, floatError);
    EXPECT_NEAR(got.get(1, 0)[0], 1, floatError);
}

TEST(Adjustment, ToneCurveOnTheDiagonalIsThePictureItself) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIToneCurve", {{"inputImage", image}}), image);
    EXPECT_EQ(filter("CIVibrance", {{"inputImage", image}}), image);
    EXPECT_EQ(filter("CIHighlightShadowAdjust", {{"inputImage", image}}), image);
    EXPECT_EQ(filter("CIFaceBalance", {{"inputImage", image}}), image);
    EXPECT_EQ(filter("CIRedEyeCorrections", {{"inputImage", image}}), image);
}

TEST(Adjustment, HighlightsAndShadowsFollowTheirSurroundings) {
    Picture p = noise(70, 50, 34);
    for (double radius : {0.0, 3.0}) {
        Picture guide = radius > 0 ? trueGaussian(p, radius) : p;
        Picture expected = filled(0, 0, 70, 50, [&](int x, int y) {
            Pixel g = guide.get(x, y);
            double l = g[3] > 0 ? coded(std::min(luminance(g) / g[3], 1.0)) : 0;
            return times(p.get(x, y), std::exp2(2 * 0.8 * std::pow(1 - l, 3) - 1.2 * 0.6 * l * l));
        });
        Values values{{"inputImage", imageOf(p)},
                      {"inputRadius", radius},
                      {"inputShadowAmount", 0.8},
                      {"inputHighlightAmount", 0.4}};
        Image image = filter("CIHighlightShadowAdjust", values);
        EXPECT_EQ(image->extent(), (Rect{0, 0, 70, 50}));
        // The engine's Gaussian ends where it is small.
        EXPECT_LT(error(image, expected), radius > 0 ? halfStep : 1e-4) << radius;
    }
}

TEST(Adjustment, HighlightsAndShadowsKeepTheOrderOfBrightness) {
    Picture ramp = filled(0, 0, 500, 1, [](int x, int) {
        double v = linear(x / 499.);
        return Pixel{v, v, v, 1};
    });
    for (double shadow : {-1.0, 0.0, 1.0})
        for (double highlight : {0.0, 0.3, 1.0}) {
            Values values{{"inputImage", imageOf(ramp)},
                          {"inputShadowAmount", shadow},
                          {"inputHighlightAmount", highlight}};
            Picture got = rendered(filter("CIHighlightShadowAdjust", values), 0, 0, 500, 1);
            for (int x = 1; x < 500; ++x)
                ASSERT_GT(got.get(x, 0)[0], got.get(x - 1, 0)[0]) << shadow << ' ' << highlight << ' ' << x;
        }
}

TEST(Adjustment, FaceBalanceMovesChromaToThatOfSkin) {
    Picture p = noise(41, 13, 35);
    double strength = 0.7, warmth = 0.8, origI = 0.02, origQ = 0.05;
    double di = strength * (0.103905 * 1.3 - origI), dq = strength * (0.0176465 - origQ);
    Picture expected = mapped(p, [&](Pixel q) {
        double c[3] = {coded(q[0]), coded(q[1]), coded(q[2])};
        double y = 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2], w = 1 - (1 - y) * (1 - y);
        // The inverse of (.299 .587 .114; .595716 -.274453 -.321263; .211456 -.522591 .311135).
        return Pixel{linear(c[0] + w * (0.9562957 * di + 0.6210244 * dq)),
                     linear(c[1] + w * (-0.2721221 * di - 0.6473806 * dq)),
                     linear(c[2] + w * (-1.1069890 * di + 1.7046150 * dq)), q[3]};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputOrigI", origI},
                  {"inputOrigQ", origQ},
                  {"inputStrength", strength},
                  {"inputWarmth", warmth}};
    EXPECT_LT(error(filter("CIFaceBalance", values), expected), 5e-5);
}

TEST(Adjustment, RedEyesLoseTheirRed) {
    auto smooth = [](double t) {
        t = std::clamp(t, 0.0, 1.0);
        return t * t * (3 - 2 * t);
    };
    Picture p = filled(0, 0, 900, 40, [](int x, int y) {
        // Pupil red and skin, as a checkerboard with a dark and a bright half.
        double f = x < 30 ? 0.2 : 1;
        return (x + y) % 2 ? Pixel{0.5 * f, 0.02 * f, 0.03 * f, 1} : Pixel{0.7 * f, 0.4 * f, 0.3 * f, 1};
    });
    Numbers pupils{20, 15, 8, 700.5, 21, 6, 5, 5, -3, 1}; // one with an impossible radius, and a left-over
    Picture expected = filled(0, 0, 900, 40, [&](int x, int y) {
        Pixel q = p.get(x, y);
        for (int k : {0, 3}) {
            double d = std::hypot(x + 0.5 - pupils[k], y + 0.5 - pupils[k + 1]) / pupils[k + 2];
            double t = smooth((1.2 - d) / 0.4) * smooth((q[0] / std::max(q[1], q[2]) - 3) / 3);
            q[0] += t * ((q[1] + q[2]) / 2 - q[0]);
        }
        return q;
    });
    Image image =
        filter("CIRedEyeCorrections", {{"inputImage", imageOf(p)}, {"inputCorrectionInfo", pupils}});
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_LT(expected.get(20, 15)[0], 0.03) << "a pupil";
    EXPECT_EQ(expected.get(21, 15)[0], p.get(21, 15)[0]) << "skin beside it";
}

// --------------------------------------------------------------------------------------------------- one
// colour

TEST(Adjustment, WhitePointMultipliesLight) {
    Picture p = noise(31, 9, 36);
    Color white{1, 0.6, 0.3, 0.5};
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {q[0], q[1] * linear(0.6), q[2] * linear(0.3), q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputColor", white}};
    EXPECT_LT(error(filter("CIWhitePointAdjust", values), expected), floatError);
}

TEST(Adjustment, WhitePointAgreesWithCoreImage) {
    // What Core Image made of some pixels, sRGB, with the colour (255, 86, 172).
    struct Sample {
        int from[3], to[3];
    };
    const Sample samples[] = {
        {{126, 115, 85}, {126, 34, 54}}, {{143, 133, 104}, {143, 41, 67}}, {{120, 83, 37}, {120, 22, 22}},
        {{109, 71, 25}, {109, 17, 13}},  {{55, 63, 66}, {55, 15, 41}},     {{135, 116, 82}, {135, 34, 53}},
        {{61, 70, 75}, {61, 17, 48}},    {{144, 137, 111}, {144, 42, 73}}, {{74, 63, 35}, {74, 14, 20}},
        {{142, 69, 47}, {142, 17, 28}},  {{53, 28, 13}, {53, 4, 5}},       {{137, 124, 89}, {137, 37, 57}}};
    int count = static_cast<int>(std::size(samples));
    Picture p = filled(0, 0, count, 1, [&](int x, int) {
        const int* from = samples[x].from;
        return Pixel{linear(from[0] / 255.), linear(from[1] / 255.), linear(from[2] / 255.), 1};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputColor", Color{1, 86 / 255., 172 / 255., 1}}};
    Picture got = rendered(filter("CIWhitePointAdjust", values), 0, 0, count, 1);
    for (int x = 0; x < count; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(255 * coded(got.get(x, 0)[c]), samples[x].to[c], 1) << x << ' ' << c;
}

TEST(Adjustment, Monochrome) {
    Picture p = noise(31, 9, 37);
    Picture expected = mapped(p, [](Pixel q) {
        double y = luminance(q), tint[3] = {linear(0.2), linear(0.5), linear(0.9)};
        for (int c = 0; c < 3; ++c) q[c] += 0.7 * (y * tint[c] - q[c]);
        return q;
    });
    Values values{
        {"inputImage", imageOf(p)}, {"inputColor", Color{0.2, 0.5, 0.9, 1}}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIColorMonochrome", values), expected), floatError);
}

TEST(Adjustment, ExtremeComponents) {
    Picture p = noise(31, 9, 38);
    auto gray = [&](auto pick) {
        return mapped(p, [=](Pixel q) -> Pixel {
            double v = pick({q[0], q[1], q[2]});
            return {v, v, v, q[3]};
        });
    };
    using List = std::initializer_list<double>;
    EXPECT_LT(error(filter("CIMaximumComponent", {{"inputImage", imageOf(p)}}),
                    gray([](List v) { return std::max(v); })),
              floatError);
    EXPECT_LT(error(filter("CIMinimumComponent", {{"inputImage", imageOf(p)}}),
                    gray([](List v) { return std::min(v); })),
              floatError);
}

// --------------------------------------------------------------------------------------------------------
// masks

TEST(Masks, MixTwoPicturesByTheirLightOrAlpha) {
    Picture image = noise(40, 30, 39), background = noise(50, 20, 40), mask = noise(30, 40, 41);
    background.x0 = -10;
    mask.x0 = 5;
    for (bool byAlpha : {false, true}) {
        Picture expected = filled(-15, -5, 65, 50, [&](int x, int y) {
            Pixel a = image.get(x, y), b = background.get(x, y), m = mask.get(x, y), out;
            double t = byAlpha ? m[3] : luminance(m);
            for (int c = 0; c < 4; ++c) out[c] = t * a[c] + (1 - t) * b[c];
            return out;
        });
        Values values{{"inputImage", imageOf(image)},
                      {"inputBackgroundImage", imageOf(background)},
                      {"inputMaskImage", imageOf(mask)}};
        Image result = filter(byAlpha ? "CIBlendWithAlphaMask" : "CIBlendWithMask", values);
        EXPECT_EQ(result->extent(), (Rect{-10, 0, 40, 30}));
        EXPECT_LT(error(result, expected), floatError);
    }
}

TEST(Masks, WhatIsMissingIsClear) {
    Picture p = noise(20, 20, 42);
    Image image = imageOf(p), half = constant({1, 1, 1, 0.5});
    Picture faded = filled(0, 0, 20, 20, [&](int x, int y) {
        Pixel q = p.get(x, y);
        for (double& v : q) v *= 0.5;
        return q;
    });
    auto masked = [&](Values values) { return filter("CIBlendWithAlphaMask", values); };
    EXPECT_LT(error(masked({{"inputImage", image}, {"inputMaskImage", half}}), faded), floatError);
    EXPECT_LT(error(masked({{"inputBackgroundImage", image}, {"inputMaskImage", half}}), faded), floatError);
    EXPECT_EQ(masked({{"inputImage", image}, {"inputBackgroundImage", image}}), nullptr) << "no mask";
    EXPECT_EQ(masked({{"inputMaskImage", half}}), nullptr) << "no picture";
}

TEST(Masks, ReadOnlyWhatIsWanted) {
    Image endless = filter("CIBlendWithMask", {{"inputImage", constant({1, 0, 0, 1})},
                                               {"inputBackgroundImage", constant({0, 0, 1, 1})},
                                               {"inputMaskImage", filter("CILinearGradient", {})}});
    EXPECT_TRUE(endless->extent().isInfinite());
    Pixel q = rendered(endless, 100, 99, 1, 1).get(100, 99);
    EXPECT_NEAR(q[0], 0.5, 0.01);
    EXPECT_NEAR(q[2], 0.5, 0.01);
    EXPECT_EQ(planSummary(endless).passes, 1);
}
