// How many rows steps read that need the pixels around a pixel.
#include "recipes.h"

using namespace reference;

TEST(Neighbours, FarAwayAreNotRead) {
    const struct {
        const char* name;
        int rows; // that ten rows in the middle need at most, in whole strips of eight
    } filters[] = {{"CIMedianFilter", 32}, {"CIConvolution7X7", 40},       {"CIConvolution9Horizontal", 32},
                   {"CIDiscBlur", 56},     {"CIMotionBlur", 32},           {"CINoiseReduction", 32},
                   {"CIEdges", 32},        {"CISharpenLuminance", 60},     {"CIPixellate", 56},
                   {"CICrystallize", 300}, {"CILanczosScaleTransform", 32}};
    for (const auto& [name, rows] : filters) {
        auto source = std::make_shared<CountedRows>(32, 4000, 8);
        Image image = filter(name, {{"inputImage", bitmap(source)}});
        Picture got = inTiles(image, 4, 2000, 20, 10, 64);
        EXPECT_GT(source->rows, 0) << name;
        EXPECT_LE(source->rows, rows) << name;
    }
}
