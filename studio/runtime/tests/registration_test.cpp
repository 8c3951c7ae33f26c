// Reading a plugin's records.
#include "service_of.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

struct Layout {
    double version;
    PluginEntry plugin;
};
void PrintTo(const Layout& layout, std::ostream* out) { *out << layout.version; }

class Registration : public testing::TestWithParam<Layout> {};

TEST_P(Registration, ReadsEveryTable) {
    Host host({.version = GetParam().version});
    host.loadPlugin(GetParam().plugin);
    const Class* cls = host.findClass("countertest");
    ASSERT_TRUE(cls);
    EXPECT_EQ(cls->name, "CounterTest");
    EXPECT_EQ(cls->recordVersion, *host.recordVersion());
    EXPECT_EQ(cls->dataSize, 16);
    EXPECT_EQ(cls->dataOffset, 24);
    EXPECT_EQ(cls->record->dataOffset, 24);
    EXPECT_EQ(cls->flags, 4u);
    ASSERT_EQ(cls->methods.size(), 15u);
    EXPECT_EQ(cls->methods[4]->declaration, "Add(amount as DOUBLE) as double");
    EXPECT_EQ(cls->methods[4]->flags, 0x40000u);
    EXPECT_EQ(cls->methods[4]->signature.text(), "Add(amount As Double) As Double");
    EXPECT_TRUE(cls->methods[14]->setter);
    ASSERT_EQ(cls->sharedMethods.size(), 2u);
    EXPECT_EQ(cls->sharedMethods[1]->signature.text(), "Sum(values As Single()) As Single");
    ASSERT_EQ(cls->properties.size(), 3u);
    EXPECT_TRUE(cls->properties[0].standardGetter());
    EXPECT_EQ(cls->properties[2].parameter, 3u);
    EXPECT_EQ(host.constant("CounterTest", "kName").text(), "counter");
    EXPECT_EQ(host.constant("CounterTest", "kLimit").integer(), 23);
    const Class* sub = host.findClass("SubCounterTest");
    ASSERT_TRUE(sub);
    EXPECT_EQ(sub->superclass, cls);
    EXPECT_EQ(sub->dataOffset, 40);
    EXPECT_EQ(host.pluginFunctions().size(), 3u);
    EXPECT_EQ(host.pluginClasses().size(), 2u);
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST_P(Registration, CallsWhatItRead) {
    Host host({.version = GetParam().version});
    host.loadPlugin(GetParam().plugin);
    {
        Value counter = host.create("CounterTest", {5});
        EXPECT_EQ(counter.word(0), 5u);
        EXPECT_EQ(host.get(counter, "Handle").integer(), 5);
        EXPECT_EQ(host.get(counter, "Tripled").integer(), 15);
        host.set(counter, "Tripled", 30);
        EXPECT_EQ(host.call(counter, "Add", {2}).integer(), 12);
        EXPECT_EQ(host.call(counter, "Add", {0.5}).number(), 12.5);
        EXPECT_EQ(host.call(counter, "Add(amount as DOUBLE) as double", {1}).number(), 13.0);
        EXPECT_EQ(host.call(counter, "Half").number(), 6.0);
        EXPECT_FALSE(host.call(counter, "IsBig").boolean());
        EXPECT_TRUE(host.call(counter, "IsBig", {3LL}).boolean());
        host.assign(counter, "ValueFor", {"key"}, 1.5);
        EXPECT_EQ(host.call(counter, "ValueFor", {""}).number(), 1.5);
        EXPECT_EQ(host.create("CounterTest").word(0), 7u);
        EXPECT_EQ(host.instantiate("CounterTest").word(0), 100u);
        Value squares = host.shared("CounterTest", "Squares", {4});
        ASSERT_EQ(squares.count(), 4);
        EXPECT_EQ(squares.at(3).integer(), 9);
        EXPECT_EQ(host.shared("CounterTest", "Sum", {host.array("Single", {1.5, 2})}).number(), 3.5);
        EXPECT_THROW(host.call(counter, "Nothing"), UsageError);
        EXPECT_THROW(host.call(counter, "Add", {"text"}), UsageError);
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

INSTANTIATE_TEST_SUITE_P(Layouts, Registration,
                         testing::Values(Layout{2014.01, testPlugin12}, Layout{2012.0, testPlugin12},
                                         Layout{2009.0, testPlugin9}));

TEST(Registration, ConstructorsRunSuperclassFirstAndDestructorsLast) {
    Host host;
    host.loadPlugin(testPlugin12);
    host.instantiate("SubCounterTest");
    EXPECT_EQ(testPluginLog, "+Counter +Sub -Sub Destructor -Counter ");
}

TEST(Registration, AMistakeInADeclarationIsReported) {
    Host host;
    static REALmethodDefinition broken = {nullptr, nullptr, "Broken(a as", 4, {}};
    auto registerMethod = SERVICE_OF(host, PluginRegisterMethod);
    registerMethod(&broken);
    ASSERT_EQ(host.report().violations.size(), 1u);
    EXPECT_NE(host.report().violations[0].find("expected a type"), std::string::npos) << host.report().text();
}
