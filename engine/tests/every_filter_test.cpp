// What holds for every filter.
#include "reference.h"

#include <set>

using namespace reference;

TEST(EveryFilter, MakesPixelsOfHostileNumbers) {
    Image image = imageOf(noise(24, 24, 22));
    for (const FilterInfo* info : allFilters())
        for (double bad :
             {double(NAN), double(INFINITY), -double(INFINITY), -1e9, 1e9, 1e300, -1e-300, 0.0}) {
            Values values;
            for (const InputInfo& input : info->inputs) {
                if (input.kind == InputKind::image) values[input.key] = image;
                if (input.kind == InputKind::number) values[input.key] = bad;
                if (input.kind == InputKind::vector) values[input.key] = Numbers{bad, bad, bad, bad};
                if (input.kind == InputKind::color) values[input.key] = Color{bad, bad, bad, bad};
                if (input.kind == InputKind::transform) values[input.key] = Affine{bad, 0, 0, 1, bad, 0};
            }
            Image result = engine::apply(*info, values);
            ASSERT_NE(result, nullptr) << info->name;
            std::vector<std::uint8_t> out(4 * 16 * 16, 77);
            PixelLayout layout{16, 16};
            ASSERT_NO_THROW(render(result, {0, 0, 16, 16}, {layout, out.data(), 64}, {0, 0, 16, 16}))
                << info->name << ' ' << bad;
            // Premultiplied bytes never exceed their alpha.
            for (std::size_t i = 0; i < out.size(); ++i)
                ASSERT_LE(out[i], out[i | 3]) << info->name << ' ' << bad;
        }
}

TEST(EveryFilter, DescribesItself) {
    std::string last;
    for (const FilterInfo* info : allFilters()) {
        EXPECT_LT(last, info->name);
        last = info->name;
        EXPECT_TRUE(info->description.ends_with('.')) << info->name;
        // Those that automatic adjustment alone makes are in no category.
        bool hidden = info->name == "CIFaceBalance" || info->name == "CIRedEyeCorrections";
        EXPECT_EQ(info->categories.empty(), hidden) << info->name;
        for (const InputInfo& input : info->inputs) {
            EXPECT_FALSE(input.displayName.empty());
            // Pictures, a message and a colour space have to be given.
            bool given = input.kind == InputKind::image || input.kind == InputKind::colorSpace ||
                         input.key == "inputMessage";
            if (!given) EXPECT_TRUE(input.defaultValue) << info->name << input.key;
        }
    }
}

TEST(EveryFilter, NamesTheSourceOfItsFormula) {
    for (const FilterInfo* info : allFilters()) {
        EXPECT_GT(info->source.text.size(), 4u) << info->name;
        if (!info->source.residual) continue;
        EXPECT_EQ(info->source.kind, Source::Kind::fitted) << info->name;
        EXPECT_GE(*info->source.residual, 0) << info->name;
        EXPECT_LT(*info->source.residual, 2) << info->name;
    }
}

TEST(EveryFilter, HasTestsOfItsOwn) {
    std::set<std::string> suites;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        std::string suite = all.GetTestSuite(i)->name();
        // A suite with parameters is called "Parameters/Suite".
        suites.insert(suite.substr(suite.rfind('/') + 1));
    }
    for (const FilterInfo* info : allFilters())
        EXPECT_TRUE(suites.contains(info->name)) << "no TEST(" << info->name << ", ...)";
}
