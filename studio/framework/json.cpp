// JSONItem: an object or an array of JSON; reading and writing its text.
#include "framework/exceptions.h"
#include "runtime/text.h"
#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace studio {

namespace {

struct Item {
    bool array = false;
    bool compact = true;
    std::vector<std::string> names; // of an object, in order
    std::vector<REALobject> values; // variants, owned

    void clear() {
        for (REALobject value : std::exchange(values, {})) heap().release(value);
        names.clear();
        array = false;
    }
};
Item& item(REALobject self) { return dataOf<Item>(self); }
bool isItem(REALobject value) { return isA(value, "JSONItem"); }

constexpr int kDeepest = 512;

// ---- reading ---------------------------------------------------------------------------------------------

class Reader {
  public:
    explicit Reader(std::string text) : text_(std::move(text)) {}

    void readInto(REALobject self) {
        skipBlanks();
        if (at() != '{' && at() != '[') fail("'{' or '['");
        read(self, 1);
        skipBlanks();
        if (index_ < text_.size()) fail("the end of the text");
    }

  private:
    char at() const { return index_ < text_.size() ? text_[index_] : '\0'; }
    void skipBlanks() {
        while (index_ < text_.size() && std::string_view(" \t\r\n").find(at()) != std::string_view::npos)
            ++index_;
    }
    [[noreturn]] void fail(const std::string& expected) const {
        auto line = 1 + std::count(text_.begin(),
                                   text_.begin() + std::ptrdiff_t(std::min(index_, text_.size())), '\n');
        std::string found =
            index_ < text_.size() ? "'" + text_.substr(index_, 1) + "'" : "the end of the text";
        raise("JSONException", "line " + std::to_string(line) + " of the JSON text: expected " + expected +
                                   ", found " + found);
    }
    bool accept(char c) {
        skipBlanks();
        if (at() != c) return false;
        ++index_;
        return true;
    }

    void read(REALobject self, int depth) {
        if (depth > kDeepest) fail("at most " + std::to_string(kDeepest) + " levels");
        Item& result = item(self);
        result.array = at() == '[';
        char end = result.array ? ']' : '}';
        ++index_;
        if (accept(end)) return;
        do {
            skipBlanks();
            if (!result.array) {
                if (at() != '"') fail("a name in quotes");
                std::string name = string();
                if (!accept(':')) fail("':'");
                skipBlanks();
                ObjectRef held(value(depth));
                auto known = std::find(result.names.begin(), result.names.end(), name);
                if (known != result.names.end()) { // the last of equal names counts
                    auto index = std::size_t(known - result.names.begin());
                    heap().release(std::exchange(result.values[index], held.release()));
                    continue;
                }
                result.names.push_back(name);
                result.values.push_back(held.release());
            } else {
                result.values.push_back(value(depth));
            }
        } while (accept(','));
        if (!accept(end)) fail(std::string("',' or '") + end + "'");
    }

    REALobject value(int depth) {
        skipBlanks();
        if (at() == '{' || at() == '[') {
            ObjectRef nested(newInstance("JSONItem"));
            read(nested, depth + 1);
            return nested.release();
        }
        if (at() == '"') return boxVariant(simpleType(Kind::String), Bits::of(makeString(string())));
        for (auto [word, bits] : {std::pair("true", Bits::of(true)), std::pair("false", Bits::of(false))})
            if (acceptWord(word)) return boxVariant(simpleType(Kind::Boolean), bits);
        if (acceptWord("null")) return nullptr;
        return number();
    }

    bool acceptWord(std::string_view word) {
        if (text_.compare(index_, word.size(), word) != 0) return false;
        index_ += word.size();
        return true;
    }

    REALobject number() {
        std::size_t end = text_.find_first_not_of("+-.0123456789eE", index_);
        std::string digits = text_.substr(index_, end == std::string::npos ? end : end - index_);
        char* rest = nullptr;
        double real = std::strtod(digits.c_str(), &rest);
        if (digits.empty() || *rest || digits[0] == '+') fail("a value");
        index_ += digits.size();
        if (digits.find_first_of(".eE") == std::string::npos && std::fabs(real) < 9e18) {
            std::int64_t whole = std::strtoll(digits.c_str(), nullptr, 10);
            if (whole >= INT32_MIN && whole <= INT32_MAX)
                return boxVariant(simpleType(Kind::Int32), Bits::of(std::int32_t(whole)));
            return boxVariant(simpleType(Kind::Int64), Bits::of(whole));
        }
        return boxVariant(simpleType(Kind::Double), Bits::of(real));
    }

    unsigned hexDigits() {
        unsigned code = 0;
        for (int i = 0; i < 4; ++i, ++index_) {
            if (!std::isxdigit((unsigned char)at())) fail("four hexadecimal digits after \\u");
            code = code * 16 + unsigned(std::stoi(std::string(1, at()), nullptr, 16));
        }
        return code;
    }

    std::string string() {
        std::string result;
        for (++index_;;) {
            if (index_ >= text_.size() || (unsigned char)at() < ' ') fail("'\"' at the end of the text");
            char c = text_[index_++];
            if (c == '"') return result;
            if (c != '\\') {
                result += c;
                continue;
            }
            static constexpr std::string_view kNames = "\"\\/bfnrt", kCharacters = "\"\\/\b\f\n\r\t";
            std::size_t known = index_ < text_.size() ? kNames.find(at()) : std::string_view::npos;
            if (known != std::string_view::npos) {
                result += kCharacters[known];
                ++index_;
            } else if (at() == 'u') {
                ++index_;
                char32_t code = hexDigits();
                if (code >= 0xD800 && code < 0xDC00 && text_.compare(index_, 2, "\\u") == 0) {
                    index_ += 2;
                    code = 0x10000 + ((code - 0xD800) << 10) + (hexDigits() - 0xDC00);
                }
                text::append(result, code);
            } else {
                fail("one of \" \\ / b f n r t u after \\");
            }
        }
    }

    std::string text_;
    std::size_t index_ = 0;
};

// ---- writing ---------------------------------------------------------------------------------------------

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (char c : text) {
        char code[8];
        switch (c) {
        case '"':
        case '\\':
            result += '\\';
            result += c;
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            if ((unsigned char)c < ' ') {
                std::snprintf(code, sizeof code, "\\u%04x", c);
                result += code;
            } else {
                result += c;
            }
        }
    }
    return result + "\"";
}

std::string written(REALobject self, bool compact, int depth);

std::string writtenValue(REALobject value, bool compact, int depth) {
    if (!value) return "null";
    if (isItem(value)) return written(value, compact, depth);
    switch (variantType(value)) {
    case kREALVariantBoolean:
        return unboxVariant(value, simpleType(Kind::Boolean)).boolean ? "true" : "false";
    case kREALVariantInt32:
    case kREALVariantInt64:
        return display(value);
    case kREALVariantSingle:
    case kREALVariantDouble: {
        double real = unboxVariant(value, simpleType(Kind::Double)).f64;
        return std::isfinite(real) ? formatDouble(real) : "null";
    }
    default: {
        StringRef text(unboxVariant(value, simpleType(Kind::String)).string);
        return quoted(toUtf8(text));
    }
    }
}

std::string written(REALobject self, bool compact, int depth) {
    if (depth > kDeepest) raise("JSONException", "the JSONItem contains itself, or is nested too deeply");
    const Item& source = item(self);
    std::string result = source.array ? "[" : "{";
    std::string line = compact ? "" : "\n" + std::string(std::size_t(depth) * 2, ' ');
    for (std::size_t i = 0; i < source.values.size(); ++i) {
        result += (i ? "," : "") + line;
        if (!source.array) result += quoted(source.names[i]) + (compact ? ":" : ": ");
        result += writtenValue(source.values[i], compact, depth + 1);
    }
    if (!compact && !source.values.empty()) result += "\n" + std::string(std::size_t(depth - 1) * 2, ' ');
    return result + (source.array ? "]" : "}");
}

// ---- the class -------------------------------------------------------------------------------------------

std::size_t indexOf(REALobject self, REALstring name) {
    const std::vector<std::string>& names = item(self).names;
    return std::size_t(std::find(names.begin(), names.end(), toUtf8(name)) - names.begin());
}

std::size_t checked(REALobject self, std::int32_t index) {
    if (index < 0 || std::size_t(index) >= item(self).values.size())
        raise("OutOfBoundsException", "the JSONItem has no value " + std::to_string(index));
    return std::size_t(index);
}

REALobject valueNamed(REALobject self, REALstring name) {
    std::size_t index = indexOf(self, name);
    if (index == item(self).names.size())
        raise("KeyNotFoundException", "the JSONItem has no value \"" + toUtf8(name) + "\"");
    return Heap::retain(item(self).values[index]);
}

void setValueNamed(REALobject self, REALstring name, REALobject value) {
    Item& target = item(self);
    if (target.array) raise("JSONException", "this JSONItem is an array; its values have no names");
    std::size_t index = indexOf(self, name);
    if (index < target.names.size()) {
        heap().release(std::exchange(target.values[index], Heap::retain(value)));
        return;
    }
    target.names.push_back(toUtf8(name));
    target.values.push_back(Heap::retain(value));
}

REALobject valueAt(REALobject self, std::int32_t index) {
    return Heap::retain(item(self).values[checked(self, index)]);
}
void setValueAt(REALobject self, std::int32_t index, REALobject value) {
    heap().release(std::exchange(item(self).values[checked(self, index)], Heap::retain(value)));
}

void insertAt(REALobject self, std::size_t index, REALobject value) {
    Item& target = item(self);
    if (!target.array && !target.values.empty())
        raise("JSONException", "this JSONItem is an object; give the value a name");
    if (index > target.values.size())
        raise("OutOfBoundsException", "the JSONItem has no place " + std::to_string(index));
    target.array = true;
    target.values.insert(target.values.begin() + std::ptrdiff_t(index), Heap::retain(value));
}

void removeAt(REALobject self, std::size_t index) {
    Item& target = item(self);
    REALobject value = target.values[index];
    target.values.erase(target.values.begin() + std::ptrdiff_t(index));
    if (!target.array) target.names.erase(target.names.begin() + std::ptrdiff_t(index));
    heap().release(value);
}

REALobject asItem(REALobject value) {
    ObjectRef held(value);
    if (!isItem(value)) raise("JSONException", "this value is not a JSONItem");
    return held.release();
}

void load(REALobject self, REALstring text) {
    ObjectRef fresh(newInstance("JSONItem")); // the old content stays if the text is wrong
    Reader(toUtf8(text)).readInto(fresh);
    item(fresh).compact = item(self).compact;
    std::swap(item(self), item(fresh));
}

/// An object or an array of JSON. Names heed case; what an item is turns out with its first value.
///     Dim item As New JSONItem("{""fruit"": ""fig"", ""price"": 0.4, ""sizes"": [1, 2]}")
///     Dim sizes As JSONItem = item.Child("sizes")
FrameworkClass jsonItemClass() {
    FrameworkClass table = classWithData<Item>("JSONItem");
    table.destructor = +[](REALobject self) {
        item(self).clear();
        item(self).~Item();
    };
    table.properties = {
        /// How many values there are.
        ///     Print Str(item.Count)
        property("Count", "Integer", [](REALobject self) { return std::int32_t(item(self).values.size()); }),
        /// Whether it is an array.
        ///     Print Str(sizes.IsArray)
        property("IsArray", "Boolean", [](REALobject self) { return item(self).array; }),
        /// Whether ToString leaves out blanks and line ends; True at first.
        ///     item.Compact = False
        property(
            "Compact", "Boolean", [](REALobject self) { return item(self).compact; },
            [](REALobject self, std::uint32_t, bool compact) { item(self).compact = compact; }),
    };
    table.methods = {
        /// Makes an empty item.
        ///     Dim empty As New JSONItem
        method("Constructor", [](REALobject) {}),
        /// Makes an item of JSON text. Raises JSONException if it is not JSON.
        ///     Dim list As New JSONItem("[1, 2, 3]")
        method("Constructor(text As String)", load),
        /// Replaces the item by JSON text. Raises JSONException if it is not JSON; the item then stays as
        /// it was.
        ///     Dim other As New JSONItem
        ///     other.Load("[1, 2, 3]")
        method("Load(text As String)", load),
        /// The item as JSON. Raises JSONException if it contains itself, or has more than 512 levels.
        ///     Print item.ToString
        method("ToString As String",
               [](REALobject self) { return makeString(written(self, item(self).compact, 1)); }),
        /// A value by its name. Reading raises KeyNotFoundException if there is none; setting adds it, and
        /// raises JSONException in an array.
        ///     item.Value("ripe") = True
        method("Value(name As String) As Variant", valueNamed, setValueNamed),
        /// A value by its index from 0. Raises OutOfBoundsException if there is none.
        ///     Print Str(sizes.Value(0))
        method("Value(index As Integer) As Variant", valueAt, setValueAt),
        /// A nested item by its name. Raises KeyNotFoundException if there is none, JSONException if the
        /// value is not an item.
        ///     Print item.Child("sizes").ToString
        method(
            "Child(name As String) As JSONItem",
            [](REALobject self, REALstring name) { return asItem(valueNamed(self, name)); }, setValueNamed),
        /// A nested item by its index from 0. Raises OutOfBoundsException if there is none, JSONException
        /// if the value is not an item.
        ///     Print item.Child(2).ToString
        method(
            "Child(index As Integer) As JSONItem",
            [](REALobject self, std::int32_t index) { return asItem(valueAt(self, index)); }, setValueAt),
        /// A value by its name, or another if there is none.
        ///     Print item.Lookup("colour", "unknown")
        method("Lookup(name As String, defaultValue As Variant) As Variant",
               [](REALobject self, REALstring name, REALobject defaultValue) {
                   std::size_t index = indexOf(self, name);
                   return Heap::retain(index < item(self).names.size() ? item(self).values[index]
                                                                       : defaultValue);
               }),
        /// Whether there is a value of that name.
        ///     Print Str(item.HasName("fruit"))
        method(
            "HasName(name As String) As Boolean",
            [](REALobject self, REALstring name) { return indexOf(self, name) < item(self).names.size(); }),
        /// The name of a value by its index from 0; empty in an array. Raises OutOfBoundsException if there
        /// is none.
        ///     Print item.Name(0)
        method("Name(index As Integer) As String",
               [](REALobject self, std::int32_t index) {
                   std::size_t at = checked(self, index);
                   return item(self).array ? nullptr : makeString(item(self).names[at]);
               }),
        /// All names; none in an array.
        ///     Dim names() As String = item.Names
        method("Names As String()",
               [](REALobject self) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (const std::string& name : item(self).names)
                       arrayAppend(arrayOf(result), Bits::of(makeString(name)));
                   return result;
               }),
        /// Adds a value to an array. Raises JSONException for an object.
        ///     sizes.Append(3)
        method("Append(value As Variant)",
               [](REALobject self, REALobject value) { insertAt(self, item(self).values.size(), value); }),
        /// Inserts a value into an array before an index from 0. Raises OutOfBoundsException beyond its
        /// end, JSONException for an object.
        ///     sizes.Insert(0, 0)
        method("Insert(index As Integer, value As Variant)",
               [](REALobject self, std::int32_t index, REALobject value) {
                   insertAt(self, std::size_t(std::max(index, 0)), value);
               }),
        /// Removes a value by its name. Raises KeyNotFoundException if there is none.
        ///     item.Remove("price")
        method("Remove(name As String)",
               [](REALobject self, REALstring name) {
                   std::size_t index = indexOf(self, name);
                   if (index == item(self).names.size())
                       raise("KeyNotFoundException", "the JSONItem has no value \"" + toUtf8(name) + "\"");
                   removeAt(self, index);
               }),
        /// Removes a value by its index from 0. Raises OutOfBoundsException if there is none.
        ///     sizes.Remove(0)
        method("Remove(index As Integer)",
               [](REALobject self, std::int32_t index) { removeAt(self, checked(self, index)); }),
        /// Removes everything.
        ///     item.Clear
        method("Clear", [](REALobject self) { item(self).clear(); }),
    };
    return table;
}

const Registrar registrar([] {
    return FrameworkPart{
        {jsonItemClass(),
         /// The text is not JSON, or the item is not what it is used as; the message names the line.
         exceptionClass("JSONException")}};
});

} // namespace

} // namespace studio
