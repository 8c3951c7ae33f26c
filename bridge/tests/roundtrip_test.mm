// Random trees of values cross to Cocoa and back, and come back as the conversions promise. Set
// KAZ_SEED for other trees than the usual ones, or to see again what failed.
#include "conversion_test.h"

#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <utility>

namespace {

using studio::Value;

// A value as it must come back: its type code, and what it holds in that type's terms.
struct Node {
    std::int32_t type = kREALVariantNil;
    std::int64_t integer = 0; // integers and Booleans
    double real = 0;
    std::string text;           // of strings; bytes of memory blocks; fields of dates; paths of items
    std::vector<Node> children; // of arrays, and the values of dictionaries
    std::vector<Node> keys;
    std::string className;         // of objects
    REALobject object = nullptr;   // for objects that come back as themselves
    std::array<float, 4> fields{}; // of structures
};

class RoundTrip : public OnEveryHost {
  protected:
    void SetUp() override {
        const char* given = std::getenv("KAZ_SEED");
        seed = given ? static_cast<unsigned>(std::strtoul(given, nullptr, 0)) : 20140131;
        RecordProperty("seed", static_cast<int>(seed));
        random.seed(seed);
        [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:3 * 3600]];
    }

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }
    std::int64_t anyInt64() { return static_cast<std::int64_t>(random()) >> below(64); }

    std::string anyText() {
        static const char* const pieces[] = {"a",      "Z",          "0",         " ",      "\n",
                                             "%@",     "\u00fc",     "u\u0308",   "\u2603", "\u4e2d",
                                             "\uffee", "\U0001F600", "\U0010FFFD"};
        std::string result;
        // Now and then beyond what fits the short buffer.
        for (std::uint32_t length = below(20) ? below(12) : below(300); length; --length)
            result += pieces[below(std::size(pieces))];
        return result;
    }

    std::string anyBytes() {
        std::string result(1 + below(40), '\0');
        for (char& c : result) c = static_cast<char>(below(256));
        return result;
    }

    // --- making a value, and saying what it must become ---

    struct Made {
        Value value;
        Node node;
    };

    Made anyLeaf() {
        switch (below(12)) {
        case 0: {
            auto n = static_cast<std::int32_t>(anyInt64());
            return {n, {.type = kREALVariantInt32, .integer = n}};
        }
        case 1: {
            std::int64_t n = anyInt64();
            return {static_cast<long long>(n), {.type = kREALVariantInt64, .integer = n}};
        }
        case 2: {
            auto f = static_cast<float>(anyReal());
            return {f, {.type = kREALVariantSingle, .real = f}};
        }
        case 3: {
            double d = anyReal();
            return {d, {.type = kREALVariantDouble, .real = d}};
        }
        case 4: {
            bool b = below(2);
            return {b, {.type = kREALVariantBoolean, .integer = b}};
        }
        case 5: { // a colour crosses as an integer
            auto color = static_cast<std::uint32_t>(random());
            return {Value::color(color),
                    {.type = kREALVariantInt32, .integer = static_cast<std::int32_t>(color)}};
        }
        case 6: {
            std::string bytes = anyBytes();
            return {host.memoryBlock(bytes),
                    {.type = kREALVariantObject, .text = bytes, .className = "MemoryBlock"}};
        }
        case 7: {
            Value date = host.create("Date", {int(1600 + below(2400)), int(1 + below(12)), int(1 + below(28)),
                                              int(below(24)), int(below(60)), int(below(60))});
            return {date, {.type = kREALVariantDate, .text = host.get(date, "SQLDateTime").text()}};
        }
        case 8: {
            std::array<float, 4> f;
            for (float& field : f) field = static_cast<float>(static_cast<std::int32_t>(anyInt64()));
            Value rect = host.create("NSRectKaz", {f[0], f[1], f[2], f[3]});
            return {rect, {.type = kREALVariantObject, .className = "NSRectKaz", .fields = f}};
        }
        case 9: {
            static const char* const paths[] = {"/", "/tmp", "/tmp/not there"};
            const char* path = paths[below(3)];
            return {host.create("FolderItem", {path}),
                    {.type = kREALVariantObject, .text = path, .className = "FolderItem"}};
        }
        case 10: { // of a class that Cocoa does not know: the very object comes back
            Value object = host.create("Random");
            return {object, {.type = kREALVariantObject, .className = "Random", .object = object.object()}};
        }
        default: {
            std::string text = anyText();
            return {text, {.type = kREALVariantString, .text = text}};
        }
        }
    }

    double anyReal() {
        switch (below(8)) {
        case 0:
            return 0;
        case 1:
            return below(2) ? HUGE_VAL : -HUGE_VAL;
        default:
            return std::ldexp(static_cast<double>(anyInt64()), static_cast<int>(below(200)) - 100);
        }
    }

    // An array of one simple type; it comes back as an array of variants.
    Made anyTypedArray() {
        struct Choice {
            const char* type;
            std::int32_t code;
        };
        static const Choice choices[] = {{"Integer", kREALVariantInt32},   {"Int64", kREALVariantInt64},
                                         {"Single", kREALVariantSingle},   {"Double", kREALVariantDouble},
                                         {"Boolean", kREALVariantBoolean}, {"Date", kREALVariantDate},
                                         {"String", kREALVariantString}};
        const Choice& choice = choices[below(std::size(choices))];
        std::vector<Value> elements;
        Node node = {.type = kREALVariantArray + kREALVariantObject};
        for (std::uint32_t count = below(6); count;) {
            Made element = anyLeaf();
            // An array of strings has no room for an empty one, which is null there.
            if (element.node.type != choice.code || element.value.type()->kind == studio::Kind::Color ||
                (choice.code == kREALVariantString && element.node.text.empty()))
                continue;
            elements.push_back(element.value);
            node.children.push_back(element.node);
            --count;
        }
        return {host.array(choice.type, elements), node};
    }

    Made any(int depth) {
        switch (depth > 0 ? below(8) : 7) {
        case 0: {
            std::vector<Value> elements;
            Node node = {.type = kREALVariantArray + kREALVariantObject};
            for (std::uint32_t count = below(6); count; --count) {
                Made element = any(depth - 1);
                elements.push_back(element.value);
                node.children.push_back(element.node);
            }
            return {host.array("Variant", elements), node};
        }
        case 1:
        case 2: {
            std::vector<std::pair<Value, Value>> entries;
            Node node = {.type = kREALVariantObject, .className = "Dictionary"};
            std::uint32_t count = below(6);
            for (std::uint32_t i = 0; i < count; ++i) {
                // Keys that are distinct on both sides.
                Made value = below(10) ? any(depth - 1) : Made();
                Made key = {"key " + std::to_string(i),
                            {.type = kREALVariantString, .text = "key " + std::to_string(i)}};
                if (below(2)) {
                    auto number = static_cast<int>(i * 7) - 14;
                    key = {number, {.type = kREALVariantInt32, .integer = number}};
                }
                entries.emplace_back(key.value, value.value);
                node.keys.push_back(key.node);
                node.children.push_back(value.node);
            }
            return {host.dictionary(entries), node};
        }
        case 3:
            return anyTypedArray();
        default:
            return anyLeaf();
        }
    }

    // --- what came back ---

    void expect(const Value& value, const Node& node, int depth = 0) {
        ASSERT_LT(depth, 10);
        ASSERT_EQ(typeOf(value), node.type);
        switch (node.type) {
        case kREALVariantInt32:
        case kREALVariantInt64:
        case kREALVariantBoolean:
            EXPECT_EQ(value.int64(), node.integer);
            break;
        case kREALVariantSingle:
        case kREALVariantDouble:
            EXPECT_EQ(value.number(), node.real);
            break;
        case kREALVariantString:
            EXPECT_EQ(value.text(), node.text);
            break;
        case kREALVariantDate:
            EXPECT_EQ(host.get(value, "SQLDateTime").text(), node.text);
            break;
        case kREALVariantObject:
            expectObject(value, node, depth);
            break;
        default:
            ASSERT_EQ(value.count(), static_cast<int>(node.children.size()));
            for (std::size_t i = 0; i < node.children.size() && !HasFailure(); ++i)
                expect(value.at(static_cast<int>(i)), node.children[i], depth + 1);
        }
    }

    void expectObject(const Value& value, const Node& node, int depth) {
        ASSERT_EQ(value.className(), node.className);
        if (node.object) EXPECT_EQ(value.object(), node.object);
        if (node.className == "FolderItem") EXPECT_EQ(host.get(value, "NativePath").text(), node.text);
        if (node.className == "NSRectKaz")
            EXPECT_EQ(std::memcmp(value.data(), node.fields.data(), sizeof node.fields), 0);
        if (node.className == "MemoryBlock") {
            auto block = reinterpret_cast<REALmemoryBlock>(value.object());
            ASSERT_EQ(REALMemoryBlockGetSize(block), static_cast<std::int32_t>(node.text.size()));
            EXPECT_EQ(std::memcmp(REALMemoryBlockGetPtr(block), node.text.data(), node.text.size()), 0);
        }
        if (node.className == "Dictionary") {
            ASSERT_EQ(host.get(value, "Count").integer(), static_cast<int>(node.keys.size()));
            for (std::size_t i = 0; i < node.keys.size() && !HasFailure(); ++i) {
                Value key = node.keys[i].type == kREALVariantString
                                ? Value(node.keys[i].text)
                                : Value(static_cast<int>(node.keys[i].integer));
                ASSERT_TRUE(host.call(value, "HasKey", {key}).boolean()) << key.text();
                expect(host.call(value, "Value", {key}), node.children[i], depth + 1);
            }
        }
    }

    unsigned seed = 0;
    std::mt19937_64 random;
};

constexpr int kTrees = 3000, kDepth = 6;

TEST_P(RoundTrip, GivesEveryTreeBack) {
    for (int tree = 0; tree < kTrees && !HasFailure(); ++tree) {
        SCOPED_TRACE("tree " + std::to_string(tree) + ", KAZ_SEED=" + std::to_string(seed));
        bridge::AutoreleasePool inner;
        Made made = any(kDepth);
        expect(variant(cocoa(made.value)), made.node);
    }
}

// The result crosses once more: nothing has changed on Cocoa's side.
TEST_P(RoundTrip, GivesCocoaTheSameAgain) {
    for (int tree = 0; tree < kTrees / 2 && !HasFailure(); ++tree) {
        SCOPED_TRACE("tree " + std::to_string(tree) + ", KAZ_SEED=" + std::to_string(seed));
        bridge::AutoreleasePool inner;
        id first = cocoa(any(kDepth).value);
        id second = GetVariantAsNSObject(variant(first).object());
        EXPECT_TRUE([first isEqual:second]) << textOf([first description]) << textOf([second description]);
    }
}

TEST_P(RoundTrip, LeavesNothingBehindWhicheverAllocationFails) {
    std::vector<Value> trees;
    for (int i = 0; i < 20; ++i) trees.push_back(boxed(any(kDepth).value));
    bool failed = true;
    int good = 0;
    for (; failed; ++good) {
        SCOPED_TRACE(std::to_string(good) + " good allocations, KAZ_SEED=" + std::to_string(seed));
        host.failAllocation(good);
        for (const Value& tree : trees) {
            bridge::AutoreleasePool inner;
            // A value that could not be made may be missing in an array, which raises.
            cocoaExceptionOf([&] { variant(GetVariantAsNSObject(tree.object())); });
        }
        failed = host.allocationFailed();
        host.stopFailing();
        host.takePendingException();
        ASSERT_EQ(host.report().violations, std::vector<std::string>());
    }
    EXPECT_GT(good, 50);
}

INSTANTIATE_TEST_SUITE_P(Hosts, RoundTrip, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

} // namespace
