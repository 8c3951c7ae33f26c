// Takes away each service in turn: whatever the host lacks, nothing crashes, leaks or gives back too much.
#include "plugin_test.h"

#include <cstdlib>
#include <functional>
#include <vector>

namespace {

using studio::Value;

// A short program that touches every kind of call the plugin has. Each step may fail; the next goes on.
void exercise(studio::Host& host) {
    std::vector<std::function<void()>> steps;
    Value color, filter, vector, image, result;
    auto step = [](const std::function<void()>& body) {
        try {
            body();
        } catch (const studio::HostException&) {
        } catch (const studio::UsageError&) {
        }
    };
    step([&] { color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0}); });
    step([&] { host.get(color, "description"); });
    step([&] { host.call(color, "Component", {9}); });
    step([&] { host.call(color, "copy"); });
    step([&] { host.call(color, "ColorSpace"); });
    step([&] { host.function("NewCIColorWithStringKaz", {"1 0 0 1"}); });
    step([&] { host.create("CIColorKaz", {0}); });
    step([&] { vector = host.create("CIVectorKaz", {host.array("Double", {1.0, 2.0})}); });
    step([&] { host.get(vector, "stringRepresentation"); });
    step([&] { image = host.shared("CIImageKaz", "imageWithColor", {color}); });
    step([&] { filter = host.shared("CIFilterKaz", "FilterWithName", {"CICrop"}); });
    step([&] { host.call(filter, "SetDefaults"); });
    step([&] { host.assign(filter, "ValueAsCIImage", {"inputImage"}, image); });
    step([&] {
        host.assign(filter, "ValueAsCIVector", {"inputRectangle"},
                    host.function("NewCIVectorWithXYZWKaz", {0.0, 0.0, 8.0, 4.0}));
    });
    step([&] { host.call(filter, "ValueAsNumber", {"inputNoSuchKey"}); });
    step([&] { host.call(filter, "InputKeys"); });
    step([&] {
        host.shared("CIFilterKaz", "FilterNamesInCategories", {host.array("String", {"CICategoryBlur"})});
    });
    step([&] { result = host.call(filter, "ValueAsCIImage", {"outputImage"}); });
    step([&] { host.call(result, "Width"); });
    step([&] { host.call(result, "Extent"); });
    step([&] { host.call(result, "RenderPicture"); });
    step([&] { host.call(result, "CreateCGImage"); });
    step([&] { host.shared("CIImageKaz", "imageWithData", {host.memoryBlock("no image")}); });
    step([&] { host.call(filter, "attributesDictionary"); });
    step([&] {
        Value cube = host.shared("CIFilterKaz", "FilterWithName", {"CIColorCube"});
        host.assign(cube, "ValueAsData", {"inputCubeData"}, host.memoryBlock("bytes"));
        host.call(cube, "ValueAsData", {"inputCubeData"});
        host.call(cube, "attributesDictionary");
    });
    step([&] {
        const char* photos = std::getenv("KAZ_PHOTOS");
        Value photo = host.create("FolderItem", {std::string(photos ? photos : ".") + "/chelsea.png"});
        host.call(host.shared("CIImageKaz", "imageWithContentsOfFile", {photo}), "properties");
    });
    step([&] {
        Value picture = host.create("Picture", {3, 2, 32});
        host.shared("CIImageKaz", "imageWithPicture", {picture});
    });
    step([&] {
        Value file = host.create("FolderItem", {"/no folder/no file.png"});
        host.shared("CIImageKaz", "imageWithContentsOfFile", {file});
        host.shared("CIImageKaz", "imageWithContentsOfFileMT", {file});
    });
    step([&] {
        Value options = host.dictionary({
            {"text", "text"},
            {"integer", 1},
            {"long", 1LL},
            {"single", 1.5f},
            {"double", 1.5},
            {"boolean", true},
            {"date", host.create("Date")},
            {"bytes", host.memoryBlock("bytes")},
            {"file", host.create("FolderItem", {"/no folder/no file"})},
            {"numbers", host.array("Double", {1.0})},
            {"entries", host.dictionary({})},
        });
        host.call(image, "autoAdjustmentFiltersWithOptions", {options});
    });
    host.takePendingException();
}

// All that the host has but the one without which it cannot load a plugin.
std::vector<std::string> dispensableServices() {
    std::vector<std::string> names = studio::Host::serviceNames();
    std::erase(names, "RegisterPluginVersion");
    return names;
}

class MissingService : public PluginTest,
                       public testing::WithParamInterface<std::tuple<std::string, double>> {
  protected:
    MissingService()
        : PluginTest(
              {.version = std::get<double>(GetParam()), .withheld = {std::get<std::string>(GetParam())}}) {}
};

TEST_P(MissingService, HarmsNothing) {
    testing::internal::CaptureStderr();
    exercise(host);
    testing::internal::GetCapturedStderr();

    // The host notices what is handed to it although it could not be taken (a wrapper that exists already),
    // and what is not given back: without a lock, nothing is, since that could free what others hold.
    const auto& [missing, version] = GetParam();
    bool takes = missing == "REALLockObject";
    if (version < 2012.0)
        takes |= missing == "lockPictureDescription" || missing == "REALLockPictureDescription";
    bool givesBack = missing.ends_with("lockObject") || missing.ends_with("lockString") ||
                     missing.ends_with("LockObject") || missing.ends_with("LockString");
    studio::Report report = host.report();
    EXPECT_EQ(report.violations.empty(), !takes) << report.text();
    EXPECT_EQ(report.leaks.empty(), !givesBack) << report.text();
    EXPECT_EQ(report.remarks.empty(), missing != "unlockPictureDescription") << report.text();
}

// Hosts before 2013.0 show the storage of their strings, and those before 2012.0 have no image of a picture.
const auto nameOfService = [](const auto& info) { return std::get<std::string>(info.param); };
INSTANTIATE_TEST_SUITE_P(Each, MissingService,
                         testing::Combine(testing::ValuesIn(dispensableServices()), testing::Values(2014.01)),
                         nameOfService);
INSTANTIATE_TEST_SUITE_P(EachOf2011, MissingService,
                         testing::Combine(testing::ValuesIn(dispensableServices()), testing::Values(2011.0)),
                         nameOfService);

class AllServices : public PluginTest, public testing::WithParamInterface<double> {
  protected:
    AllServices() : PluginTest({.version = GetParam()}) {}
};

TEST_P(AllServices, NothingIsLeft) {
    testing::internal::CaptureStderr();
    exercise(host);
    testing::internal::GetCapturedStderr();
    expectClean();
}

INSTANTIATE_TEST_SUITE_P(Hosts, AllServices,
                         testing::Values(2014.01, 2013.03, 2013.0, 2012.99, 2012.0, 2011.0, 2009.05));

} // namespace
