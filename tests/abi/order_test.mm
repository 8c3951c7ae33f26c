// The order of what the plugin does where it can be seen: services, the wrapper registry and native
// references.
#include "plugin_test.h"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <vector>

@interface NSException (KazFamily)
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz;
@end

namespace {

// What a native object sees when its wrapper releases it.
std::string seenAtRelease;
REALobject watchedWrapper = nullptr;

} // namespace

@interface ReleaseWitness : CIColor
@end
@implementation ReleaseWitness
- (oneway void)release {
    if (watchedWrapper) {
        bool registered = CFDictionaryGetValue([NSException GetInstancesDictionaryKaz], self) != nullptr;
        bool held = *reinterpret_cast<id*>(watchedWrapper + 1) == self;
        seenAtRelease +=
            std::string(registered ? "registered" : "not registered") + (held ? ", held;" : ", let go;");
    }
    [super release];
}
@end

namespace {

using studio::ServiceCall;
using studio::Value;

class Order : public PluginTest {
  protected:
    explicit Order(studio::HostOptions options = {}) : PluginTest(std::move(options)) {}

    // The calls of these services while `work` runs.
    std::vector<ServiceCall> calls(const std::vector<std::string>& services,
                                   const std::function<void()>& work) {
        std::vector<ServiceCall> result = host.callsDuring(work);
        std::erase_if(result, [&](const ServiceCall& call) {
            return std::find(services.begin(), services.end(), call.service) == services.end();
        });
        return result;
    }
    static std::vector<std::string> names(const std::vector<ServiceCall>& calls) {
        std::vector<std::string> result;
        for (const ServiceCall& call : calls) result.push_back(call.service);
        return result;
    }
    Value image() {
        Value color = host.function("NewCIColorKaz", {1.0, 0.0, 0.0});
        return host.call(host.shared("CIImageKaz", "imageWithColor", {color}), "imageByCroppingToRect",
                         {host.create("CGRectKaz", {0.0, 0.0, 8.0, 4.0})});
    }
};
using Names = std::vector<std::string>;

TEST_F(Order, AWrapperLeavesTheRegistryThenReleasesThenLetsGo) {
    CIColor* native = nil;
    @autoreleasepool {
        native = [[ReleaseWitness colorWithRed:1 green:0 blue:0] retain];
    }
    ASSERT_TRUE([native isKindOfClass:[ReleaseWitness class]]);
    {
        Value wrapper =
            host.create("CIColorKaz", {static_cast<int>(reinterpret_cast<std::intptr_t>(native))});
        ASSERT_EQ(CFDictionaryGetValue([NSException GetInstancesDictionaryKaz], native), wrapper.object());
        seenAtRelease.clear();
        watchedWrapper = wrapper.object();
    }
    watchedWrapper = nullptr;
    EXPECT_EQ(seenAtRelease, "not registered, held;");
    [native release];
    expectClean();
}

class OrderOfPictures : public Order, public testing::WithParamInterface<double> {
  protected:
    OrderOfPictures() : Order({.version = GetParam()}) {}
};

TEST_P(OrderOfPictures, ARenderedPictureIsUnlockedBeforeItsCacheIsCleared) {
    Value it = image(), picture;
    std::vector<ServiceCall> made = calls({"newPicture", "lockPictureDescription", "unlockPictureDescription",
                                           "REALPictureClearCache", "REALUnlockObject"},
                                          [&] { picture = host.call(it, "RenderPicture"); });
    EXPECT_EQ(names(made), (Names{"newPicture", "lockPictureDescription", "unlockPictureDescription",
                                  "REALPictureClearCache"}));
    for (std::size_t i = 1; i < made.size(); ++i) EXPECT_EQ(made[i].subject, picture.object());
    it = picture = {};
    expectClean();
}

// QuickDraw worlds and bitmap contexts.
INSTANTIATE_TEST_SUITE_P(Hosts, OrderOfPictures, testing::Values(2009.05, 2011.0, 2014.01));

TEST_F(Order, AnArgumentsExceptionGetsItsMessageBeforeItIsRaised) {
    std::vector<ServiceCall> made =
        calls({"PluginNewInstance", "REALSetPropValueString", "RuntimeRaiseException", "REALUnlockObject",
               "REALUnlockString"},
              [&] {
                  const auto& methods = host.findClass("CIImageKaz")->sharedMethods;
                  for (const auto& method : methods)
                      if (method->signature.name == "imageWithColor")
                          reinterpret_cast<REALobject (*)(REALobject)>(method->function)(nullptr);
              });
    EXPECT_EQ(names(made), (Names{"PluginNewInstance", "REALSetPropValueString", "RuntimeRaiseException",
                                  "REALUnlockObject", "REALUnlockString"}));
    EXPECT_EQ(made[0].text, "NilObjectException");
    EXPECT_EQ(made[1].text, "Message");
    EXPECT_EQ(made[2].subject, made[1].subject);
    EXPECT_EQ(made[3].subject, made[1].subject);
    host.takePendingException();
    expectClean();
}

TEST_F(Order, ACocoaExceptionIsRaisedThenGivenBack) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    testing::internal::CaptureStderr();
    std::vector<ServiceCall> made = calls(
        {"PluginNewInstance", "REALSetPropValueString", "RuntimeRaiseException", "REALUnlockObject"}, [&] {
            for (const auto& method : host.findClass("CIFilterKaz")->methods)
                if (method->signature.name == "ValueAsNumber")
                    reinterpret_cast<double (*)(REALobject, REALstring)>(method->function)(
                        filter.object(), Value("noSuchKey").stringHandle());
        });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(names(made), (Names{"PluginNewInstance", "REALSetPropValueString", "RuntimeRaiseException",
                                  "REALUnlockObject"}));
    EXPECT_EQ(made[3].subject, made[2].subject);
    host.takePendingException();
    filter = {};
    expectClean();
}

// The family's own way from an image to a picture.
TEST_F(Order, APictureOfTheFamilyIsDrawnThenUnlockedThenItsCacheIsCleared) {
    Value cgImage = host.call(image(), "CreateCGImage", {Value()});
    Value picture;
    std::vector<ServiceCall> made = calls(
        {"newPicture", "REALLockPictureDescription", "unlockPictureDescription", "REALPictureClearCache"},
        [&] { picture = host.call(cgImage, "Picture"); });
    EXPECT_EQ(names(made), (Names{"newPicture", "REALLockPictureDescription", "unlockPictureDescription",
                                  "REALPictureClearCache"}));
    for (const ServiceCall& call : made)
        if (call.service != "newPicture") EXPECT_EQ(call.subject, picture.object()) << call.service;
}

} // namespace
