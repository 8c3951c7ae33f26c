// Attributes of filters: the rules by which their values are read, on a filter that the test wrote.
#include "crafted_filter.h"
#include "plugin_test.h"

namespace {

using studio::Value;

const char* const numberNames[] = {"MinNumber",       "MaxNumber",     "SliderMinNumber",
                                   "SliderMaxNumber", "DefaultNumber", "IdentityNumber"};
const char* const presenceNames[] = {"HasMinNumber", "HasMaxNumber", "HasSliderMinNumber",
                                     "HasSliderMaxNumber"};
const char* const objectNames[] = {"DefaultVector", "IdentityVector", "DefaultColor",
                                   "DefaultAffineTransform", "IdentityAffineTransform"};

class Attributes : public PluginTest {
  protected:
    explicit Attributes(Family family = WithFamily) : PluginTest({}, family) {}

    Value crafted() { return host.shared("CIFilterKaz", "FilterWithHandle", {craftedFilter()}); }
    Value crafted(const char* key) { return host.call(crafted(), "AttributesItem", {key}); }
    Value sepia() { return host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"}); }
    double number(const Value& attribute, const char* name) { return host.get(attribute, name).number(); }
    bool has(const Value& attribute, const char* name) { return host.get(attribute, name).boolean(); }
    std::string text(const Value& attribute, const char* name) { return host.get(attribute, name).text(); }
};

TEST_F(Attributes, APresentMinimumOfZeroIsTrueAndZero) {
    Value attribute = crafted("inputNumbers");
    EXPECT_TRUE(has(attribute, "HasMinNumber"));
    EXPECT_EQ(number(attribute, "MinNumber"), 0.0);
    EXPECT_EQ(number(attribute, "MaxNumber"), 7.0);
    for (const char* name : presenceNames) EXPECT_TRUE(has(attribute, name)) << name;
}

TEST_F(Attributes, AnAbsentMinimumIsFalseAndZero) {
    Value attribute = crafted("inputNothing");
    ASSERT_FALSE(attribute.isNil());
    for (const char* name : presenceNames) EXPECT_FALSE(has(attribute, name)) << name;
    for (const char* name : numberNames) EXPECT_EQ(number(attribute, name), 0.0) << name;
    for (const char* name : objectNames) EXPECT_TRUE(host.get(attribute, name).isNil()) << name;
    for (const char* name : {"DisplayName", "ClassName", "Type"})
        EXPECT_EQ(text(attribute, name), "") << name;
    EXPECT_EQ(text(attribute, "Name"), "inputNothing");
}

TEST_F(Attributes, EveryPropertyReadsItsOwnKey) {
    Value attribute = crafted("inputDistinct");
    for (int i = 0; i < 6; ++i) EXPECT_EQ(number(attribute, numberNames[i]), i + 1) << numberNames[i];
    EXPECT_EQ(text(attribute, "ClassName"), "class");
    EXPECT_EQ(text(attribute, "Type"), "type");
    EXPECT_EQ(text(attribute, "DisplayName"), "display name");

    const char* keys[] = {"inputMinimum", "inputMaximum", "inputSliderMinimum", "inputSliderMaximum"};
    for (int key = 0; key < 4; ++key)
        for (int name = 0; name < 4; ++name)
            EXPECT_EQ(has(crafted(keys[key]), presenceNames[name]), key == name)
                << keys[key] << " " << presenceNames[name];

    Value vectors = crafted("inputTwoVectors"), transforms = crafted("inputTwoTransforms");
    EXPECT_EQ(number(host.get(vectors, "DefaultVector"), "X"), 1);
    EXPECT_EQ(number(host.get(vectors, "IdentityVector"), "X"), 3);
    EXPECT_EQ(number(host.get(transforms, "DefaultAffineTransform"), "M11"), 2);
    EXPECT_EQ(number(host.get(transforms, "IdentityAffineTransform"), "M11"), 3);
}

TEST_F(Attributes, TheNameIsTheKeyAndNotTheNameInTheDictionary) {
    EXPECT_EQ(text(crafted("inputNumbers"), "Name"), "inputNumbers");
}

TEST_F(Attributes, ValuesOfAnotherClassAreNoNumbers) {
    for (const char* key : {"inputVectors", "inputTexts"}) {
        Value attribute = crafted(key);
        for (const char* name : numberNames) EXPECT_EQ(number(attribute, name), 0.0) << key << name;
        for (const char* name : presenceNames) EXPECT_FALSE(has(attribute, name)) << key << name;
    }
}

TEST_F(Attributes, ValuesOfAnotherClassAreNoObjects) {
    for (const char* name : objectNames) EXPECT_TRUE(host.get(crafted("inputNumbers"), name).isNil()) << name;
    Value vectors = crafted("inputVectors");
    EXPECT_EQ(host.get(vectors, "DefaultVector").className(), "CIVectorKaz");
    EXPECT_EQ(host.get(vectors, "IdentityVector").className(), "CIVectorKaz");
    for (const char* name : {"DefaultColor", "DefaultAffineTransform", "IdentityAffineTransform"})
        EXPECT_TRUE(host.get(vectors, name).isNil()) << name;
}

TEST_F(Attributes, OfTheOutputTheClassAloneIsTold) {
    Value output = host.call(sepia(), "AttributesItem", {"outputImage"});
    EXPECT_EQ(text(output, "ClassName"), "CIImage");
    EXPECT_EQ(text(output, "Type"), "");
    for (const char* name : presenceNames) EXPECT_FALSE(has(output, name)) << name;
    EXPECT_EQ(text(output, "Name"), "outputImage");
}

TEST_F(Attributes, OnlyDictionariesAreEntries) {
    Value filter = crafted();
    EXPECT_EQ(host.call(filter, "AttributesCount").integer(), 11);
    for (const char* key : {"inputText", "inputList", "inputMissing", ""})
        EXPECT_TRUE(host.call(filter, "AttributesItem", {key}).isNil()) << key;
}

TEST_F(Attributes, TwoItemsOfOneEntryAreTwoObjects) {
    Value filter = sepia();
    Value first = host.call(filter, "AttributesItem", {0}), second = host.call(filter, "AttributesItem", {0});
    EXPECT_NE(first.object(), second.object());
    EXPECT_EQ(first.word(0), second.word(0)); // one dictionary, because it is fetched once
    EXPECT_EQ(text(first, "Name"), text(second, "Name"));
    filter = first = second = {};
    expectClean();
}

TEST_F(Attributes, ItemsAreNotInTheRegistry) {
    Value attribute = host.call(sepia(), "AttributesItem", {0});
    // So its dictionary gets a wrapper of its own. (A filter's handle is not asked for its class.)
    Value wrapper = host.shared("CIFilterKaz", "FilterWithHandle", {static_cast<int>(attribute.word(0))});
    EXPECT_EQ(wrapper.className(), "CIFilterKaz");
    EXPECT_NE(wrapper.object(), attribute.object());
    EXPECT_EQ(wrapper.word(0), attribute.word(0));
    EXPECT_EQ(text(wrapper, "description"), text(attribute, "description"));
    attribute = wrapper = {};
    expectClean();
}

TEST_F(Attributes, RetainTheirDictionaryAndTheirName) {
    Value filter = crafted();
    CraftedReferences before = referencesTo("inputNumbers");
    int index = 0;
    while (host.call(filter, "AttributesName", {index}).text() != "inputNumbers") ++index;
    Value attribute = host.call(filter, "AttributesItem", {index});
    EXPECT_EQ(referencesTo("inputNumbers"), (CraftedReferences{before.key + 1, before.dictionary + 1}));
    attribute = {};
    EXPECT_EQ(referencesTo("inputNumbers"), before);
}

TEST_F(Attributes, OutliveTheirFilter) {
    Value attribute = host.call(sepia(), "AttributesItem", {"inputIntensity"});
    EXPECT_EQ(living("CIFilter"), 0);
    EXPECT_EQ(text(attribute, "Name"), "inputIntensity");
    EXPECT_EQ(number(attribute, "DefaultNumber"), 1.0);
    attribute = {};
    expectClean();
}

TEST_F(Attributes, WithoutAnObjectToPutThemInNothingIsKept) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CICheckerboardGenerator"});
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.call(filter, "AttributesItem", {0}).isNil());
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.call(filter, "AttributesItem", {"inputCenter"}).isNil());
    Value attribute = host.call(filter, "AttributesItem", {"inputCenter"});
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.get(attribute, "DefaultVector").isNil());
    EXPECT_EQ(text(host.get(attribute, "DefaultVector"), "stringRepresentation"), "[150 150]");
    filter = attribute = {};
    // The vectors and colours of the attributes went with them.
    expectClean();
}

TEST_F(Attributes, AnObjectThatTheHostMadeItselfIsEmpty) {
    Value attribute = host.instantiate("CIAttributeKaz");
    EXPECT_EQ(attribute.word(0), 0u);
    EXPECT_EQ(attribute.word(1), 0u);
    EXPECT_EQ(text(attribute, "Name"), "");
    EXPECT_EQ(text(attribute, "description"), "");
    attribute = {};
    expectClean();
}

TEST_F(Attributes, AskedTwiceTheDefaultVectorIsOneObject) {
    Value attribute = crafted("inputVectors");
    Value first = host.get(attribute, "DefaultVector"), second = host.get(attribute, "DefaultVector");
    EXPECT_EQ(first.object(), second.object());
    // The same native object under the other key, too.
    EXPECT_EQ(host.get(attribute, "IdentityVector").object(), first.object());
}

class AttributesAlone : public Attributes {
  protected:
    AttributesAlone() : Attributes(WithoutFamily) {}
};

TEST_F(AttributesAlone, WithoutTheFamilyVectorsAreNewAndTransformsNil) {
    Value attribute = host.call(host.shared("CIFilterKaz", "FilterWithName", {"CICheckerboardGenerator"}),
                                "AttributesItem", {"inputCenter"});
    Value first = host.get(attribute, "DefaultVector"), second = host.get(attribute, "DefaultVector");
    EXPECT_NE(first.object(), second.object());
    EXPECT_EQ(first.word(), second.word());
    Value transform = host.call(host.shared("CIFilterKaz", "FilterWithName", {"CIAffineTransform"}),
                                "AttributesItem", {"inputTransform"});
    EXPECT_TRUE(host.get(transform, "DefaultAffineTransform").isNil());
    attribute = first = second = transform = {};
    expectClean();
}

} // namespace
