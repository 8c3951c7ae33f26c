// Samplers, as far as a program cannot see, and samplers as inputs of filters.
#include "plugin_test.h"

namespace {

using studio::Value;

constexpr const char* kFourArguments = "Constructor(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, "
                                       "WrapMode as String, FilterMode as string)";

class Samplers : public PluginTest {
  protected:
    explicit Samplers(Family family = WithFamily) : PluginTest({}, family) {}

    Value image() {
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.5, 0.0})});
        return host.call(endless, "imageByCroppingToRect", {host.create("CGRectKaz", {0.0, 0.0, 8.0, 4.0})});
    }
    Value twice() {
        Value transform = host.create("NSAffineTransformKaz");
        host.call(transform, "Scale", {2.0, 2.0});
        return transform;
    }
    std::string description(const Value& object) { return host.get(object, "description").text(); }
};

TEST_F(Samplers, ASecondConstructorIsRefused) {
    Value sampler = host.function("NewCISamplerKaz", {image()});
    unsigned before = sampler.word();
    const char* refused =
        "UnsupportedOperationException: Constructor called too often. Object is already initialized.";
    EXPECT_EQ(raisedBy([&] { host.call(sampler, "Constructor(ciImage as CIImageKaz)", {Value()}); }),
              refused);
    EXPECT_EQ(raisedBy([&] { host.call(sampler, kFourArguments, {Value(), Value(), "", ""}); }), refused);
    host.call(sampler, "Constructor", {}); // does nothing, so refuses nothing
    EXPECT_EQ(sampler.word(), before);
    sampler = {};
    expectClean();
}

TEST_F(Samplers, KeepTheirImageAndTheirMatrix) {
    Value sampler = host.function("NewCISamplerKaz", {image(), twice(), "clamp", "nearest"});
    EXPECT_EQ(living("CIImage"), 1);
    EXPECT_EQ(host.get(host.call(sampler, "Extent"), "Width").number(), 16.0);
    sampler = {};
    expectClean();
}

TEST_F(Samplers, TheDefinitionIsANewObjectEveryTime) {
    Value sampler = host.function("NewCISamplerKaz", {image()});
    Value first = host.call(sampler, "Definiton"), second = host.call(sampler, "Definiton");
    EXPECT_EQ(first.className(), "CIFilterShapeKaz");
    EXPECT_NE(first.object(), second.object());
    sampler = {};
    EXPECT_NE(description(first), ""); // it has a reference of its own
    first = second = {};
    expectClean();
}

TEST_F(Samplers, WithoutObjectsToPutThemInNothingIsKept) {
    Value picture = image();
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.function("NewCISamplerKaz", {picture}).isNil());
    EXPECT_EQ(living("CISampler"), 0);
    Value sampler = host.function("NewCISamplerKaz", {picture});
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.call(sampler, "Definiton").isNil());
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.call(sampler, "Extent").isNil());
    picture = sampler = {};
    expectClean();
}

TEST_F(Samplers, WithoutAnImageThereIsNoSamplerAndNoException) {
    for (const Value& none : {Value(), host.instantiate("CIImageKaz")}) {
        EXPECT_TRUE(host.function("NewCISamplerKaz", {none, twice(), "clamp", "nearest"}).isNil());
        EXPECT_TRUE(host.function("NewCISamplerKaz", {none}).isNil());
        Value sampler = host.instantiate("CISamplerKaz");
        host.call(sampler, kFourArguments, {none, twice(), "clamp", "nearest"});
        EXPECT_EQ(sampler.word(), 0u);
    }
    expectClean();
}

TEST_F(Samplers, AMatrixWithoutATransformIsNone) {
    Value sampler = host.function("NewCISamplerKaz",
                                  {image(), host.instantiate("NSAffineTransformKaz"), "clamp", "linear"});
    EXPECT_EQ(description(sampler).find("affine_matrix"), std::string::npos) << description(sampler);
    EXPECT_NE(description(sampler).find("wrap_mode"), std::string::npos) << description(sampler);
}

class SamplersAlone : public Samplers {
  protected:
    SamplersAlone() : Samplers(WithoutFamily) {}
};

TEST_F(SamplersAlone, WithoutTheFamilyThereIsNoRectangleToTellTheExtentIn) {
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    Value sampler = host.function("NewCISamplerKaz", {host.shared("CIImageKaz", "imageWithColor", {color})});
    EXPECT_TRUE(host.call(sampler, "Extent").isNil());
    EXPECT_FALSE(host.call(sampler, "Definiton").isNil());
    color = sampler = {};
    expectClean();
}

} // namespace
