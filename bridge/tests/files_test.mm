// Folder items to file URLs and back.
#include "conversion_test.h"

#include <bridge/files.h>

#include <Carbon/Carbon.h>

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
    bool asksForNothing = !info && !name && !old && !parent; // only whether the reference is valid
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

namespace {

namespace fs = std::filesystem;
using studio::Value;

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

    // The path of the item's URL, relative to the folder; "(nil)" for none.
    std::string crossed(const Value& item) {
        NSURL* url = NewNSURLfile(handle(item));
        if (!url) return "(nil)";
        EXPECT_TRUE([url isFileURL]);
        return below([[url path] UTF8String]);
    }
    // The same for the URL's item.
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
    NSString* url = [NewNSURLfile(handle(item("anything"))) absoluteString];
    EXPECT_TRUE([url hasSuffix:@"/tmp/"]) << [url UTF8String] << ": nothing is appended";
}

TEST_P(Files, AnItemWhoseURLCannotBeMadeIsTriedByItsParent) {
    makeFile("file");
    failingCall = "URL of reference";
    EXPECT_EQ(crossed(item("file")), "file");
    EXPECT_EQ(failingCall, "") << "was not called";
}

TEST_P(Files, AnItemWhoseParentHasNoURLIsTriedByTheOlderRecord) {
    makeFile("file");
    replace(
        "REALFSRefFromFolderItem", +[](REALfolderItem item, FSRef* out, HFSUniStr255* name) {
            auto ofTheHost = original<host::service::REALFSRefFromFolderItem>("REALFSRefFromFolderItem");
            return name && ofTheHost(item, out, name);
        });
    for (const char* call : {"URL of reference", "URL"}) {
        failingCall = call;
        EXPECT_EQ(crossed(item("file")), "file") << call;
        EXPECT_EQ(failingCall, "") << call << " was not called";
    }
}

TEST_P(Files, TheOlderRecordIsTheLastWayToAURL) {
    withhold("REALFSRefFromFolderItem");
    makeFile("old.txt");
    EXPECT_EQ(crossed(item("old.txt")), "old.txt");
    EXPECT_EQ(crossed(item("not there.txt")), "(nil)");
}

TEST_P(Files, AnOlderRecordThatTheHostDoesNotGiveIsNotUsed) {
    withhold("REALFSRefFromFolderItem");
    makeFile("file");
    replace(
        "REALFSSpecFromFolderItem", +[](REALfolderItem item, FSSpec* out) {
            original<host::service::REALFSSpecFromFolderItem>("REALFSSpecFromFolderItem")(item, out);
            return false;
        });
    EXPECT_EQ(crossed(item("file")), "(nil)");
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
    volumesHaveAParent = true; // a file system may give a volume a parent, which the host must not see
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
    static int asked;
    asked = 0;
    replace(
        "FolderItemFromFSSpec", +[](const FSSpec* spec) {
            ++asked;
            return original<host::service::FolderItemFromFSSpec>("FolderItemFromFSSpec")(spec);
        });
    makeFile("old.txt");
    namesAreUnknown = true;
    EXPECT_EQ(itemOf(url("old.txt")), "old.txt");
    recordsAreUnknown = true;
    EXPECT_EQ(itemOf(url("old.txt")), "(nil)");
    EXPECT_EQ(asked, 1) << "not for a record that could not be had";
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

} // namespace
