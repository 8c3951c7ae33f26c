// Which services a host has, and calls between host and plugin.
#include "service_of.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

TEST(Services, DependOnTheVersion) {
    {
        Host host({.version = 2009.0});
        EXPECT_FALSE(host.resolver()("PluginGetStringData"));
        EXPECT_FALSE(host.resolver()("REALGetStringCFString"));
        EXPECT_TRUE(host.resolver()("StringGetCString"));
    }
    {
        Host host({.version = 2012.0});
        EXPECT_FALSE(host.resolver()("PluginGetStringData"));
        EXPECT_TRUE(host.resolver()("REALGetStringCFString"));
    }
    {
        Host host({.version = 2013.0});
        EXPECT_TRUE(host.resolver()("PluginGetStringData"));
    }
    Host host({.version = std::nullopt});
    EXPECT_FALSE(host.resolver()("REALGetRBVersion"));
    EXPECT_FALSE(host.resolver()("NoSuchService"));
    EXPECT_EQ(host.requestedServices(), (std::vector<std::string>{"REALGetRBVersion", "NoSuchService"}));
}

TEST(Services, CanBeWithheld) {
    Host host({.withheld = {"newPicture"}});
    EXPECT_FALSE(host.resolver()("newPicture"));
    EXPECT_TRUE(host.resolver()("newMemoryBlock"));
}

TEST(HostMethods, AreFoundByTheirDeclaration) {
    Host host;
    auto global = SERVICE_OF(host, REALLoadGlobalMethod);
    auto lenB =
        reinterpret_cast<std::int32_t (*)(REALstring)>(global(nullptr, "LenB( s as string ) as integer"));
    ASSERT_TRUE(lenB);
    Value text("grün");
    EXPECT_EQ(lenB(text.stringHandle()), 5);
    EXPECT_TRUE(global(nullptr, "VarType(value As Variant) As Int32"));
    EXPECT_FALSE(global(nullptr, "LenB(s As String) As Double"));
    EXPECT_FALSE(global(nullptr, "LenB(s As"));
    auto method = SERVICE_OF(host, REALLoadObjectMethod);
    Value picture = host.create("Picture", {2, 2, 32});
    Value graphics = host.get(picture, "Graphics");
    EXPECT_TRUE(
        method(graphics.object(),
               "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, sx as "
               "Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)"));
    Value file = host.function("GetFolderItem", {"."});
    EXPECT_TRUE(method(file.object(), "TrueItem(Index as integer) as Folderitem"));
    EXPECT_FALSE(method(picture.object(), "TrueItem(Index as integer) as Folderitem"));
}

TEST(HostMethods, WorkFromAPlugin) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        Value dictionary = host.function("NewTestDictionary");
        EXPECT_EQ(host.get(dictionary, "Count").integer(), 1);
        EXPECT_EQ(host.call(dictionary, "Value", {5}).number(), 2.5);
        EXPECT_EQ(host.function("LookupTest", {dictionary, 0}).number(), 2.5);
        // An exception raised by the host's method reaches the plugin's caller.
        EXPECT_THROW(host.function("LookupTest", {dictionary, 3}), HostException);
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Exceptions, ArriveWhenThePluginReturns) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        Value counter = host.create("CounterTest");
        try {
            host.call(counter, "Fail");
            FAIL() << "nothing was thrown";
        } catch (const HostException& exception) {
            EXPECT_EQ(exception.className, "NilObjectException");
            EXPECT_EQ(exception.message, "image is nil");
        }
        EXPECT_THROW(host.call(counter, "RaiseUnknown"), HostException);
        EXPECT_EQ(host.call(counter, "Describe", {"so"}).text(), "so!");
        EXPECT_EQ(host.call(counter, "Describe").text(), "none!");
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Yielding, RunsTheHandler) {
    Host host;
    host.loadPlugin(testPlugin12);
    int times = 0;
    host.onYield([&] { ++times; });
    EXPECT_EQ(host.function("WaitTest", {3}).integer(), 3);
    EXPECT_EQ(times, 3);
}

// --- what the interface fixes -----------------------------------------------------------------------------

TEST(FixedArguments, TheFirstOfALookUpIsNull) {
    Host host;
    auto global = SERVICE_OF(host, REALLoadGlobalMethod);
    EXPECT_TRUE(global(nullptr, "LenB( s as string ) as integer"));
    EXPECT_TRUE(host.report().violations.empty());
    EXPECT_TRUE(global(&host, "LenB( s as string ) as integer"));
    EXPECT_EQ(host.report().violations,
              std::vector<std::string>{"REALLoadGlobalMethod: the first argument is not null"});
}

TEST(FixedArguments, TheFlagsOfATextAre0) {
    Host host;
    auto text = SERVICE_OF(host, REALGetStringCFString);
    Value string("text");
    EXPECT_TRUE(text(string.stringHandle(), 0));
    EXPECT_TRUE(host.report().violations.empty());
    EXPECT_TRUE(text(string.stringHandle(), 1));
    EXPECT_EQ(host.report().violations,
              std::vector<std::string>{"REALGetStringCFString: the flags are not 0"});
}

TEST(FixedArguments, NamesAreSpeltAsTheHostSpellsThem) {
    Host host;
    auto classRef = SERVICE_OF(host, pluginObjectType);
    auto newInstance = SERVICE_OF(host, PluginNewInstance);
    auto number = SERVICE_OF(host, REALGetPropValueInt);
    auto setNumber = SERVICE_OF(host, REALSetPropValueInt);
    Value date = host.create("Date");
    std::int32_t year = 0;
    EXPECT_TRUE(classRef("Date") && number(date.object(), "Year", &year) &&
                setNumber(date.object(), "Year", 1999));
    EXPECT_TRUE(host.report().violations.empty());
    EXPECT_TRUE(classRef("date"));
    EXPECT_TRUE(number(date.object(), "year", &year));
    EXPECT_TRUE(setNumber(date.object(), "YEAR", 1999));
    Value::received(newInstance("DATE"));
    EXPECT_EQ(host.report().violations, (std::vector<std::string>{"pluginObjectType: Date is spelt date",
                                                                  "REALGetPropValueInt: Year is spelt year",
                                                                  "REALSetPropValueInt: Year is spelt YEAR",
                                                                  "PluginNewInstance: Date is spelt DATE"}));
}

TEST(FixedArguments, NothingIsDoneToNull) {
    Host host;
    SERVICE_OF(host, REALLockObject)(nullptr);
    SERVICE_OF(host, REALUnlockObject)(nullptr);
    SERVICE_OF(host, REALLockString)(nullptr);
    SERVICE_OF(host, REALUnlockString)(nullptr);
    SERVICE_OF(host, RuntimeRaiseException)(nullptr);
    SERVICE_OF(host, RuntimeUBound)(nullptr);
    SERVICE_OF(host, RuntimeObjectIsa)(host.create("Date").object(), nullptr);
    SERVICE_OF(host, REALPictureClearCache)(nullptr);
    EXPECT_EQ(host.report().violations,
              (std::vector<std::string>{"REALLockObject: null", "REALUnlockObject: null",
                                        "REALLockString: null", "REALUnlockString: null",
                                        "RuntimeRaiseException: null", "RuntimeUBound: null",
                                        "RuntimeObjectIsa: null", "REALPictureClearCache: null"}));
}

// --- the log ----------------------------------------------------------------------------------------------

TEST(Log, NotesEachCallWithItsObjectAndItsTextWhileItIsOn) {
    Host host;
    auto make = SERVICE_OF(host, PluginNewInstance);
    auto set = SERVICE_OF(host, REALSetPropValueString);
    auto unlock = SERVICE_OF(host, REALUnlockObject);
    unlock(make("Dictionary"));
    REALobject object = nullptr;
    std::vector<ServiceCall> calls = host.callsDuring([&] {
        object = make("RuntimeException");
        set(object, "Message", nullptr);
        unlock(object);
    });
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].service, "PluginNewInstance");
    EXPECT_EQ(calls[0].text, "RuntimeException");
    EXPECT_EQ(calls[1].service, "REALSetPropValueString");
    EXPECT_EQ(calls[1].subject, object);
    EXPECT_EQ(calls[1].text, "Message");
    EXPECT_EQ(calls[2].service, "REALUnlockObject");
    EXPECT_EQ(calls[2].subject, object);
    EXPECT_TRUE(host.callsDuring([] {}).empty());
}
