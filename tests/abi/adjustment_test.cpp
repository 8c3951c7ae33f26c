// The automatic adjustment of CIImageKaz from the host's side: the array that it returns, and references.
#include "plugin_test.h"

#include <cstdlib>

namespace {

using studio::Value;

constexpr char plain[] = "autoAdjustmentFilters as CIFilterKaz()";
constexpr char withOptions[] = "autoAdjustmentFiltersWithOptions(options as dictionary) as CIFilterKaz()";

class Adjustment : public PluginTest {
  protected:
    explicit Adjustment(studio::HostOptions options = {}, Family family = WithFamily)
        : PluginTest(std::move(options), family) {}

    Value square() {
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {0.1, 0.2, 0.1})});
        return host.call(endless, "imageByCroppingToRect",
                         {host.create("CGRectKaz", {0.0, 0.0, 16.0, 16.0})});
    }

    Value photograph() {
        const char* folder = std::getenv("KAZ_PHOTOS");
        std::string path = std::string(folder ? folder : ".") + "/coffee.png";
        Value image = host.function("NewCIImagewithFileKaz", {host.function("GetFolderItem", {path})});
        EXPECT_FALSE(image.isNil()) << "the sample photographs are missing";
        return image;
    }

    std::vector<std::string> names(const Value& filters) {
        std::vector<std::string> found;
        for (int i = 0; i < filters.count(); ++i)
            found.push_back(host.call(filters.at(i), "FilterName").text());
        return found;
    }

    Value key(const char* name) { return host.shared("CIImageKaz", name); }
    Value options(const char* name, Value value) { return host.dictionary({{key(name), value}}); }

    const std::vector<std::string> enhancing = {"CIVibrance", "CIToneCurve", "CIHighlightShadowAdjust"};
};

TEST_F(Adjustment, ReturnsTheFiltersInOrder) {
    Value filters = host.call(square(), plain);
    EXPECT_EQ(names(filters), enhancing);
    for (int i = 0; i < filters.count(); ++i) EXPECT_EQ(filters.at(i).className(), "CIFilterKaz");
    filters = {};
    expectClean();
}

TEST_F(Adjustment, EachFilterHasOneWrapper) {
    Value filters = host.call(square(), plain);
    ASSERT_EQ(filters.count(), 3);
    for (int i = 0; i < 3; ++i) {
        Value filter = filters.at(i);
        Value same = host.shared("CIFilterKaz", "FilterWithHandle", {host.get(filter, "Handle")});
        EXPECT_EQ(same.object(), filter.object()) << i;
    }
    filters = {};
    expectClean();
}

TEST_F(Adjustment, OutlivesTheImageAndTheArray) {
    Value filter;
    {
        Value filters = host.call(photograph(), plain);
        ASSERT_GT(filters.count(), 0);
        filter = filters.at(filters.count() - 1);
    }
    EXPECT_EQ(host.call(filter, "FilterName").text(), "CIHighlightShadowAdjust");
    EXPECT_TRUE(host.call(filter, "ValueAsCIImage", {"inputImage"}).isNil());
    filter = {};
    expectClean();
}

TEST_F(Adjustment, AnEmptyWrapperHasNoFilters) {
    for (const char* method : {plain, withOptions}) {
        std::vector<Value> arguments;
        if (method == withOptions) arguments.push_back(Value());
        Value filters = host.call(host.instantiate("CIImageKaz"), method, arguments);
        EXPECT_FALSE(filters.isNil());
        EXPECT_EQ(filters.count(), 0);
    }
    expectClean();
}

TEST_F(Adjustment, WithoutPixelsThereIsNothingToAdjust) {
    Value endless =
        host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.5, 0.0})});
    EXPECT_EQ(host.call(endless, plain).count(), 0);
    EXPECT_EQ(host.call(host.shared("CIImageKaz", "emptyImage"), plain).count(), 0);
    endless = {};
    expectClean();
}

TEST_F(Adjustment, OptionsReachCoreImage) {
    Value image = square();
    auto with = [&](Value options) { return names(host.call(image, withOptions, {std::move(options)})); };
    EXPECT_EQ(with({}), enhancing) << "nil";
    EXPECT_EQ(with(host.dictionary()), enhancing);
    EXPECT_EQ(with(options("kCIImageAutoAdjustEnhance", true)), enhancing);
    EXPECT_EQ(with(options("kCIImageAutoAdjustEnhance", false)), std::vector<std::string>());
    EXPECT_EQ(with(options("kCIImageAutoAdjustRedEye", false)), enhancing);
    EXPECT_EQ(with(options("kCIImageAutoAdjustFeatures", Value())), enhancing);
    EXPECT_EQ(with(host.dictionary({{"something else", 5}})), enhancing);
    image = {};
    expectClean();
}

TEST_F(Adjustment, ExceptionsOfCocoaReachTheHost) {
    // An NSArray holds no nil.
    Value bad =
        options("kCIImageAutoAdjustFeatures", host.array("Variant", {host.memoryBlock("kept"), nullptr}));
    Value image = square();
    EXPECT_NE(raisedBy([&] { host.call(image, withOptions, {bad}); }), "(none)");
    bad = image = {};
    expectClean();
}

TEST_F(Adjustment, SurvivesEveryAllocationThatFails) {
    Value image = square();
    testing::internal::CaptureStderr();
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
        host.failAllocation(failures);
        try {
            host.call(image, plain);
        } catch (const studio::HostException&) {
        }
        failed = host.allocationFailed();
        host.stopFailing();
    }
    testing::internal::GetCapturedStderr();
    EXPECT_GE(failures, 4) << "the array and three wrappers";
    image = {};
    expectClean();
}

class AdjustmentWithoutFamily : public Adjustment {
  protected:
    AdjustmentWithoutFamily() : Adjustment({}, WithoutFamily) {}
};

TEST_F(AdjustmentWithoutFamily, ReturnsNewWrappers) {
    Value filters = host.call(photograph(), plain); // without the family nothing crops
    ASSERT_GE(filters.count(), 3);
    Value filter = filters.at(filters.count() - 1);
    EXPECT_EQ(host.call(filter, "FilterName").text(), "CIHighlightShadowAdjust");
    EXPECT_NE(host.shared("CIFilterKaz", "FilterWithHandle", {host.get(filter, "Handle")}).object(),
              filter.object());
    filter = {};
    filters = {};
    expectClean();
}

class AdjustmentWithoutInsertion : public Adjustment {
  protected:
    AdjustmentWithoutInsertion() : Adjustment({.withheld = {"RuntimeArrayDirectGetInsertProc"}}) {}
};

TEST_F(AdjustmentWithoutInsertion, ReturnsAnEmptyArrayAndLeavesNothing) {
    Value filters = host.call(square(), plain);
    EXPECT_FALSE(filters.isNil());
    EXPECT_EQ(filters.count(), 0);
    filters = {};
    expectClean();
}

class AdjustmentWithoutArrays : public Adjustment {
  protected:
    AdjustmentWithoutArrays() : Adjustment({.withheld = {"RuntimeArrayCreateSingleDimBoundedArray"}}) {}
};

TEST_F(AdjustmentWithoutArrays, ReturnsNil) {
    EXPECT_TRUE(host.call(square(), plain).isNil());
    EXPECT_TRUE(host.call(square(), withOptions, {Value()}).isNil());
    expectClean();
}

} // namespace
