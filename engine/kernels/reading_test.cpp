// Kernels that read images: what they read, where, and that neither tiles nor expectations change it.
#include "kernel_texts.h"

using namespace kernel_texts;

namespace {

constexpr double floatStep = 2e-6, roundingError = 1e-7; // some roundings, and one

/// A picture, in whole and in tiles, against what it should be.
void expectPicture(const Image& image, const Picture& expected, double most = floatStep) {
    int x = expected.x0, y = expected.y0, w = expected.width, h = expected.height;
    Picture whole = rendered(image, x, y, w, h);
    EXPECT_LT(difference(whole, expected), most);
    for (int size : {7, 64}) EXPECT_EQ(difference(inTiles(image, x, y, w, h, size), whole), 0) << size;
}

Image applied(const std::string& text, const std::vector<Argument>& arguments,
              const Rect& extent = Rect::infinite(), RegionFunction region = {}) {
    return engine::kernels::apply(kernel(text), arguments, extent, std::move(region));
}

std::string refusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::invalid_argument& refused) {
        return refused.what();
    }
    return {};
}

const char* const copies = "kernel vec4 k(sampler s) { return sample(s, samplerCoord(s)); }";

} // namespace

TEST(KernelReading, APixelOfItsOwnPlace) {
    Picture p = noise(150, 20, 1);
    Picture around = filled(-3, -3, 156, 26, [&](int x, int y) { return p.get(x, y); });
    for (const char* text : {copies, "kernel vec4 k(__sample s) { return s; }",
                             "kernel vec4 k(sampler s) { return sample(s, destCoord()); }",
                             "vec4 f(sampler t, vec2 at) { return sample(t, at); } "
                             "kernel vec4 k(sampler s) { return f(s, samplerTransform(s, destCoord())); }"}) {
        Image image = applied(text, {samplerOf(p)});
        expectPicture(image, around, roundingError);
        EXPECT_EQ(planSummary(image).passes, 1) << text; // row by row, without a buffer
    }
}

TEST(KernelReading, NeighboursAWholeNumberOfPixelsAway) {
    Picture p = noise(150, 40, 2);
    for (Wrap wrap : {Wrap::black, Wrap::clamp}) {
        auto at = [&](int x, int y) { return wrap == Wrap::black ? p.get(x, y) : clamped(p, x, y); };
        Picture expected = filled(-9, -9, 170, 60, [&](int x, int y) {
            Pixel sum{};
            for (int c = 0; c < 4; ++c) sum[c] = at(x - 2, y)[c] + 0.5 * at(x + 3, y - 7)[c];
            return sum;
        });
        expectPicture(
            applied(
                "kernel vec4 k(sampler s) { vec2 here = samplerCoord(s); return sample(s, here - vec2(2.0, "
                "0.0)) + 0.5 * sample(s, here + vec2(3.0, -7.0)); }",
                {samplerOf(p, wrap)}),
            expected);
    }
    // An argument moves as well as a number of the text.
    Picture moved = filled(0, 0, 150, 40, [&](int x, int y) { return p.get(x + 5, y - 4); });
    expectPicture(applied("kernel vec4 k(sampler s, vec2 v) { return sample(s, destCoord() + v); }",
                          {samplerOf(p), Numbers{5, -4}}),
                  moved, roundingError);
}

TEST(KernelReading, BetweenPixelsAsTheSamplerSays) {
    Picture p = noise(90, 60, 3);
    for (Wrap wrap : {Wrap::black, Wrap::clamp})
        for (Interpolation how : {Interpolation::nearest, Interpolation::linear}) {
            Picture expected = filled(-20, -20, 200, 130, [&](int x, int y) {
                double px = x + 0.5, py = y + 0.5;
                return readAt(p, 0.75 * px - 0.25 * py + 0.125, 0.5 * py + 0.25 * px, wrap, how);
            });
            const char* text =
                "kernel vec4 k(sampler s) { vec2 d = destCoord(); "
                "return sample(s, vec2(0.75 * d.x - 0.25 * d.y + 0.125, 0.5 * d.y + 0.25 * d.x)); }";
            expectPicture(applied(text, {samplerOf(p, wrap, how)}), expected, placeError);
            // The same where the text does not show that the places lie on straight lines.
            const char* hidden =
                "kernel vec4 k(sampler s, vec2 o) { vec2 d = max(destCoord(), vec2(-1000.0)); "
                "return sample(s, vec2(0.75 * d.x - 0.25 * d.y + 0.125, 0.5 * d.y + 0.25 * d.x)); }";
            expectPicture(applied(hidden, {samplerOf(p, wrap, how), Numbers{0, 0}}), expected, placeError);
        }
}

TEST(KernelReading, AWarpReadsWhereItSays) {
    Picture p = noise(80, 70, 4);
    KernelPtr wave = kernel("kernel vec2 wave(float high) { vec2 d = destCoord(); return vec2(d.x, d.y + "
                            "high * sin(d.x * 0.2)); }");
    Picture expected = filled(-10, -10, 100, 90, [&](int x, int y) {
        return bilinear(p, x + 0.5, y + 0.5 + 6 * std::sin((x + 0.5) * 0.2));
    });
    expectPicture(applyWarp(wave, samplerOf(p), {Numbers{6}}, Rect::infinite()), expected, placeError);
    int asked = 0;
    Image image = applyWarp(wave, samplerOf(p), {Numbers{6}}, Rect::ofSize(0, 0, 80, 70),
                            [&](std::size_t index, const Rect& r) {
                                EXPECT_EQ(index, 0u);
                                ++asked;
                                return r.grown(0, 6);
                            });
    setThreadCount(1);
    expectPicture(image,
                  filled(-10, -10, 100, 90,
                         [&](int x, int y) {
                             return x >= 0 && y >= 0 && x < 80 && y < 70 ? expected.get(x, y) : Pixel{};
                         }),
                  placeError);
    setThreadCount(0);
    EXPECT_GT(asked, 0);
}

TEST(KernelReading, ExpectationsThatAreWrongChangeNothing) {
    Picture p = noise(130, 90, 5);
    // Every pixel reads somewhere in the whole picture, and far outside of it.
    const char* text =
        "kernel vec4 k(sampler s) { vec2 d = destCoord(); vec4 first = sample(s, d.yx * vec2(1.7, 1.1)); "
        "return sample(s, d + (first.rg - 0.3) * 200.0); }";
    Picture expected = rendered(applied(text, {samplerOf(p)}), -5, -5, 140, 100);
    const std::function<Rect(const Rect&)> regions[]{[](const Rect&) { return Rect{}; },
                                                     [](const Rect&) { return Rect::infinite(); },
                                                     [](const Rect& r) { return r.grown(1000, 1000); },
                                                     [](const Rect&) {
                                                         return Rect{10, 10, 20, 20};
                                                     },
                                                     [](const Rect&) {
                                                         return Rect{NAN, 0, 1, NAN};
                                                     },
                                                     [](const Rect& r) {
                                                         return Rect{r.x1, r.y1, r.x0, r.y0};
                                                     }};
    for (const auto& region : regions)
        expectPicture(applied(text, {samplerOf(p)}, Rect::infinite(),
                              [&](std::size_t, const Rect& r) { return region(r); }),
                      expected, std::numeric_limits<double>::min());
    // A region function that fails ends the render with its exception.
    Image failing = applied(text, {samplerOf(p)}, Rect::infinite(),
                            [](std::size_t, const Rect&) -> Rect { throw std::runtime_error("no region"); });
    EXPECT_THROW(pixelAt(failing), std::runtime_error);
}

TEST(KernelReading, PlacesThatAreNoPlacesReadNothingOrTheEdge) {
    Picture p = noise(20, 10, 6, true);
    for (const char* place :
         {"vec2(1e30, 0.0)", "vec2(0.0, -1e30)", "vec2(0.0 / (destCoord().x * 0.0), 5.0)",
          "vec2(1.0 / (destCoord().x * 0.0), 5.0)", "vec2(-1e9, 5e8)", "vec2(-3.0, 5.0)"}) {
        std::string text = std::string("kernel vec4 k(sampler s) { return sample(s, ") + place + "); }";
        for (Interpolation how : {Interpolation::nearest, Interpolation::linear}) {
            EXPECT_EQ(pixelAt(applied(text, {samplerOf(p, Wrap::black, how)}), 3, 3), Pixel{}) << place;
            EXPECT_EQ(pixelAt(applied(text, {samplerOf(p, Wrap::clamp, how)}), 3, 3)[3], 1) << place;
        }
    }
    EXPECT_EQ(pixelAt(applied("kernel vec4 k(sampler s) { return sample(s, destCoord() * 2.0); }",
                              {Sampler{empty()}})),
              Pixel{});
    EXPECT_EQ(pixelAt(applied(copies, {Sampler{empty(), {}, Wrap::clamp}})), Pixel{});
    // An image without bounds can be read anywhere.
    const char* far = "kernel vec4 k(sampler s) { return sample(s, destCoord() * destCoord() * 1e6); }";
    EXPECT_NEAR(pixelAt(applied(far, {Sampler{constant({1, 1, 1, 1})}}), 9000, -9000)[0], 1, floatStep);
}

TEST(KernelReading, AMatrixTakesTheImageToWhereItIsSeen) {
    Picture p = noise(40, 30, 7);
    Affine matrix{2, 0, 0, 4, 10, -6};
    for (const char* text : {copies, "kernel vec4 k(__sample s) { return s; }"})
        for (Interpolation how : {Interpolation::nearest, Interpolation::linear}) {
            Sampler sampler{imageOf(p), matrix, Wrap::black, how};
            Picture expected = filled(0, -10, 110, 140, [&](int x, int y) {
                return readAt(p, (x + 0.5 - 10) / 2, (y + 0.5 + 6) / 4, Wrap::black, how);
            });
            expectPicture(applied(text, {sampler}), expected, placeError);
        }
    Sampler sampler{imageOf(p), matrix};
    auto of = [&](const char* vec4) {
        return pixelAt(applied(std::string("kernel vec4 k(sampler s) { return ") + vec4 + "; }", {sampler}),
                       3, 5);
    };
    EXPECT_EQ(of("vec4(samplerExtent(s).xy, 1.0, 1.0)"), (Pixel{10, -6, 1, 1}));
    EXPECT_EQ(of("vec4(samplerExtent(s).zw, 1.0, 1.0)"), (Pixel{80, 120, 1, 1}));
    EXPECT_EQ(of("vec4(samplerOrigin(s), 1.0, 1.0)"), (Pixel{10, -6, 1, 1}));
    EXPECT_EQ(of("vec4(samplerSize(s), 1.0, 1.0)"), (Pixel{80, 120, 1, 1}));
    EXPECT_EQ(of("vec4(samplerTransform(s, vec2(30.0, 2.0)), 1.0, 1.0)"), (Pixel{10, 2, 1, 1}));
    EXPECT_EQ(of("vec4(samplerCoord(s), 1.0, 1.0)"), (Pixel{-3.25, 2.875, 1, 1}));
    EXPECT_EQ(pixelAt(applied(copies, {Sampler{imageOf(p), {0, 0, 0, 0, 0, 0}}})), Pixel{});
    EXPECT_EQ(refusal([&] {
                  applied(copies, {Sampler{imageOf(p), {NAN, 0, 0, 1, 0, 0}}});
              }),
              "a sampler's matrix needs finite numbers");
}

TEST(KernelReading, SeveralImagesAtTheirPlaces) {
    Picture p = noise(60, 50, 8), q = noise(70, 40, 9);
    Picture expected = filled(-5, -5, 90, 70, [&](int x, int y) {
        Pixel a = p.get(x, y), b = q.get(x - 2, y + 1), sum;
        for (int c = 0; c < 4; ++c) sum[c] = 0.25 * a[c] + 0.75 * b[c];
        return sum;
    });
    expectPicture(
        applied("kernel vec4 k(sampler a, float t, sampler b) { return mix(sample(a, samplerCoord(a)), "
                "sample(b, samplerCoord(b) + vec2(-2.0, 1.0)), t); }",
                {samplerOf(p), Numbers{0.75}, samplerOf(q)}),
        expected);
}

TEST(KernelReading, InputsThatAreFiltersAreReadTheSame) {
    Picture p = noise(220, 150, 10);
    Image blurred = filter("CIGaussianBlur", {{"inputImage", imageOf(p)}, {"inputRadius", 4.0}});
    Image twirled =
        filter("CITwirlDistortion",
               {{"inputImage", blurred}, {"inputCenter", Numbers{100, 70}}, {"inputRadius", 60.0}});
    // Read twice by the kernel and once more beside it, in an order of its own.
    Image image = composite(
        applied("kernel vec4 k(sampler a, sampler b) { vec2 d = destCoord(); return 0.5 * sample(a, d + "
                "20.0 * sin(d.yx * 0.1)) + 0.25 * sample(b, d + vec2(1.0, 0.0)); }",
                {Sampler{twirled}, Sampler{twirled}}),
        twirled);
    Picture whole = rendered(image, -20, -20, 260, 190);
    for (int threads : {1, 2}) {
        setThreadCount(threads);
        for (int size : {19, 64, 4096})
            EXPECT_EQ(difference(inTiles(image, -20, -20, 260, 190, size), whole), 0) << size;
    }
    setThreadCount(0);
    Picture part = rendered(image, 31, 17, 90, 50);
    EXPECT_EQ(difference(part, reference::part(whole, 31, 17, 90, 50)), 0);
}

TEST(KernelReading, ColoursAreMatchedPremultipliedPixels) {
    Color color{0.5, 0.25, 1, 0.5};
    Pixel matched = pixelAt(applied("kernel vec4 k(__color c) { return c; }", {color}));
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(matched[c], 0.5 * linear(std::array{0.5, 0.25, 1.}[c]), floatStep);
    EXPECT_NEAR(matched[3], 0.5, floatStep);
    // A vec4 takes a colour's numbers as they are.
    Pixel plain = pixelAt(applied("kernel vec4 k(vec4 c) { return c; }", {color}));
    EXPECT_NEAR(plain[1], 0.25, floatStep);
    // A table is read without matching.
    std::array<std::uint8_t, 4> bytes{188, 0, 255, 255};
    Image image = bitmap({1, 1}, bytes.data(), 4, nullptr);
    EXPECT_NEAR(pixelAt(applied("kernel vec4 k(__table sampler t) { return sample(t, vec2(0.5, 0.5)); }",
                                {Sampler{image}}))[0],
                188 / 255.0, floatStep);
    EXPECT_NEAR(pixelAt(applied("kernel vec4 k(sampler t) { return sample(t, vec2(0.5, 0.5)); }",
                                {Sampler{image}}))[0],
                linear(188 / 255.0), 1e-4);
    EXPECT_NEAR(pixelAt(applied("kernel vec4 k(__table sampler t) { return sample(t, samplerCoord(t)); }",
                                {Sampler{image}}))[0],
                188 / 255.0, floatStep);
}

TEST(KernelReading, TheExtentEndsTheImage) {
    Image image = applied("kernel vec4 k() { return vec4(1.0); }", {}, Rect::ofSize(2, 3, 4, 5));
    EXPECT_EQ(image->extent(), Rect::ofSize(2, 3, 4, 5));
    expectPicture(image,
                  filled(0, 0, 10, 10,
                         [](int x, int y) {
                             return x >= 2 && x < 6 && y >= 3 && y < 8 ? Pixel{1, 1, 1, 1} : Pixel{};
                         }),
                  roundingError);
    EXPECT_TRUE(applied(copies, {Sampler{constant({})}}, Rect{})->extent().isEmpty());
}

TEST(KernelReading, ArgumentsOfTheWrongKindAreRefused) {
    Picture p = noise(4, 4, 1);
    const char* text = "kernel vec4 k(sampler s, float x, vec2 v, __color c, __sample q) { return c; }";
    std::vector<Argument> right{samplerOf(p), Numbers{1}, Numbers{1, 2}, Color{}, samplerOf(p)};
    EXPECT_EQ(refusal([&] { applied(text, right); }), "");
    auto with = [&](std::size_t i, Argument argument) {
        std::vector<Argument> wrong = right;
        wrong[i] = std::move(argument);
        return refusal([&] { applied(text, wrong); });
    };
    EXPECT_EQ(with(0, Numbers{1}), "argument 1 of the kernel k (s) has to be an image or a sampler");
    EXPECT_EQ(with(0, Sampler{nullptr}), "argument 1 of the kernel k (s) has to be an image or a sampler");
    EXPECT_EQ(with(1, Numbers{1, 2}), "argument 2 of the kernel k (x) has to be a number");
    EXPECT_EQ(with(1, samplerOf(p)), "argument 2 of the kernel k (x) has to be a number");
    EXPECT_EQ(with(2, Numbers{1}), "argument 3 of the kernel k (v) has to be a vector of 2 numbers");
    EXPECT_EQ(with(3, Numbers{1}), "argument 4 of the kernel k (c) has to be a colour");
    EXPECT_EQ(with(4, Color{}), "argument 5 of the kernel k (q) has to be an image or a sampler");
    EXPECT_EQ(refusal([&] { applied(text, {}); }), "the kernel k takes 5 arguments, not 0");
    EXPECT_EQ(refusal([&] { applied("kernel vec2 w() { return vec2(1.0); }", {}); }),
              "the kernel w is a warp and needs an image to read");
    EXPECT_EQ(refusal([&] { applyWarp(kernel(copies), samplerOf(p), {}, {}); }),
              "the kernel k returns a vec4 and is no warp");
    EXPECT_EQ(refusal([&] { applyWarp(kernel("kernel vec2 w() { return vec2(1.0); }"), {}, {}, {}); }),
              "the warp w needs an image to read");
}

TEST(KernelReading, BothInstructionSetsAgree) {
    if (instructionSet() != InstructionSet::avx2) GTEST_SKIP() << "the processor has one set";
    Picture p = noise(100, 80, 11);
    Image image =
        applied("kernel vec4 k(sampler s) { vec2 d = destCoord(); vec4 c = unpremultiply(sample(s, d + 9.0 * "
                "sin(d.yx * 0.1))); c.rgb = pow(c.rgb, vec3(1.3)); return premultiply(c); }",
                {samplerOf(p)});
    Picture fast = rendered(image, -10, -10, 120, 100);
    setInstructionSet(InstructionSet::sse2);
    Picture plain = rendered(image, -10, -10, 120, 100);
    setInstructionSet(InstructionSet::avx2);
    EXPECT_LT(difference(fast, plain), placeError);
}
