// Cocoa objects as host variants, rule by rule.
#include "conversion_test.h"

#include <functional>

#include <bridge/registry.h>
#include <bridge/wrapping.h>
#include <hostapi/records.h>
#include <hostapi/registration.h>

#import <AppKit/AppKit.h>
#include <objc/runtime.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <deque>

// Notes which classes it is asked about, and claims to be of no kind but its own and the one that the test
// names.
@interface AskedObject : NSObject
@end

static std::vector<std::string> askedClasses;

@implementation AskedObject
- (BOOL)isKindOfClass:(Class)c {
    askedClasses.push_back(class_getName(c));
    return NO;
}
@end

// The root of the classes that tests make, which counts its instances.
@interface CountedObject : NSObject
@end
static int living;
@implementation CountedObject
- (id)init {
    ++living;
    return [super init];
}
- (void)dealloc {
    --living;
    [super dealloc];
}
@end

// A number of a type that has no rule.
@interface OddNumber : NSNumber
@end
@implementation OddNumber
- (const char*)objCType {
    return "*";
}
- (double)doubleValue {
    return 2.5;
}
@end

// A number that is a piece of text, too: the earlier rule must win.
@interface NumericString : NSString
@end
@implementation NumericString
- (NSUInteger)length {
    return 2;
}
- (unichar)characterAtIndex:(NSUInteger)index {
    return '4' + (unichar)index;
}
- (BOOL)isKindOfClass:(Class)c {
    return c == [NSNumber class] || c == [NSString class] || [super isKindOfClass:c];
}
@end

namespace {

using studio::Value;

class Outward : public OnEveryHost {
  protected:
    void expectVariant(id object, std::int32_t type, const Value& expected) {
        Value result = variant(object);
        EXPECT_EQ(typeOf(result), type) << textOf([object description]);
        EXPECT_EQ(result.text(), expected.text());
    }
};

// --- nothing, text, bytes ---------------------------------------------------------------------------------

TEST_P(Outward, NilAndNullGiveNil) {
    EXPECT_TRUE(variant(nil).isNil());
    EXPECT_TRUE(variant([NSNull null]).isNil());
}

TEST_P(Outward, AStringBecomesAString) {
    expectVariant(@"text", kREALVariantString, "text");
    expectVariant([NSMutableString stringWithUTF8String:"Gr\u00fc\u00dfe \U0001F600"], kREALVariantString,
                  "Gr\u00fc\u00dfe \U0001F600");
    expectVariant((id)CFSTR("constant"), kREALVariantString, "constant");
}

TEST_P(Outward, AnEmptyStringBecomesAnEmptyString) {
    Value result = variant(@"");
    EXPECT_FALSE(result.isNil());
    EXPECT_EQ(typeOf(result), kREALVariantString);
    EXPECT_EQ(result.text(), "");
}

TEST_P(Outward, DataBecomesAMemoryBlock) {
    Value block = variant([NSMutableData dataWithBytes:"a\0b" length:3]);
    EXPECT_EQ(block.className(), "MemoryBlock");
    REALmemoryBlock handle = reinterpret_cast<REALmemoryBlock>(block.object());
    ASSERT_EQ(REALMemoryBlockGetSize(handle), 3);
    EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(handle), "a\0b", 3), 0);
}

TEST_P(Outward, EmptyDataGivesNil) { EXPECT_TRUE(variant([NSData data]).isNil()); }

// --- arrays -----------------------------------------------------------------------------------------------

TEST_P(Outward, AnArrayBecomesAnArrayOfVariants) {
    Value array = variant([NSMutableArray
        arrayWithObjects:@"one", [NSNumber numberWithInt:2], [NSArray arrayWithObject:@"three"], nil]);
    EXPECT_EQ(typeOf(array), kREALVariantArray + kREALVariantObject);
    ASSERT_EQ(array.count(), 3);
    EXPECT_EQ(array.at(0).text(), "one");
    EXPECT_EQ(array.at(1).integer(), 2);
    EXPECT_EQ(array.at(2).at(0).text(), "three");
}

TEST_P(Outward, NullBecomesANilElementAtItsIndex) {
    Value array = variant([NSArray arrayWithObjects:@"one", [NSNull null], @"three", nil]);
    ASSERT_EQ(array.count(), 3);
    EXPECT_TRUE(array.at(1).isNil());
    EXPECT_EQ(array.at(2).text(), "three");
}

TEST_P(Outward, AnEmptyArrayBecomesAnEmptyArray) {
    Value array = variant([NSArray array]);
    EXPECT_FALSE(array.isNil());
    EXPECT_EQ(array.count(), 0);
}

// --- numbers ----------------------------------------------------------------------------------------------

TEST_P(Outward, ACharIsABoolean) {
    expectVariant([NSNumber numberWithBool:YES], kREALVariantBoolean, true);
    expectVariant([NSNumber numberWithBool:NO], kREALVariantBoolean, false);
    for (char value : {1, -1, 5, 127})
        expectVariant([NSNumber numberWithChar:value], kREALVariantBoolean, true);
    expectVariant([NSNumber numberWithChar:0], kREALVariantBoolean, false);
}

TEST_P(Outward, AnUnsignedCharIsAnInt32) {
    expectVariant([NSNumber numberWithUnsignedChar:200], kREALVariantInt32, 200);
}

TEST_P(Outward, AShortIsAnInt32) {
    expectVariant([NSNumber numberWithShort:-32768], kREALVariantInt32, -32768);
}

TEST_P(Outward, AnUnsignedShortIsAnInt32) {
    expectVariant([NSNumber numberWithUnsignedShort:65535], kREALVariantInt32, 65535);
}

TEST_P(Outward, AnIntIsAnInt32) {
    expectVariant([NSNumber numberWithInt:INT_MIN], kREALVariantInt32, INT_MIN);
}

TEST_P(Outward, ALongIsAnInt32) {
    expectVariant([NSNumber numberWithLong:LONG_MIN], kREALVariantInt32, INT_MIN);
}

TEST_P(Outward, ALongLongIsAnInt64) {
    expectVariant([NSNumber numberWithLongLong:5], kREALVariantInt64, 5LL);
    expectVariant([NSNumber numberWithLongLong:LLONG_MIN], kREALVariantInt64, LLONG_MIN);
}

TEST_P(Outward, AFloatIsASingle) { expectVariant([NSNumber numberWithFloat:0.1f], kREALVariantSingle, 0.1f); }

TEST_P(Outward, ADoubleIsADouble) {
    expectVariant([NSNumber numberWithDouble:0.1], kREALVariantDouble, 0.1);
    expectVariant([NSNumber numberWithDouble:4], kREALVariantDouble, 4.0);
}

TEST_P(Outward, ANumberOfAnyOtherTypeIsADouble) {
    expectVariant([[[OddNumber alloc] init] autorelease], kREALVariantDouble, 2.5);
    expectVariant([NSDecimalNumber decimalNumberWithString:@"2.25"], kREALVariantDouble, 2.25);
}

INSTANTIATE_TEST_SUITE_P(Hosts, Outward, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// The studio's variants hold every unsigned number in 64 bits, so the calls of the makers are noted instead.
class NumberMakers : public ConversionTest {
  protected:
    struct Made {
        std::string maker;
        double value;
        bool operator==(const Made&) const = default;
    };

    template <class T>
    void watch(const char* maker, REALobject (*function)(T)) {
        replace(maker, function);
    }

    void SetUp() override {
        watch<bool>(
            "BooleanToVariant", +[](bool v) { return note("Boolean", v); });
        watch<std::int32_t>(
            "Int32ToVariant", +[](std::int32_t v) { return note("Int32", v); });
        watch<std::uint32_t>(
            "UInt32ToVariant", +[](std::uint32_t v) { return note("UInt32", v); });
        watch<std::int64_t>(
            "Int64ToVariant", +[](std::int64_t v) { return note("Int64", static_cast<double>(v)); });
        watch<std::uint64_t>(
            "UInt64ToVariant", +[](std::uint64_t v) { return note("UInt64", static_cast<double>(v)); });
        watch<float>(
            "SingleToVariant", +[](float v) { return note("Single", v); });
        watch<double>(
            "DoubleToVariant", +[](double v) { return note("Double", v); });
    }

    static REALobject note(const char* maker, double value) {
        made = {maker, value};
        return nullptr;
    }

    Made of(NSNumber* number) {
        made = {};
        EXPECT_EQ(NewVariantFromNSObject(number), nullptr);
        return made;
    }

    static inline Made made;
};

TEST_F(NumberMakers, AreChosenByTheType) {
    EXPECT_EQ(of([NSNumber numberWithBool:YES]), (Made{"Boolean", 1}));
    EXPECT_EQ(of([NSNumber numberWithChar:'x']), (Made{"Boolean", 1}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedChar:255]), (Made{"Int32", 255}));
    EXPECT_EQ(of([NSNumber numberWithShort:-7]), (Made{"Int32", -7}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedShort:65535]), (Made{"Int32", 65535}));
    EXPECT_EQ(of([NSNumber numberWithInt:-7]), (Made{"Int32", -7}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedInt:4294967295u]), (Made{"UInt32", 4294967295.0}));
    EXPECT_EQ(of([NSNumber numberWithLong:-7]), (Made{"Int32", -7}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedLong:4294967295ul]), (Made{"UInt32", 4294967295.0}));
    EXPECT_EQ(of([NSNumber numberWithLongLong:-7]), (Made{"Int64", -7}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedLongLong:7]), (Made{"UInt64", 7}));
    EXPECT_EQ(of([NSNumber numberWithFloat:1.5f]), (Made{"Single", 1.5}));
    EXPECT_EQ(of([NSNumber numberWithDouble:1.5]), (Made{"Double", 1.5}));
}

TEST_F(NumberMakers, GetOnlyTheLow32BitsOfAnUnsigned64BitNumber) {
    EXPECT_EQ(of([NSNumber numberWithUnsignedLongLong:0xFFFFFFFFull]), (Made{"UInt64", 4294967295.0}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedLongLong:0x100000000ull]), (Made{"UInt64", 0}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedLongLong:0x123456789ull]), (Made{"UInt64", 0x23456789}));
    EXPECT_EQ(of([NSNumber numberWithUnsignedLongLong:ULLONG_MAX]), (Made{"UInt64", 4294967295.0}));
}

class WithoutMakers : public Without {
  protected:
    WithoutMakers()
        : Without({"BooleanToVariant", "Int32ToVariant", "UInt32ToVariant", "Int64ToVariant",
                   "UInt64ToVariant", "SingleToVariant", "DoubleToVariant", "StringToVariant"}) {}
};

TEST_F(WithoutMakers, ScalarsGiveNil) {
    for (id object : std::initializer_list<id>{
             [NSNumber numberWithBool:YES], [NSNumber numberWithInt:1], [NSNumber numberWithUnsignedInt:1],
             [NSNumber numberWithLongLong:1], [NSNumber numberWithUnsignedLongLong:1],
             [NSNumber numberWithFloat:1], [NSNumber numberWithDouble:1], @"text", @""})
        EXPECT_TRUE(variant(object).isNil()) << textOf([object description]);
    Value array = variant([NSArray arrayWithObjects:@"text", @"more", nil]);
    EXPECT_EQ(array.count(), 2);
    EXPECT_TRUE(array.at(0).isNil());
}

class WithoutArrays : public Without {
  protected:
    WithoutArrays() : Without({"RuntimeArrayCreateSingleDimBoundedArray"}) {}
};
TEST_F(WithoutArrays, AnArrayGivesNil) { EXPECT_TRUE(variant([NSArray arrayWithObject:@"x"]).isNil()); }

class WithoutInsertion : public Without {
  protected:
    WithoutInsertion() : Without({"RuntimeArrayDirectGetInsertProc"}) {}
};
TEST_F(WithoutInsertion, AnArrayComesBackEmptyAndItsElementsAreGivenBack) {
    Value array = variant([NSArray arrayWithObjects:@"x", [NSData dataWithBytes:"y" length:1], nil]);
    EXPECT_FALSE(array.isNil());
    EXPECT_EQ(array.count(), 0);
}

class WithoutInstances : public Without {
  protected:
    WithoutInstances() : Without({"PluginNewInstance"}) {}
};
TEST_F(WithoutInstances, WhatNeedsANewObjectGivesNil) {
    for (id object : std::initializer_list<id>{[NSDate date],
                                               [NSDictionary dictionaryWithObject:@"v" forKey:@"k"],
                                               [NSDictionary dictionary],
                                               [NSValue valueWithRect:NSMakeRect(1, 2, 3, 4)],
                                               [NSColor redColor]})
        EXPECT_TRUE(variant(object).isNil()) << textOf([object description]);
    EXPECT_EQ(variant(@"text").text(), "text");
}

// --- dates ------------------------------------------------------------------------------------------------

class Dates : public OnEveryHost {
  protected:
    void SetUp() override { [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:2 * 3600]]; }

    std::string fields(NSDate* date) {
        Value result = variant(date);
        EXPECT_EQ(result.className(), "Date");
        return result.isNil() ? "" : host.get(result, "SQLDateTime").text();
    }
};

TEST_P(Dates, ComeAsLocalWallClockFields) {
    // The start of 2001 in UTC, on a clock two hours ahead.
    EXPECT_EQ(fields([NSDate dateWithTimeIntervalSinceReferenceDate:0]), "2001-01-01 02:00:00");
    EXPECT_EQ(fields([NSDate dateWithTimeIntervalSinceReferenceDate:86400 * 58 + 79199]),
              "2001-02-28 23:59:59");
}

TEST_P(Dates, OfAnotherZoneComeInTheLocalOne) {
    NSCalendarDate* date = [NSCalendarDate dateWithYear:2012
                                                  month:12
                                                    day:31
                                                   hour:20
                                                 minute:30
                                                 second:15
                                               timeZone:[NSTimeZone timeZoneForSecondsFromGMT:-5 * 3600]];
    EXPECT_EQ(fields(date), "2013-01-01 03:30:15");
}

TEST_P(Dates, LoseTheirFractionOfASecond) {
    EXPECT_EQ(fields([NSDate dateWithTimeIntervalSinceReferenceDate:0.75]), "2001-01-01 02:00:00");
}

TEST_P(Dates, BeforeTheReferenceDateComeToo) {
    EXPECT_EQ(fields([NSDate dateWithTimeIntervalSinceReferenceDate:-3061152000.0]), "1904-01-01 02:00:00");
}

INSTANTIATE_TEST_SUITE_P(Hosts, Dates, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class DateFields : public ConversionTest {};
TEST_F(DateFields, AreSetFromTheYearToTheSecond) {
    static std::vector<std::string> names;
    replace(
        "REALSetPropValueInt", +[](REALobject object, const char* name, std::int32_t value) {
            names.push_back(name);
            return original<host::service::REALSetPropValueInt>("REALSetPropValueInt")(object, name, value);
        });
    variant([NSDate date]);
    EXPECT_EQ(names, (std::vector<std::string>{"Year", "Month", "Day", "Hour", "Minute", "Second"}));
}

class WithoutSetters : public Without {
  protected:
    WithoutSetters() : Without({"REALSetPropValueInt"}) {}
};
TEST_F(WithoutSetters, ADateKeepsTheFieldsItBeganWith) {
    EXPECT_EQ(variant([NSDate dateWithTimeIntervalSinceReferenceDate:0]).className(), "Date");
}

// --- dictionaries -----------------------------------------------------------------------------------------

class OutwardDictionaries : public OnEveryHost {
  protected:
    std::string at(const Value& dictionary, const Value& key) {
        return host.call(dictionary, "Value", {key}).text();
    }
};

TEST_P(OutwardDictionaries, HoldEveryEntry) {
    Value result = variant([NSDictionary
        dictionaryWithObjectsAndKeys:@"one", [NSNumber numberWithInt:1], [NSNumber numberWithFloat:2.5f],
                                     @"two", [NSDictionary dictionaryWithObject:@"v" forKey:@"k"], @"inner",
                                     nil]);
    EXPECT_EQ(result.className(), "Dictionary");
    EXPECT_EQ(host.get(result, "Count").integer(), 3);
    EXPECT_EQ(at(result, 1), "one");
    EXPECT_EQ(at(result, "two"), "2.5");
    EXPECT_EQ(at(host.call(result, "Value", {"inner"}), "k"), "v");
}

TEST_P(OutwardDictionaries, WithoutKeysAreEmptyAndNotNil) {
    Value result = variant([NSDictionary dictionary]);
    EXPECT_EQ(result.className(), "Dictionary");
    EXPECT_EQ(host.get(result, "Count").integer(), 0);
}

TEST_P(OutwardDictionaries, TakeNilForNull) {
    Value result =
        variant([NSDictionary dictionaryWithObjectsAndKeys:[NSNull null], @"k", @"v", [NSNull null], nil]);
    EXPECT_EQ(host.get(result, "Count").integer(), 2);
    EXPECT_TRUE(host.call(result, "Value", {"k"}).isNil());
    EXPECT_EQ(at(result, nullptr), "v");
}

TEST_P(OutwardDictionaries, ComeInTheOrderOfAllKeys) {
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
    for (int i = 0; i < 20; ++i)
        [dictionary setObject:[NSNumber numberWithInt:i] forKey:[NSString stringWithFormat:@"key %d", i * 7]];
    Value result = variant(dictionary);
    NSArray* keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i)
        EXPECT_EQ(host.call(result, "Key", {static_cast<int>(i)}).text(), textOf([keys objectAtIndex:i]));
}

TEST_P(OutwardDictionaries, NilGivesNil) { EXPECT_EQ(NSDictionaryRB(nil), nullptr); }

INSTANTIATE_TEST_SUITE_P(Hosts, OutwardDictionaries, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

class WithoutMethods : public Without {
  protected:
    WithoutMethods() : Without({"REALLoadObjectMethod"}) {}
};
TEST_F(WithoutMethods, ADictionaryComesBackEmpty) {
    Value result = variant([NSDictionary dictionaryWithObject:@"v" forKey:@"k"]);
    EXPECT_EQ(result.className(), "Dictionary");
    EXPECT_EQ(host.get(result, "Count").integer(), 0);
}

// --- URLs -------------------------------------------------------------------------------------------------

TEST_P(Outward, AFileURLBecomesAFolderItem) {
    Value item = variant([NSURL fileURLWithPath:@"/tmp"]);
    EXPECT_EQ(item.className(), "FolderItem");
    EXPECT_EQ(host.get(item, "NativePath").text(), "/tmp");
}

TEST_P(Outward, AMissingFileInAFolderBecomesAFolderItemToo) {
    Value item = variant([NSURL fileURLWithPath:@"/tmp/no such file"]);
    EXPECT_EQ(item.className(), "FolderItem");
    EXPECT_EQ(host.get(item, "NativePath").text(), "/tmp/no such file");
    EXPECT_FALSE(host.get(item, "Exists").boolean());
}

TEST_P(Outward, AVolumeBecomesAFolderItem) {
    Value item = variant([NSURL fileURLWithPath:@"/"]);
    EXPECT_EQ(item.className(), "FolderItem");
    EXPECT_EQ(host.get(item, "NativePath").text(), "/");
}

TEST_P(Outward, AFileURLIntoAMissingFolderBecomesItsText) {
    expectVariant([NSURL fileURLWithPath:@"/no such folder/file" isDirectory:NO], kREALVariantString,
                  textOf([[NSURL fileURLWithPath:@"/no such folder/file" isDirectory:NO] absoluteString]));
}

TEST_P(Outward, AnyOtherURLBecomesItsText) {
    for (NSString *text in [NSArray arrayWithObjects:@"http://localhost/a%20b?c=d#e", @"mailto:a@b", nil])
        expectVariant([NSURL URLWithString:text], kREALVariantString, textOf(text));
}

TEST_P(Outward, AURLWithABaseBecomesItsWholeText) {
    NSURL* base = [NSURL URLWithString:@"http://localhost/folder/page"];
    expectVariant([NSURL URLWithString:@"other?a=b" relativeToURL:base], kREALVariantString,
                  std::string("http://localhost/folder/other?a=b"));
}

TEST_P(Outward, NothingIsLeftOfAConversion) {
    const std::pair<const char*, std::function<id()>> objects[] = {
        {"text", [] { return [NSString stringWithFormat:@"text %d", 1]; }},
        {"data", [] { return [NSData dataWithBytes:"data" length:4]; }},
        {"date", [] { return [NSDate dateWithTimeIntervalSinceReferenceDate:1e6]; }},
        {"URL", [] { return [NSURL URLWithString:@"http://localhost/"]; }},
        {"file", [] { return [NSURL fileURLWithPath:@"/tmp"]; }},
        {"number", [] { return [NSNumber numberWithDouble:0.1]; }},
        {"array", [] { return [NSArray arrayWithObjects:@"a", [NSNumber numberWithInt:1], nil]; }},
        {"dictionary", [] { return [NSDictionary dictionaryWithObject:@"value" forKey:@"key"]; }},
        {"rectangle", [] { return [NSValue valueWithRect:NSMakeRect(1, 2, 3, 4)]; }},
    };
    for (const auto& [name, make] : objects)
        EXPECT_TRUE(objectsLeftBy([&, make = make] { variant(make()); }).empty()) << name;
}

// --- values -----------------------------------------------------------------------------------------------

TEST_P(Outward, ARectangleBecomesAnNSRectKaz) {
    Value rect = variant([NSValue valueWithRect:NSMakeRect(1.5f, -2, 3, 4.25f)]);
    ASSERT_EQ(rect.className(), "NSRectKaz");
    EXPECT_EQ(host.get(rect, "X").number(), 1.5);
    EXPECT_EQ(host.get(rect, "Y").number(), -2);
    EXPECT_EQ(host.get(rect, "Width").number(), 3);
    EXPECT_EQ(host.get(rect, "Height").number(), 4.25);
    const float fields[] = {1.5f, -2, 3, 4.25f};
    EXPECT_EQ(std::memcmp(rect.data(), fields, sizeof fields), 0);
}

TEST_P(Outward, ASizeBecomesAnNSSizeKaz) {
    Value size = variant([NSValue valueWithSize:NSMakeSize(1.5f, 2.5f)]);
    ASSERT_EQ(size.className(), "NSSizeKaz");
    const float fields[] = {1.5f, 2.5f};
    EXPECT_EQ(std::memcmp(size.data(), fields, sizeof fields), 0);
}

TEST_P(Outward, ARangeBecomesAnNSRangeKaz) {
    Value range = variant([NSValue valueWithRange:NSMakeRange(7, NSNotFound)]);
    ASSERT_EQ(range.className(), "NSRangeKaz");
    EXPECT_EQ(range.word(0), 7u);
    EXPECT_EQ(range.word(1), static_cast<std::uint32_t>(NSNotFound));
}

TEST_P(Outward, APointBecomesAnNSPointKaz) {
    Value point = variant([NSValue valueWithPoint:NSMakePoint(-1.5f, 2.5f)]);
    ASSERT_EQ(point.className(), "NSPointKaz");
    const float fields[] = {-1.5f, 2.5f};
    EXPECT_EQ(std::memcmp(point.data(), fields, sizeof fields), 0);
}

struct TimeFields {
    std::int64_t value;
    std::int32_t scale;
    std::uint32_t flags;
    std::int64_t epoch;
};

struct TimeRule {
    const char* encoding;
    const char* hostClass;
    std::size_t size;
};
const TimeRule kTimeRules[] = {
    {"{?=qll}", "QTKitTimeKaz", 16},
    {"{?={?=qll}{?=qll}}", "QTKitTimeRangeKaz", 32},
    {"{?=qiIq}", "CMTimeKaz", 24},
    {"{?={?=qiIq}{?=qiIq}}", "CMTimeRangeKaz", 48},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", "CMTimeMappingKaz", 96},
};

TEST_P(Outward, TimesBecomeTheirClasses) {
    std::array<unsigned char, 96> bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i + 1);
    for (const TimeRule& rule : kTimeRules) {
        Value time = variant([NSValue valueWithBytes:bytes.data() objCType:rule.encoding]);
        EXPECT_EQ(time.className(), rule.hostClass);
        EXPECT_EQ(std::memcmp(time.data(), bytes.data(), rule.size), 0) << rule.hostClass;
    }
}

TEST_P(Outward, ValuesOfOtherTypesGiveNil) {
    const int number = 7;
    EXPECT_TRUE(variant([NSValue valueWithBytes:&number objCType:"i"]).isNil());
    EXPECT_TRUE(variant([NSValue valueWithPointer:&number]).isNil());
    const float three[] = {1, 2, 3};
    EXPECT_TRUE(variant([NSValue valueWithBytes:three objCType:"{Three=fff}"]).isNil());
}

class OutwardWithoutFamily : public ConversionTest {
  protected:
    OutwardWithoutFamily() : ConversionTest({}, WithoutFamily) {}
};

TEST_F(OutwardWithoutFamily, StructuresTimesAndObjectsGiveNil) {
    EXPECT_TRUE(variant([NSValue valueWithRect:NSMakeRect(1, 2, 3, 4)]).isNil());
    EXPECT_TRUE(variant([NSValue valueWithSize:NSMakeSize(1, 2)]).isNil());
    EXPECT_TRUE(variant([NSValue valueWithRange:NSMakeRange(1, 2)]).isNil());
    EXPECT_TRUE(variant([NSValue valueWithPoint:NSMakePoint(1, 2)]).isNil());
    const unsigned char bytes[96] = {};
    for (const TimeRule& rule : kTimeRules)
        EXPECT_TRUE(variant([NSValue valueWithBytes:bytes objCType:rule.encoding]).isNil());
    EXPECT_TRUE(variant([NSColor redColor]).isNil());
    EXPECT_TRUE(variant([[[NSObject alloc] init] autorelease]).isNil());
}

// --- objects ----------------------------------------------------------------------------------------------

Class makeClass(const std::string& name, Class superclass = [CountedObject class]) {
    Class c = objc_allocateClassPair(superclass, name.c_str(), 0);
    objc_registerClassPair(c);
    return c;
}

class Wrapped : public ConversionTest {
  protected:
    void SetUp() override { NegotiateRecordVersion(host.resolver()); }

    // A host class whose destructor releases the handle.
    void registerHostClass(const std::string& name) {
        static std::deque<std::pair<std::string, REALclassDefinition>> definitions;
        auto& [kept, definition] = definitions.emplace_back(name, REALclassDefinition());
        definition = host::classDefinition(
            {.name = kept.c_str(),
             .destructor = +[](REALobject self) { [bridge::nativeHandle(self) release]; }},
            {});
        MyREALRegisterClass(&definition);
    }

    id make(Class c) { return [[c new] autorelease]; }
};

TEST_F(Wrapped, AnObjectIsHeldByTheClassOfItsName) {
    Class c = makeClass("Thing");
    registerHostClass("ThingKaz");
    id thing = [c new];
    {
        Value wrapper = variant(thing);
        EXPECT_EQ(wrapper.className(), "ThingKaz");
        EXPECT_EQ(reinterpret_cast<id>(wrapper.word()), thing);
        EXPECT_EQ([thing retainCount], 2u);
        [thing release];
        EXPECT_EQ(living, 1);
    }
    EXPECT_EQ(living, 0);
}

TEST_F(Wrapped, NSNullIsNilEvenWhereTheHostHasAClassOfItsName) {
    registerHostClass("NSNullKaz");
    EXPECT_TRUE(variant([NSNull null]).isNil());
}

TEST_F(Wrapped, EachConversionMakesAWrapperOfItsOwn) {
    id color = [NSColor redColor];
    bridge::ensureFamily();
    Value one = variant(color), two = variant(color);
    EXPECT_EQ(one.className(), "NSColorKaz");
    EXPECT_NE(one.object(), two.object());
    EXPECT_EQ(bridge::lockRegisteredWrapper(color), nullptr);
}

TEST_F(Wrapped, TheNearestSuperclassWithAHostClassIsTaken) {
    Class base = makeClass("Base");
    Class middle = makeClass("Middle", base);
    Class leaf = makeClass("Leaf", middle);
    registerHostClass("BaseKaz");
    EXPECT_EQ(variant(make(leaf)).className(), "BaseKaz");
    registerHostClass("MiddleKaz");
    EXPECT_EQ(variant(make(leaf)).className(), "MiddleKaz");
    EXPECT_EQ(variant(make(middle)).className(), "MiddleKaz");
    EXPECT_EQ(variant(make(base)).className(), "BaseKaz");
}

TEST_F(Wrapped, AClassWithoutCounterpartInItsChainGivesNil) {
    id lonely = [makeClass("Lonely") new];
    EXPECT_TRUE(variant(lonely).isNil());
    EXPECT_EQ([lonely retainCount], 1u);
    [lonely release];
    EXPECT_EQ(living, 0);
}

TEST_F(Wrapped, AHostClassIsNamedByTheFirst199CharactersOfItsName) {
    for (std::size_t length : {195u, 196u, 197u, 198u, 199u}) {
        const std::string name(length, static_cast<char>('A' + length - 195));
        registerHostClass(name + "Kaz"); // the whole name, which may not be found
        const std::string found = (name + "Kaz").substr(0, 199);
        if (found != name + "Kaz") registerHostClass(found);
        EXPECT_EQ(variant(make(makeClass(name))).className(), found) << length;
    }
}

TEST_F(Wrapped, ANameOf199CharactersIsTriedAndOneOf200IsNot) {
    const std::string fits(199, 'F'), tooLong(200, 'L');
    Class base = makeClass("Short");
    registerHostClass("ShortKaz");
    registerHostClass(fits);
    registerHostClass(tooLong);
    registerHostClass(tooLong.substr(0, 199)); // what a cut name would find
    Class longest = makeClass(fits, base);
    Class skipped = makeClass(tooLong, base);
    EXPECT_EQ(variant(make(longest)).className(), fits);
    EXPECT_EQ(variant(make(skipped)).className(), "ShortKaz");
}

TEST_F(Wrapped, AHostObjectComesBackAsItself) {
    Value picture = host.create("Picture", {2, 2});
    id wrapper = cocoa(picture);
    EXPECT_STREQ(object_getClassName(wrapper), "KazREALobjectWrapper");
    Value back = variant(wrapper);
    EXPECT_EQ(back.object(), picture.object());
    Value inArray = variant([NSArray arrayWithObjects:wrapper, wrapper, nil]);
    EXPECT_EQ(inArray.at(0).object(), picture.object());
    EXPECT_EQ(inArray.at(1).object(), picture.object());
}

TEST_F(Wrapped, RulesAreTestedInOrder) {
    askedClasses.clear();
    EXPECT_TRUE(variant([[[AskedObject alloc] init] autorelease]).isNil());
    EXPECT_EQ(askedClasses,
              (std::vector<std::string>{"NSArray", "NSString", "NSData", "NSNumber", "NSDate", "NSDictionary",
                                        "NSURL", "NSValue", "KazREALobjectWrapper"}));
}

TEST_F(Wrapped, AnObjectOfTwoRulesTakesTheFirst) {
    Value text = variant([[[NumericString alloc] init] autorelease]);
    EXPECT_EQ(typeOf(text), kREALVariantString);
    EXPECT_EQ(text.text(), "45");
    // A number is a value, too, and a calendar date a date.
    EXPECT_EQ(typeOf(variant([NSNumber numberWithInt:1])), kREALVariantInt32);
    EXPECT_EQ(variant([NSCalendarDate date]).className(), "Date");
}

} // namespace
