// Dictionary: variants by variants, in the order of insertion. Keys that are strings ignore case.
#include "pair.h"
#include "runtime/text.h"
#include "table.h"

#include <algorithm>
#include <unordered_map>

namespace studio {

namespace {

struct Entry {
    REALobject key;
    REALobject value;
};

struct Dictionary {
    std::vector<Entry> entries;
    std::unordered_map<std::string, std::size_t> index;
};

Dictionary& dictionary(REALobject self) { return dataOf<Dictionary>(self); }

// Equal for equal keys.
std::string identity(REALobject key) {
    switch (variantType(key)) {
    case kREALVariantNil:
        return "nil";
    case kREALVariantString: {
        StringRef text(unboxVariant(key, simpleType(Kind::String)).string);
        return "s" + text::lower(toUtf8(text));
    }
    case kREALVariantInt32:
    case kREALVariantInt64:
        return "n" + std::to_string(unboxVariant(key, simpleType(Kind::Int64)).i64);
    case kREALVariantSingle:
    case kREALVariantDouble:
    case kREALVariantCurrency:
        return "n" + formatDouble(unboxVariant(key, simpleType(Kind::Double)).f64);
    case kREALVariantBoolean:
        return unboxVariant(key, simpleType(Kind::Boolean)).boolean ? "true" : "false";
    case kREALVariantColor:
        return "c" + std::to_string(unboxVariant(key, simpleType(Kind::Color)).u32);
    default:
        return "o" + std::to_string(reinterpret_cast<std::uintptr_t>(key));
    }
}

Entry* find(REALobject self, REALobject key) {
    Dictionary& d = dictionary(self);
    auto found = d.index.find(identity(key));
    return found == d.index.end() ? nullptr : &d.entries[found->second];
}

void clear(REALobject self) {
    Dictionary taken = std::exchange(dictionary(self), {});
    for (Entry& entry : taken.entries) {
        heap().release(entry.key);
        heap().release(entry.value);
    }
}

[[noreturn]] void missing(REALobject key) {
    raise("KeyNotFoundException", "the Dictionary has no key " + display(key));
}

REALobject value(REALobject self, REALobject key) {
    Entry* entry = find(self, key);
    if (!entry) missing(key);
    return Heap::retain(entry->value);
}

void setValue(REALobject self, REALobject key, REALobject value) {
    Heap::retain(value);
    if (Entry* entry = find(self, key)) {
        heap().release(std::exchange(entry->value, value));
        return;
    }
    Dictionary& d = dictionary(self);
    d.index[identity(key)] = d.entries.size();
    d.entries.push_back({Heap::retain(key), value});
}

const Entry& entryAt(REALobject self, std::int32_t index) {
    Dictionary& d = dictionary(self);
    if (index < 0 || std::size_t(index) >= d.entries.size())
        raise("OutOfBoundsException", "the Dictionary has no entry " + std::to_string(index));
    return d.entries[std::size_t(index)];
}

REALobject listOf(REALobject self, REALobject Entry::*member) {
    REALobject result = newArray(simpleType(Kind::Variant));
    for (Entry& entry : dictionary(self).entries)
        arrayAppend(arrayOf(result), Bits::of(Heap::retain(entry.*member)));
    return result;
}

void removeKey(REALobject self, REALobject key) {
    Dictionary& d = dictionary(self);
    auto found = d.index.find(identity(key));
    if (found == d.index.end()) missing(key);
    std::size_t at = found->second;
    Entry gone = d.entries[at];
    d.entries.erase(d.entries.begin() + std::ptrdiff_t(at));
    d.index.erase(found);
    for (auto& [text, index] : d.index)
        if (index > at) --index;
    heap().release(gone.key);
    heap().release(gone.value);
}

/// Values by their keys, in the order in which the keys were added. Keys may be of any type; texts ignore
/// case.
///     Dim prices As New Dictionary("fig" : 0.4, "pear" : 0.3)
FrameworkClass dictionaryClass() {
    FrameworkClass table = classWithData<Dictionary>("Dictionary");
    table.destructor = +[](REALobject self) {
        clear(self);
        dictionary(self).~Dictionary();
    };
    table.properties = {
        /// How many keys there are.
        ///     Print Str(prices.Count)
        property("Count", "Integer",
                 [](REALobject self) { return std::int32_t(dictionary(self).entries.size()); }),
        /// How many bins the table of keys has.
        ///     Print Str(prices.BinCount)
        property("BinCount", "Integer",
                 [](REALobject self) { return std::int32_t(dictionary(self).index.bucket_count()); }),
    };
    table.methods = {
        /// Makes an empty dictionary.
        ///     Dim empty As New Dictionary
        method("Constructor", [](REALobject) {}),
        /// Makes a dictionary of pairs of a key and a value. Raises NilObjectException if one is Nil.
        ///     Dim colours As New Dictionary("sky" : &c66AAFF)
        method("Constructor(ParamArray entries As Pair)",
               [](REALobject self, REALobject entries) {
                   for (std::int32_t i = 0; i < arrayOf(entries).count; ++i) {
                       ObjectRef entry(arrayGet(arrayOf(entries), i).object);
                       if (!entry) raise("NilObjectException", "a Pair for the Dictionary is nil");
                       ObjectRef key(pairLeft(entry)), value(pairRight(entry));
                       setValue(self, key, value);
                   }
               }),
        /// The value of a key. Reading raises KeyNotFoundException if there is none; setting adds the key.
        ///     prices.Value("plum") = 0.2
        method("Value(key As Variant) As Variant", value, setValue),
        /// The value of a key, or another if there is none.
        ///     Print Str(prices.Lookup("kiwi", 0))
        method("Lookup(key As Variant, defaultValue As Variant) As Variant",
               [](REALobject self, REALobject key, REALobject defaultValue) {
                   Entry* entry = find(self, key);
                   return Heap::retain(entry ? entry->value : defaultValue);
               }),
        /// Whether there is such a key.
        ///     Print Str(prices.HasKey("FIG"))
        method("HasKey(key As Variant) As Boolean",
               [](REALobject self, REALobject key) { return find(self, key) != nullptr; }),
        /// The key at an index from 0. Raises OutOfBoundsException if there is none.
        ///     Print prices.Key(0)
        method("Key(index As Integer) As Variant",
               [](REALobject self, std::int32_t index) { return Heap::retain(entryAt(self, index).key); }),
        /// All keys.
        ///     For Each key As Variant In prices.Keys
        ///       Print key
        ///     Next
        method("Keys As Variant()", [](REALobject self) { return listOf(self, &Entry::key); }),
        /// All values, in the order of their keys.
        ///     Dim values() As Variant = prices.Values
        method("Values As Variant()", [](REALobject self) { return listOf(self, &Entry::value); }),
        /// Removes a key and its value. Raises KeyNotFoundException if there is none.
        ///     prices.Remove("pear")
        method("Remove(key As Variant)", removeKey),
        /// Removes everything.
        ///     prices.Clear
        method("Clear", clear),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{dictionaryClass()}}; });

} // namespace

} // namespace studio
