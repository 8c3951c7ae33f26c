// CIQRCodeGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIQRCodeGenerator, WritesWhatCoreImageWrites) {
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
    // The higher level needs a larger code; a message too long for any code gives the empty image.
    EXPECT_EQ(filter("CIQRCodeGenerator",
                     {{"inputMessage", Bytes(18, 'x')}, {"inputCorrectionLevel", std::string("H")}})
                  ->extent()
                  .width(),
              31);
    EXPECT_TRUE(filter("CIQRCodeGenerator", {{"inputMessage", Bytes(5000, 1)}})->extent().isEmpty());
    EXPECT_TRUE(filter("CIQRCodeGenerator", {})->extent().isEmpty());
}
