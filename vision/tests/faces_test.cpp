// What can be tested without photographs; the tests of QuartzCore look for faces.
#include <vision/faces.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <thread>

namespace {

vision::FaceFinder* finder() {
    std::string problem;
    vision::FaceFinder* finder = visionFaceFinder(&problem);
    EXPECT_NE(finder, nullptr) << problem;
    return finder;
}

std::vector<std::uint8_t> noise(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> pixels(size);
    for (std::uint8_t& pixel : pixels) pixel = static_cast<std::uint8_t>(random());
    return pixels;
}

TEST(FaceFinder, ReportsMissingData) {
    setenv("KAZ_FACE_LANDMARKS", "no-such-file.dat", 1);
    std::string problem;
    EXPECT_EQ(visionFaceFinder(&problem), nullptr);
    EXPECT_NE(problem.find("no-such-file.dat"), std::string::npos) << problem;
    // The next call tries again.
    unsetenv("KAZ_FACE_LANDMARKS");
    EXPECT_NE(visionFaceFinder(&problem), nullptr);
}

TEST(FaceFinder, IsTheProcesssOnlyOne) { EXPECT_EQ(finder(), finder()); }

TEST(FaceFinder, BitmapsWithoutPixelsHaveNoFaces) {
    std::uint8_t pixel = 0;
    EXPECT_TRUE(finder()->find({}).empty());
    EXPECT_TRUE(finder()->find({&pixel, 0, 1, 1}).empty());
    EXPECT_TRUE(finder()->find({&pixel, 1, 0, 1}).empty());
    EXPECT_TRUE(finder()->find({&pixel, -1, -1, 1}).empty());
}

TEST(FaceFinder, BitmapsOfEverySmallSizeAreSearched) {
    for (int width : {1, 2, 3, 7, 8, 9, 16, 71, 72, 73, 200})
        for (int height : {1, 2, 8, 9, 72, 100}) {
            std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width * height), 200);
            EXPECT_TRUE(
                finder()->find({pixels.data(), width, height, static_cast<std::size_t>(width)}).empty());
        }
}

TEST(FaceFinder, NoiseHasNoFaces) {
    for (unsigned seed = 0; seed < 5; ++seed) {
        std::vector<std::uint8_t> pixels = noise(640 * 480, seed);
        EXPECT_TRUE(finder()->find({pixels.data(), 640, 480, 640}).empty());
        // With padding behind each row.
        EXPECT_TRUE(finder()->find({pixels.data(), 600, 480, 640}).empty());
    }
}

TEST(FaceFinder, SearchesThoroughlyWhereNoProfileFits) {
    for (int width : {1, 8, 71, 200})
        for (int height : {1, 9, 100}) {
            std::vector<std::uint8_t> pixels = noise(static_cast<std::size_t>(width * height), 1);
            EXPECT_TRUE(finder()
                            ->find({pixels.data(), width, height, static_cast<std::size_t>(width)},
                                   vision::Care::Thorough)
                            .empty());
        }
}

TEST(FaceFinder, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; ++seed)
        threads.emplace_back([seed] {
            std::vector<std::uint8_t> pixels = noise(200 * 300, seed);
            for (int i = 0; i < 5; ++i) EXPECT_TRUE(finder()->find({pixels.data(), 200, 300, 200}).empty());
        });
    for (std::thread& thread : threads) thread.join();
}

} // namespace
