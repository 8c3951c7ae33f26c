// Bitmaps and row sources: invalid ones, and which rows are read.
#include "recipes.h"

using namespace reference;

TEST(Bitmap, ReadsOnlyTheRowsItNeeds) {
    auto rows = std::make_shared<CountedRows>(500, 6400);
    Image image = chainOfEight(bitmap(rows));
    Image blurred = filter("CIGaussianBlur", with(image, "inputRadius", 5));
    EXPECT_EQ(rows->rows, 0);
    Picture got = rendered(bitmap(rows), 100, 6399 - 70, 10, 10);
    EXPECT_NEAR(got.get(100, 6399 - 70)[0], linear(70 / 255.), 1e-5);
    rows->rows = 0;
    rendered(image, 100, 3000, 10, 10);
    EXPECT_GT(rows->rows, 0);
    EXPECT_LE(rows->rows, 128);
    rows->rows = 0;
    rendered(crop(blurred, {0, 1000, 400, 1010}), 0, 0, 500, 6000);
    EXPECT_GT(rows->rows, 0);
    EXPECT_LE(rows->rows, 192);
    rows->rows = 0;
    rendered(bitmap(rows), 0, 0, 500, 6400);
    EXPECT_EQ(rows->rows, 6400) << "each row once";
    EXPECT_FALSE(rows->overlapped);
}

TEST(Bitmap, FailuresOfARowSourceReachTheCaller) {
    auto rows = std::make_shared<CountedRows>(100, 3000);
    rows->failAt = 2000;
    EXPECT_THROW(rendered(bitmap(rows), 0, 0, 100, 3000), std::runtime_error);
}

TEST(Bitmap, RefusesWhatCannotBe) {
    std::uint8_t pixels[64] = {};
    PixelLayout layout{4, 4};
    EXPECT_THROW(bitmap(layout, nullptr, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap(layout, pixels, 15, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap({0, 4}, pixels, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap({4, 4, Format::Gray8}, pixels, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap(nullptr), std::invalid_argument);
}
