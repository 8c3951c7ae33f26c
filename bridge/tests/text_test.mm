// Text between the host and Cocoa, on hosts of every kind.
#include "bridge_test.h"

#include <bridge/guard.h>
#include <bridge/text.h>

#include <cstdlib>
#include <cstring>

// Zeroed blocks of six bytes for each of `bufferUnits` units that were asked for.
extern std::size_t bufferUnits;
extern int buffers;

namespace {

using studio::Value;

// --- host strings to platform strings, on every path ------------------------------------------------------

struct Path {
    const char* name;
    std::optional<double> version;
    std::set<std::string> withheld;
    bool platformStrings; // whether the host makes platform strings itself
};

const Path paths[] = {
    {"2014_whole", 2014.01, {}, true},
    {"2014_without_platform_strings", 2014.01, {"REALGetStringCFString"}, false},
    {"2014_without_string_data", 2014.01, {"REALGetStringCFString", "PluginGetStringData"}, false},
    {"2013_03_without_string_data", 2013.03, {"REALGetStringCFString", "PluginGetStringData"}, false},
    {"2013_0_without_platform_strings", 2013.0, {"REALGetStringCFString"}, false},
    {"2013_0_without_dispose",
     2013.0,
     {"REALGetStringCFString", "PluginGetStringData", "PluginDisposeStringData"},
     false},
    {"2012_99_whole", 2012.99, {}, true},
    {"2012_0_storage", 2012.0, {"REALGetStringCFString"}, false},
    {"2011_storage", 2011.0, {"REALGetStringCFString"}, false},
    {"2009_05_storage", 2009.05, {"REALGetStringCFString"}, false},
    {"none_storage", std::nullopt, {"REALGetStringCFString"}, false},
};

void PrintTo(const Path& path, std::ostream* out) { *out << path.name; }

class Strings : public BridgeTest, public testing::WithParamInterface<Path> {
  protected:
    Strings() : BridgeTest({.version = GetParam().version, .withheld = GetParam().withheld}) {}

    // The text that the bytes become; "(null)" for none.
    std::string cross(std::string_view bytes, std::uint32_t encoding) {
        Value value = Value::string(bytes, encoding);
        bridge::AutoreleasePool pool;
        NSString* text = bridge::temporaryString(value.stringHandle());
        if (!text) return "(null)";
        NSData* utf8 = [text dataUsingEncoding:NSUTF8StringEncoding];
        return std::string(static_cast<const char*>([utf8 bytes]), [utf8 length]);
    }

    std::string crossUTF8(std::string_view text) { return cross(text, kREALTextEncodingUTF8); }

    static std::string utf16(std::u16string_view text) {
        return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
    }
};

TEST_P(Strings, UTF8Crosses) {
    EXPECT_EQ(crossUTF8("Gr\u00fc\u00dfe \u2603"), "Gr\u00fc\u00dfe \u2603");
    expectClean();
}

TEST_P(Strings, ASCIICrosses) {
    EXPECT_EQ(cross("plain text", kREALTextEncodingASCII), "plain text");
    expectClean();
}

TEST_P(Strings, UTF16CrossesByItsCharacterCount) {
    EXPECT_EQ(cross(utf16(u"Gr\u00fc\u00dfe"), kREALTextEncodingUTF16), "Gr\u00fc\u00dfe");
    expectClean();
}

TEST_P(Strings, AstralCharactersCross) {
    EXPECT_EQ(crossUTF8("a\U0001F600b"), "a\U0001F600b");
    EXPECT_EQ(cross(utf16(u"a\U0001F600b"), kREALTextEncodingUTF16), "a\U0001F600b");
    expectClean();
}

TEST_P(Strings, AnEmptyStringIsNullAndGivesNull) {
    Value empty = "";
    EXPECT_EQ(empty.stringHandle(), nullptr);
    EXPECT_EQ(RBString2CFString(empty.stringHandle()), nullptr);
    expectClean();
}

TEST_P(Strings, AnEmbeddedNulCrossesWhereTheLengthCounts) {
    std::string_view text("a\0b", 3);
    // Platform strings and UTF-16 go by length; bytes in other encodings go up to the NUL.
    EXPECT_EQ(crossUTF8(text), GetParam().platformStrings ? text : "a");
    EXPECT_EQ(cross(utf16(std::u16string_view(u"a\0b", 3)), kREALTextEncodingUTF16), text);
    expectClean();
}

TEST_P(Strings, LongStringsCross) {
    for (std::size_t length : {99u, 100u, 1u << 20}) {
        std::string text(length, 'x');
        text[0] = 'a';
        text.back() = 'z';
        EXPECT_TRUE(crossUTF8(text) == text) << length;
    }
    expectClean();
}

TEST_P(Strings, NullGivesNull) {
    EXPECT_EQ(RBString2CFString(nullptr), nullptr);
    expectClean();
}

INSTANTIATE_TEST_SUITE_P(Paths, Strings, testing::ValuesIn(paths),
                         [](const auto& info) { return info.param.name; });

// --- the bytes of host strings ----------------------------------------------------------------------------

class StringBytes : public BridgeTest {
  protected:
    explicit StringBytes(std::set<std::string> withheld = {"PluginGetStringData", "REALGetStringCFString"})
        : BridgeTest({.withheld = std::move(withheld)}) {}
};

TEST_F(StringBytes, WithoutStringDataTheBytesComeFromTwoOtherServices) {
    Value value = Value::string("text", kREALTextEncodingUTF8);
    REALstringData data = {};
    ASSERT_TRUE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF8, &data));
    EXPECT_EQ(data.length, 4u);
    EXPECT_EQ(data.encoding, kREALTextEncodingUTF8);
    EXPECT_EQ(std::memcmp(data.data, "text\0\0\0\0", 8), 0); // four zero bytes end the text
    std::free(data.data);
    value = {};
    expectClean();
}

TEST_F(StringBytes, AnotherEncodingIsConverted) {
    Value value = Value::string("\u00fc", kREALTextEncodingUTF8);
    REALstringData data = {};
    ASSERT_TRUE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF16, &data));
    EXPECT_EQ(data.length, 2u);
    EXPECT_EQ(std::memcmp(data.data, u"\u00fc", 2), 0);
    std::free(data.data);
    value = {};
    expectClean(); // the converted string is given back
}

TEST_F(StringBytes, ItsOwnEncodingIsSizedByTheLengthThatComesIn) {
    Value value = Value::string("text", kREALTextEncodingUTF8);
    REALstringData data = {.data = nullptr, .length = 4, .encoding = 0};
    ASSERT_TRUE(REALGetStringData(value.stringHandle(), kREALTextEncodingUnknown, &data));
    EXPECT_EQ(data.length, 4u);
    EXPECT_EQ(data.encoding, kREALTextEncodingUnknown);
    EXPECT_EQ(std::memcmp(data.data, "text\0\0\0\0", 8), 0);
    std::free(data.data);
    // A buffer that is too small for the text is refused rather than overrun.
    data = {.data = nullptr, .length = 3, .encoding = 0};
    EXPECT_FALSE(REALGetStringData(value.stringHandle(), kREALTextEncodingUnknown, &data));
}

TEST_F(StringBytes, ANullStringHasNone) {
    REALstringData data = {};
    EXPECT_FALSE(REALGetStringData(nullptr, kREALTextEncodingUTF8, &data));
}

class StringBytesWithoutCString : public StringBytes {
  protected:
    StringBytesWithoutCString()
        : StringBytes({"PluginGetStringData", "REALGetStringCFString", "StringGetCString"}) {}
};

TEST_F(StringBytesWithoutCString, ThereAreNoBytesAndNoString) {
    Value value = Value::string("text", kREALTextEncodingUTF8);
    REALstringData data = {};
    EXPECT_FALSE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF8, &data));
    EXPECT_EQ(RBString2CFString(value.stringHandle()), nullptr);
}

class StringBytesWithoutLenB : public StringBytes {
  protected:
    StringBytesWithoutLenB()
        : StringBytes({"PluginGetStringData", "REALGetStringCFString", "REALLoadGlobalMethod"}) {}
};

TEST_F(StringBytesWithoutLenB, ThereAreNoBytesAndNoString) {
    Value value = Value::string("text", kREALTextEncodingUTF8);
    REALstringData data = {};
    EXPECT_FALSE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF8, &data));
    EXPECT_EQ(RBString2CFString(value.stringHandle()), nullptr);
}

class StringBytesWithoutConversion : public StringBytes {
  protected:
    StringBytesWithoutConversion() : StringBytes({"PluginGetStringData", "REALConvertString"}) {}
};

TEST_F(StringBytesWithoutConversion, AnotherEncodingIsNotToBeHad) {
    Value value = Value::string("text", kREALTextEncodingUTF8);
    REALstringData data = {};
    EXPECT_FALSE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF16, &data));
    EXPECT_TRUE(REALGetStringData(value.stringHandle(), kREALTextEncodingUTF8, &data));
    std::free(data.data);
}

// --- platform strings to host strings ---------------------------------------------------------------------

class PlatformStrings : public BridgeTest {
  protected:
    explicit PlatformStrings(std::set<std::string> withheld = {})
        : BridgeTest({.withheld = std::move(withheld)}) {}

    std::string cross(NSString* text) {
        Value string = Value::adopt(studio::simpleType(studio::Kind::String),
                                    bits(CFString2RBString((CFStringRef)text)));
        return string.stringHandle() ? string.text() : "(null)";
    }

    static studio::Bits bits(REALstring string) {
        studio::Bits bits;
        bits.string = string;
        return bits;
    }

    bridge::AutoreleasePool pool;
};

TEST_F(PlatformStrings, TextCrossesAsUTF8) {
    REALstring string =
        CFString2RBString((CFStringRef)[NSString stringWithUTF8String:"Gr\u00fc\u00dfe \U0001F600"]);
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(REALGetStringEncoding(string), kREALTextEncodingUTF8);
    EXPECT_EQ(Value::adopt(studio::simpleType(studio::Kind::String), bits(string)).text(),
              "Gr\u00fc\u00dfe \U0001F600");
    expectClean();
}

TEST_F(PlatformStrings, AnEmptyStringGivesNull) {
    EXPECT_EQ(CFString2RBString((CFStringRef) @""), nullptr);
    EXPECT_EQ(CFString2RBString(nullptr), nullptr);
    expectClean();
}

TEST_F(PlatformStrings, NinetyNineAndOneHundredUnitsCross) {
    // Snowmen take three bytes each: the longest short text and the shortest long one.
    for (NSUInteger length : {99u, 100u}) {
        NSMutableString* text = [NSMutableString string];
        for (NSUInteger i = 0; i < length; ++i) [text appendString:[NSString stringWithUTF8String:"\u2603"]];
        std::string crossed = cross(text);
        EXPECT_EQ(crossed.size(), length * 3);
        EXPECT_EQ(crossed, [text UTF8String]);
    }
    expectClean();
}

TEST_F(PlatformStrings, AMegabyteCrosses) {
    std::string text(1 << 20, 'x');
    EXPECT_TRUE(cross([NSString stringWithUTF8String:text.c_str()]) == text);
    expectClean();
}

TEST_F(PlatformStrings, AnEmbeddedNulEndsTheText) {
    const unichar characters[] = {'a', 0, 'b'};
    EXPECT_EQ(cross([NSString stringWithCharacters:characters length:3]), "a");
    const unichar nul[] = {0};
    EXPECT_EQ(cross([NSString stringWithCharacters:nul length:1]), "(null)");
    expectClean();
}

TEST_F(PlatformStrings, ALoneSurrogateCannotBeConverted) {
    const unichar characters[] = {'a', 0xD83D, 'b'};
    EXPECT_EQ(cross([NSString stringWithCharacters:characters length:3]), "(null)");
    expectClean();
}

TEST_F(PlatformStrings, NoNormalisationIsApplied) {
    EXPECT_EQ(cross([NSString stringWithUTF8String:"u\u0308"]), "u\u0308");
    EXPECT_EQ(cross([NSString stringWithUTF8String:"\u00fc"]), "\u00fc");
    expectClean();
}

} // namespace

@interface FarTooLongString : NSString
@end
@implementation FarTooLongString
- (NSUInteger)length {
    return 0x7FFFFFFF / 6 + 1;
}
- (unichar)characterAtIndex:(NSUInteger)index {
    [NSException raise:NSInternalInconsistencyException format:@"was read"];
    return 0;
}
@end

namespace {

TEST_F(PlatformStrings, ATextTooLongForASignedSizeGivesNullUnread) {
    EXPECT_EQ(CFString2RBString((CFStringRef)[[[FarTooLongString alloc] init] autorelease]), nullptr);
    expectClean();
}

TEST_F(PlatformStrings, OnlyTextOfAHundredUnitsAndMoreTakesAHeapBuffer) {
    auto buffersFor = [&](NSUInteger length) {
        bufferUnits = length;
        buffers = 0;
        cross([@"" stringByPaddingToLength:length withString:@"x" startingAtIndex:0]);
        return buffers;
    };
    EXPECT_EQ(buffersFor(99), 0);
    EXPECT_EQ(buffersFor(100), 1);
    bufferUnits = 0;
}

class PlatformStringsWithoutBuild : public PlatformStrings {
  protected:
    PlatformStringsWithoutBuild() : PlatformStrings({"REALBuildString"}) {}
};

TEST_F(PlatformStringsWithoutBuild, TheResultIsNull) {
    EXPECT_EQ(CFString2RBString((CFStringRef) @"text"), nullptr);
}

class PlatformStringsWithoutTags : public PlatformStrings {
  protected:
    PlatformStringsWithoutTags() : PlatformStrings({"REALSetStringEncoding"}) {}
};

TEST_F(PlatformStringsWithoutTags, TheUntaggedStringIsReturned) {
    REALstring string = CFString2RBString((CFStringRef) @"text");
    ASSERT_NE(string, nullptr);
    EXPECT_NE(REALGetStringEncoding(string), kREALTextEncodingUTF8);
    REALUnlockString(string);
    expectClean();
}

// --- where the text conversion modules come from ----------------------------------------------------------

TEST(TextConversion, ModulesAreFound) {
    bridge::AutoreleasePool pool;
    NSString* text = [[[NSString alloc] initWithBytes:"\xFE\xFF\x00\xFC\x26\x03"
                                               length:6
                                             encoding:NSUTF16StringEncoding] autorelease];
    EXPECT_STREQ([text UTF8String], "\u00fc\u2603");
    EXPECT_NE(std::getenv("GCONV_PATH"), nullptr);
}

} // namespace
