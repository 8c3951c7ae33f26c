// Filters, as far as a program cannot see.
#include "crafted_filter.h"
#include "plugin_test.h"

#include <cstdio>

namespace {

using studio::Value;

class Filters : public PluginTest {
  protected:
    explicit Filters(studio::HostOptions options = {}, Family family = WithFamily, Services services = {})
        : PluginTest(std::move(options), family, std::move(services)) {}

    Value filter(const char* name = "CISepiaTone") {
        return host.shared("CIFilterKaz", "FilterWithName", {name});
    }
    std::vector<std::string> texts(const Value& array) {
        std::vector<std::string> out;
        for (int i = 0; i < array.count(); ++i) out.push_back(array.at(i).text());
        return out;
    }
    std::vector<std::string> inCategories(std::vector<Value> categories) {
        return texts(host.shared("CIFilterKaz", "FilterNamesInCategories",
                                 {host.array("String", std::move(categories))}));
    }
    std::size_t countOfAll() { return inCategories({"CICategoryBuiltIn"}).size(); }
    // Cocoa's message about an unknown key.
    static std::string reason(const Value& filter, const char* method, const char* key) {
        char text[300];
        std::snprintf(
            text, sizeof text,
            "RuntimeException: [<CISepiaTone 0x%x> %s]: this class is not key value coding-compliant "
            "for the key %s. The inputs of CISepiaTone are inputImage, inputIntensity.",
            filter.word(), method, key);
        return text;
    }
    static int occurrences(const std::string& text, const std::string& part) {
        int count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

class FiltersAlone : public Filters {
  protected:
    FiltersAlone() : Filters({}, WithoutFamily) {}
};

TEST_F(Filters, TheAttributeCacheGoesWithTheWrapper) {
    Value board = filter("CICheckerboardGenerator");
    EXPECT_EQ(board.word(1), 0u);
    host.call(board, "AttributesCount");
    unsigned cache = board.word(1);
    EXPECT_NE(cache, 0u);
    host.call(board, "FilterName");
    host.call(board, "attributesDictionary");
    EXPECT_EQ(board.word(1), cache);  // fetched once
    EXPECT_GT(living("CIVector"), 0); // its defaults
    board = {};
    expectClean();
}

TEST_F(Filters, TheAttributesDictionaryIsNotTheCache) {
    Value sepia = filter();
    host.call(sepia, "attributesDictionary");
    EXPECT_EQ(sepia.word(1), 0u);
}

TEST_F(Filters, FiltersThatOthersRegisteredAreInTheCatalogue) {
    EXPECT_TRUE(filter("OurBrightest").isNil());
    registerFilter();
    EXPECT_EQ(inCategories({"OurEffects"}), std::vector<std::string>{"OurBrightest"});
    EXPECT_EQ(host.shared("CIFilterKaz", "LocalizedNameForFilterName", {"OurBrightest"}).text(), "Brightest");

    Value brightest = filter("OurBrightest");
    ASSERT_FALSE(brightest.isNil());
    host.call(brightest, "SetDefaults");
    EXPECT_EQ(host.call(brightest, "ValueAsNumber", {"inputStops"}).number(), 2);
    EXPECT_EQ(host.call(brightest, "AttributesCount").integer(), 3); // two inputs and the output
    Value color = host.function("NewCIColorKaz", {0.25, 0.25, 0.25});
    host.assign(brightest, "ValueAsCIImage", {"inputImage"},
                host.shared("CIImageKaz", "imageWithColor", {color}));
    EXPECT_FALSE(host.call(brightest, "ValueAsCIImage", {"outputImage"}).isNil());
    color = brightest = {};
    expectClean();
}

TEST_F(Filters, EntriesComeInTheSameOrderEveryTime) {
    Value board = filter("CICheckerboardGenerator");
    int count = host.call(board, "AttributesCount").integer();
    EXPECT_EQ(count, 6); // five inputs and the output
    for (int round = 0; round < 3; ++round)
        for (int i = 0; i < count; ++i) {
            std::string name = host.call(board, "AttributesName", {i}).text();
            Value item = host.call(board, "AttributesItem", {i});
            EXPECT_EQ(host.get(item, "Name").text(), name);
            // One and the same dictionary, by index and by name.
            EXPECT_EQ(host.call(board, "AttributesItem", {name}).word(0), item.word(0));
        }
}

TEST_F(Filters, AnUnknownKeyRaisesCocoasReasonAndIsLoggedOnce) {
    Value sepia = filter();
    for (bool set : {false, true}) {
        testing::internal::CaptureStderr();
        std::string raised = raisedBy([&] {
            if (set)
                host.assign(sepia, "ValueAsNumber", {"foo"}, 1.0);
            else
                host.call(sepia, "ValueAsNumber", {"foo"});
        });
        std::string log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(raised, reason(sepia, set ? "setValue:forUndefinedKey:" : "valueForUndefinedKey:", "foo"));
        EXPECT_EQ(occurrences(log, "A NSUnknownKeyException: [<CISepiaTone 0x"), 1) << log;
    }
    sepia = {};
    expectClean();
}

TEST_F(Filters, EveryGetterAndSetterRaisesForAnUnknownKey) {
    Value sepia = filter();
    const char* const kinds[] = {"Data",    "Number",          "CIImage", "CIVector",
                                 "CIColor", "AffineTransform", "String"};
    for (const char* kind : kinds) {
        std::string method = std::string("ValueAs") + kind;
        Value value = method == "ValueAsNumber"   ? Value(1.0)
                      : method == "ValueAsString" ? Value("text")
                                                  : Value();
        testing::internal::CaptureStderr();
        EXPECT_EQ(raisedBy([&] { host.call(sepia, method, {"foo"}); }),
                  reason(sepia, "valueForUndefinedKey:", "foo"));
        EXPECT_EQ(raisedBy([&] { host.assign(sepia, method, {"foo"}, value); }),
                  reason(sepia, "setValue:forUndefinedKey:", "foo"));
        testing::internal::GetCapturedStderr();
    }
    sepia = {};
    expectClean();
}

TEST_F(Filters, AHandleIsNotAskedForItsClass) {
    Value vector = host.function("NewCIVectorWithXYKaz", {1, 2});
    // The registered wrapper, whatever its class.
    EXPECT_EQ(host.shared("CIFilterKaz", "FilterWithHandle", {host.get(vector, "Handle")}).object(),
              vector.object());
}

TEST_F(FiltersAlone, AHandleIsNotAskedForItsClass) {
    Value vector = host.function("NewCIVectorWithXYKaz", {1, 2});
    Value wrapper = host.shared("CIFilterKaz", "FilterWithHandle", {host.get(vector, "Handle")});
    EXPECT_EQ(wrapper.className(), "CIFilterKaz");
    EXPECT_EQ(host.get(wrapper, "description").text(), "[1 2]");
    vector = wrapper = {};
    expectClean();
}

TEST_F(FiltersAlone, GettersWrapWhateverObjectIsThere) {
    Value board = filter("CICheckerboardGenerator");
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    host.assign(board, "ValueAsCIColor", {"inputColor0"}, color);
    const std::pair<const char*, const char*> getters[] = {{"ValueAsCIImage", "CIImageKaz"},
                                                           {"ValueAsCIVector", "CIVectorKaz"},
                                                           {"ValueAsCIColor", "CIColorKaz"}};
    for (const auto& [getter, className] : getters) {
        Value value = host.call(board, getter, {"inputColor0"});
        EXPECT_EQ(value.className(), className);
        EXPECT_EQ(value.word(), color.word());
        EXPECT_EQ(host.get(value, "description").text(), host.get(color, "description").text());
    }
    board = color = {};
    expectClean();
}

TEST_F(Filters, GettersGiveTheRegisteredWrapperWhateverItsClass) {
    Value board = filter("CICheckerboardGenerator");
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    host.assign(board, "ValueAsCIColor", {"inputColor0"}, color);
    EXPECT_EQ(host.call(board, "ValueAsCIVector", {"inputColor0"}).object(), color.object());
}

TEST_F(Filters, ASetterKeepsWhatItSets) {
    Value board = filter("CICheckerboardGenerator");
    {
        Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
        host.assign(board, "ValueAsCIColor", {"inputColor0"}, color);
    }
    EXPECT_EQ(living("CIColor"), 1);
    Value color = host.call(board, "ValueAsCIColor", {"inputColor0"});
    EXPECT_EQ(host.get(color, "Green").number(), 0.5);
    color = {};
    host.assign(board, "ValueAsCIColor", {"inputColor0"}, Value());
    EXPECT_EQ(living("CIColor"), 0);
    board = {};
    expectClean();
}

TEST_F(Filters, WithoutAWrapperToPutItInAFilterIsGivenBack) {
    host.failService("PluginNewInstance");
    EXPECT_TRUE(filter().isNil());
    expectClean();
}

TEST_F(Filters, NoArrayAtAllGivesNoNames) {
    EXPECT_GT(countOfAll(), 30u);
    EXPECT_TRUE(inCategories({"CICategoryNonsense"}).empty());
    EXPECT_EQ(inCategories({}).size(), countOfAll()); // no category to be in
    const studio::Method* method = nullptr;
    for (const auto& shared : host.findClass("CIFilterKaz")->sharedMethods)
        if (shared->signature.name == "FilterNamesInCategories") method = shared.get();
    ASSERT_TRUE(method);
    // The language has no null array, so the function is called as the host calls it.
    Value none = Value::received(reinterpret_cast<REALobject (*)(REALobject)>(method->function)(nullptr));
    EXPECT_EQ(texts(none).size(), 0u);
    none = {};
    expectClean();
}

TEST_F(Filters, CategoriesAreIntersected) {
    EXPECT_EQ(inCategories({"CICategoryBlur", "CICategoryBuiltIn"}),
              texts(host.shared("CIFilterKaz", "FilterNamesInCategory", {"CICategoryBlur"})));
    EXPECT_TRUE(inCategories({"CICategoryBlur", "CICategoryGenerator"}).empty());
    expectClean();
}

// A host that leaves the conversion of its strings to the plugin.
struct FiltersWithoutCFStrings : Filters, testing::WithParamInterface<double> {
    FiltersWithoutCFStrings() : Filters({.version = GetParam(), .withheld = {"REALGetStringCFString"}}) {}
};

TEST_P(FiltersWithoutCFStrings, ANameThatCannotBeConvertedRaises) {
    Value broken = host.array("String", {"CICategoryBlur", "\xFF\xFE broken"});
    testing::internal::CaptureStderr();
    std::string raised = raisedBy([&] { host.shared("CIFilterKaz", "FilterNamesInCategories", {broken}); });
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(raised.starts_with("RuntimeException: ")) << raised;
    EXPECT_EQ(occurrences(log, "A NSInvalidArgumentException: "), 1) << log;
    broken = {};
    expectClean(); // the element was given back
}

INSTANTIATE_TEST_SUITE_P(Hosts, FiltersWithoutCFStrings, testing::Values(2011.0, 2013.9, 2014.01));

// A host whose own conversion of a string raises.
struct FiltersWithRaisingCFStrings : Filters, testing::WithParamInterface<double> {
    FiltersWithRaisingCFStrings()
        : Filters({.version = GetParam()}, WithFamily,
                  {{"REALGetStringCFString", reinterpret_cast<void*>(&raiseInsteadOfCFString)}}) {}
};

TEST_P(FiltersWithRaisingCFStrings, AnElementIsGivenBackThoughItsConversionRaises) {
    Value names = host.array("String", {"CICategoryBlur"});
    testing::internal::CaptureStderr();
    EXPECT_EQ(raisedBy([&] { host.shared("CIFilterKaz", "FilterNamesInCategories", {names}); }),
              "RuntimeException: no text");
    testing::internal::GetCapturedStderr();
    names = {};
    expectClean();
}

INSTANTIATE_TEST_SUITE_P(Hosts, FiltersWithRaisingCFStrings, testing::Values(2013.9, 2014.01));

struct FiltersWithoutUBound : Filters {
    FiltersWithoutUBound() : Filters({.withheld = {"RuntimeUBound"}}) {}
};

TEST_F(FiltersWithoutUBound, TheFirstCategoryCounts) {
    EXPECT_EQ(inCategories({"CICategoryBlur", "CICategoryGenerator"}), inCategories({"CICategoryBlur"}));
    EXPECT_FALSE(inCategories({"CICategoryBlur"}).empty());
    expectClean();
}

// A host of that version that does not read string arrays for plugins.
struct StringStorage : Filters {
    explicit StringStorage(double version)
        : Filters({.version = version, .withheld = {"RuntimeDirectReadStringArray"}}) {}
};
struct LastShownStringStorage : StringStorage {
    LastShownStringStorage() : StringStorage(2013.9) {}
};
struct FirstHiddenStringStorage : StringStorage {
    FirstHiddenStringStorage() : StringStorage(2013.91) {}
};

TEST_F(LastShownStringStorage, IsReadWithoutTheService) {
    std::vector<std::string> blurs = inCategories({"CICategoryBlur"});
    EXPECT_EQ(blurs, texts(host.shared("CIFilterKaz", "FilterNamesInCategory", {"CICategoryBlur"})));
    EXPECT_FALSE(blurs.empty());
    expectClean(); // each element is locked and given back
}

TEST_F(FirstHiddenStringStorage, HasNoElementsWithoutTheService) {
    std::size_t all =
        texts(host.shared("CIFilterKaz", "FilterNamesInCategory", {"CICategoryBuiltIn"})).size();
    EXPECT_EQ(inCategories({"CICategoryBlur"}).size(), all); // what cannot be read is skipped
    expectClean();
}

TEST_F(Filters, AStringArrayComesEvenFromAnEmptyWrapper) {
    Value empty = host.instantiate("CIFilterKaz");
    for (const char* method : {"InputKeys", "OutputKeys", "Categories"}) {
        Value array = host.call(empty, method);
        EXPECT_FALSE(array.isNil()) << method;
        EXPECT_EQ(array.count(), 0) << method;
    }
    EXPECT_TRUE(host.call(empty, "attributesDictionary").isNil());
    empty = {};
    expectClean();
}

} // namespace
