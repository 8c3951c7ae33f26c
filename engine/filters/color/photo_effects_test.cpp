// The photo effects, against pixels of Core Image's pictures.
#include "reference.h"

using namespace reference;

namespace {

using Bytes3 = std::array<int, 3>;

/// Petals, leaves, a stamen, a shadow: pixels of the picture that Core Image rendered.
constexpr Bytes3 flower[] = {{252, 82, 59}, {56, 115, 0}, {249, 192, 0},
                             {252, 94, 21}, {86, 2, 0},   {117, 188, 66}};

/// One row of opaque colours.
Picture rowOf(const std::vector<std::array<double, 3>>& colors) {
    return filled(0, 0, int(colors.size()), 1, [&](int x, int) -> Pixel {
        return {linear(colors[x][0]), linear(colors[x][1]), linear(colors[x][2]), 1};
    });
}

/// The effect's coded colours for a row of coded colours.
std::vector<std::array<double, 3>> seen(const char* effect,
                                        const std::vector<std::array<double, 3>>& colors) {
    Picture out =
        rendered(filter(effect, {{"inputImage", imageOf(rowOf(colors))}}), 0, 0, int(colors.size()), 1);
    std::vector<std::array<double, 3>> result;
    for (int x = 0; x < out.width; ++x) {
        Pixel p = out.get(x, 0);
        EXPECT_NEAR(p[3], 1, 1e-6);
        result.push_back({coded(p[0]), coded(p[1]), coded(p[2])});
    }
    return result;
}

/// Within 6 steps of 255, as 99 of 100 pixels of the pictures are.
void expectFlower(const char* effect, const std::array<Bytes3, 6>& theirs) {
    std::vector<std::array<double, 3>> colors;
    for (const Bytes3& c : flower) colors.push_back({c[0] / 255.0, c[1] / 255.0, c[2] / 255.0});
    auto ours = seen(effect, colors);
    for (std::size_t i = 0; i < theirs.size(); ++i)
        for (int c = 0; c < 3; ++c) EXPECT_NEAR(255 * ours[i][c], theirs[i][c], 6) << effect << i << c;
}

/// From black to white an effect gets no darker, and blacks stay below `black`.
void expectGrays(const char* effect, Bytes3 black) {
    std::vector<std::array<double, 3>> grays;
    for (int i = 0; i <= 64; ++i) grays.push_back({i / 64.0, i / 64.0, i / 64.0});
    auto out = seen(effect, grays);
    for (int c = 0; c < 3; ++c) {
        EXPECT_LE(255 * out[0][c], black[c]) << effect << c;
        for (int i = 1; i <= 64; ++i) EXPECT_GE(out[i][c], out[i - 1][c] - 0.006) << effect << c << ' ' << i;
        EXPECT_GT(out[64][c], 0.7) << effect << c;
    }
}

/// What no picture shows stays a colour.
void expectBounded(const char* effect) {
    std::vector<std::array<double, 3>> corners{{0, 0, 1}, {0, 1, 1}, {1, 0, 1}, {3, -1, 9}};
    for (const auto& color : seen(effect, corners))
        for (double v : color) {
            EXPECT_GE(v, 0) << effect;
            EXPECT_LE(v, 1 + 1e-5) << effect;
        }
}

void expectGray(const char* effect) {
    for (const auto& c : seen(effect, {{0.9, 0.2, 0.1}, {0.1, 0.8, 0.3}, {0.2, 0.3, 0.9}})) {
        EXPECT_NEAR(c[0], c[1], 1e-5) << effect;
        EXPECT_NEAR(c[1], c[2], 1e-5) << effect;
    }
}

} // namespace

TEST(CIPhotoEffectChrome, LooksAsCoreImagesPicture) {
    expectFlower("CIPhotoEffectChrome",
                 {{{255, 119, 30}, {0, 114, 0}, {255, 217, 0}, {255, 130, 0}, {106, 1, 0}, {105, 194, 71}}});
    expectGrays("CIPhotoEffectChrome", {3, 3, 3});
    expectBounded("CIPhotoEffectChrome");
}

TEST(CIPhotoEffectFade, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectFade",
        {{{231, 72, 73}, {85, 105, 53}, {238, 187, 123}, {232, 81, 59}, {43, 1, 0}, {177, 186, 133}}});
    expectGrays("CIPhotoEffectFade", {2, 2, 2});
    expectBounded("CIPhotoEffectFade");
}

TEST(CIPhotoEffectInstant, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectInstant",
        {{{251, 156, 54}, {0, 99, 60}, {247, 211, 54}, {250, 157, 24}, {33, 34, 47}, {141, 197, 88}}});
    expectGrays("CIPhotoEffectInstant", {2, 28, 48});
    expectBounded("CIPhotoEffectInstant");
}

TEST(CIPhotoEffectMono, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectMono",
        {{{148, 148, 148}, {27, 27, 27}, {175, 175, 175}, {141, 141, 141}, {16, 16, 16}, {103, 103, 103}}});
    expectGrays("CIPhotoEffectMono", {2, 2, 2});
    expectBounded("CIPhotoEffectMono");
    expectGray("CIPhotoEffectMono");
}

TEST(CIPhotoEffectNoir, LooksAsCoreImagesPicture) {
    expectFlower("CIPhotoEffectNoir", {{{241, 241, 241},
                                        {109, 109, 109},
                                        {255, 255, 255},
                                        {246, 246, 246},
                                        {84, 84, 84},
                                        {190, 190, 190}}});
    expectGrays("CIPhotoEffectNoir", {2, 2, 2});
    expectBounded("CIPhotoEffectNoir");
    expectGray("CIPhotoEffectNoir");
}

TEST(CIPhotoEffectProcess, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectProcess",
        {{{254, 109, 104}, {0, 132, 63}, {252, 206, 106}, {254, 120, 86}, {36, 22, 42}, {89, 205, 113}}});
    expectGrays("CIPhotoEffectProcess", {2, 2, 40});
    expectBounded("CIPhotoEffectProcess");
}

TEST(CIPhotoEffectTonal, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectTonal",
        {{{174, 174, 174}, {32, 32, 32}, {190, 190, 190}, {172, 172, 172}, {57, 57, 57}, {108, 108, 108}}});
    expectGrays("CIPhotoEffectTonal", {2, 2, 2});
    expectBounded("CIPhotoEffectTonal");
    expectGray("CIPhotoEffectTonal");
}

TEST(CIPhotoEffectTransfer, LooksAsCoreImagesPicture) {
    expectFlower(
        "CIPhotoEffectTransfer",
        {{{255, 155, 36}, {15, 100, 23}, {255, 209, 21}, {255, 154, 3}, {49, 8, 6}, {166, 198, 75}}});
    expectGrays("CIPhotoEffectTransfer", {2, 2, 2});
    expectBounded("CIPhotoEffectTransfer");
}

TEST(CIPhotoEffectNoir, KeepsAlpha) {
    Picture p = noise(20, 10, 3);
    Picture out = rendered(filter("CIPhotoEffectNoir", {{"inputImage", imageOf(p)}}), 0, 0, 20, 10);
    for (int x = 0; x < 20; ++x) EXPECT_NEAR(out.get(x, 4)[3], p.get(x, 4)[3], 1e-6);
}
