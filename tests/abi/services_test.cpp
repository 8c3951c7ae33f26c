// Takes away each service in turn: whatever the host lacks, nothing crashes, leaks or gives back too much.
#include "plugin_test.h"

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
    host.takePendingException();
}

const char* const services[] = {
    "PluginGetStringData",
    "PluginDisposeStringData",
    "StringGetCString",
    "REALGetStringCFString",
    "REALBuildString",
    "REALGetStringEncoding",
    "REALConvertString",
    "REALSetStringEncoding",
    "PluginNewInstance",
    "pluginObjectType",
    "RuntimeObjectIsa",
    "RuntimeRaiseException",
    "REALGetPropValueInt",
    "REALSetPropValueInt",
    "REALSetPropValueString",
    "StringToVariant",
    "Int32ToVariant",
    "DoubleToVariant",
    "BooleanToVariant",
    "UInt32ToVariant",
    "Int64ToVariant",
    "UInt64ToVariant",
    "SingleToVariant",
    "REALLoadGlobalMethod",
    "REALLoadObjectMethod",
    "RuntimeArrayCreateSingleDimBoundedArray",
    "RuntimeUBound",
    "RuntimeArrayDirectGetInsertProc",
    "RuntimeArrayDirectGetGetProc",
    "RuntimeDirectReadStringArray",
    "newMemoryBlock",
    "memoryBlockGetPtr",
    "memoryBlockGetSize",
    "newPicture",
    "lockPictureDescription",
    "unlockPictureDescription",
    "REALPictureClearCache",
    "PluginRegisterMethod",
};

class MissingService : public PluginTest, public testing::WithParamInterface<const char*> {
  protected:
    MissingService() : PluginTest({.withheld = {GetParam()}}) {}
};

TEST_P(MissingService, HarmsNothing) {
    testing::internal::CaptureStderr();
    exercise(host);
    testing::internal::GetCapturedStderr();
    studio::Report report = host.report();
    // A picture that was locked cannot be unlocked without the service for it; that much the host will
    // notice.
    bool pictureStaysLocked = GetParam() == std::string("unlockPictureDescription");
    EXPECT_EQ(report.remarks.size(), pictureStaysLocked ? 1u : 0u) << report.text();
    EXPECT_TRUE(report.sound()) << report.text();
}

INSTANTIATE_TEST_SUITE_P(Each, MissingService, testing::ValuesIn(services),
                         [](const auto& info) { return std::string(info.param); });

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
