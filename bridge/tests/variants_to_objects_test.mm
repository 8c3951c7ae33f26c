// Host variants as Cocoa objects, rule by rule.
#include "conversion_test.h"

#include <bridge/wrapping.h>
#include <hostapi/records.h>
#include <hostapi/registration.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

using studio::Value;

// --- scalars ----------------------------------------------------------------------------------------------

class Scalars : public OnEveryHost {
  protected:
    void expectNumber(const Value& value, const char* type, double expected) {
        id number = cocoa(value);
        ASSERT_TRUE([number isKindOfClass:[NSNumber class]]) << value.text();
        EXPECT_STREQ([number objCType], type) << value.text();
        EXPECT_EQ([number doubleValue], expected);
    }
};

TEST_P(Scalars, NilGivesNil) { EXPECT_EQ(GetVariantAsNSObject(nullptr), nil); }

TEST_P(Scalars, AnInt32BecomesALong) {
    for (int value : {0, 1, -1, INT_MAX, INT_MIN}) expectNumber(value, "l", value);
}

TEST_P(Scalars, AColorBecomesItsIntegerValue) {
    expectNumber(Value::color(0x00336699), "l", 0x336699);
    expectNumber(Value::color(0xFF000001), "l", static_cast<std::int32_t>(0xFF000001));
}

TEST_P(Scalars, AnInt64BecomesALongLong) {
    for (long long value : {0LL, 5LL, -5LL, LLONG_MAX, LLONG_MIN}) {
        expectNumber(value, "q", static_cast<double>(value));
        EXPECT_EQ([cocoa(value) longLongValue], value);
    }
}

TEST_P(Scalars, ASingleBecomesAFloat) {
    for (float value : {0.0f, 0.1f, -3e38f, INFINITY}) expectNumber(value, "f", value);
    EXPECT_TRUE(std::isnan([cocoa(NAN) floatValue]));
}

TEST_P(Scalars, ADoubleBecomesADouble) {
    for (double value : {0.0, 0.1, -1e308, HUGE_VAL}) expectNumber(value, "d", value);
}

TEST_P(Scalars, ABooleanBecomesABoolean) {
    for (bool value : {true, false}) {
        expectNumber(value, "c", value);
        EXPECT_EQ([cocoa(value) boolValue], value);
        EXPECT_EQ(object_getClass(cocoa(value)), object_getClass([NSNumber numberWithBool:YES]));
    }
}

TEST_P(Scalars, AStringBecomesAString) {
    for (const char* text : {"plain", "Gr\u00fc\u00dfe \u2603", "astral \U0001F600"})
        EXPECT_EQ(textOf(cocoa(text)), text);
}

TEST_P(Scalars, AnEmptyStringBecomesTheEmptyStringAndNeverNil) {
    id text = cocoa("");
    ASSERT_NE(text, nil);
    EXPECT_TRUE([text isKindOfClass:[NSString class]]);
    EXPECT_EQ([text length], 0u);
}

TEST_P(Scalars, ADateBecomesADateOfTheSameFields) {
    Value date = host.create("Date", {2012, 2, 29, 23, 59, 58});
    NSDate* result = cocoa(date);
    ASSERT_TRUE([result isKindOfClass:[NSCalendarDate class]]);
    EXPECT_EQ(textOf([(NSCalendarDate*)result descriptionWithCalendarFormat:@"%Y-%m-%d %H:%M:%S"]),
              "2012-02-29 23:59:58");
}

INSTANTIATE_TEST_SUITE_P(Hosts, Scalars, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- type codes -------------------------------------------------------------------------------------------

// A host whose VarType returns what the test wants, even codes that no value of this host has.
class TypeCodes : public ConversionTest {
  protected:
    TypeCodes() {
        replace(
            "REALLoadGlobalMethod", +[](void* null, const char* declaration) -> void* {
                EXPECT_EQ(null, nullptr);
                if (std::strcmp(declaration, "VarType(value As Variant) As Int32") != 0)
                    return original<host::service::REALLoadGlobalMethod>("REALLoadGlobalMethod")(null,
                                                                                                 declaration);
                ++loads;
                return reinterpret_cast<void*>(+[](REALobject) { return code; });
            });
    }

    id as(std::int32_t typeCode, const Value& value) {
        code = typeCode;
        return cocoa(value);
    }

    static inline std::int32_t code = 0;
    static inline int loads = 0;
};

TEST_F(TypeCodes, Codes2And16Are32BitIntegers) {
    for (std::int32_t code : {2, 16}) {
        id number = as(code, 77);
        EXPECT_STREQ([number objCType], "l");
        EXPECT_EQ([number intValue], 77);
    }
}

TEST_F(TypeCodes, Code3Is64Bits) {
    EXPECT_STREQ([as(3, 77) objCType], "q");
    EXPECT_EQ([as(3, 1LL << 40) longLongValue], 1LL << 40);
}

TEST_F(TypeCodes, Codes5And6AreDoubles) {
    for (std::int32_t code : {5, 6}) {
        id number = as(code, 2.25);
        EXPECT_STREQ([number objCType], "d");
        EXPECT_EQ([number doubleValue], 2.25);
    }
}

TEST_F(TypeCodes, Codes8And18To21And23AreStrings) {
    for (std::int32_t code : {8, 18, 19, 20, 21, 23}) {
        EXPECT_EQ(textOf(as(code, "text")), "text") << code;
        id empty = as(code, "");
        EXPECT_TRUE([empty isKindOfClass:[NSString class]] && [empty length] == 0) << code;
    }
}

TEST_F(TypeCodes, Code11IsABoolean) {
    EXPECT_STREQ([as(11, 7) objCType], "c");
    EXPECT_EQ([as(11, 7) intValue], 1);
    EXPECT_EQ([as(11, 0) intValue], 0);
    EXPECT_EQ([as(11, -1) intValue], 1);
    // Cocoa keeps one byte of a larger value.
    EXPECT_EQ([as(11, 0x100) intValue], 0);
    EXPECT_EQ([as(11, 0x180) intValue], 1);
}

TEST_F(TypeCodes, AllOthersGiveNil) {
    Value array = host.array("Integer", {1, 2});
    for (std::int32_t code : {0,      1,      10,     12,     13,     14,     15,     17,     22, 24,
                              0x1000, 0x1001, 0x1006, 0x100A, 0x1010, 0x1012, 0x1017, 0x2002, -1, INT_MIN})
        EXPECT_EQ(as(code, array), nil) << code;
}

TEST_F(TypeCodes, TheFunctionIsLoadedOnce) {
    loads = 0;
    for (int i = 0; i < 5; ++i) as(2, i);
    EXPECT_EQ(loads, 1);
}

class WithoutVarType : public Without {
  protected:
    WithoutVarType(std::set<std::string> more = {}) : Without(united({"REALLoadGlobalMethod"}, more)) {}
    static std::set<std::string> united(std::set<std::string> a, const std::set<std::string>& b) {
        a.insert(b.begin(), b.end());
        return a;
    }
};

TEST_F(WithoutVarType, TheTypePropertyDecides) {
    EXPECT_STREQ([cocoa(7) objCType], "l");
    EXPECT_STREQ([cocoa(7LL) objCType], "q");
    EXPECT_STREQ([cocoa(7.5f) objCType], "f");
    EXPECT_STREQ([cocoa(7.5) objCType], "d");
    EXPECT_STREQ([cocoa(true) objCType], "c");
    EXPECT_STREQ([cocoa(Value::color(7)) objCType], "l");
    EXPECT_EQ(textOf(cocoa("text")), "text");
    EXPECT_EQ([cocoa(host.array("Integer", {1, 2})) count], 2u);
    EXPECT_TRUE([cocoa(host.create("Date")) isKindOfClass:[NSDate class]]);
    EXPECT_TRUE([cocoa(host.memoryBlock("x")) isKindOfClass:[NSData class]]);
}

TEST_F(WithoutVarType, TheElementsOfAnArrayOfDatesAreNotAsked) {
    static int asked;
    asked = 0;
    replace(
        "REALGetPropValueInt", +[](REALobject object, const char* name, std::int32_t* out) {
            asked += name == std::string_view("Type");
            return original<host::service::REALGetPropValueInt>("REALGetPropValueInt")(object, name, out);
        });
    Value dates = host.array("Date", {host.create("Date", {2001, 1, 2}), host.create("Date", {1904, 2, 29})});
    Value variant = boxed(dates);
    EXPECT_EQ([GetVariantAsNSObject(variant.object()) count], 2u);
    EXPECT_EQ(asked, 1) << "for the array's own";
}

class WithoutVarTypeAndIntegers : public WithoutVarType {
  protected:
    WithoutVarTypeAndIntegers() : WithoutVarType({"REALGetPropValueInt"}) {}
};

TEST_F(WithoutVarTypeAndIntegers, NothingIsKnownOfTheTypeAndAllIsNil) {
    EXPECT_EQ(cocoa(7), nil);
    EXPECT_EQ(cocoa("text"), nil);
    EXPECT_EQ(cocoa(host.memoryBlock("x")), nil);
}

// --- getters that are missing -----------------------------------------------------------------------------

// The service that reads properties of a type.
template <class T>
constexpr const char* kReader = nullptr;
template <>
constexpr const char* kReader<std::int32_t> = "REALGetPropValueInt";
template <>
constexpr const char* kReader<std::int64_t> = "REALGetPropValueInt64";
template <>
constexpr const char* kReader<float> = "REALGetPropValueSingle";
template <>
constexpr const char* kReader<double> = "REALGetPropValueDouble";
template <>
constexpr const char* kReader<REALstring> = "REALGetPropValueString";

class MissingGetters : public ConversionTest {
  protected:
    // Converts on a host without the getter; `names` then holds the properties that were read instead.
    template <class T>
    id convert(const char* getter, const Value& value) {
        withhold(getter);
        names.clear();
        replace(
            kReader<T>, +[](REALobject object, const char* name, T* out) {
                names.push_back(name);
                return original<bool (*)(REALobject, const char*, T*)>(kReader<T>)(object, name, out);
            });
        return cocoa(value);
    }
    template <class T>
    id convertWithoutReader(const char* getter, const Value& value) {
        withhold(getter);
        withhold(kReader<T>);
        return cocoa(value);
    }

    // A reader that leaves a number behind although it fails. 2 is also the type code of an integer.
    template <class T>
    static bool writesAndFails(REALobject, const char*, T* out) {
        *out = 2;
        return false;
    }

    using Names = std::vector<std::string>;
    static inline Names names;
};

TEST_F(MissingGetters, ATypeThatCannotBeReadIsNoneWhateverTheHostWrote) {
    withhold("REALLoadGlobalMethod");
    replace("REALGetPropValueInt", writesAndFails<std::int32_t>);
    EXPECT_EQ(cocoa(7), nil);
}

TEST_F(MissingGetters, ACountThatCannotBeReadIsNoneWhateverTheHostWrote) {
    replace("REALGetPropValueInt", writesAndFails<std::int32_t>);
    id result = NewNSDictionary(host.dictionary({{"a", 1}, {"b", 2}}).object());
    EXPECT_EQ([result count], 0u);
    EXPECT_FALSE([result isKindOfClass:[NSMutableDictionary class]]);
}

TEST_F(MissingGetters, Int32ValueStandsInForIntegersColorsAndBooleans) {
    EXPECT_EQ([convert<std::int32_t>("VariantToInt32", -7) intValue], -7);
    EXPECT_EQ(names, Names{"Int32Value"});
    EXPECT_EQ([convert<std::int32_t>("VariantToInt32", Value::color(9)) intValue], 9);
    EXPECT_EQ(names, Names{"Int32Value"});
    id boolean = convert<std::int32_t>("VariantToInt32", true);
    EXPECT_EQ(names, Names{"Int32Value"});
    EXPECT_STREQ([boolean objCType], "c");
    EXPECT_TRUE([boolean boolValue]);
}

TEST_F(MissingGetters, LongValueStandsInForInt64) {
    EXPECT_EQ([convert<std::int64_t>("VariantToInt64", -1LL << 40) longLongValue], -1LL << 40);
    EXPECT_EQ(names, Names{"LongValue"});
}

TEST_F(MissingGetters, SingleValueStandsInForSingles) {
    EXPECT_EQ([convert<float>("VariantToSingle", 0.1f) floatValue], 0.1f);
    EXPECT_EQ(names, Names{"SingleValue"});
}

TEST_F(MissingGetters, DoubleValueStandsInForDoubles) {
    EXPECT_EQ([convert<double>("VariantToDouble", 0.1) doubleValue], 0.1);
    EXPECT_EQ(names, Names{"DoubleValue"});
}

TEST_F(MissingGetters, StringValueStandsInForStrings) {
    EXPECT_EQ(textOf(convert<REALstring>("VariantToString", "text")), "text");
    EXPECT_EQ(names, Names{"StringValue"});
    EXPECT_EQ(textOf(cocoa("")), "");
}

TEST_F(MissingGetters, WithoutTheirPropertiesNumbersAreZero) {
    EXPECT_EQ([convertWithoutReader<std::int64_t>("VariantToInt64", 7LL) intValue], 0);
    EXPECT_EQ([convertWithoutReader<float>("VariantToSingle", 7.5f) floatValue], 0);
    EXPECT_EQ([convertWithoutReader<double>("VariantToDouble", 7.5) doubleValue], 0);
    EXPECT_EQ([convertWithoutReader<std::int32_t>("VariantToInt32", 7) intValue], 0);
    EXPECT_EQ([cocoa(true) boolValue], NO);
}

TEST_F(MissingGetters, PropertiesThatCannotBeReadAreZeroWhateverTheHostWrote) {
    for (const char* getter : {"VariantToInt32", "VariantToInt64", "VariantToSingle", "VariantToDouble"})
        withhold(getter);
    replace("REALGetPropValueInt", writesAndFails<std::int32_t>);
    replace("REALGetPropValueInt64", writesAndFails<std::int64_t>);
    replace("REALGetPropValueSingle", writesAndFails<float>);
    replace("REALGetPropValueDouble", writesAndFails<double>);
    EXPECT_EQ([cocoa(7) intValue], 0);
    EXPECT_EQ([cocoa(7LL) intValue], 0);
    EXPECT_EQ([cocoa(7.5f) floatValue], 0);
    EXPECT_EQ([cocoa(7.5) doubleValue], 0);
    EXPECT_EQ([cocoa(true) boolValue], NO);
}

TEST_F(MissingGetters, WithoutItsPropertyAStringIsEmpty) {
    EXPECT_EQ(textOf(convertWithoutReader<REALstring>("VariantToString", "text")), "");
}

TEST_F(MissingGetters, ADateThatCannotBeReadIsNilWhateverTheHostWrote) {
    static Value written;
    written = host.create("Date");
    Value variant = boxed(host.create("Date"));
    replace(
        "REALGetPropValueObject", +[](REALobject, const char*, REALobject* out) {
            *out = written.object();
            return false;
        });
    EXPECT_EQ(GetVariantAsNSObject(variant.object()), nil);
    written = {};
}

TEST_F(MissingGetters, NothingIsLeftOfAConversion) {
    const std::pair<const char*, Value> values[] = {
        {"text", "some text"},
        {"date", host.create("Date")},
        {"data", host.memoryBlock("data")},
        {"file", host.create("FolderItem", {"/tmp"})},
        {"number", 0.1},
        {"texts", host.array("String", {"a", "b"})},
        {"variants", host.array("Variant", {"a", 1, host.memoryBlock("data")})},
        {"dictionary", host.dictionary({{"key", "value"}, {2, host.create("Date")}})},
        {"image", host.create("NSSizeKaz", {1.0f, 2.0f})},
        {"string", host.create("CFStringKaz", {"text"})},
    };
    for (const auto& [name, value] : values)
        EXPECT_TRUE(objectsLeftBy([&, value = value] { cocoa(value); }).empty()) << name;
}

TEST_F(MissingGetters, WithoutItsPropertyADateIsNil) {
    withhold("REALGetPropValueObject");
    EXPECT_EQ(cocoa(host.create("Date")), nil);
}

// --- arrays -----------------------------------------------------------------------------------------------

class Arrays : public OnEveryHost {
  protected:
    void SetUp() override {
        getterAsked = 0;
        replace(
            "RuntimeArrayDirectGetGetProc", +[](REALarray array) {
                ++getterAsked;
                return original<host::service::RuntimeArrayDirectGetGetProc>("RuntimeArrayDirectGetGetProc")(
                    array);
            });
    }

    // The array as Cocoa's; and the elements were read as this host wants it.
    NSArray* convert(const char* elementType, std::vector<Value> elements, int nestedElements = 0) {
        getterAsked = 0;
        int count = static_cast<int>(elements.size()) + nestedElements;
        Value array = host.array(elementType, std::move(elements));
        id result = cocoa(array);
        EXPECT_TRUE([result isKindOfClass:[NSMutableArray class]]);
        bool shown = host.version() <= 2013.9;
        EXPECT_EQ(getterAsked, shown ? 0 : count) << elementType;
        return result;
    }

    void expectNumbers(const char* elementType, std::vector<Value> elements, const char* type) {
        NSArray* result = convert(elementType, elements);
        ASSERT_EQ([result count], elements.size());
        for (std::size_t i = 0; i < elements.size(); ++i) {
            id number = [result objectAtIndex:static_cast<NSUInteger>(i)];
            EXPECT_STREQ([number objCType], type) << elementType;
            EXPECT_EQ([number doubleValue], elements[i].number()) << elementType;
        }
    }

    static inline int getterAsked = 0;
};

TEST_P(Arrays, OfInt32BecomeLongs) { expectNumbers("Integer", {0, -1, INT_MAX, INT_MIN}, "l"); }
TEST_P(Arrays, OfInt64BecomeLongLongs) { expectNumbers("Int64", {0LL, -1LL, LLONG_MAX, 1LL << 40}, "q"); }
TEST_P(Arrays, OfSinglesBecomeFloats) { expectNumbers("Single", {0.1f, -3e38f, 2.0f}, "f"); }
TEST_P(Arrays, OfDoublesBecomeDoubles) { expectNumbers("Double", {0.1, -1e308, 2.0}, "d"); }
TEST_P(Arrays, OfBooleansBecomeBooleans) { expectNumbers("Boolean", {true, false, true, true}, "c"); }

TEST_P(Arrays, OfStringsBecomeStrings) {
    NSArray* result = convert("String", {"plain", "Gr\u00fc\u00dfe", "\U0001F600"});
    EXPECT_EQ(textOf([result componentsJoinedByString:@"|"]), "plain|Gr\u00fc\u00dfe|\U0001F600");
}

TEST_P(Arrays, OfDatesBecomeDates) {
    NSArray* result =
        convert("Date", {host.create("Date", {2001, 1, 2}), host.create("Date", {1904, 2, 29})});
    ASSERT_EQ([result count], 2u);
    EXPECT_EQ([[result objectAtIndex:0] dayOfMonth], 2);
    EXPECT_EQ([[result objectAtIndex:1] yearOfCommonEra], 1904);
}

TEST_P(Arrays, OfVariantsBecomeWhatEachElementIs) {
    NSArray* result = convert("Variant",
                              {1, 2.5, "text", true, host.memoryBlock("bytes"), host.array("Integer", {7, 8}),
                               host.dictionary({{"k", 1}})},
                              2);
    ASSERT_EQ([result count], 7u);
    EXPECT_STREQ([[result objectAtIndex:0] objCType], "l");
    EXPECT_STREQ([[result objectAtIndex:1] objCType], "d");
    EXPECT_EQ(textOf([result objectAtIndex:2]), "text");
    EXPECT_STREQ([[result objectAtIndex:3] objCType], "c");
    EXPECT_TRUE([[result objectAtIndex:4] isKindOfClass:[NSData class]]);
    EXPECT_EQ([[[result objectAtIndex:5] lastObject] intValue], 8);
    EXPECT_EQ([[[result objectAtIndex:6] objectForKey:@"k"] intValue], 1);
}

TEST_P(Arrays, OfOneClassBecomeWhatTheObjectsAre) {
    NSArray* result = convert("MemoryBlock", {host.memoryBlock("a"), host.memoryBlock("bc")});
    ASSERT_EQ([result count], 2u);
    EXPECT_EQ([[result objectAtIndex:1] length], 2u);
}

TEST_P(Arrays, WithoutElementsAreEmptyMutableArrays) {
    for (const char* type :
         {"Integer", "Int64", "Single", "Double", "Boolean", "String", "Date", "Variant", "Dictionary"})
        EXPECT_EQ([convert(type, {}) count], 0u) << type;
}

TEST_P(Arrays, OfOtherElementsGiveNil) {
    for (const char* type : {"Color", "Int8", "UInt8", "Int16", "UInt16", "UInt32"})
        EXPECT_EQ(cocoa(host.array(type)), nil) << type;
}

TEST_P(Arrays, WithANilObjectRaiseTheInvalidArgumentException) {
    Value array = host.array("Variant", {host.memoryBlock("kept"), nullptr, host.memoryBlock("never seen")});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(array); }), [NSInvalidArgumentException UTF8String]);
}

TEST_P(Arrays, WithAnObjectThatHasNoCounterpartRaiseToo) {
    Value array = host.array("Variant", {host.array("Color")});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(array); }), [NSInvalidArgumentException UTF8String]);
}

TEST_P(Arrays, WithANilDateRaiseToo) {
    Value array = host.array("Date", {host.create("Date"), nullptr});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(array); }), [NSInvalidArgumentException UTF8String]);
}

TEST_P(Arrays, OfStringsWithAnEmptyOneRaiseToo) {
    // Unlike a variant's, an element's empty string is null, and null has no platform string.
    Value array = host.array("String", {"text", ""});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(array); }), [NSInvalidArgumentException UTF8String]);
    EXPECT_EQ(textOf([cocoa(host.array("Variant", {""})) lastObject]), "");
}

TEST_P(Arrays, ArriveInTheHostAsTheExceptionOfTheFrame) {
    Value array = boxed(host.array("Variant", {nullptr}));
    testing::internal::CaptureStderr();
    id result = bridge::guardedInPool([&] { return GetVariantAsNSObject(array.object()); });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, nil);
    EXPECT_EQ(host.takePendingException().className(), "RuntimeException");
}

INSTANTIATE_TEST_SUITE_P(Hosts, Arrays, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

TEST_P(Arrays, WithoutStorageToSeeAreReadThroughTheAccessorOnceForEachElement) {
    const std::pair<const char*, std::vector<Value>> cases[] = {
        {"Integer", {7, -8, 9}},   {"Int64", {1LL << 40, -1LL}}, {"Single", {0.5f}},
        {"Double", {1.5, 2.5}},    {"Boolean", {true, false}},   {"String", {"a", "b", "c"}},
        {"Variant", {1, "two", 3}}};
    for (const auto& [type, elements] : cases) {
        SCOPED_TRACE(type);
        Value array = host.array(type, elements);
        id expected = cocoa(array);
        Value held = boxed(array); // nothing is stored into the array from here on
        void*& storage = reinterpret_cast<REALarray>(held.object())->storage;
        void* shown = std::exchange(storage, nullptr);
        getterAsked = 0;
        id result = GetVariantAsNSObject(held.object());
        EXPECT_EQ(getterAsked, static_cast<int>(elements.size()));
        EXPECT_TRUE([result isEqual:expected]);
        storage = shown;
    }
}

// The last version that shows its storage, and the first that does not.
class ArraysUpTo2013_9 : public ConversionTest {
  protected:
    ArraysUpTo2013_9() : ConversionTest({.version = 2013.9}) {}
};
TEST_F(ArraysUpTo2013_9, AreReadInPlace) {
    withhold("RuntimeArrayDirectGetGetProc");
    EXPECT_EQ([[cocoa(host.array("Double", {1.5, 2.5})) lastObject] doubleValue], 2.5);
    EXPECT_EQ(textOf([cocoa(host.array("String", {"a", "b"})) lastObject]), "b");
}

class ArraysAfter2013_9 : public ConversionTest {
  protected:
    ArraysAfter2013_9() : ConversionTest({.version = 2013.91}) {}
};
TEST_F(ArraysAfter2013_9, WithoutAnAccessorHaveElementsOfNothing) {
    withhold("RuntimeArrayDirectGetGetProc");
    EXPECT_EQ([[cocoa(host.array("Double", {1.5, 2.5})) lastObject] doubleValue], 0);
    Value strings = host.array("String", {"a"});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(strings); }), [NSInvalidArgumentException UTF8String]);
}

// --- objects ----------------------------------------------------------------------------------------------

class Objects : public OnEveryHost {
  protected:
    template <class T>
    static T fields(NSValue* value) {
        T result;
        [value getValue:&result];
        return result;
    }
};

TEST_P(Objects, AMemoryBlockBecomesACopyOfItsBytes) {
    Value block = host.memoryBlock("bytes");
    NSData* data = cocoa(block);
    ASSERT_TRUE([data isKindOfClass:[NSData class]]);
    static_cast<char*>(REALMemoryBlockGetPtr(reinterpret_cast<REALmemoryBlock>(block.object())))[0] = 'X';
    EXPECT_EQ(std::string(static_cast<const char*>([data bytes]), [data length]), "bytes");
}

TEST_P(Objects, AnEmptyMemoryBlockBecomesEmptyData) {
    NSData* data = cocoa(host.memoryBlock(""));
    EXPECT_TRUE([data isKindOfClass:[NSData class]]);
    EXPECT_EQ([data length], 0u);
}

TEST_P(Objects, AFolderItemBecomesAFileURL) {
    NSURL* url = cocoa(host.create("FolderItem", {"/tmp"}));
    ASSERT_TRUE([url isKindOfClass:[NSURL class]]);
    EXPECT_TRUE([url isFileURL]);
    EXPECT_EQ(textOf([url path]), "/tmp");
}

TEST_P(Objects, ADictionaryBecomesADictionary) {
    EXPECT_TRUE([cocoa(host.dictionary({{"k", 1}})) isKindOfClass:[NSDictionary class]]);
}

TEST_P(Objects, AWrapperOfTheFamilyGivesUpItsObject) {
    Value color = host.create("NSColorKaz", {0.25, 0.5, 0.75});
    id native = cocoa(color);
    EXPECT_EQ(native, reinterpret_cast<id>(color.word()));
    EXPECT_EQ([native retainCount], 1u); // the wrapper's
    EXPECT_EQ(cocoa(host.instantiate("NSColorKaz")), nil);
}

TEST_P(Objects, AWrapperOfTheLaterTableToo) {
    Value text = host.create("CFStringKaz", {"text"});
    EXPECT_EQ(cocoa(text), reinterpret_cast<id>(text.word()));
    EXPECT_EQ(textOf(cocoa(text)), "text");
}

TEST_P(Objects, StructuresBecomeValues) {
    NSValue* size = cocoa(host.create("NSSizeKaz", {1.5, 2.5}));
    EXPECT_STREQ([size objCType], "{_NSSize=ff}");
    EXPECT_EQ([size sizeValue].width, 1.5f);
    EXPECT_EQ([size sizeValue].height, 2.5f);

    NSValue* rect = cocoa(host.create("NSRectKaz", {1.0, 2.0, 3.0, 4.5}));
    EXPECT_STREQ([rect objCType], "{_NSRect={_NSPoint=ff}{_NSSize=ff}}");
    EXPECT_TRUE(NSEqualRects([rect rectValue], NSMakeRect(1, 2, 3, 4.5)));

    NSValue* range = cocoa(host.create("NSRangeKaz", {7u, 0xFFFFFFF0u}));
    EXPECT_STREQ([range objCType], "{_NSRange=II}");
    EXPECT_EQ([range rangeValue].location, 7u);
    EXPECT_EQ([range rangeValue].length, 0xFFFFFFF0u);

    NSValue* point = cocoa(host.create("NSPointKaz", {-1.5, 2.25}));
    EXPECT_STREQ([point objCType], "{_NSPoint=ff}");
    EXPECT_EQ([point pointValue].x, -1.5f);
    EXPECT_EQ([point pointValue].y, 2.25f);
}

struct Time {
    std::int64_t value;
    std::int32_t scale;
    std::uint32_t flags;
    std::int64_t epoch;
    bool operator==(const Time&) const = default;
};
struct QuickTime {
    std::int64_t value;
    std::int32_t scale, flags;
    bool operator==(const QuickTime&) const = default;
};

TEST_P(Objects, TimesBecomeValuesThroughTheFamily) {
    Value start = host.create("CMTimeKaz", {1LL << 40, 600, 3u, 5LL});
    Value duration = host.create("CMTimeKaz", {2LL, 25});
    Value range = host.create("CMTimeRangeKaz", {start, duration});
    Value mapping =
        host.create("CMTimeMappingKaz", {range, host.create("CMTimeRangeKaz", {duration, start})});
    const Time s = {1LL << 40, 600, 3, 5}, d = {2, 25, 1, 0};

    EXPECT_STREQ([cocoa(start) objCType], "{?=qiIq}");
    EXPECT_EQ(fields<Time>(cocoa(start)), s);
    EXPECT_STREQ([cocoa(range) objCType], "{?={?=qiIq}{?=qiIq}}");
    EXPECT_EQ((fields<std::array<Time, 2>>(cocoa(range))), (std::array{s, d}));
    EXPECT_STREQ([cocoa(mapping) objCType], "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}");
    EXPECT_EQ((fields<std::array<Time, 4>>(cocoa(mapping))), (std::array{s, d, d, s}));
}

TEST_P(Objects, QuickTimesBecomeValuesThroughTheFamily) {
    Value time = host.create("QTKitTimeKaz", {-7LL, 600, 1});
    Value range = host.create("QTKitTimeRangeKaz", {time, host.create("QTKitTimeKaz", {8LL, 25})});
    const QuickTime t = {-7, 600, 1}, d = {8, 25, 0};
    EXPECT_STREQ([cocoa(time) objCType], "{?=qll}");
    EXPECT_EQ(fields<QuickTime>(cocoa(time)), t);
    EXPECT_STREQ([cocoa(range) objCType], "{?={?=qll}{?=qll}}");
    EXPECT_EQ((fields<std::array<QuickTime, 2>>(cocoa(range))), (std::array{t, d}));
}

TEST_P(Objects, AnyOtherObjectTravelsInAWrapper) {
    Value object = host.create("Picture", {2, 2});
    id wrapper = cocoa(object);
    EXPECT_STREQ(object_getClassName(wrapper), "KazREALobjectWrapper");
    EXPECT_EQ(variant(wrapper).object(), object.object());
}

TEST_P(Objects, TheWrapperKeepsItsObjectAlive) {
    id wrapper = [cocoa(host.create("Picture", {2, 2})) retain];
    EXPECT_EQ(variant(wrapper).className(), "Picture");
    [wrapper release];
}

INSTANTIATE_TEST_SUITE_P(Hosts, Objects, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class WithoutTheFamily : public ConversionTest {
  protected:
    WithoutTheFamily() : ConversionTest({}, WithoutFamily) {}
};

TEST_F(WithoutTheFamily, AnyOtherObjectGivesNil) { EXPECT_EQ(cocoa(host.create("Picture", {2, 2})), nil); }

// --- the order of the rules -------------------------------------------------------------------------------

// A host in which one object is a member of the classes that the test names. The questions are logged.
class Rules : public ConversionTest {
  protected:
    // Room for the fields of every class; the first word is a handle.
    struct Data {
        id handle;
        std::uint32_t more[31];
    };

    void SetUp() override {
        NegotiateRecordVersion(host.resolver());
        static REALmethodDefinition noMethods[] = {host::method(
            "Nothing", +[](REALobject) {})};
        static REALclassDefinition anything =
            host::classDefinition({.name = "Anything", .dataSize = sizeof(Data)}, {}, noMethods);
        MyREALRegisterClass(&anything);

        replace(
            "pluginObjectType", +[](const char* name) {
                return reinterpret_cast<REALclassRef>(
                    const_cast<char*>(unknown.count(name) ? nullptr : name));
            });
        replace(
            "RuntimeObjectIsa", +[](REALobject, REALclassRef asked) {
                std::string name = reinterpret_cast<const char*>(asked);
                sequence.push_back(name);
                return members.count(name) > 0;
            });
        replace(
            "REALLoadObjectMethod", +[](REALobject object, const char* declaration) -> void* {
                if (std::strcmp(declaration, "TrueItem(Index as integer) as Folderitem") != 0)
                    return original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object,
                                                                                                 declaration);
                sequence.push_back("TrueItem");
                return members.count("TrueItem") ? reinterpret_cast<void*>(+[] {}) : nullptr;
            });
        object = host.create("Anything");
        bridge::instanceData<Data>(object.object()).handle = handle;
    }
    void TearDown() override {
        object = {};
        ConversionTest::TearDown();
    }

    id convert(std::set<std::string> classes) {
        members = std::move(classes);
        sequence.clear();
        return cocoa(object);
    }

    static inline std::set<std::string> members, unknown;
    static inline std::vector<std::string> sequence;
    Value object;
    NSString* handle = @"the handle";
};

const std::vector<std::string> kOrder = {
    "MemoryBlock", "TrueItem", "Dictionary",
    // wrappers
    "QuartzFilterKaz", "NSImageKaz", "NSImageRepKaz", "NSFontKaz", "NSResponderKaz", "NSAttributedStringKaz",
    "NSIndexSetKaz", "NSColorKaz", "NSAttributedStringKaz", "NSToolbarItemKaz", "NSToolbarKaz",
    "NSURLRequestKaz", "NSCharacterSetKaz", "NSAttributedStringKaz", "NSParagraphStyleKaz",
    "NSTextContainerKaz", "WebUIDelegateKaz", "WebResourceLoadDelegateKaz", "WebFrameLoadDelegateKaz",
    "WebDownloadDelegateKaz", "DRBurnKaz", "PDFAnnotationKaz", "PDFActionKaz",
    // structures
    "NSSizeKaz", "NSRectKaz", "NSRangeKaz", "NSPointKaz", "QTKitTimeKaz", "QTKitTimeRangeKaz",
    "CMTimeMappingKaz", "CMTimeRangeKaz", "CMTimeKaz",
    // more wrappers
    "WebPolicyDelegateKaz", "CFStringKaz", "CFNumberKaz", "CFBinaryDataKaz", "CFURLKaz", "CFArrayKaz",
    "CFDictionaryKaz", "CFDateKaz"};

constexpr std::size_t kFirstWrapper = 3, kFirstStructure = 26, kFirstLaterWrapper = 35;

const char* const kEncodings[] = {"{_NSSize=ff}",
                                  "{_NSRect={_NSPoint=ff}{_NSSize=ff}}",
                                  "{_NSRange=II}",
                                  "{_NSPoint=ff}",
                                  "{?=qll}",
                                  "{?={?=qll}{?=qll}}",
                                  "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}",
                                  "{?={?=qiIq}{?=qiIq}}",
                                  "{?=qiIq}"};

TEST_F(Rules, AreTestedInOrder) {
    EXPECT_STREQ(object_getClassName(convert({})), "KazREALobjectWrapper");
    EXPECT_EQ(sequence, kOrder);
}

TEST_F(Rules, EndAtTheFirstThatMatches) {
    auto named = [](std::size_t i) { return std::find(kOrder.begin(), kOrder.end(), kOrder[i]); };
    for (std::size_t i = kFirstWrapper; i < kOrder.size(); ++i) {
        auto first = kOrder.begin() + static_cast<std::ptrdiff_t>(i);
        if (named(i) != first) continue; // a repetition, which no object ever reaches
        SCOPED_TRACE(kOrder[i]);
        // A member of this class and of all that are named later only.
        std::set<std::string> classes(first, kOrder.end());
        for (std::size_t earlier = 0; earlier < i; ++earlier) classes.erase(kOrder[earlier]);
        id result = convert(classes);
        EXPECT_EQ(sequence, std::vector<std::string>(kOrder.begin(), first + 1));
        if (i >= kFirstStructure && i < kFirstLaterWrapper)
            EXPECT_STREQ([result objCType], kEncodings[i - kFirstStructure]);
        else
            EXPECT_EQ(result, handle);
    }
}

TEST_F(Rules, SkipClassesThatTheHostDoesNotKnow) {
    unknown = {"NSColorKaz", "MemoryBlock", "CFDateKaz"};
    convert({});
    std::vector<std::string> expected = kOrder;
    for (const std::string& name : unknown) std::erase(expected, name);
    EXPECT_EQ(sequence, expected);
    EXPECT_EQ(convert({"NSColorKaz", "CFURLKaz"}), handle);
    EXPECT_EQ(sequence.back(), "CFURLKaz");
    unknown.clear();
}

TEST_F(Rules, TakeAnyObjectWithTheMethodForAFolderItem) {
    replace(
        "REALFSRefFromFolderItem", +[](REALfolderItem item, FSRef* out, HFSUniStr255* name) {
            EXPECT_EQ(name, nullptr);
            Value file = studio::Host::current().create("FolderItem", {"/tmp"});
            return original<host::service::REALFSRefFromFolderItem>("REALFSRefFromFolderItem")(
                reinterpret_cast<REALfolderItem>(file.object()), out, name);
        });
    // It matches two more rules, which come later.
    NSURL* url = convert({"TrueItem", "Dictionary", "NSColorKaz"});
    EXPECT_EQ(textOf([url path]), "/tmp");
    EXPECT_EQ(sequence, (std::vector<std::string>{"MemoryBlock", "TrueItem"}));
}

TEST_F(Rules, TakeAMemoryBlockFirst) {
    replace(
        "memoryBlockGetSize", +[](REALmemoryBlock) { return 3; });
    replace(
        "memoryBlockGetPtr", +[](REALmemoryBlock) -> void* { return const_cast<char*>("abc"); });
    NSData* data = convert({kOrder.begin(), kOrder.end()});
    EXPECT_TRUE([data isEqual:[NSData dataWithBytes:"abc" length:3]]);
    EXPECT_EQ(sequence, std::vector<std::string>{"MemoryBlock"});
}

TEST_F(Rules, TakeADictionaryBeforeAWrapper) {
    // The object has no "Count", so it is a dictionary without entries.
    id result = convert({"Dictionary", "NSColorKaz", "NSRectKaz"});
    EXPECT_TRUE([result isKindOfClass:[NSDictionary class]]);
    EXPECT_EQ(sequence.back(), "Dictionary");
}

// --- dictionaries -----------------------------------------------------------------------------------------

class Dictionaries : public OnEveryHost {};

TEST_P(Dictionaries, WithoutEntriesBecomeTheImmutableEmptyOne) {
    NSDictionary* result = cocoa(host.dictionary());
    ASSERT_NE(result, nil);
    EXPECT_EQ([result count], 0u);
    EXPECT_EQ(object_getClass(result), object_getClass([NSDictionary dictionary]));
    EXPECT_FALSE([result isKindOfClass:[NSMutableDictionary class]]);
}

TEST_P(Dictionaries, WithEntriesBecomeMutableOnes) {
    NSDictionary* result = cocoa(host.dictionary({{"one", 1}, {2, "two"}, {2.5, true}}));
    EXPECT_TRUE([result isKindOfClass:[NSMutableDictionary class]]);
    EXPECT_EQ([result count], 3u);
    EXPECT_EQ([[result objectForKey:@"one"] intValue], 1);
    EXPECT_EQ(textOf([result objectForKey:[NSNumber numberWithInt:2]]), "two");
    EXPECT_STREQ([[result objectForKey:[NSNumber numberWithDouble:2.5]] objCType], "c");
}

TEST_P(Dictionaries, MayLieInOneAnother) {
    Value inner = host.dictionary({{"a", 1}, {"b", 2}});
    NSDictionary* result = cocoa(host.dictionary({{"x", inner}, {"y", inner}, {"z", 3}}));
    EXPECT_EQ([[[result objectForKey:@"y"] objectForKey:@"b"] intValue], 2);
    EXPECT_EQ([[result objectForKey:@"z"] intValue], 3);
}

TEST_P(Dictionaries, HoldNullForAValueWithoutCounterpart) {
    NSDictionary* result = cocoa(host.dictionary({{"nil", nullptr}, {"colors", host.array("Color")}}));
    EXPECT_EQ([result objectForKey:@"nil"], [NSNull null]);
    EXPECT_EQ([result objectForKey:@"colors"], [NSNull null]);
}

TEST_P(Dictionaries, HoldNullForAKeyWithoutCounterpart) {
    NSDictionary* result = cocoa(host.dictionary({{host.array("Color"), 7}}));
    EXPECT_EQ([result count], 1u);
    EXPECT_EQ([[result objectForKey:[NSNull null]] intValue], 7);
}

TEST_P(Dictionaries, DropAnEntryWhoseKeyIsNil) {
    NSDictionary* result = cocoa(host.dictionary({{nullptr, host.memoryBlock("gone")}, {"k", 1}}));
    EXPECT_EQ([result count], 1u);
    EXPECT_EQ([[result objectForKey:@"k"] intValue], 1);
}

TEST_P(Dictionaries, LeaveNothingBehindWhenAnEntryRaises) {
    Value dictionary = host.dictionary({{"k", host.array("Variant", {host.memoryBlock("x"), nullptr})}});
    EXPECT_EQ(cocoaExceptionOf([&] { cocoa(dictionary); }), [NSInvalidArgumentException UTF8String]);
}

INSTANTIATE_TEST_SUITE_P(Hosts, Dictionaries, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class DictionaryMethods : public ConversionTest {
  protected:
    // A host whose dictionaries lack the methods whose declarations begin so.
    void hide(const char* beginning) {
        hidden = beginning;
        replace(
            "REALLoadObjectMethod", +[](REALobject object, const char* declaration) -> void* {
                if (std::string(declaration).starts_with(hidden)) return nullptr;
                return original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object,
                                                                                             declaration);
            });
    }
    static inline std::string hidden;
};

TEST_F(DictionaryMethods, WithoutTheKeyGetterEveryEntryIsDropped) {
    hide("Key(");
    NSDictionary* result = cocoa(host.dictionary({{"a", 1}, {"b", 2}}));
    EXPECT_EQ([result count], 0u);
    EXPECT_TRUE([result isKindOfClass:[NSMutableDictionary class]]);
    // The values were asked for nevertheless, with no key.
    EXPECT_EQ(host.takePendingException().className(), "KeyNotFoundException");
}

TEST_F(DictionaryMethods, WithoutTheGetterEveryValueIsNull) {
    hide("Value(key As Variant) As");
    NSDictionary* result = cocoa(host.dictionary({{"a", 1}, {"b", 2}}));
    EXPECT_EQ([result count], 2u);
    EXPECT_EQ([result objectForKey:@"a"], [NSNull null]);
}

TEST_F(DictionaryMethods, AValueWithoutAKeyIsGivenBack) {
    static Value block;
    block = host.memoryBlock("value");
    replace(
        "REALLoadObjectMethod", +[](REALobject, const char* declaration) -> void* {
            if (!std::string(declaration).starts_with("Value(key As Variant) As")) return nullptr;
            return reinterpret_cast<void*>(+[](REALobject, REALobject key) {
                EXPECT_EQ(key, nullptr);
                REALLockObject(block.object());
                return block.object();
            });
        });
    EXPECT_EQ([NewNSDictionary(host.dictionary({{"a", 1}}).object()) count], 0u);
    block = {};
}

class WithoutCounts : public Without {
  protected:
    WithoutCounts() : Without({"REALGetPropValueInt"}) {}
};

TEST_F(WithoutCounts, EveryDictionaryIsTheEmptyOne) {
    id result = NewNSDictionary(host.dictionary({{"a", 1}}).object());
    EXPECT_EQ([result count], 0u);
    EXPECT_FALSE([result isKindOfClass:[NSMutableDictionary class]]);
}

TEST_F(WithoutTheFamily, NoDictionaryGivesNil) { EXPECT_EQ(NewNSDictionary(nullptr), nil); }

} // namespace
