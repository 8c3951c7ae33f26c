// The cache of the dictionaries' methods; the entries are part of the tests of variants.
#include "conversion_test.h"

#include <bridge/dictionaries.h>

#include <algorithm>

namespace {

using studio::Value;

class DictionaryCache : public ConversionTest {
  protected:
    void SetUp() override {
        loads.clear();
        owners.clear();
        LastDictionary = nullptr;
        replace(
            "REALLoadObjectMethod", +[](REALobject object, const char* declaration) {
                loads.push_back(declaration);
                return original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object,
                                                                                             declaration);
            });
    }

    // How many methods were loaded meanwhile. The conversion's own tests of objects do not count.
    template <class Work>
    int loadsOf(Work&& work) {
        loads.clear();
        work();
        return static_cast<int>(std::count_if(loads.begin(), loads.end(), [](const std::string& declaration) {
            return !declaration.starts_with("TrueItem");
        }));
    }

    static inline std::vector<std::string> loads;

    // Setters that belong to one dictionary each, in the order in which they were loaded.
    using Setter = void (*)(REALobject, REALobject, REALobject);
    static inline Setter hostSetter = nullptr;
    static inline std::vector<REALobject> owners;
    template <std::size_t Owner>
    static void setIn(REALobject dictionary, REALobject key, REALobject value) {
        EXPECT_EQ(dictionary, owners[Owner]);
        hostSetter(dictionary, key, value);
    }
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

TEST_F(DictionaryCache, WritesEachDictionaryWithItsOwnSetterWhateverIsConvertedInBetween) {
    replace(
        "REALLoadObjectMethod", +[](REALobject object, const char* declaration) -> void* {
            void* method =
                original<host::service::REALLoadObjectMethod>("REALLoadObjectMethod")(object, declaration);
            if (!std::string_view(declaration).starts_with("Value(key As Variant, Assigns")) return method;
            hostSetter = reinterpret_cast<Setter>(method);
            auto owner = std::find(owners.begin(), owners.end(), object);
            if (owner == owners.end()) owner = owners.insert(owner, object);
            constexpr Setter setters[] = {setIn<0>, setIn<1>, setIn<2>};
            return reinterpret_cast<void*>(setters[owner - owners.begin()]);
        });
    NSDictionary* source = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSDictionary dictionaryWithObject:@"1" forKey:@"x"], @"a",
                                     [NSDictionary dictionaryWithObject:@"2" forKey:@"y"], @"b", nil];
    Value result = Value::received(NSDictionaryRB(source));
    EXPECT_EQ(owners.size(), 3u);
    EXPECT_EQ(host.call(host.call(result, "Value", {"a"}), "Value", {"x"}).text(), "1");
    EXPECT_EQ(host.call(host.call(result, "Value", {"b"}), "Value", {"y"}).text(), "2");
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

// --- what is given back -----------------------------------------------------------------------------------

// The objects that are unlocked while `work` runs, in order.
template <class Work>
std::vector<const void*> unlockedDuring(studio::Host& host, Work&& work) {
    std::vector<const void*> result;
    for (const studio::ServiceCall& call : host.callsDuring(work))
        if (call.service == "REALUnlockObject") result.push_back(call.subject);
    return result;
}

TEST_F(DictionaryCache, FromTheHostAKeyIsGivenBackBeforeItsValue) {
    Value key = host.memoryBlock("key"), value = host.memoryBlock("value");
    Value dictionary = host.dictionary({{key, value}});
    std::vector<const void*> unlocked = unlockedDuring(host, [&] { NewNSDictionary(dictionary.object()); });
    // Each block is locked and unlocked once more while its bytes are read.
    EXPECT_EQ(unlocked,
              (std::vector<const void*>{key.object(), value.object(), key.object(), value.object()}));
}

TEST_F(DictionaryCache, FromCocoaAKeyIsGivenBackBeforeItsValue) {
    NSDictionary* dictionary = [NSDictionary dictionaryWithObject:[NSData dataWithBytes:"value" length:5]
                                                           forKey:@"key"];
    Value result;
    std::vector<const void*> unlocked =
        unlockedDuring(host, [&] { result = Value::received(NSDictionaryRB(dictionary)); });
    ASSERT_EQ(unlocked.size(), 2u);
    Value value = host.call(result, "Value", {"key"});
    EXPECT_NE(unlocked[0], value.object());
    EXPECT_EQ(unlocked[1], value.object());
}

} // namespace
