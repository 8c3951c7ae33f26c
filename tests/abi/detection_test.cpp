// Detectors and features from the host's side, on a system that has them.
#include "detection_coreimage.h"
#include "plugin_test.h"

#include <cstdlib>

namespace {

using studio::Value;

class Detection : public PluginTest {
  protected:
    Value photo(const char* name) {
        const char* folder = std::getenv("KAZ_PHOTOS");
        Value file = host.function("GetFolderItem", {std::string(folder ? folder : ".") + "/" + name});
        return host.function("NewCIImagewithFileKaz", {file});
    }
    Value detector(Value context = {}, Value options = {}) {
        Value type = host.shared("CIDetectorKaz", "CIDetectorTypeFace");
        return host.create("CIDetectorKaz", {type, std::move(context), std::move(options)});
    }
    Value features(const Value& detector) {
        return host.call(detector, "featuresInImage", {host.shared("CIImageKaz", "emptyImage")});
    }
    // The plugin's function itself, for what no program can pass.
    template <class Function>
    Function function(const char* declaration) {
        for (const auto& method : host.findClass("CIDetectorKaz")->methods)
            if (method->declaration == declaration) return reinterpret_cast<Function>(method->function);
        ADD_FAILURE() << "no method " << declaration;
        return nullptr;
    }
    static int handle(void* native) { return static_cast<int>(reinterpret_cast<std::intptr_t>(native)); }
    int handle(const Value& wrapper) { return host.get(wrapper, "Handle").integer(); }
};

TEST_F(Detection, AFaceComesBackAsAFaceFeature) {
    Value faces = host.call(detector(), "featuresInImage", {photo("astronaut.png")});
    ASSERT_EQ(faces.count(), 1);
    EXPECT_EQ(faces.at(0).className(), "CIFaceFeatureKaz");
    EXPECT_EQ(host.call(faces.at(0), "type").text(), "Face");
    faces = {};
    expectClean();
}

TEST_F(Detection, AnyOtherFeatureComesBackAsAFeature) {
    void *plain = newPlainFeature(), *face = newFaceFeature();
    detectorsFind({plain, face});
    Value found = features(detector());
    ASSERT_EQ(found.count(), 2);
    EXPECT_EQ(found.at(0).className(), "CIFeatureKaz");
    EXPECT_EQ(handle(found.at(0)), handle(plain));
    EXPECT_EQ(host.call(found.at(0), "type").text(), "");
    EXPECT_EQ(found.at(1).className(), "CIFaceFeatureKaz");
    EXPECT_EQ(handle(found.at(1)), handle(face));
    found = {};
    EXPECT_EQ(retainCount(plain), 1);
    EXPECT_EQ(retainCount(face), 1);
    releaseNative(plain);
    releaseNative(face);
    expectClean();
}

TEST_F(Detection, EveryFactOfAFaceIsItsOwn) {
    const char* const questions[] = {"hasLeftEyePosition", "hasRightEyePosition", "hasMouthPosition",
                                     "hasTrackingID", "hasTrackingFrameCount"};
    for (int fact = 0; fact < 5; ++fact) {
        void* native = newFace({fact == 0, fact == 1, fact == 2, fact == 3, fact == 4});
        detectorsFind({native});
        Value face = features(detector()).at(0);
        EXPECT_EQ(face.className(), "CIFaceFeatureKaz");
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(host.call(face, questions[i]).boolean(), i == fact) << questions[i] << " of " << fact;
        auto point = [&](const char* name) {
            Value p = host.call(face, name);
            return std::make_pair(host.get(p, "X").number(), host.get(p, "Y").number());
        };
        EXPECT_EQ(point("leftEyePosition"), std::make_pair(5.0, 6.0));
        EXPECT_EQ(point("rightEyePosition"), std::make_pair(7.0, 8.0));
        EXPECT_EQ(point("mouthPosition"), std::make_pair(9.0, 10.5));
        EXPECT_EQ(host.call(face, "trackingID").integer(), 11);
        EXPECT_EQ(host.call(face, "trackingFrameCount").integer(), 12);
        Value bounds = host.call(face, "bounds");
        EXPECT_EQ(host.get(bounds, "X").number(), 1);
        EXPECT_EQ(host.get(bounds, "Y").number(), 2);
        EXPECT_EQ(host.get(bounds, "Width").number(), 3);
        EXPECT_EQ(host.get(bounds, "Height").number(), 4);
        face = {};
        releaseNative(native);
    }
}

TEST_F(Detection, AFeatureThatHasAWrapperComesBackAsThatWrapper) {
    void* face = newFaceFeature();
    detectorsFind({face, face});
    Value detector = this->detector();
    Value first = features(detector);
    ASSERT_EQ(first.count(), 2);
    EXPECT_EQ(first.at(0).object(), first.at(1).object());
    Value wrapper = first.at(0);
    Value second = features(detector);
    EXPECT_EQ(second.at(0).object(), wrapper.object());
    EXPECT_EQ(retainCount(face), 2); // the wrapper's, once
    // Locked by the factory and unlocked after insertion: the arrays are all that holds it.
    wrapper = {};
    first = {};
    EXPECT_EQ(second.at(0).className(), "CIFaceFeatureKaz");
    second = {};
    EXPECT_EQ(retainCount(face), 1);
    releaseNative(face);
    detector = {};
    expectClean();
}

TEST_F(Detection, FeaturesComeInTheirOrder) {
    std::vector<void*> natives;
    for (int i = 0; i < 5; ++i) natives.push_back(newPlainFeature());
    detectorsFind(natives);
    Value found = features(detector());
    ASSERT_EQ(found.count(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(handle(found.at(i)), handle(natives[static_cast<size_t>(i)]));
    found = {};
    for (void* native : natives) releaseNative(native);
    expectClean();
}

TEST_F(Detection, APositionAskedForTwiceGivesTwoPoints) {
    Value face = host.call(detector(), "featuresInImage", {photo("astronaut.png")}).at(0);
    for (const char* position : {"leftEyePosition", "rightEyePosition", "mouthPosition"}) {
        Value a = host.call(face, position), b = host.call(face, position);
        EXPECT_EQ(a.className(), "CGPointKaz");
        EXPECT_NE(a.object(), b.object());
        EXPECT_EQ(host.get(a, "X").number(), host.get(b, "X").number());
        EXPECT_EQ(host.get(a, "Y").number(), host.get(b, "Y").number());
        EXPECT_GT(host.get(a, "X").number(), 100);
    }
    Value a = host.call(face, "bounds"), b = host.call(face, "bounds");
    EXPECT_EQ(a.className(), "CGRectKaz");
    EXPECT_NE(a.object(), b.object());
    EXPECT_EQ(host.get(a, "Width").number(), host.get(b, "Width").number());
    face = a = b = {};
    expectClean();
}

TEST_F(Detection, FeaturesInNilMakeTheirArrayFirstAndGiveItBack) {
    Value detector = this->detector();
    host.failService("RuntimeArrayCreateSingleDimBoundedArray");
    EXPECT_EQ(raisedBy([&] { host.call(detector, "featuresInImage", {Value()}); }),
              "NilObjectException: image is nil");
    // The failure was used up: the array had been made before.
    Value found = host.call(detector, "featuresInImage", {host.shared("CIImageKaz", "emptyImage")});
    EXPECT_FALSE(found.isNil());
    detector = found = {};
    expectClean();
}

TEST_F(Detection, FeaturesInNilRaiseAndGiveNil) {
    Value detector = this->detector();
    for (Value nothing : {Value(), host.instantiate("CIImageKaz")}) {
        EXPECT_EQ(raisedBy([&] { host.call(detector, "featuresInImage", {nothing}); }),
                  "NilObjectException: image is nil");
        EXPECT_EQ(raisedBy([&] {
                      host.call(detector, "featuresInImage", {nothing, host.dictionary()});
                  }),
                  "NilObjectException: image is nil");
    }
    // The result itself, by a direct call: the exception stays pending.
    auto method = function<REALarray (*)(REALobject, REALobject)>(
        "featuresInImage(image as CIImageKaz) as CIFeatureKaz()");
    EXPECT_EQ(method(detector.object(), nullptr), nullptr);
    EXPECT_EQ(host.takePendingException().className(), "NilObjectException");
    detector = {};
    expectClean();
}

TEST_F(Detection, ADetectorWithoutAHandleFindsNothing) {
    Value empty = host.instantiate("CIDetectorKaz");
    Value found = features(empty);
    EXPECT_FALSE(found.isNil());
    EXPECT_EQ(found.count(), 0);
    EXPECT_EQ(host.call(empty, "featuresInImage", {photo("astronaut.png"), host.dictionary()}).count(), 0);
    empty = found = {};
    expectClean();
}

TEST_F(Detection, AnUnknownTypeLeavesTheHandleNil) {
    Value detector = host.create("CIDetectorKaz", {"CIDetectorTypeHand", Value(), Value()});
    EXPECT_EQ(handle(detector), 0);
    EXPECT_EQ(features(detector).count(), 0);
    detector = {};
    expectClean();
}

TEST_F(Detection, ANilTypeRaises) {
    Value detector = host.instantiate("CIDetectorKaz");
    auto method = function<void (*)(REALobject, REALstring, REALobject, REALobject)>(
        "Constructor(type as string, context as CIContextKaz, options as dictionary)");
    method(detector.object(), nullptr, nullptr, nullptr);
    Value exception = host.takePendingException();
    EXPECT_EQ(exception.className(), "NilObjectException");
    EXPECT_EQ(host.get(exception, "Message").text(), "type is empty");
    EXPECT_EQ(handle(detector), 0);
    detector = exception = {};
    expectClean();
}

TEST_F(Detection, TheContextAndTheOptionsReachCoreImage) {
    recordDetectors();
    Value context = host.function("NewCIContextKaz", {host.create("CGContextKaz", {8, 4})});
    Value options = host.dictionary({{host.shared("CIDetectorKaz", "CIDetectorAccuracy"),
                                      host.shared("CIDetectorKaz", "CIDetectorAccuracyHigh")}});
    Value made = detector(context, options);
    EXPECT_EQ(handle(made), 0);
    EXPECT_EQ(lastDetector().type, "CIDetectorTypeFace");
    EXPECT_EQ(handle(lastDetector().context), handle(context));
    EXPECT_EQ(lastDetector().accuracy, "CIDetectorAccuracyHigh");
    made = detector();
    EXPECT_EQ(lastDetector().context, nullptr);
    EXPECT_EQ(lastDetector().accuracy, "");
    made = context = options = {};
    expectClean();
}

TEST_F(Detection, TheOptionsOfASearchReachCoreImage) {
    recordSearches();
    Value detector = this->detector();
    Value found = host.call(
        detector, "featuresInImage",
        {host.shared("CIImageKaz", "emptyImage"), host.dictionary({{"CIDetectorImageOrientation", 6}})});
    EXPECT_EQ(lastOrientation(), 6);
    EXPECT_FALSE(found.isNil()); // though Core Image gave nil
    EXPECT_EQ(found.count(), 0);
    detector = found = {};
    expectClean();
}

TEST_F(Detection, AnExceptionOfCoreImageReachesTheHost) {
    breakDetectors("NSInvalidArgumentException", "cannot look");
    Value detector = this->detector();
    EXPECT_EQ(raisedBy([&] { features(detector); }), "RuntimeException: cannot look");
    detector = {};
    expectClean();
}

TEST_F(Detection, AfterAnExceptionOfCoreImageTheResultIsNilAndTheNextSearchFindsAgain) {
    breakDetectors("NSInvalidArgumentException", "cannot look");
    Value detector = this->detector(), image = host.shared("CIImageKaz", "emptyImage");
    // The result itself, by a direct call: the exception stays pending.
    auto method = function<REALarray (*)(REALobject, REALobject)>(
        "featuresInImage(image as CIImageKaz) as CIFeatureKaz()");
    EXPECT_EQ(method(detector.object(), image.object()), nullptr);
    EXPECT_EQ(host.takePendingException().className(), "RuntimeException");
    void* face = newFaceFeature();
    detectorsFind({face});
    EXPECT_EQ(features(detector).count(), 1);
    EXPECT_EQ(retainCount(face), 1);
    releaseNative(face);
    detector = image = {};
    expectClean();
}

TEST_F(Detection, ASecondConstructorReplacesTheReference) {
    Value detector = this->detector();
    int first = handle(detector);
    EXPECT_NE(first, 0);
    Value type = host.shared("CIDetectorKaz", "CIDetectorTypeFace");
    host.call(detector, "Constructor", {type, Value(), Value()});
    EXPECT_NE(handle(detector), first);
    EXPECT_NE(handle(detector), 0);
    detector = {};
    type = {};
    EXPECT_TRUE(host.report().clean()) << host.report().text();
    // The first one is not given back.
    for (const auto& [name, count] : host.report().platformObjects)
        if (name == "CIDetector") EXPECT_EQ(count, 1);
}

TEST_F(Detection, ADetectorIsNotInTheRegistry) {
    Value detector = this->detector();
    Value second = host.create("CIDetectorKaz", {host.get(detector, "Handle")});
    EXPECT_NE(second.object(), detector.object());
    EXPECT_EQ(handle(second), handle(detector));
    EXPECT_EQ(host.call(second, "featuresInImage", {photo("astronaut.png")}).count(), 1);
    detector = {};
    EXPECT_EQ(host.call(second, "featuresInImage", {photo("astronaut.png")}).count(), 1);
    second = {};
    expectClean();
}

TEST_F(Detection, AFaceMayBeWrappedAsAFeatureButNoFeatureAsAFace) {
    void *plain = newPlainFeature(), *face = newFaceFeature();
    EXPECT_EQ(handle(host.create("CIFeatureKaz", {handle(face)})), handle(face));
    EXPECT_EQ(handle(host.create("CIFaceFeatureKaz", {handle(face)})), handle(face));
    EXPECT_EQ(raisedBy([&] { host.create("CIFaceFeatureKaz", {handle(plain)}); }),
              "UnsupportedOperationException: Reference is not a CIFaceFeature");
    EXPECT_EQ(raisedBy([&] { host.create("CIDetectorKaz", {handle(face)}); }),
              "UnsupportedOperationException: Reference is not a CIDetector");
    EXPECT_EQ(retainCount(face), 1);
    EXPECT_EQ(retainCount(plain), 1);
    releaseNative(face);
    releaseNative(plain);
    expectClean();
}

TEST_F(Detection, EachAllocationMayFail) {
    void *plain = newPlainFeature(), *face = newFaceFeature();
    detectorsFind({plain, face});
    Value detector = this->detector();
    Value image = host.shared("CIImageKaz", "emptyImage");
    for (int good = 0;; ++good) {
        SCOPED_TRACE(good);
        ASSERT_LT(good, 100);
        host.failAllocation(good);
        Value found;
        raisedBy([&] { found = host.call(detector, "featuresInImage", {image}); });
        bool failed = host.allocationFailed();
        host.stopFailing();
        // A feature whose wrapper could not be made leaves its place empty.
        if (!found.isNil()) EXPECT_EQ(found.count(), 2);
        found = {};
        EXPECT_EQ(retainCount(plain), 1);
        EXPECT_EQ(retainCount(face), 1);
        if (!failed) break;
    }
    releaseNative(plain);
    releaseNative(face);
    detector = image = {};
    expectClean();
}

} // namespace
