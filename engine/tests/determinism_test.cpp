// The same graph gives the same bits whatever the tiles, the threads and the part that is asked for.
#include "random_graphs.h"

using namespace reference;

namespace {

constexpr int kLeft = -23, kBottom = -17, kWidth = 138, kHeight = 118;

/// The whole area, computed as four renders.
Picture inQuarters(const Image& image) {
    Picture whole(kLeft, kBottom, kWidth, kHeight);
    constexpr int w = 71, h = 47; // no half and no multiple of anything
    for (int x : {0, w})
        for (int y : {0, h}) {
            Picture part = rendered(image, kLeft + x, kBottom + y, x ? kWidth - w : w, y ? kHeight - h : h);
            for (int row = 0; row < part.height; ++row)
                for (int i = 0; i < part.width; ++i)
                    whole.at(part.x0 + i, part.y0 + row) = part.get(part.x0 + i, part.y0 + row);
        }
    return whole;
}

/// Where and how two pictures differ first; empty when they are equal bit for bit.
std::string firstDifference(const Picture& a, const Picture& b) {
    for (int y = a.y0; y < a.y0 + a.height; ++y)
        for (int x = a.x0; x < a.x0 + a.width; ++x)
            if (a.get(x, y) != b.get(x, y)) {
                std::ostringstream out;
                out << "at " << x << ", " << y << " by " << difference(a, b) << " at most";
                return out.str();
            }
    return {};
}

/// What differs between ways to render an image; empty when nothing does.
std::string differences(const Image& image) {
    setThreadCount(1);
    Picture whole = inTiles(image, kLeft, kBottom, kWidth, kHeight, 4096);
    std::string found;
    auto compare = [&](const char* way, const Picture& other) {
        std::string difference = firstDifference(whole, other);
        if (!difference.empty()) found += std::string("  ") + way + ' ' + difference + '\n';
    };
    for (int threads : {1, 2}) {
        setThreadCount(threads);
        compare("tiles of 19", inTiles(image, kLeft, kBottom, kWidth, kHeight, 19));
        compare("tiles of 64", inTiles(image, kLeft, kBottom, kWidth, kHeight, 64));
        compare("whole", inTiles(image, kLeft, kBottom, kWidth, kHeight, 4096));
    }
    compare("quarters", inQuarters(image));
    setThreadCount(0);
    return found;
}

/// The picture as 8-bit sRGB.
std::vector<std::uint8_t> bytes(const Image& image) {
    std::vector<std::uint8_t> out(4 * std::size_t{kWidth} * kHeight);
    render(image, Rect::ofSize(kLeft, kBottom, kWidth, kHeight), {{kWidth, kHeight}, out.data(), 4 * kWidth},
           Rect::ofSize(0, 0, kWidth, kHeight));
    return out;
}

} // namespace

TEST(Determinism, EveryFilterGivesTheSameBitsInTilesInThreadsAndInParts) {
    RandomGraphs graphs(11);
    for (const FilterInfo* info : allFilters()) {
        Image image = graphs.filtered(*info, [&] { return graphs.sources()[0]; });
        EXPECT_EQ(differences(image), "") << info->name;
    }
}

TEST(Determinism, RandomGraphsGiveTheSameBitsInTilesInThreadsAndInParts) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        std::string names;
        Image image = RandomGraphs(seed).graph(2 + int(seed % 4), names);
        EXPECT_EQ(differences(image), "") << "seed " << seed << ": " << names;
    }
}

TEST(Determinism, InstructionSetsDifferByAStepOf255AtMost) {
    RandomGraphs graphs(12);
    InstructionSet best = instructionSet();
    for (const FilterInfo* info : allFilters()) {
        Image image = graphs.filtered(*info, [&] { return graphs.sources()[0]; });
        std::vector<std::uint8_t> there = bytes(image);
        ASSERT_TRUE(setInstructionSet(InstructionSet::sse2));
        std::vector<std::uint8_t> plain = bytes(image);
        setInstructionSet(best);
        int worst = 0;
        for (std::size_t i = 0; i < plain.size(); ++i) worst = std::max(worst, std::abs(plain[i] - there[i]));
        EXPECT_LE(worst, 1) << info->name;
    }
}
