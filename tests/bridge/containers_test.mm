#include "conversion_test.h"

#include <bridge/containers.h>
#include <bridge/registry.h>
#include <bridge/wrapping.h>

#import <AppKit/AppKit.h>
#include <Carbon/Carbon.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

// Some platform calls of the bridge are led here, to let them fail.
static bool namesAreUnknown = false, recordsAreUnknown = false, parentsAreUnknown = false,
            volumesHaveAParent = false, copiesFail = false;

extern "C" {
OSErr __real_FSGetCatalogInfo(const FSRef*, FSCatalogInfoBitmap, FSCatalogInfo*, HFSUniStr255*, FSSpec*,
                              FSRef*);
OSErr __wrap_FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                              HFSUniStr255* name, FSSpec* old, FSRef* parent) {
    bool asksForNothing = !info && !name && !old && !parent; // but whether the reference is good
    if ((name && namesAreUnknown) || (old && recordsAreUnknown) || (asksForNothing && parentsAreUnknown))
        return paramErr;
    OSErr result = __real_FSGetCatalogInfo(ref, which, info, name, old, parent);
    if (parent && info && info->nodeID == 2 && volumesHaveAParent)
        FSPathMakeRef(reinterpret_cast<const UInt8*>("/tmp"), parent, nullptr);
    return result;
}
CFMutableStringRef __real_CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef);
CFMutableStringRef __wrap_CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex length,
                                                    CFStringRef text) {
    return copiesFail ? nullptr : __real_CFStringCreateMutableCopy(allocator, length, text);
}
}

// Data that claims to be longer than memory.
@interface EndlessData : NSData {
  @public
    NSUInteger claimed;
}
@end
@implementation EndlessData
- (const void*)bytes {
    return "never read";
}
- (NSUInteger)length {
    return claimed;
}
@end

namespace {

namespace fs = std::filesystem;
using studio::Value;

class Containers : public OnEveryHost {
  protected:
    // The message of the exception that is pending, with its class.
    std::string raised() {
        Value exception = host.takePendingException();
        return exception.isNil() ? "(none)"
                                 : exception.className() + ": " + host.get(exception, "Message").text();
    }
};

// --- string arrays ----------------------------------------------------------------------------------------

REALstringArray handleOf(const Value& array) { return reinterpret_cast<REALstringArray>(array.object()); }

TEST_P(Containers, AStringArrayIsFilledInOrder) {
    Value array = host.array("String");
    FillStringArray(handleOf(array), [NSArray arrayWithObjects:@"one", @"two", @"", @"four", nil]);
    ASSERT_EQ(array.count(), 4);
    EXPECT_EQ(array.at(0).text(), "one");
    EXPECT_EQ(array.at(1).text(), "two");
    EXPECT_EQ(array.at(2).text(), "");
    EXPECT_EQ(array.at(3).text(), "four");
}

TEST_P(Containers, AStringArrayKeepsWhatItHeldBehindTheNewElements) {
    Value array = host.array("String", {"old", "older"});
    FillStringArray(handleOf(array), [NSArray arrayWithObject:@"new"]);
    ASSERT_EQ(array.count(), 3);
    EXPECT_EQ(array.at(0).text(), "new");
    EXPECT_EQ(array.at(2).text(), "older");
}

TEST_P(Containers, FillingWithNothingOrIntoNothingDoesNothing) {
    Value array = host.array("String", {"old"});
    FillStringArray(handleOf(array), nil);
    FillStringArray(handleOf(array), [NSArray array]);
    FillStringArray(nullptr, [NSArray arrayWithObject:@"text"]);
    EXPECT_EQ(array.count(), 1);
}

class WithoutInsertProc : public Without {
  protected:
    WithoutInsertProc() : Without({"RuntimeArrayDirectGetInsertProc"}) {}
};
TEST_F(WithoutInsertProc, TheArrayStaysAndTheStringsAreGivenBack) {
    Value array = host.array("String", {"old"});
    FillStringArray(handleOf(array), [NSArray arrayWithObjects:@"one", @"two", nil]);
    EXPECT_EQ(array.count(), 1);
}

// --- data -------------------------------------------------------------------------------------------------

TEST_P(Containers, DataIsCopiedIntoAMemoryBlock) {
    for (NSUInteger length : {1u, 3u, 1000000u}) {
        NSMutableData* data = [NSMutableData dataWithLength:length];
        static_cast<char*>([data mutableBytes])[length - 1] = 'z';
        REALmemoryBlock handle = NSDataRB(data);
        Value block = Value::received(reinterpret_cast<REALobject>(handle));
        ASSERT_EQ(REALMemoryBlockGetSize(handle), static_cast<std::int32_t>(length));
        EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(handle), [data bytes], length), 0);
        EXPECT_NE(REALMemoryBlockGetPtr(handle), [data bytes]);
    }
}

TEST_P(Containers, NoDataAndDataOfNoLengthGiveNilAndNoError) {
    EXPECT_EQ(NSDataRB(nil), nullptr);
    EXPECT_EQ(NSDataRB([NSData data]), nullptr);
    EXPECT_EQ(NSDataRB([NSMutableData dataWithLength:0]), nullptr);
    EXPECT_EQ(raised(), "(none)");
}

TEST_P(Containers, DataThatIsTooLongRaisesWithItsLength) {
    EndlessData* data = [[EndlessData alloc] autorelease];
    for (NSUInteger length : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        data->claimed = length;
        EXPECT_EQ(NSDataRB(data), nullptr);
        EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with " +
                                std::to_string(length) + " bytes in size.");
    }
}

TEST_P(Containers, ABlockThatTheHostDoesNotMakeRaises) {
    host.failService("newMemoryBlock");
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abc" length:3]), nullptr);
    EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with 3 bytes in size.");
}

TEST_P(Containers, ABlockThatDoesNotShowItsBytesGivesNilAndNoError) {
    host.failService("memoryBlockGetPtr");
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abc" length:3]), nullptr);
    EXPECT_EQ(raised(), "(none)");
}

class WithoutMemoryBlocks : public Without {
  protected:
    WithoutMemoryBlocks() : Without({"newMemoryBlock"}) {}
};
TEST_F(WithoutMemoryBlocks, DataRaises) {
    EXPECT_EQ(NSDataRB([NSData dataWithBytes:"abcd" length:4]), nullptr);
    Value exception = host.takePendingException();
    EXPECT_EQ(exception.className(), "OutOfMemoryException");
    EXPECT_EQ(host.get(exception, "Message").text(),
              "Failed to allocate a memoryblock with 4 bytes in size.");
}

// --- files ------------------------------------------------------------------------------------------------

class Files : public OnEveryHost {
  protected:
    void SetUp() override {
        std::string folder = testing::TempDir() + "kaz-files-XXXXXX";
        path = mkdtemp(folder.data());
    }
    void TearDown() override {
        fs::remove_all(path);
        ConversionTest::TearDown();
    }

    Value item(const std::string& name) { return host.create("FolderItem", {path + "/" + name}); }
    static REALfolderItem handle(const Value& item) {
        return reinterpret_cast<REALfolderItem>(item.object());
    }
    using Names = std::vector<std::string>;
    using Counts = std::map<std::string, int>;

    void makeFile(const std::string& name) { std::ofstream(path + "/" + name) << "content"; }

    // The path of the item's URL below the folder; "(nil)" for none.
    std::string crossed(const Value& item) {
        NSURL* url = NewNSURLfile(handle(item));
        if (!url) return "(nil)";
        EXPECT_TRUE([url isFileURL]);
        return below([[url path] UTF8String]);
    }
    // Likewise of the URL's item.
    std::string itemOf(NSURL* url) {
        Value item = Value::received(reinterpret_cast<REALobject>(NSURLRBFile(url)));
        return item.isNil() ? "(nil)" : below(host.get(item, "NativePath").text());
    }
    NSURL* url(const std::string& name) {
        return [NSURL fileURLWithPath:[NSString stringWithUTF8String:(path + "/" + name).c_str()]
                          isDirectory:NO];
    }
    std::string below(const std::string& whole) const {
        return whole.starts_with(path + "/") ? whole.substr(path.size() + 1) : whole;
    }

    std::string path;
};

const char kComposed[] = "Gr\u00fc\u00dfe.txt", kDecomposed[] = "Gru\u0308\u00dfe.txt";

TEST_P(Files, AnExistingItemGivesItsURL) {
    makeFile("plain file.txt");
    makeFile(kComposed);
    fs::create_directory(path + "/folder");
    EXPECT_EQ(crossed(item("plain file.txt")), "plain file.txt");
    EXPECT_EQ(crossed(item(kComposed)), kComposed); // as it lies on the disk
    EXPECT_EQ(crossed(item("folder")), "folder");
    EXPECT_EQ(crossed(host.create("FolderItem", {"/"})), "/");
}

TEST_P(Files, AnItemThatDoesNotExistYetGivesAURLWithADecomposedName) {
    EXPECT_EQ(crossed(item("new.txt")), "new.txt");
    EXPECT_EQ(crossed(item(kComposed)), kDecomposed);
    EXPECT_EQ(crossed(item(kDecomposed)), kDecomposed);
}

TEST_P(Files, TheURLOfAnItemThatDoesNotExistYetIsNoFolders) {
    NSURL* url = NewNSURLfile(handle(item("new")));
    std::string text = textOf([url absoluteString]);
    EXPECT_TRUE(text.ends_with(path + "/new")) << text;
}

TEST_P(Files, ANameThatCannotBeDecomposedIsTakenAsItIs) {
    copiesFail = true;
    EXPECT_EQ(crossed(item(kComposed)), kComposed);
    EXPECT_EQ(itemOf(url(kComposed)), kComposed);
    copiesFail = false;
}

TEST_P(Files, ANameMayHave255Units) {
    std::string ascii(255, 'n'), umlauts, decomposed;
    for (int i = 0; i < 255; ++i) umlauts += "\u00fc", decomposed += "u\u0308";
    EXPECT_EQ(crossed(item(ascii)), ascii);
    EXPECT_EQ(crossed(item(umlauts)), decomposed);
    makeFile(ascii);
    EXPECT_EQ(crossed(item(ascii)), ascii);
    EXPECT_EQ(itemOf(url(ascii)), ascii);
}

TEST_P(Files, ANameOf256UnitsIsNone) { EXPECT_EQ(crossed(item(std::string(256, 'n'))), "(nil)"); }

TEST_P(Files, AnItemInAMissingFolderGivesNil) { EXPECT_EQ(crossed(item("no folder/file")), "(nil)"); }

TEST_P(Files, NoItemGivesNil) {
    EXPECT_EQ(NewNSURLfile(nullptr), nil);
    EXPECT_EQ(NSURLRBFile(nil), nullptr);
}

TEST_P(Files, AnEmptyLeafNameGivesTheFolder) {
    replace(
        "REALFSRefFromFolderItem", +[](REALfolderItem item, FSRef* out, HFSUniStr255* name) {
            if (!name) return false;
            name->length = 0;
            FSPathMakeRef(reinterpret_cast<const UInt8*>("/tmp"), out, nullptr);
            return true;
        });
    EXPECT_EQ(crossed(item("anything")), "/tmp");
}

TEST_P(Files, TheOlderRecordIsTheLastWayToAURL) {
    withhold("REALFSRefFromFolderItem");
    makeFile("old.txt");
    EXPECT_EQ(crossed(item("old.txt")), "old.txt");
    EXPECT_EQ(crossed(item("not there.txt")), "(nil)");
}

TEST_P(Files, WithoutAnyRecordThereIsNoURL) {
    withhold("REALFSRefFromFolderItem");
    withhold("REALFSSpecFromFolderItem");
    makeFile("file");
    EXPECT_EQ(crossed(item("file")), "(nil)");
}

TEST_P(Files, TheURLOfAnExistingItemGivesItsItem) {
    makeFile("a file.txt");
    makeFile(kComposed);
    EXPECT_EQ(itemOf(url("a file.txt")), "a file.txt");
    EXPECT_EQ(itemOf(url(kComposed)), kComposed);
    EXPECT_EQ(itemOf([NSURL fileURLWithPath:@"/tmp" isDirectory:YES]), "/tmp");
}

TEST_P(Files, TheURLOfAMissingItemInAFolderGivesAnItemWithADecomposedName) {
    EXPECT_EQ(itemOf(url("new.txt")), "new.txt");
    EXPECT_EQ(itemOf(url(kComposed)), kDecomposed);
}

TEST_P(Files, ADecomposedNameIsCutAt255Units) {
    std::string name, expected;
    for (int i = 0; i < 200; ++i) name += "\u00fc";
    for (int i = 0; i < 127; ++i) expected += "u\u0308";
    EXPECT_EQ(itemOf(url(name)), expected + "u");
}

TEST_P(Files, AURLIntoAMissingFolderGivesNil) { EXPECT_EQ(itemOf(url("no folder/file")), "(nil)"); }

TEST_P(Files, AURLThatIsNoFileGivesNil) {
    EXPECT_EQ(itemOf([NSURL URLWithString:@"http://localhost/tmp"]), "(nil)");
}

TEST_P(Files, AVolumeIsAnItemBelowAParentOfZeroes) {
    static bool zeroes;
    static std::string name;
    zeroes = false;
    volumesHaveAParent = true; // a file system may have one, which is not the host's
    replace(
        "REALFolderItemFromParentFSRef", +[](const FSRef* parent, const HFSUniStr255* leaf) {
            const FSRef none = {};
            zeroes = std::memcmp(parent, &none, sizeof none) == 0;
            name.assign(leaf->unicode, leaf->unicode + leaf->length);
            return original<host::service::REALFolderItemFromParentFSRef>("REALFolderItemFromParentFSRef")(
                parent, leaf);
        });
    EXPECT_EQ(itemOf([NSURL fileURLWithPath:@"/" isDirectory:YES]), "/");
    EXPECT_TRUE(zeroes);
    EXPECT_EQ(name, "/");
    EXPECT_EQ(itemOf([NSURL fileURLWithPath:@"/tmp" isDirectory:YES]), "/tmp");
    EXPECT_FALSE(zeroes);
    EXPECT_EQ(name, "tmp");
}

TEST_P(Files, TheOlderRecordIsTheLastWayToAnItem) {
    makeFile("old.txt");
    namesAreUnknown = true;
    EXPECT_EQ(itemOf(url("old.txt")), "old.txt");
    recordsAreUnknown = true;
    EXPECT_EQ(itemOf(url("old.txt")), "(nil)");
    namesAreUnknown = recordsAreUnknown = false;
}

TEST_P(Files, AnItemWhoseParentIsUnknownComesFromTheOlderRecord) {
    static Names made;
    made.clear();
    replace(
        "REALFolderItemFromParentFSRef", +[](const FSRef*, const HFSUniStr255*) {
            made.push_back("by its parent");
            return REALfolderItem();
        });
    replace(
        "FolderItemFromFSSpec", +[](const FSSpec* spec) {
            made.push_back("by the record");
            return original<host::service::FolderItemFromFSSpec>("FolderItemFromFSSpec")(spec);
        });
    makeFile("orphan.txt");
    parentsAreUnknown = true;
    EXPECT_EQ(itemOf(url("orphan.txt")), "orphan.txt");
    parentsAreUnknown = false;
    EXPECT_EQ(made, Names{"by the record"});
}

TEST_P(Files, NothingIsLeftOfAConversionToAURL) {
    makeFile("file");
    for (const char* name : {"file", kComposed, "no folder/file"}) {
        Value converted = item(name);
        for (bool fails : {false, true}) {
            copiesFail = fails;
            EXPECT_EQ(objectsLeftBy([&] { NewNSURLfile(handle(converted)); }), (Counts{})) << name;
        }
    }
    copiesFail = false;
}

TEST_P(Files, NothingIsLeftOfAConversionToAnItem) {
    makeFile("file");
    for (const char* name : {"file", kComposed, "no folder/file"})
        for (bool fails : {false, true}) {
            copiesFail = namesAreUnknown = fails;
            EXPECT_EQ(objectsLeftBy([&] { itemOf(url(name)); }), (Counts{})) << name;
        }
    copiesFail = namesAreUnknown = false;
}

TEST_P(Files, WithoutTheServicesThereIsNoItem) {
    withhold("REALFolderItemFromParentFSRef");
    withhold("FolderItemFromFSSpec");
    makeFile("file");
    EXPECT_EQ(itemOf(url("file")), "(nil)");
    EXPECT_EQ(itemOf(url("missing")), "(nil)");
    namesAreUnknown = true;
    EXPECT_EQ(itemOf(url("file")), "(nil)");
    namesAreUnknown = false;
}

INSTANTIATE_TEST_SUITE_P(Hosts, Files, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- dates ------------------------------------------------------------------------------------------------

std::string fieldsOf(NSDate* date) {
    return textOf([static_cast<NSCalendarDate*>(date) descriptionWithCalendarFormat:@"%Y-%m-%d %H:%M:%S"]);
}

TEST_P(Containers, ADateIsLocalWallClockTime) {
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:-5 * 3600]];
    Value date = host.create("Date", {2001, 1, 1, 0, 0, 0});
    NSDate* result = NewNSDate(date.object());
    ASSERT_TRUE([result isKindOfClass:[NSCalendarDate class]]);
    EXPECT_EQ(fieldsOf(result), "2001-01-01 00:00:00");
    EXPECT_EQ([result timeIntervalSinceReferenceDate], 5 * 3600);
}

TEST_P(Containers, ADatesOwnOffsetIsIgnored) {
    Value date = host.create("Date", {2012, 7, 31, 23, 59, 58});
    NSTimeInterval before = [NewNSDate(date.object()) timeIntervalSinceReferenceDate];
    for (double offset : {-11.0, 0.0, 5.5, 13.0}) {
        host.set(date, "GMTOffset", offset);
        EXPECT_EQ([NewNSDate(date.object()) timeIntervalSinceReferenceDate], before) << offset;
    }
}

TEST_P(Containers, ADateThatCannotBeReadWholeGivesNil) {
    Value date = host.create("Date");
    for (int field = 0; field < 6; ++field) {
        host.failService("REALGetPropValueInt", field);
        EXPECT_EQ(NewNSDate(date.object()), nil) << field;
        host.stopFailing();
    }
    EXPECT_NE(NewNSDate(date.object()), nil);
    EXPECT_EQ(NewNSDate(nullptr), nil);
    EXPECT_EQ(NewNSDate(host.memoryBlock("no date").object()), nil);
}

TEST_P(Containers, ADatesFieldsAreReadFromTheYearToTheSecond) {
    static std::vector<std::string> names;
    replace(
        "REALGetPropValueInt", +[](REALobject object, const char* name, std::int32_t* out) {
            names.push_back(name);
            return original<host::service::REALGetPropValueInt>("REALGetPropValueInt")(object, name, out);
        });
    NewNSDate(host.create("Date").object());
    EXPECT_EQ(names, (std::vector<std::string>{"Year", "Month", "Day", "Hour", "Minute", "Second"}));
}

INSTANTIATE_TEST_SUITE_P(Hosts, Containers, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- the cache of the dictionaries' methods ---------------------------------------------------------------

class DictionaryCache : public ConversionTest {
  protected:
    void SetUp() override {
        loads.clear();
        LastDictionary = nullptr;
        replace(
            "REALLoadObjectMethod", +[](REALobject object, const char* declaration) {
                loads.push_back(declaration);
                return original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object,
                                                                                             declaration);
            });
    }

    // How many methods were loaded meanwhile, those of the conversion's own tests of objects aside.
    template <class Work>
    int loadsOf(Work&& work) {
        loads.clear();
        work();
        return static_cast<int>(std::count_if(loads.begin(), loads.end(), [](const std::string& declaration) {
            return !declaration.starts_with("TrueItem");
        }));
    }

    static inline std::vector<std::string> loads;
};

TEST_F(DictionaryCache, LoadsSetterGetterAndKeyGetterInOrder) {
    Value dictionary = host.dictionary({{"k", 1}});
    NewNSDictionary(dictionary.object());
    EXPECT_EQ(loads, (std::vector<std::string>{"Value(key As Variant, Assigns _value As Variant)",
                                               "Value(key As Variant) As Variant",
                                               "Key(index As Integer) As Variant"}));
    EXPECT_EQ(LastDictionary, dictionary.object());
    EXPECT_NE(LastDictionarySetter, nullptr);
    EXPECT_NE(LastDictionaryGetter, nullptr);
    EXPECT_NE(LastDictionaryKeyGetter, nullptr);
}

TEST_F(DictionaryCache, LoadsOncePerDictionaryAndNotAgainInARun) {
    std::vector<std::pair<Value, Value>> entries;
    for (int i = 0; i < 50; ++i) entries.push_back({i, i});
    Value dictionary = host.dictionary(entries);
    EXPECT_EQ(loadsOf([&] { NewNSDictionary(dictionary.object()); }), 3);
    EXPECT_EQ(loadsOf([&] {
                  for (int i = 0; i < 5; ++i) NewNSDictionary(dictionary.object());
              }),
              0);
}

TEST_F(DictionaryCache, LoadsAgainWheneverTheDictionaryChanges) {
    Value a = host.dictionary({{"k", 1}}), b = host.dictionary({{"k", 2}});
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(loadsOf([&] { NewNSDictionary(a.object()); }), 3);
        EXPECT_EQ(loadsOf([&] { NewNSDictionary(b.object()); }), 3);
    }
}

TEST_F(DictionaryCache, LoadsAgainAfterEachDictionaryInside) {
    Value inner = host.dictionary({{"k", 1}});
    Value outer = host.dictionary({{"a", inner}, {"b", inner}});
    // Outer, inner, outer, inner: what is converted last stays.
    EXPECT_EQ(loadsOf([&] { NewNSDictionary(outer.object()); }), 12);
    EXPECT_EQ(LastDictionary, inner.object());
}

TEST_F(DictionaryCache, LoadsNothingForADictionaryWithoutEntries) {
    EXPECT_EQ(loadsOf([&] { NewNSDictionary(host.dictionary().object()); }), 0);
}

TEST_F(DictionaryCache, AsksEachDictionaryByItsOwnMethodsWhateverIsConvertedInBetween) {
    static Value outer, other;
    static REALobject (*key)(REALobject, std::int32_t);
    other = host.dictionary({{"k", "the other's"}});
    outer = host.dictionary({{"k", "the outer's"}, {"inside", other}, {"l", "the outer's, too"}});
    replace(
        "REALLoadObjectMethod", +[](REALobject object, const char* declaration) -> void* {
            void* method =
                original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object, declaration);
            std::string_view name = declaration;
            // Reading a key of the outer one converts the other, whose methods are its own alone.
            if (name.starts_with("Key(")) {
                key = reinterpret_cast<decltype(key)>(method);
                if (object == outer.object())
                    return reinterpret_cast<void*>(+[](REALobject dictionary, std::int32_t index) {
                        EXPECT_EQ(dictionary, outer.object());
                        NewNSDictionary(other.object());
                        return key(dictionary, index);
                    });
                return reinterpret_cast<void*>(+[](REALobject dictionary, std::int32_t index) {
                    EXPECT_EQ(dictionary, other.object());
                    return key(dictionary, index);
                });
            }
            if (object == other.object() && name.starts_with("Value(key As Variant) As"))
                return reinterpret_cast<void*>(+[](REALobject dictionary, REALobject) {
                    EXPECT_EQ(dictionary, other.object());
                    return REALobject();
                });
            return method;
        });
    NSDictionary* result = NewNSDictionary(outer.object());
    EXPECT_EQ(textOf([result objectForKey:@"k"]), "the outer's");
    EXPECT_TRUE([[result objectForKey:@"inside"] isKindOfClass:[NSDictionary class]]);
    EXPECT_EQ(textOf([result objectForKey:@"l"]), "the outer's, too");
    outer = other = {};
}

TEST_F(DictionaryCache, IsSharedByBothDirections) {
    Value made;
    NSDictionary* source = [NSDictionary dictionaryWithObjectsAndKeys:@"v", @"k", @"w", @"l", nil];
    EXPECT_EQ(loadsOf([&] { made = Value::received(NSDictionaryRB(source)); }), 3);
    EXPECT_EQ(LastDictionary, made.object());
    EXPECT_EQ(loadsOf([&] { NewNSDictionary(made.object()); }), 0);
}

TEST_F(DictionaryCache, KeepsNullForAMethodThatIsMissing) {
    replace(
        "REALLoadObjectMethod", +[](REALobject, const char*) -> void* { return nullptr; });
    Value dictionary = host.dictionary({{"k", 1}});
    NewNSDictionary(dictionary.object());
    EXPECT_EQ(LastDictionarySetter, nullptr);
    EXPECT_EQ(LastDictionaryGetter, nullptr);
    EXPECT_EQ(LastDictionaryKeyGetter, nullptr);
}

// --- objects handed to a sibling's class ------------------------------------------------------------------

class Siblings : public ConversionTest {
  protected:
    void SetUp() override { bridge::ensureFamily(); }
    static Value received(REALobject object) { return Value::received(object); }
};

TEST_F(Siblings, AnImageGetsItsOneWrapper) {
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(2, 2)];
    {
        Value wrapper = received(NewNSImageKaz(image));
        EXPECT_EQ(wrapper.className(), "NSImageKaz");
        EXPECT_EQ(reinterpret_cast<id>(wrapper.word()), image);
        EXPECT_EQ([image retainCount], 2u);
        Value again = received(NewNSImageKaz(image));
        EXPECT_EQ(again.object(), wrapper.object());
        EXPECT_EQ([image retainCount], 2u);
    }
    EXPECT_EQ([image retainCount], 1u);
    EXPECT_EQ(bridge::lockRegisteredWrapper(image), nullptr);
    [image release];
}

TEST_F(Siblings, ATransformGetsItsOneWrapper) {
    NSAffineTransform* transform = [[NSAffineTransform alloc] init];
    [transform translateXBy:7 yBy:8];
    {
        Value wrapper = received(NewNSAffineTransformKaz(transform));
        EXPECT_EQ(wrapper.className(), "NSAffineTransformKaz");
        EXPECT_EQ(host.get(wrapper, "TX").number(), 7);
        EXPECT_EQ(received(NewNSAffineTransformKaz(transform)).object(), wrapper.object());
    }
    EXPECT_EQ([transform retainCount], 1u);
    [transform release];
}

TEST_F(Siblings, NilGivesNil) {
    EXPECT_EQ(NewNSImageKaz(nil), nullptr);
    EXPECT_EQ(NewNSAffineTransformKaz(nil), nullptr);
}

class NoSiblings : public ConversionTest {
  protected:
    NoSiblings() : ConversionTest({}, WithoutFamily) {}
};

TEST_F(NoSiblings, ThereIsNoWrapperAndNothingIsRetained) {
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(2, 2)];
    EXPECT_EQ(NewNSImageKaz(image), nullptr);
    EXPECT_EQ([image retainCount], 1u);
    [image release];
    EXPECT_EQ(NewNSAffineTransformKaz([NSAffineTransform transform]), nullptr);
}

} // namespace
