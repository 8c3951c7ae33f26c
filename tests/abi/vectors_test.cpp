// Vectors, as far as a program cannot see.
#include "plugin_test.h"

#include <algorithm>

namespace {

using studio::Value;

class Vectors : public PluginTest {
  protected:
    explicit Vectors(studio::HostOptions options = {}) : PluginTest(std::move(options)) {}

    Value doubles(std::vector<double> values) { return host.array("Double", {values.begin(), values.end()}); }
    Value singles(std::vector<float> values) { return host.array("Single", {values.begin(), values.end()}); }
    std::string text(const Value& vector) { return host.get(vector, "stringRepresentation").text(); }
    static bool isEmpty(const Value& vector) { return vector.word() == 0; }
};

TEST_F(Vectors, TheOneComponentConstructorLeavesASecondReference) {
    host.create("CIVectorKaz", {1.5f});
    EXPECT_EQ(living("CIVector"), 1);
    EXPECT_TRUE(host.report().clean());
}

TEST_F(Vectors, EveryOtherWayToMakeOneLeavesNothing) {
    host.create("CIVectorKaz", {1.5f, 2.0f});
    host.create("CIVectorKaz", {1.5f, 2.0f, 3.0f});
    host.create("CIVectorKaz", {1.5f, 2.0f, 3.0f, 4.0f});
    host.create("CIVectorKaz", {singles({1, 2})});
    host.create("CIVectorKaz", {doubles({1, 2})});
    host.create("CIVectorKaz", {"[1 2 3]"});
    host.shared("CIVectorKaz", "vectorWithX", {1.5f});
    host.function("NewCIVectorWithXKaz", {1.5f});
    host.function("NewCIVectorWithStringKaz", {"[1 2 3]"});
    Value vector = host.function("NewCIVectorWithXYZKaz", {1, 2, 3});
    host.call(vector, "copy");
    host.create("CIVectorKaz", {host.get(vector, "Handle")});
    vector = {};
    expectClean();
}

TEST_F(Vectors, ASecondConstructorIsRefusedBeforeItsArgumentsAreLookedAt) {
    Value vector = host.create("CIVectorKaz", {1.5f, 2.0f});
    const std::pair<const char*, std::vector<Value>> constructors[] = {
        {"Constructor(Handle as Integer)", {0}},
        {"Constructor(values() as single)", {singles({})}},
        {"Constructor(values() as double)", {doubles({})}},
        {"Constructor(x as single)", {1.0f}},
        {"Constructor(x as single, y as single)", {1.0f, 1.0f}},
        {"Constructor(x as single, y as single, z as single)", {1.0f, 1.0f, 1.0f}},
        {"Constructor(x as single, y as single, z as single, w as single)", {1.0f, 1.0f, 1.0f, 1.0f}},
        {"Constructor(StringRepresentation as String)", {"no vector"}},
    };
    for (const auto& constructor : constructors) {
        SCOPED_TRACE(constructor.first);
        EXPECT_EQ(
            raisedBy([&] { host.call(vector, constructor.first, constructor.second); }),
            "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
        EXPECT_EQ(text(vector), "[1.5 2]");
    }
    vector = {};
}

TEST_F(Vectors, WithoutAWrapperToPutItInAVectorIsGivenBack) {
    host.failService("PluginNewInstance");
    EXPECT_TRUE(host.function("NewCIVectorWithXYKaz", {1, 2}).isNil());
    expectClean();
}

TEST_F(Vectors, TextThatIsNoVectorLeavesTheWrapperEmpty) {
    Value vector = host.create("CIVectorKaz", {"one two"});
    EXPECT_TRUE(isEmpty(vector));
    // It can still be filled.
    host.call(vector, "Constructor(x as single, y as single)", {1.0f, 2.0f});
    EXPECT_EQ(text(vector), "[1 2]");
    vector = {};
    expectClean();
}

TEST_F(Vectors, AnEmptyWrapperGivesZeros) {
    Value vector = host.instantiate("CIVectorKaz");
    for (const char* name : {"X", "Y", "Z", "W", "Count"})
        EXPECT_EQ(host.get(vector, name).number(), 0.0) << name;
    EXPECT_EQ(text(vector), "");
    EXPECT_EQ(host.get(vector, "Description").text(), "");
    // No bounds are checked, so nothing is raised.
    EXPECT_EQ(host.call(vector, "Value", {-1}).number(), 0.0);
    EXPECT_EQ(host.call(vector, "Value", {7}).number(), 0.0);
    EXPECT_TRUE(host.call(vector, "copy").isNil());
    vector = {};
    expectClean();
}

// --- how elements of arrays are read ----------------------------------------------------------------------

struct VectorsWithoutUBound : Vectors {
    VectorsWithoutUBound() : Vectors({.withheld = {"RuntimeUBound"}}) {}
};

TEST_F(VectorsWithoutUBound, AnArrayHasOneElement) {
    Value vector = host.create("CIVectorKaz", {doubles({3, 4, 5})});
    EXPECT_EQ(text(vector), "[3]");
    vector = host.create("CIVectorKaz", {singles({6, 7})});
    EXPECT_EQ(text(vector), "[6]");
    vector = {};
    expectClean();
}

// A host of that version without accessors for arrays.
struct Storage : Vectors {
    explicit Storage(double version)
        : Vectors({.version = version, .withheld = {"RuntimeArrayDirectGetGetProc"}}) {}
    std::string both() {
        return text(host.create("CIVectorKaz", {singles({1.5f, 2})})) +
               text(host.create("CIVectorKaz", {doubles({2.5, 3, 4})}));
    }
};
struct LastShownStorage : Storage {
    LastShownStorage() : Storage(2013.9) {}
};
struct FirstHiddenStorage : Storage {
    FirstHiddenStorage() : Storage(2013.91) {}
};

TEST_F(LastShownStorage, IsReadWithoutAccessors) { EXPECT_EQ(both(), "[1.5 2][2.5 3 4]"); }

TEST_F(FirstHiddenStorage, ReadsAsZerosWithoutAccessors) { EXPECT_EQ(both(), "[0 0][0 0 0]"); }

class Accessors : public Vectors {
  protected:
    Accessors() : Vectors({.version = 2013.91}) {}
};

TEST_F(Accessors, AreUsedWhereStorageIsHidden) {
    EXPECT_EQ(text(host.create("CIVectorKaz", {singles({1.5f, 2})})), "[1.5 2]");
    std::vector<std::string> asked = host.requestedServices();
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "RuntimeArrayDirectGetGetProc"), 1);
}

} // namespace
