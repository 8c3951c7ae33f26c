// CIColorCube, against a reference in double precision.
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
