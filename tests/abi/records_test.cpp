// The load-time rewriting of class records, on records made for the test.
#include <host/records.h>
#include <host/registration.h>
#include <host/services.h>

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
    EXPECT_EQ(RecordVersionForHost(2011), 9);
    EXPECT_EQ(RecordVersionForHost(0.0), 9);
}

// --- the service wrappers ---------------------------------------------------------------------------------

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

TEST_F(Records, TheTwoPlatformStringWrappersKeepTheirOwnCaches) {
    REALCopyStringCFString(nullptr, 0);
    REALGetStringCFString(nullptr, 0);
    EXPECT_EQ(asked["REALGetStringCFString"], 2);
}

} // namespace
