// The object model: handles, the wrapper registry and reference counts, on colours.
#include "plugin_test.h"

#include <cstring>

namespace {

using studio::Value;

class Wrappers : public PluginTest {
  protected:
    explicit Wrappers(Family family = WithFamily, studio::HostOptions options = {})
        : PluginTest(std::move(options), family) {}

    Value red() { return host.function("NewCIColorKaz", {1.0, 0.0, 0.0}); }
    static int handle(const Value& object) { return static_cast<int>(object.word()); }
};

class WrappersAlone : public Wrappers {
  protected:
    WrappersAlone() : Wrappers(WithoutFamily) {}
};

TEST_F(Wrappers, TheHandleIsTheFirstDataWord) {
    Value color = red();
    EXPECT_NE(handle(color), 0);
    EXPECT_EQ(host.get(color, "Handle").integer(), handle(color));
    color = {};
    expectClean();
}

TEST_F(Wrappers, ANewWrapperIsEmpty) {
    Value color = host.instantiate("CIColorKaz");
    EXPECT_EQ(handle(color), 0);
    EXPECT_EQ(host.get(color, "Alpha").number(), 0.0);
    EXPECT_EQ(host.get(color, "NumberOfComponents").integer(), 0);
    EXPECT_EQ(host.get(color, "description").text(), "");
    EXPECT_EQ(host.get(color, "StringRepresentation").text(), "");
    EXPECT_TRUE(host.call(color, "copy").isNil());
    EXPECT_TRUE(host.call(color, "ColorSpace").isNil());
    EXPECT_EQ(host.call(color, "Component", {0}).number(), 0.0);
    color = {};
    expectClean();
}

TEST_F(Wrappers, AConstructorTakesAHandle) {
    Value color = red();
    Value same = host.create("CIColorKaz", {host.get(color, "Handle")});
    EXPECT_EQ(handle(same), handle(color));
    EXPECT_EQ(host.get(same, "Red").number(), 1.0);
    same = {};
    EXPECT_EQ(host.get(color, "Red").number(), 1.0); // each wrapper has its own reference
    color = {};
    expectClean();
}

TEST_F(Wrappers, ASecondConstructorIsRefusedAndTheOldHandleStays) {
    Value color = red(), other = host.function("NewCIColorKaz", {0.0, 1.0, 0.0});
    int before = handle(color);
    EXPECT_EQ(raisedBy([&] { host.call(color, "Constructor(Handle as Integer)", {handle(other)}); }),
              "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
    EXPECT_EQ(handle(color), before);
    EXPECT_EQ(raisedBy([&] { host.call(color, "Constructor(Handle as Integer)", {0}); }),
              "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
    color = other = {};
    expectClean();
}

TEST_F(Wrappers, AZeroHandleIsRefused) {
    EXPECT_EQ(raisedBy([&] { host.create("CIColorKaz", {0}); }),
              "NilObjectException: CIColor Reference is nil.");
    expectClean();
}

TEST_F(Wrappers, AHandleOfAnotherClassIsRefused) {
    Value vector = host.function("NewCIVectorWithXKaz", {1.0});
    EXPECT_EQ(raisedBy([&] { host.create("CIColorKaz", {host.get(vector, "Handle")}); }),
              "UnsupportedOperationException: Reference is not a CIColor");
    vector = {};
    expectClean();
}

// New CIVectorKaz(1) means the handle 1, because 1 is an Integer.
TEST_F(Wrappers, ANumberThatCannotBeAnAddressIsRefused) {
    for (int number : {1, 4, 300, 4092, 5001, -1, -4, -4096})
        EXPECT_EQ(raisedBy([&] { host.create("CIVectorKaz", {number}); }),
                  "UnsupportedOperationException: Reference is not a CIVector")
            << number;
    expectClean();
}

TEST_F(Wrappers, EveryClassRefusesAZeroHandleByItsOwnName) {
    for (const char* name : {"CIColor", "CIImage", "CIContext", "CIVector", "CIFilterShape", "CIFilter",
                             "CISampler", "CIFeature", "CIFaceFeature", "CIDetector"})
        EXPECT_EQ(raisedBy([&] { host.create(std::string(name) + "Kaz", {0}); }),
                  "NilObjectException: " + std::string(name) + " Reference is nil.");
    expectClean();
}

TEST_F(Wrappers, EveryClassRefusesAHandleOfAnotherClass) {
    Value color = red();
    for (const char* name : {"CIImage", "CIContext", "CIVector", "CIFilterShape", "CIFilter", "CISampler",
                             "CIFeature", "CIFaceFeature", "CIDetector"})
        EXPECT_EQ(raisedBy([&] { host.create(std::string(name) + "Kaz", {host.get(color, "Handle")}); }),
                  "UnsupportedOperationException: Reference is not a " + std::string(name));
    color = {};
    expectClean();
}

TEST_F(Wrappers, OneNativeObjectHasOneWrapper) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    Value again = host.shared("CIFilterKaz", "FilterWithHandle", {host.get(filter, "Handle")});
    EXPECT_EQ(again.object(), filter.object());
    filter = {};
    EXPECT_NE(handle(again), 0); // locked twice: one release leaves it alive
    again = {};
    expectClean();
}

TEST_F(Wrappers, ADestroyedWrapperLeavesTheRegistry) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    // A second wrapper of the same object keeps it alive beyond the first, and takes its place in the
    // wrapper registry.
    Value keeper = host.create("CIFilterKaz", {host.get(filter, "Handle")});
    int native = handle(filter);
    filter = {};
    Value fresh = host.shared("CIFilterKaz", "FilterWithHandle", {native});
    EXPECT_NE(fresh.object(), keeper.object());
    EXPECT_EQ(handle(fresh), native);
    fresh = keeper = {};
    expectClean();
}

TEST_F(WrappersAlone, WithoutTheFamilyIdenticalObjectsGetDistinctWrappers) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    Value again = host.shared("CIFilterKaz", "FilterWithHandle", {host.get(filter, "Handle")});
    EXPECT_NE(again.object(), filter.object());
    EXPECT_EQ(handle(again), handle(filter));
    filter = again = {};
    expectClean();
}

TEST_F(WrappersAlone, WithoutTheFamilyACocoaExceptionStillArrivesWithItsReason) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    testing::internal::CaptureStderr();
    std::string raised = raisedBy([&] { host.call(filter, "ValueAsNumber", {"inputNoSuchKey"}); });
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(raised.starts_with("RuntimeException: ")) << raised;
    EXPECT_NE(raised.find("inputNoSuchKey"), std::string::npos) << raised;
    filter = {};
    expectClean();
}

TEST_F(Wrappers, ACocoaExceptionArrivesWithItsReasonAndOnceInTheLog) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    testing::internal::CaptureStderr();
    std::string raised = raisedBy([&] { host.assign(filter, "ValueAsNumber", {"inputNoSuchKey"}, 1.0); });
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(raised.starts_with("RuntimeException: ")) << raised;
    EXPECT_NE(raised.find("inputNoSuchKey"), std::string::npos) << raised;
    std::size_t line = log.find(", Info: ");
    ASSERT_NE(line, std::string::npos) << log;
    EXPECT_EQ(log.find(", Info: ", line + 1), std::string::npos) << "logged twice";
    filter = {};
    expectClean();
}

TEST_F(WrappersAlone, ClassesOfTheFamilyGiveNil) {
    Value color = red();
    EXPECT_TRUE(host.call(color, "ColorSpace").isNil());
    color = {};
    expectClean();
}

// --- colours: what a program cannot see -------------------------------------------------------------------

TEST_F(Wrappers, TwoColorSpacesOfOneColorAreTwoObjects) {
    Value color = red();
    Value first = host.call(color, "ColorSpace"), second = host.call(color, "ColorSpace");
    EXPECT_NE(first.object(), second.object());
    EXPECT_EQ(handle(first), handle(second));
    color = first = second = {};
    expectClean();
}

TEST_F(Wrappers, ComponentsArriveInSinglePrecision) {
    Value color = host.create("CIColorKaz", {0.1, 0.2, 0.3, 0.4});
    EXPECT_EQ(host.get(color, "Red").number(), static_cast<double>(0.1f));
    EXPECT_EQ(host.get(color, "Alpha").number(), static_cast<double>(0.4f));
    color = {};
    expectClean();
}

} // namespace
