// The strict host finds leaks and misuse, and names them.
#include "service_of.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

static bool mentions(const Report& report, const std::string& text) {
    return report.text().find(text) != std::string::npos;
}

TEST(Audit, NamesWhatAPluginLeaks) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        Value counter = host.create("CounterTest");
        host.call(counter, "Leak");
    }
    Report report = host.report();
    EXPECT_EQ(report.alive("CounterTest"), 1);
    ASSERT_EQ(report.leaks.size(), 1u);
    EXPECT_EQ(report.leaks[0].hostReferences, 0);
    EXPECT_EQ(report.leaks[0].pluginReferences, 1);
    EXPECT_TRUE(mentions(report, "leaked: 1 CounterTest")) << report.text();
}

TEST(Audit, CatchesAnOverReleaseAtItsCall) {
    Host host;
    host.loadPlugin(testPlugin12);
    Value counter = host.create("CounterTest"), other = host.create("Dictionary");
    EXPECT_TRUE(host.report().violations.empty());
    host.call(counter, "OverRelease", {other});
    Report report = host.report();
    ASSERT_EQ(report.violations.size(), 1u);
    EXPECT_TRUE(mentions(report, "Dictionary released")) << report.text();
    EXPECT_TRUE(mentions(report, "CounterTest.OverRelease")) << report.text();
    EXPECT_EQ(host.get(other, "Count").integer(), 0); // the object is still alive
}

TEST(Audit, CatchesAResultWithoutItsReference) {
    Host host;
    host.loadPlugin(testPlugin12);
    Value counter = host.create("CounterTest");
    EXPECT_EQ(host.call(counter, "Itself").object(), counter.object());
    EXPECT_TRUE(host.report().violations.empty());
    EXPECT_EQ(host.call(counter, "ItselfUnlocked").object(), counter.object());
    EXPECT_TRUE(mentions(host.report(), "was returned without the reference")) << host.report().text();
}

TEST(Audit, CatchesUseAfterTheEnd) {
    Host host;
    auto lock = SERVICE_OF(host, REALLockObject);
    auto isa = SERVICE_OF(host, RuntimeObjectIsa);
    auto type = SERVICE_OF(host, pluginObjectType);
    Value dictionary = host.create("Dictionary");
    REALobject handle = dictionary.object();
    EXPECT_TRUE(isa(handle, type("Dictionary")));
    dictionary = {};
    lock(handle);
    EXPECT_TRUE(mentions(host.report(), "Dictionary that was already freed")) << host.report().text();
    EXPECT_FALSE(isa(handle, type("Dictionary")));
    EXPECT_EQ(host.report().violations.size(), 2u);
}

TEST(Audit, CatchesHandlesOfTheWrongKind) {
    Host host;
    auto size = SERVICE_OF(host, memoryBlockGetSize);
    auto bound = SERVICE_OF(host, RuntimeUBound);
    auto lockString = SERVICE_OF(host, REALLockString);
    Value dictionary = host.create("Dictionary");
    EXPECT_EQ(size(reinterpret_cast<REALmemoryBlock>(dictionary.object())), -1);
    EXPECT_TRUE(mentions(host.report(), "a Dictionary is not a MemoryBlock")) << host.report().text();
    bound(reinterpret_cast<REALarray>(dictionary.object()));
    EXPECT_TRUE(mentions(host.report(), "a Dictionary is not an array")) << host.report().text();
    lockString(reinterpret_cast<REALstring>(dictionary.object()));
    EXPECT_TRUE(mentions(host.report(), "an object where a string is expected")) << host.report().text();
    int local = 0;
    lockString(reinterpret_cast<REALstring>(&local));
    EXPECT_EQ(host.report().violations.size(), 4u);
}

TEST(Audit, CountsStrings) {
    Host host;
    auto build = SERVICE_OF(host, REALBuildString);
    auto unlock = SERVICE_OF(host, REALUnlockString);
    REALstring text = build("abc", 3);
    EXPECT_EQ(host.report().alive("String"), 1);
    unlock(text);
    EXPECT_TRUE(host.report().clean());
    unlock(text);
    EXPECT_TRUE(mentions(host.report(), "string \"abc\" that was already freed")) << host.report().text();
    EXPECT_FALSE(build("", 0)); // the empty string is null
}

TEST(Audit, AStandardSetterIsAPlainStore) {
    Host host;
    host.loadPlugin(testPlugin12);
    Value a = host.create("CounterTest"), b = host.create("CounterTest");
    host.set(a, "Companion", b);
    EXPECT_EQ(host.get(a, "Companion").object(), b.object()); // locked for its reader
    b = {};
    // The field held no reference: b is gone, and reading the field is now caught.
    EXPECT_EQ(host.report().alive("CounterTest"), 1);
    EXPECT_TRUE(host.get(a, "Companion").isNil());
    EXPECT_TRUE(mentions(host.report(), "already freed"));
}

TEST(Audit, AWronglyUnlockedDescriptionIsCaught) {
    Host host;
    auto unlock = SERVICE_OF(host, unlockPictureDescription);
    Value picture = host.create("Picture", {2, 2, 32});
    unlock(reinterpret_cast<REALpicture>(picture.object()));
    EXPECT_TRUE(mentions(host.report(), "is not locked")) << host.report().text();
}

TEST(Audit, CountsStringData) {
    Host host;
    auto getData = SERVICE_OF(host, PluginGetStringData);
    auto dispose = SERVICE_OF(host, PluginDisposeStringData);
    Value text("abc");
    REALstringData data;
    ASSERT_TRUE(getData(text.stringHandle(), kREALTextEncodingUTF8, &data));
    EXPECT_EQ(host.report().alive("string data"), 1);
    REALstringData copy = data;
    dispose(&data);
    EXPECT_EQ(host.report().alive("string data"), 0);
    dispose(&copy);
    EXPECT_TRUE(mentions(host.report(), "do not come from")) << host.report().text();
}
