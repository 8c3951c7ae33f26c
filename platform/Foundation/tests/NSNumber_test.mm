// Numbers remember the type they were made from, and behave as the value they hold.
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

struct Made {
    const char* type;
    long double value;
    NSNumber* number;
};

// One number per type that can hold the value, by maker, initialiser and bytes.
template <class T>
void add(std::vector<Made>& all, long double value, SEL maker, SEL initialiser) {
    T narrow = static_cast<T>(value);
    if (static_cast<long double>(narrow) != value) return;
    using Send = id (*)(id, SEL, T);
    Class numbers = [NSNumber class];
    id made = reinterpret_cast<Send>([numbers methodForSelector:maker])(numbers, maker, narrow);
    id empty = [NSNumber alloc];
    id initialised =
        reinterpret_cast<Send>([empty methodForSelector:initialiser])(empty, initialiser, narrow);
    id fromBytes = [[NSNumber alloc] initWithBytes:&narrow objCType:@encode(T)];
    for (id number : {made, [initialised autorelease], [fromBytes autorelease]})
        all.push_back({ @encode(T), value, number });
}

std::vector<Made> numbersOf(long double value) {
    std::vector<Made> all;
    auto fits = [&](long double low, long double high) { return value >= low && value <= high; };
#define ADD(T, name, low, high)                                                                              \
    if (fits(low, high)) add<T>(all, value, @selector(numberWith##name:), @selector(initWith##name:))
    ADD(signed char, Char, SCHAR_MIN, SCHAR_MAX);
    ADD(unsigned char, UnsignedChar, 0, UCHAR_MAX);
    ADD(short, Short, SHRT_MIN, SHRT_MAX);
    ADD(unsigned short, UnsignedShort, 0, USHRT_MAX);
    ADD(int, Int, INT_MIN, INT_MAX);
    ADD(unsigned, UnsignedInt, 0, UINT_MAX);
    ADD(long, Long, LONG_MIN, LONG_MAX);
    ADD(unsigned long, UnsignedLong, 0, ULONG_MAX);
    ADD(long long, LongLong, LLONG_MIN, LLONG_MAX);
    ADD(unsigned long long, UnsignedLongLong, 0, ULLONG_MAX);
    ADD(float, Float, -1e30L, 1e30L);
    ADD(double, Double, -1e30L, 1e30L);
#undef ADD
    return all;
}

const long double values[] = {0,
                              1,
                              -1,
                              5,
                              -5,
                              127,
                              -128,
                              200,
                              255,
                              -32768,
                              65535,
                              2147483647.0L,
                              -2147483648.0L,
                              2147483648.0L,
                              4294967295.0L,
                              1099511627776.0L,
                              -4294967296.0L,
                              0.5L};

TEST(NSNumber, RemembersItsType) {
    for (long double value : values)
        for (const Made& made : numbersOf(value))
            EXPECT_STREQ([made.number objCType], made.type) << static_cast<double>(value);
}

TEST(NSNumber, IntegersOfTheInterfaceKeepTheirTypes) {
    EXPECT_STREQ([[NSNumber numberWithInteger:-7] objCType], "i");
    EXPECT_STREQ([[NSNumber numberWithUnsignedInteger:7] objCType], "I");
    EXPECT_STREQ([[[[NSNumber alloc] initWithInteger:-7] autorelease] objCType], "i");
    EXPECT_STREQ([[[[NSNumber alloc] initWithUnsignedInteger:7] autorelease] objCType], "I");
}

TEST(NSNumber, BooleansAreChars) {
    for (BOOL value : {YES, NO}) {
        EXPECT_STREQ([[NSNumber numberWithBool:value] objCType], "c");
        EXPECT_STREQ([[[[NSNumber alloc] initWithBool:value] autorelease] objCType], "c");
        EXPECT_EQ([[NSNumber numberWithBool:value] boolValue], value);
        EXPECT_EQ([[[[NSNumber alloc] initWithBool:value] autorelease] boolValue], value);
    }
}

TEST(NSNumber, EveryGetterGivesTheValue) {
    for (long double value : values) {
        for (const Made& made : numbersOf(value)) {
            SCOPED_TRACE(std::string(made.type) + " " + std::to_string(value));
            NSNumber* n = made.number;
            EXPECT_EQ([n doubleValue], static_cast<double>(value));
            EXPECT_EQ([n floatValue], static_cast<float>(value));
            EXPECT_EQ([n boolValue], value != 0);
            if (value != static_cast<long long>(value)) continue;
            long long whole = static_cast<long long>(value);
            EXPECT_EQ([n longLongValue], whole);
            // A floating-point value out of a narrower type's range converts to nothing in particular.
            if (*made.type == 'f' || *made.type == 'd') continue;
            EXPECT_EQ([n unsignedLongLongValue], static_cast<unsigned long long>(whole));
            EXPECT_EQ([n charValue], static_cast<signed char>(whole));
            EXPECT_EQ([n unsignedCharValue], static_cast<unsigned char>(whole));
            EXPECT_EQ([n shortValue], static_cast<short>(whole));
            EXPECT_EQ([n unsignedShortValue], static_cast<unsigned short>(whole));
            EXPECT_EQ([n intValue], static_cast<int>(whole));
            EXPECT_EQ([n unsignedIntValue], static_cast<unsigned>(whole));
            EXPECT_EQ([n longValue], static_cast<long>(whole));
            EXPECT_EQ([n unsignedLongValue], static_cast<unsigned long>(whole));
            EXPECT_EQ([n integerValue], static_cast<NSInteger>(whole));
            EXPECT_EQ([n unsignedIntegerValue], static_cast<NSUInteger>(whole));
        }
    }
}

TEST(NSNumber, BytesAreThoseOfItsType) {
    for (long double value : values) {
        for (const Made& made : numbersOf(value)) {
            std::size_t size = objc_sizeof_type(made.type);
            unsigned char out[16], canary[16];
            std::memset(out, 0xA5, sizeof out);
            std::memset(canary, 0xA5, sizeof canary);
            [made.number getValue:out];
            EXPECT_EQ(std::memcmp(out + size, canary, sizeof out - size), 0) << made.type;
            NSNumber* again = [[[NSNumber alloc] initWithBytes:out objCType:made.type] autorelease];
            EXPECT_TRUE([again isEqualToNumber:made.number]) << made.type;
        }
    }
}

TEST(NSNumber, EqualValuesAreEqualWhateverTheirTypes) {
    for (long double value : values) {
        std::vector<Made> all = numbersOf(value);
        for (const Made& a : all) {
            for (const Made& b : all) {
                EXPECT_TRUE([a.number isEqual:b.number]) << a.type << b.type;
                EXPECT_TRUE([a.number isEqualToNumber:b.number]) << a.type << b.type;
                EXPECT_EQ([a.number hash], [b.number hash]) << a.type << b.type;
            }
        }
    }
}

TEST(NSNumber, ComparesByValueWhateverTheTypes) {
    for (long double x : values)
        for (long double y : values)
            for (const Made& a : numbersOf(x))
                for (const Made& b : numbersOf(y))
                    ASSERT_EQ([a.number compare:b.number], x < y   ? NSOrderedAscending
                                                           : x > y ? NSOrderedDescending
                                                                   : NSOrderedSame)
                        << a.type << " " << static_cast<double>(x) << ", " << b.type << " "
                        << static_cast<double>(y);
}

TEST(NSNumber, DescribesItsValue) {
    EXPECT_STREQ([[[NSNumber numberWithChar:-5] description] UTF8String], "-5");
    EXPECT_STREQ([[[NSNumber numberWithUnsignedChar:200] stringValue] UTF8String], "200");
    EXPECT_STREQ([[[NSNumber numberWithUnsignedInt:4294967295u] description] UTF8String], "4294967295");
    EXPECT_STREQ([[[NSNumber numberWithUnsignedLongLong:ULLONG_MAX] description] UTF8String],
                 "18446744073709551615");
    EXPECT_STREQ([[[NSNumber numberWithLongLong:LLONG_MIN] description] UTF8String], "-9223372036854775808");
}

TEST(NSNumber, TheLargestNumbersKeepValueAndType) {
    for (unsigned long long value : {ULLONG_MAX, static_cast<unsigned long long>(LLONG_MAX) + 1}) {
        NSNumber* number = [NSNumber numberWithUnsignedLongLong:value];
        EXPECT_STREQ([number objCType], "Q");
        EXPECT_EQ([number unsignedLongLongValue], value);
        EXPECT_EQ([number compare:[NSNumber numberWithLongLong:LLONG_MAX]], NSOrderedDescending);
        EXPECT_EQ([number compare:[NSNumber numberWithLongLong:-1]], NSOrderedDescending);
        EXPECT_EQ([[NSNumber numberWithChar:-1] compare:number], NSOrderedAscending);
    }
}

TEST(NSNumber, CopiesAndArchivesKeepTheType) {
    for (const Made& made : numbersOf(5)) {
        NSNumber* copy = [[made.number copy] autorelease];
        EXPECT_STREQ([copy objCType], made.type);
        EXPECT_TRUE([copy isEqual:made.number]);
        NSNumber* archived =
            [NSUnarchiver unarchiveObjectWithData:[NSArchiver archivedDataWithRootObject:made.number]];
        EXPECT_STREQ([archived objCType], made.type);
        EXPECT_TRUE([archived isEqual:made.number]);
    }
}

TEST(NSNumber, EqualNumbersAreOneKey) {
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionary];
    for (const Made& made : numbersOf(5)) [dictionary setObject:@"five" forKey:made.number];
    EXPECT_EQ([dictionary count], 1u);
    EXPECT_NE([dictionary objectForKey:[NSNumber numberWithShort:5]], nil);
}

TEST(NSNumber, DecimalNumbersAreLeftAlone) {
    NSNumber* number = [NSDecimalNumber numberWithShort:-12];
    EXPECT_TRUE([number isKindOfClass:[NSDecimalNumber class]]);
    EXPECT_STREQ([number objCType], "d");
    EXPECT_EQ([number intValue], -12);
}

} // namespace
