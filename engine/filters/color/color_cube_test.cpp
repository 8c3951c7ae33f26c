// CIColorCube and CIColorCubeWithColorSpace, against references in double precision.
#include "reference.h"

#include <cstring>

using namespace reference;

TEST(CIColorCube, MixesTheEntriesAround) {
    Picture p = noise(37, 11, 35);
    const int side = 3;
    std::mt19937 random(36);
    std::vector<float> entries(4 * side * side * side);
    for (float& v : entries) v = float(random() >> 8) / float(1 << 24);
    auto entry = [&](int r, int g, int b, int c) {
        return double(entries[4 * (r + side * (g + side * b)) + c]);
    };
    // Along red, then green, then blue.
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        Pixel q = p.get(x, y), out;
        int low[3];
        double t[3];
        for (int c = 0; c < 3; ++c) {
            double place = 2 * (q[3] > 0 ? q[c] / q[3] : 0);
            low[c] = place >= 1 ? 1 : 0;
            t[c] = place - low[c];
        }
        for (int c = 0; c < 4; ++c) {
            auto red = [&](int g, int b) {
                return (1 - t[0]) * entry(low[0], g, b, c) + t[0] * entry(low[0] + 1, g, b, c);
            };
            auto green = [&](int b) { return (1 - t[1]) * red(low[1], b) + t[1] * red(low[1] + 1, b); };
            out[c] = q[3] * ((1 - t[2]) * green(low[2]) + t[2] * green(low[2] + 1));
        }
        return out;
    });
    Bytes bytes(entries.size() * sizeof(float));
    std::memcpy(bytes.data(), entries.data(), bytes.size());
    Values values{{"inputImage", imageOf(p)}, {"inputCubeDimension", 3.0}, {"inputCubeData", bytes}};
    EXPECT_LT(error(filter("CIColorCube", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorCube", {{"inputImage", imageOf(p)}}), p), floatError);
    bytes.pop_back();
    values["inputCubeData"] = bytes;
    EXPECT_TRUE(filter("CIColorCube", values)->extent().isEmpty());
}

TEST(CIColorCubeWithColorSpace, LooksUpColoursOfThatSpace) {
    Picture p = noise(37, 11, 103);
    // Swaps red and blue and halves green; linear in the numbers of the space, and with alpha 0.5.
    std::vector<float> entries;
    for (int corner = 0; corner < 8; ++corner)
        for (double v : {corner >> 2 & 1, corner >> 1 & 1, corner & 1, 2})
            entries.push_back(float(v * 0.5 * 0.5));
    for (int i = 0; i < 8; ++i) {
        entries[4 * i] *= 2, entries[4 * i + 2] *= 2; // premultiplied
    }
    auto* raw = reinterpret_cast<const std::uint8_t*>(entries.data());
    Values values{{"inputImage", imageOf(p)},
                  {"inputCubeDimension", 2.0},
                  {"inputCubeData", Bytes(raw, raw + 4 * entries.size())}};
    auto found = [](Pixel q, auto forth, auto back) {
        Pixel out{0, 0, 0, q[3] * 0.5};
        if (q[3] == 0) return out;
        for (int c = 0; c < 3; ++c) q[c] = std::clamp(forth(q[c] / q[3]), 0.0, 1.0);
        out[0] = out[3] * back(q[2]), out[1] = out[3] * back(q[1] / 2), out[2] = out[3] * back(q[0]);
        return out;
    };
    auto same = [](double v) { return v; };
    auto mapped = [&](auto forth, auto back) {
        return filled(0, 0, 37, 11, [&](int x, int y) { return found(p.get(x, y), forth, back); });
    };
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(same, same)), floatError);
    values["inputColorSpace"] = color::ColorSpace::sRGB()->iccData();
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(coded, linear)), 5e-5);
    // What is no profile counts as none.
    values["inputColorSpace"] = Bytes{1, 2, 3};
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(same, same)), floatError);
}
