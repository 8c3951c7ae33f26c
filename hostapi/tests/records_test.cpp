// The load-time rewriting of class records, on records made for the test.
#include <hostapi/arrays.h>
#include <hostapi/records.h>
#include <hostapi/registration.h>
#include <hostapi/services.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

namespace {

std::map<std::string, void*> offered; // the services of the test's own small host
std::map<std::string, int> asked;

void* resolve(const char* name) {
    ++asked[name];
    auto found = offered.find(name);
    return found == offered.end() ? nullptr : found->second;
}

std::vector<REALclassDefinition*> registered;
void registerClass(REALclassDefinition* definition) { registered.push_back(definition); }

class Records : public testing::Test {
  protected:
    Records() {
        gResolver = resolve;
        offered["PluginRegisterClass"] = reinterpret_cast<void*>(registerClass);
    }

    REALclassDefinition definition() {
        REALclassDefinition record =
            host::classDefinition({.name = "Sample"}, properties, methods, constants, shared);
        record.sharedProperties = sharedProperties;
        record.sharedPropertyCount = 1;
        return record;
    }

    static void nothing() {}

    REALproperty properties[2] = {host::field("Handle", "Integer", 0),
                                  host::settableField("Picture", "Picture", 4, 0x40002)};
    REALproperty sharedProperties[1] = {host::property("Shared", "Integer", nothing)};
    REALmethodDefinition methods[3] = {host::method("A", nothing), host::method("B", nothing, 0x40000),
                                       host::method("C", nothing, 0x100000)};
    REALmethodDefinition shared[1] = {host::method("D", nothing, 0x80000)};
    REALconstant constants[2] = {host::constant("kOne = 1"), host::constant("kText = \"t\"")};
};

TEST_F(Records, FlagsAreFoldedOnHostsThatKnowThem) {
    rbversion_rbversion = 2010.029;
    REALclassDefinition record = definition();
    FixConsoleFlags(&record);
    EXPECT_EQ(record.flags, 4u);
    EXPECT_EQ(properties[1].flags, 6u); // 0x40002
    EXPECT_EQ(methods[0].flags, 4u);
    EXPECT_EQ(methods[1].flags, 4u); // 0x40000
    EXPECT_EQ(methods[2].flags, 0u); // 0x100000
    EXPECT_EQ(shared[0].flags, 8u);  // 0x80000
}

TEST_F(Records, FlagsAreClearedOnOlderHosts) {
    rbversion_rbversion = 2010.02;
    REALclassDefinition record = definition();
    FixConsoleFlags(&record);
    EXPECT_EQ(properties[1].flags, 2u);
    EXPECT_EQ(methods[1].flags, 0u);
    EXPECT_EQ(methods[2].flags, 0u);
    EXPECT_EQ(shared[0].flags, 0u);
}

TEST_F(Records, FlagsOfClassAndSharedPropertiesAreFixedToo) {
    rbversion_rbversion = 2013.0;
    REALclassDefinition record = definition();
    record.flags = 0x1C0000;
    sharedProperties[0].flags = 0x40002;
    FixConsoleFlags(&record);
    EXPECT_EQ(record.flags, 12u);
    EXPECT_EQ(sharedProperties[0].flags, 6u);
}

TEST_F(Records, NullAndEmptyTablesAreSkipped) {
    rbversion_rbversion = 2013.0;
    REALclassDefinition record = host::classDefinition({.name = "Empty"}, {});
    record.methods = methods;
    record.methodCount = 0;
    record.propertyCount = -1;
    record.properties = properties;
    record.sharedMethodCount = 5; // of a null table
    FixConsoleFlags(&record);
    EXPECT_EQ(methods[1].flags, 0x40000u);
    EXPECT_EQ(properties[1].flags, 0x40002u);
}

TEST_F(Records, DataSizesAreRoundedToSixteen) {
    CurrentREALControlVersion = 12;
    for (auto [size, rounded] : {std::pair{0, 0}, {1, 16}, {4, 16}, {8, 16}, {16, 16}, {17, 32}}) {
        REALclassDefinition record = definition();
        record.dataSize = size;
        MyREALRegisterClass(&record);
        EXPECT_EQ(record.dataSize, rounded);
    }
}

TEST_F(Records, NewHostsGetTheRecordItself) {
    for (std::int32_t version : {10, 11, 12}) {
        registered.clear();
        CurrentREALControlVersion = version;
        REALclassDefinition record = definition();
        REALclassDefinition before = record;
        MyREALRegisterClass(&record);
        ASSERT_EQ(registered, std::vector{&record});
        before.version = version;
        before.dataSize = 16;
        EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
    }
}

TEST_F(Records, TheOldestHostGetsTheOldLayout) {
    CurrentREALControlVersion = 9;
    REALclassDefinition record = definition();
    record.unused[0] = record.unused[1] = 7;
    MyREALRegisterClass(&record);
    ASSERT_EQ(registered, std::vector{&record});
    EXPECT_EQ(record.version, 9);
    EXPECT_EQ(record.dataSize, 16);
    EXPECT_EQ(record.unused[0], 0u);
    EXPECT_EQ(record.unused[1], 0u);
    EXPECT_EQ(record.flags, 4u);

    ASSERT_EQ(record.methodCount, 3);
    auto* oldMethods = static_cast<REALmethodDefinition9*>(record.methods);
    ASSERT_NE(static_cast<void*>(oldMethods), methods);
    EXPECT_STREQ(oldMethods[2].declaration, "C");
    EXPECT_EQ(oldMethods[2].function, methods[2].function);
    EXPECT_EQ(oldMethods[1].flags, 0x40000u);

    ASSERT_EQ(record.propertyCount, 2);
    auto* oldProperties = static_cast<REALproperty9*>(record.properties);
    EXPECT_STREQ(oldProperties[1].name, "Picture");
    EXPECT_EQ(oldProperties[1].getter, kREALStandardAccessor);
    EXPECT_EQ(oldProperties[1].parameter, 4u);

    ASSERT_EQ(record.constantCount, 2);
    EXPECT_STREQ(static_cast<REALconstant9*>(record.constants)[1].declaration, "kText = \"t\"");
    ASSERT_EQ(record.sharedPropertyCount, 1);
    EXPECT_STREQ(static_cast<REALproperty9*>(record.sharedProperties)[0].name, "Shared");
    ASSERT_EQ(record.sharedMethodCount, 1);
    EXPECT_STREQ(static_cast<REALmethodDefinition9*>(record.sharedMethods)[0].declaration, "D");
    EXPECT_EQ(record.events, nullptr);
}

TEST_F(Records, EventsAreRebuiltForTheOldestHost) {
    CurrentREALControlVersion = 9;
    REALevent events[2] = {{"Opened", {1, 2}}, {"Closed", {3, 4}}};
    REALclassDefinition record = definition();
    record.events = events;
    record.eventCount = 2;
    MyREALRegisterClass(&record);
    ASSERT_EQ(record.eventCount, 2);
    EXPECT_STREQ(static_cast<REALevent9*>(record.events)[1].declaration, "Closed");
}

// The words of a table's records, each its own number from `first` on; pointers among them lead nowhere.
template <class Record, std::size_t N>
void number(Record (&table)[N], std::uint32_t first) {
    std::uint32_t words[sizeof(Record) * N / 4];
    for (std::size_t i = 0; i < std::size(words); ++i) words[i] = first + static_cast<std::uint32_t>(i);
    std::memcpy(table, words, sizeof table);
}

template <class Old, class New, std::size_t N>
void expectBeginnings(const void* table, const New (&original)[N]) {
    ASSERT_NE(table, original);
    for (std::size_t i = 0; i < N; ++i)
        EXPECT_EQ(std::memcmp(static_cast<const Old*>(table) + i, &original[i], sizeof(Old)), 0) << i;
}

TEST_F(Records, EveryWordOfTheOldLayoutIsWhereItBelongs) {
    CurrentREALControlVersion = 9;
    REALproperty manyProperties[2], manyShared[3];
    REALmethodDefinition manyMethods[3], sharedMethods[2];
    REALevent events[2];
    REALconstant manyConstants[3];
    number(manyProperties, 0x100);
    number(manyShared, 0x200);
    number(manyMethods, 0x300);
    number(sharedMethods, 0x400);
    number(events, 0x500);
    number(manyConstants, 0x600);

    REALclassDefinition record;
    std::uint32_t words[29];
    for (std::uint32_t i = 0; i < 29; ++i) words[i] = 0x1000 + i;
    std::memcpy(&record, words, sizeof record);
    record.properties = manyProperties, record.propertyCount = 2;
    record.methods = manyMethods, record.methodCount = 3;
    record.events = events, record.eventCount = 2;
    record.constants = manyConstants, record.constantCount = 3;
    record.sharedProperties = manyShared, record.sharedPropertyCount = 3;
    record.sharedMethods = sharedMethods, record.sharedMethodCount = 2;
    std::memcpy(words, &record, sizeof record);

    MyREALRegisterClass(&record);
    std::uint32_t now[29];
    std::memcpy(now, &record, sizeof record);
    words[0] = 9;
    words[3] = 0x1010; // rounded up
    words[16] = words[17] = 0;
    for (int table : {7, 9, 11, 18, 21, 23}) now[table] = words[table] = 0;
    for (int i = 0; i < 29; ++i) EXPECT_EQ(now[i], words[i]) << "word " << i;
    expectBeginnings<REALproperty9>(record.properties, manyProperties);
    expectBeginnings<REALproperty9>(record.sharedProperties, manyShared);
    expectBeginnings<REALmethodDefinition9>(record.methods, manyMethods);
    expectBeginnings<REALmethodDefinition9>(record.sharedMethods, sharedMethods);
    expectBeginnings<REALevent9>(record.events, events);
    expectBeginnings<REALconstant9>(record.constants, manyConstants);
}

TEST_F(Records, NullTablesStayNullInTheOldLayout) {
    CurrentREALControlVersion = 9;
    REALclassDefinition record = host::classDefinition({.name = "Empty"}, {});
    MyREALRegisterClass(&record);
    EXPECT_EQ(record.properties, nullptr);
    EXPECT_EQ(record.methods, nullptr);
    EXPECT_EQ(record.constants, nullptr);
    EXPECT_EQ(record.sharedProperties, nullptr);
    EXPECT_EQ(record.sharedMethods, nullptr);
}

TEST_F(Records, FixPropertiesCopiesTenWordsOfEachRecord) {
    properties[1].reserved[2] = 9;
    REALproperty9* copy = FixProperties(properties, 2);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(std::memcmp(&copy[0], &properties[0], 40), 0);
    EXPECT_EQ(std::memcmp(&copy[1], &properties[1], 40), 0);
}

TEST_F(Records, FixPropertiesGivesNullForNothingAndForOverflow) {
    EXPECT_EQ(FixProperties(nullptr, 2), nullptr);
    EXPECT_EQ(FixProperties(properties, 0), nullptr);
    EXPECT_EQ(FixProperties(properties, 0x7FFFFFFF / 40 + 1), nullptr);
}

TEST_F(Records, AMissingRegistrationServiceIsSilent) {
    offered.clear();
    for (std::int32_t version : {9, 12}) {
        CurrentREALControlVersion = version;
        REALclassDefinition record = definition();
        MyREALRegisterClass(&record);
    }
    EXPECT_TRUE(registered.empty());
}

TEST_F(Records, RecordVersionsFollowTheHostsVersion) {
    EXPECT_EQ(RecordVersionForHost(2014.01), 12);
    EXPECT_EQ(RecordVersionForHost(2013.03), 12);
    EXPECT_EQ(RecordVersionForHost(2013.029), 11);
    EXPECT_EQ(RecordVersionForHost(2013.0), 11);
    EXPECT_EQ(RecordVersionForHost(2012.99), 10);
    EXPECT_EQ(RecordVersionForHost(2012.0), 10);
    EXPECT_EQ(RecordVersionForHost(2012.9999), 10);
    EXPECT_EQ(RecordVersionForHost(2011.9999), 9);
    EXPECT_EQ(RecordVersionForHost(2013.0299), 11);
    EXPECT_EQ(RecordVersionForHost(2011), 9);
    EXPECT_EQ(RecordVersionForHost(0.0), 9);
}

// --- services ---------------------------------------------------------------------------------------------

std::uint32_t encodingOf(REALstring) { return 0x0600; }

TEST_F(Records, AMissingServiceAnswersZeroAndIsAskedForAgain) {
    EXPECT_EQ(REALGetStringEncoding(nullptr), 0u);
    EXPECT_EQ(REALGetStringEncoding(nullptr), 0u);
    EXPECT_EQ(asked["REALGetStringEncoding"], 2);
    EXPECT_EQ(REALnewInstance("Date"), nullptr);
    EXPECT_FALSE(REALObjectIsA(nullptr, nullptr));
    REALLockObject(nullptr); // does nothing
    std::int32_t value = 5;
    EXPECT_FALSE(REALGetPropValueInt32(nullptr, "Count", &value));
    EXPECT_EQ(value, 5);
}

TEST_F(Records, AServiceIsLookedUpOnce) {
    offered["REALGetStringEncoding"] = reinterpret_cast<void*>(encodingOf);
    EXPECT_EQ(REALGetStringEncoding(nullptr), 0x0600u);
    EXPECT_EQ(REALGetStringEncoding(nullptr), 0x0600u);
    EXPECT_EQ(asked["REALGetStringEncoding"], 1);
}

TEST_F(Records, TheTwoPlatformStringServicesKeepTheirOwnCaches) {
    REALCopyStringCFString(nullptr, 0);
    REALGetStringCFString(nullptr, 0);
    EXPECT_EQ(asked["REALGetStringCFString"], 2);
}

struct ServiceCase {
    const char* entry;
    void* (*resolve)();
};

// Each service asks for its own entry, and for no other.
const ServiceCase serviceCases[] = {
    {"PluginDisposeStringData", [] { return reinterpret_cast<void*>(REALDisposeStringData.resolve()); }},
    {"REALGetStringCFString", [] { return reinterpret_cast<void*>(REALCopyStringCFString.resolve()); }},
    {"REALGetStringCFString", [] { return reinterpret_cast<void*>(REALGetStringCFString.resolve()); }},
    {"RuntimeObjectIsa", [] { return reinterpret_cast<void*>(REALObjectIsA.resolve()); }},
    {"pluginObjectType", [] { return reinterpret_cast<void*>(REALGetClassRef.resolve()); }},
    {"PluginRegisterClass", [] { return reinterpret_cast<void*>(REALRegisterClass.resolve()); }},
    {"PluginRegisterMethod", [] { return reinterpret_cast<void*>(REALRegisterMethod.resolve()); }},
    {"REALBuildString", [] { return reinterpret_cast<void*>(REALBuildString.resolve()); }},
    {"REALLockObject", [] { return reinterpret_cast<void*>(REALLockObject.resolve()); }},
    {"REALUnlockObject", [] { return reinterpret_cast<void*>(REALUnlockObject.resolve()); }},
    {"REALLockString", [] { return reinterpret_cast<void*>(REALLockString.resolve()); }},
    {"REALUnlockString", [] { return reinterpret_cast<void*>(REALUnlockString.resolve()); }},
    {"REALGetStringEncoding", [] { return reinterpret_cast<void*>(REALGetStringEncoding.resolve()); }},
    {"REALConvertString", [] { return reinterpret_cast<void*>(REALConvertString.resolve()); }},
    {"REALSetStringEncoding", [] { return reinterpret_cast<void*>(REALSetStringEncoding.resolve()); }},
    {"PluginNewInstance", [] { return reinterpret_cast<void*>(REALnewInstance.resolve()); }},
    {"RuntimeRaiseException", [] { return reinterpret_cast<void*>(REALRaiseException.resolve()); }},
    {"REALGetPropValueInt", [] { return reinterpret_cast<void*>(REALGetPropValueInt32.resolve()); }},
    {"REALGetPropValueString", [] { return reinterpret_cast<void*>(REALGetPropValueString.resolve()); }},
    {"REALGetPropValueDouble", [] { return reinterpret_cast<void*>(REALGetPropValueDouble.resolve()); }},
    {"REALGetPropValueObject", [] { return reinterpret_cast<void*>(REALGetPropValueObject.resolve()); }},
    {"REALGetPropValueInt64", [] { return reinterpret_cast<void*>(REALGetPropValueInt64.resolve()); }},
    {"REALGetPropValueSingle", [] { return reinterpret_cast<void*>(REALGetPropValueSingle.resolve()); }},
    {"REALSetPropValueInt", [] { return reinterpret_cast<void*>(REALSetPropValueInt32.resolve()); }},
    {"REALSetPropValueString", [] { return reinterpret_cast<void*>(REALSetPropValueString.resolve()); }},
    {"StringToVariant", [] { return reinterpret_cast<void*>(REALNewVariantString.resolve()); }},
    {"Int32ToVariant", [] { return reinterpret_cast<void*>(REALNewVariantInteger.resolve()); }},
    {"DoubleToVariant", [] { return reinterpret_cast<void*>(REALNewVariantDouble.resolve()); }},
    {"BooleanToVariant", [] { return reinterpret_cast<void*>(REALNewVariantBoolean.resolve()); }},
    {"UInt32ToVariant", [] { return reinterpret_cast<void*>(REALNewVariantUInt32.resolve()); }},
    {"Int64ToVariant", [] { return reinterpret_cast<void*>(REALNewVariantInt64.resolve()); }},
    {"UInt64ToVariant", [] { return reinterpret_cast<void*>(REALNewVariantUInt64.resolve()); }},
    {"SingleToVariant", [] { return reinterpret_cast<void*>(REALNewVariantSingle.resolve()); }},
    {"REALLoadObjectMethod", [] { return reinterpret_cast<void*>(REALLoadObjectMethod.resolve()); }},
    {"RuntimeArrayCreateSingleDimBoundedArray",
     [] { return reinterpret_cast<void*>(REALCreateArray.resolve()); }},
    {"RuntimeUBound", [] { return reinterpret_cast<void*>(REALGetArrayUBound.resolve()); }},
    {"RuntimeDirectReadStringArray", [] { return reinterpret_cast<void*>(REALGetArrayString.resolve()); }},
    {"REALYieldToRB", [] { return reinterpret_cast<void*>(REALYieldToRB.resolve()); }},
    {"newMemoryBlock", [] { return reinterpret_cast<void*>(REALNewMemoryBlock.resolve()); }},
    {"memoryBlockGetPtr", [] { return reinterpret_cast<void*>(REALMemoryBlockGetPtr.resolve()); }},
    {"memoryBlockGetSize", [] { return reinterpret_cast<void*>(REALMemoryBlockGetSize.resolve()); }},
    {"newPicture", [] { return reinterpret_cast<void*>(REALNewPicture.resolve()); }},
    {"pluginPictureGraphicsGetter", [] { return reinterpret_cast<void*>(REALGetPictureGraphics.resolve()); }},
    {"REALPictureClearCache", [] { return reinterpret_cast<void*>(REALPictureClearCache.resolve()); }},
    {"REALGetPictureMask", [] { return reinterpret_cast<void*>(REALGetPictureMask.resolve()); }},
    {"REALCopyPictureCGImage", [] { return reinterpret_cast<void*>(REALCopyPictureCGImage.resolve()); }},
    {"FolderItemFromFSSpec", [] { return reinterpret_cast<void*>(REALFolderItemFromFSSpec.resolve()); }},
    {"REALFSSpecFromFolderItem", [] { return reinterpret_cast<void*>(REALFSSpecFromFolderItem.resolve()); }},
    {"REALFSRefFromFolderItem", [] { return reinterpret_cast<void*>(REALFSRefFromFolderItem.resolve()); }},
    {"REALFolderItemFromParentFSRef",
     [] { return reinterpret_cast<void*>(REALFolderItemFromParentFSRef.resolve()); }},
    {"unlockPictureDescription",
     [] { return reinterpret_cast<void*>(REALUnlockPictureDescription.resolve()); }},
    {"lockPictureDescription",
     [] { return reinterpret_cast<void*>(REALLockPictureDescription.preferred.resolve()); }},
    {"REALLockPictureDescription",
     [] { return reinterpret_cast<void*>(REALLockPictureDescription.ofKind.resolve()); }},
    {"REALLoadGlobalMethod", [] { return REALLoadFrameworkMethod("F()"); }},
    {"RuntimeArrayDirectGetInsertProc",
     [] {
         REALInsertArrayValueString(nullptr, 0, nullptr);
         return static_cast<void*>(nullptr);
     }},
    {"RuntimeArrayDirectGetGetProc",
     [] {
         REALGetArrayValueDouble(nullptr, 0);
         return static_cast<void*>(nullptr);
     }},
};

TEST_F(Records, EveryServiceAsksForItsEntry) {
    offered.clear();
    for (const ServiceCase& service : serviceCases) {
        asked.clear();
        EXPECT_EQ(service.resolve(), nullptr);
        EXPECT_EQ(asked, (std::map<std::string, int>{{service.entry, 1}}));
    }
}

} // namespace
