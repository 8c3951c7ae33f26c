// Functions of text. Each can also be called on its first argument: name.Uppercase, line.Split(",").
#include "runtime/text.h"
#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace studio {

namespace {

using std::string;
using std::string_view;

std::int32_t count(std::size_t n) { return std::int32_t(n); }

string_view characters(string_view s, std::size_t from, std::size_t length) {
    std::size_t begin = text::byteOffset(s, from);
    std::size_t end = begin + text::byteOffset(s.substr(begin), length);
    return s.substr(begin, end - begin);
}

REALstring sameEncoding(REALstring model, string_view bytes) {
    return heap().newString(bytes, encodingOf(model));
}

bool isBlank(char c) { return (unsigned char)c <= ' '; }

string_view trimmed(string_view s, bool left, bool right) {
    while (left && !s.empty() && isBlank(s.front())) s.remove_prefix(1);
    while (right && !s.empty() && isBlank(s.back())) s.remove_suffix(1);
    return s;
}

// The 1-based place of `part` from `start` on; 0 when it is not there.
std::int32_t place(std::int32_t start, const string& s, const string& part) {
    std::size_t found = text::find(s, part, std::size_t(std::max(start, 1) - 1));
    return found == string::npos ? 0 : count(found) + 1;
}

string replaced(const string& s, const string& what, const string& with, bool all) {
    if (what.empty()) return s;
    string result;
    std::size_t from = 0; // characters
    for (;;) {
        std::size_t found = text::find(s, what, from);
        if (found == string::npos) break;
        result += characters(s, from, found - from);
        result += with;
        from = found + text::length(what);
        if (!all) break;
    }
    return result + s.substr(text::byteOffset(s, from));
}

std::vector<string> fields(const string& s, const string& separator) {
    std::vector<string> result;
    if (s.empty()) return result;
    if (separator.empty()) {
        for (std::size_t i = 0; i < s.size();) {
            std::size_t begin = i;
            text::decode(s, i);
            result.push_back(s.substr(begin, i - begin));
        }
        return result;
    }
    std::size_t from = 0;
    for (;;) {
        std::size_t found = text::find(s, separator, from);
        if (found == string::npos) break;
        result.emplace_back(characters(s, from, found - from));
        from = found + text::length(separator);
    }
    result.push_back(s.substr(text::byteOffset(s, from)));
    return result;
}

// By bytes, so that case matters.
std::int32_t placeB(std::int32_t start, string_view s, string_view part) {
    std::size_t found = s.find(part, std::size_t(std::max(start, 1) - 1));
    return found == string_view::npos ? 0 : count(found) + 1;
}

std::vector<string_view> fieldsB(string_view s, string_view separator) {
    std::vector<string_view> result;
    while (!s.empty() || !result.empty()) {
        std::size_t length = separator.empty() ? std::min<std::size_t>(1, s.size()) : s.find(separator);
        result.push_back(s.substr(0, length));
        if (length == string_view::npos || (separator.empty() && length >= s.size())) break;
        s.remove_prefix(length + separator.size());
    }
    return result;
}

string replacedB(string_view s, string_view what, string_view with, bool all) {
    string result;
    while (!what.empty()) {
        std::size_t found = s.find(what);
        if (found == string_view::npos) break;
        result.append(s.substr(0, found)).append(with);
        s.remove_prefix(found + what.size());
        if (!all) break;
    }
    return result.append(s);
}

REALstring joined(REALobject parts, REALstring separator) {
    if (!parts) raise("NilObjectException", "the array to join is nil");
    string result;
    for (std::int32_t i = 0; i < arrayOf(parts).count; ++i) {
        StringRef part(arrayGet(arrayOf(parts), i).string);
        result += (i ? toUtf8(separator) : "") + toUtf8(part);
    }
    return makeString(result);
}

// A whole number or a real one, and nothing else but blanks.
bool isNumeric(const string& s) {
    string_view trimmedText = trimmed(s, true, true);
    if (trimmedText.find_first_not_of("+-.0123456789eE") != string_view::npos) return false;
    string text(trimmedText);
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0';
}

string titlecase(const string& s) {
    string result;
    bool first = true;
    for (std::size_t i = 0; i < s.size();) {
        std::size_t begin = i;
        text::decode(s, i);
        string character = s.substr(begin, i - begin);
        result += first ? text::upper(character) : text::lower(character);
        first = character == " " || character == "-" || character == "\t";
    }
    return result;
}

string inBase(std::uint64_t value, unsigned base) {
    string result;
    do result.insert(result.begin(), "0123456789ABCDEF"[value % base]);
    while (value /= base);
    return result;
}

// Masks: "0" is always a digit and "#" one where the number has it, "." is the point, "," groups thousands,
// "%" multiplies by 100, "+" shows the sign of positive numbers, too, and anything else is literal.
// Semicolons separate parts for negative and zero values.
string formatted(double value, string mask) {
    std::vector<string> parts = fields(mask, ";");
    if (parts.size() > 1 && value < 0) {
        mask = parts[1];
        value = -value;
    } else if (parts.size() > 2 && value == 0) {
        mask = parts[2];
    } else if (!parts.empty()) {
        mask = parts[0];
    }
    std::size_t begin = mask.find_first_of("0#.");
    if (begin == string::npos) return mask;
    std::size_t end = mask.find_last_of("0#.,") + 1;
    string before = mask.substr(0, begin), digits = mask.substr(begin, end - begin), after = mask.substr(end);
    bool showMinus = value < 0;
    value = std::fabs(value);
    if (after.find('%') != string::npos || before.find('%') != string::npos) value *= 100;

    std::size_t point = digits.find('.');
    string whole = digits.substr(0, point);
    string fraction = point == string::npos ? "" : digits.substr(point + 1);
    auto zeros = [](const string& s) { return std::size_t(std::count(s.begin(), s.end(), '0')); };
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", int(fraction.size()), value);
    string number = buffer;
    std::size_t dot = number.find('.');
    string wholeDigits = number.substr(0, dot);
    string fractionDigits = dot == string::npos ? "" : number.substr(dot + 1);
    if (wholeDigits == "0" && zeros(whole) == 0) wholeDigits.clear();
    while (wholeDigits.size() < zeros(whole)) wholeDigits.insert(0, "0");
    if (whole.find(',') != string::npos)
        for (int i = int(wholeDigits.size()) - 3; i > 0; i -= 3) wholeDigits.insert(std::size_t(i), ",");
    std::size_t wanted = fraction.find_last_of('0') == string::npos ? 0 : fraction.find_last_of('0') + 1;
    while (fractionDigits.size() > wanted && fractionDigits.back() == '0') fractionDigits.pop_back();

    bool zero = std::all_of(number.begin(), number.end(), [](char c) { return c == '0' || c == '.'; });
    string sign = showMinus && !zero ? "-" : before.find('+') != string::npos ? "+" : "";
    string result;
    for (char c : before)
        if (c != '+' && c != '-') result += c;
    result = sign + result + wholeDigits;
    if (point != string::npos && !(fractionDigits.empty() && wanted == 0)) result += "." + fractionDigits;
    return result + after;
}

FrameworkFunctions stringFunctions() {
    return {
        method("Len(s As String) As Integer", [](REALstring s) { return count(text::length(toUtf8(s))); }),
        method("LenB(s As String) As Integer", [](REALstring s) { return count(bytesOf(s).size()); }),
        method("Left(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   return makeString(characters(toUtf8(s), 0, std::size_t(std::max(n, 0))));
               }),
        method("LeftB(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   return sameEncoding(s, bytesOf(s).substr(0, std::size_t(std::max(n, 0))));
               }),
        method("Right(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   string utf8 = toUtf8(s);
                   std::size_t length = text::length(utf8),
                               wanted = std::min(std::size_t(std::max(n, 0)), length);
                   return makeString(characters(utf8, length - wanted, wanted));
               }),
        method("Mid(s As String, start As Integer, length As Integer = 2147483647) As String",
               [](REALstring s, std::int32_t start, std::int32_t length) {
                   return makeString(characters(toUtf8(s), std::size_t(std::max(start, 1) - 1),
                                                std::size_t(std::max(length, 0))));
               }),
        method("MidB(s As String, start As Integer, length As Integer = 2147483647) As String",
               [](REALstring s, std::int32_t start, std::int32_t length) {
                   string_view bytes = bytesOf(s);
                   std::size_t from = std::min(std::size_t(std::max(start, 1) - 1), bytes.size());
                   return sameEncoding(s, bytes.substr(from, std::size_t(std::max(length, 0))));
               }),
        method("InStr(s As String, find As String) As Integer",
               [](REALstring s, REALstring part) { return place(1, toUtf8(s), toUtf8(part)); }),
        method("InStr(start As Integer, s As String, find As String) As Integer",
               [](std::int32_t start, REALstring s, REALstring part) {
                   return place(start, toUtf8(s), toUtf8(part));
               }),
        method("Replace(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return makeString(replaced(toUtf8(s), toUtf8(find), toUtf8(with), false));
               }),
        method("ReplaceAll(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return makeString(replaced(toUtf8(s), toUtf8(find), toUtf8(with), true));
               }),
        method("InStrB(s As String, find As String) As Integer",
               [](REALstring s, REALstring part) { return placeB(1, bytesOf(s), bytesOf(part)); }),
        method("InStrB(start As Integer, s As String, find As String) As Integer",
               [](std::int32_t start, REALstring s, REALstring part) {
                   return placeB(start, bytesOf(s), bytesOf(part));
               }),
        method("ReplaceB(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return sameEncoding(s, replacedB(bytesOf(s), bytesOf(find), bytesOf(with), false));
               }),
        method("ReplaceAllB(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return sameEncoding(s, replacedB(bytesOf(s), bytesOf(find), bytesOf(with), true));
               }),
        method("RightB(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   string_view bytes = bytesOf(s);
                   std::size_t wanted = std::min(std::size_t(std::max(n, 0)), bytes.size());
                   return sameEncoding(s, bytes.substr(bytes.size() - wanted));
               }),
        method("NthFieldB(s As String, separator As String, index As Integer) As String",
               [](REALstring s, REALstring separator, std::int32_t index) -> REALstring {
                   std::vector<string_view> all = fieldsB(bytesOf(s), bytesOf(separator));
                   if (index < 1 || std::size_t(index) > all.size()) return nullptr;
                   return sameEncoding(s, all[std::size_t(index) - 1]);
               }),
        method("CountFieldsB(s As String, separator As String) As Integer",
               [](REALstring s, REALstring separator) {
                   return count(fieldsB(bytesOf(s), bytesOf(separator)).size());
               }),
        method("SplitB(s As String, separator As String = \" \") As String()",
               [](REALstring s, REALstring separator) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (string_view field : fieldsB(bytesOf(s), bytesOf(separator)))
                       arrayAppend(arrayOf(result), Bits::of(sameEncoding(s, field)));
                   return result;
               }),
        method("Trim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), true, true)); }),
        method("LTrim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), true, false)); }),
        method("RTrim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), false, true)); }),
        method("Uppercase(s As String) As String",
               [](REALstring s) { return makeString(text::upper(toUtf8(s))); }),
        method("Lowercase(s As String) As String",
               [](REALstring s) { return makeString(text::lower(toUtf8(s))); }),
        method("Titlecase(s As String) As String",
               [](REALstring s) { return makeString(titlecase(toUtf8(s))); }),
        method("StrComp(a As String, b As String, mode As Integer) As Integer",
               [](REALstring a, REALstring b, std::int32_t mode) -> std::int32_t {
                   int order =
                       mode == 0 ? bytesOf(a).compare(bytesOf(b)) : text::compare(toUtf8(a), toUtf8(b));
                   return order < 0 ? -1 : order > 0;
               }),
        method("NthField(s As String, separator As String, index As Integer) As String",
               [](REALstring s, REALstring separator, std::int32_t index) -> REALstring {
                   std::vector<string> all = fields(toUtf8(s), toUtf8(separator));
                   if (index < 1 || std::size_t(index) > all.size()) return nullptr;
                   return makeString(all[std::size_t(index) - 1]);
               }),
        method("CountFields(s As String, separator As String) As Integer",
               [](REALstring s, REALstring separator) {
                   return count(fields(toUtf8(s), toUtf8(separator)).size());
               }),
        method("Split(s As String, separator As String = \" \") As String()",
               [](REALstring s, REALstring separator) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (const string& field : fields(toUtf8(s), toUtf8(separator)))
                       arrayAppend(arrayOf(result), Bits::of(makeString(field)));
                   return result;
               }),
        method("Join(parts() As String, separator As String = \" \") As String", joined),
        method("JoinB(parts() As String, separator As String = \" \") As String", joined),

        method("Str(value As Variant) As String",
               [](REALobject value) { return makeString(display(value)); }),
        method("Str(value As Double, mask As String) As String",
               [](double value, REALstring mask) { return makeString(formatted(value, toUtf8(mask))); }),
        method("Format(value As Double, mask As String) As String",
               [](double value, REALstring mask) { return makeString(formatted(value, toUtf8(mask))); }),
        method("CStr(value As Variant) As String",
               [](REALobject value) { return makeString(display(value)); }),
        method("Val(s As String) As Double", [](REALstring s) { return parseNumber(toUtf8(s)); }),
        method("CDbl(s As String) As Double", [](REALstring s) { return parseNumber(toUtf8(s)); }),
        method("CLong(s As String) As Int64",
               [](REALstring s) { return std::int64_t(parseNumber(toUtf8(s))); }),
        method("IsNumeric(value As Variant) As Boolean",
               [](REALobject value) {
                   std::int32_t type = variantType(value);
                   if (type != kREALVariantString)
                       return type >= kREALVariantInt32 && type <= kREALVariantCurrency;
                   StringRef text(unboxVariant(value, simpleType(Kind::String)).string);
                   return isNumeric(toUtf8(text));
               }),
        method("Chr(code As Integer) As String",
               [](std::int32_t code) {
                   string result;
                   text::append(result, char32_t(code));
                   return makeString(result);
               }),
        method("ChrB(code As Integer) As String",
               [](std::int32_t code) {
                   char byte = char(code);
                   return heap().newString({&byte, 1}, kREALTextEncodingUnknown);
               }),
        method("Asc(s As String) As Integer",
               [](REALstring s) -> std::int32_t {
                   string utf8 = toUtf8(s);
                   std::size_t i = 0;
                   return utf8.empty() ? 0 : std::int32_t(text::decode(utf8, i));
               }),
        method("AscB(s As String) As Integer",
               [](REALstring s) -> std::int32_t {
                   return bytesOf(s).empty() ? 0 : (unsigned char)bytesOf(s)[0];
               }),
        method("Hex(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 16)); }),
        method("Oct(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 8)); }),
        method("Bin(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 2)); }),
        method("EndOfLine As String", [] { return makeString("\n"); }),
    };
}

FrameworkClass endOfLineClass() {
    FrameworkClass table;
    table.name = "EndOfLine";
    table.sharedMethods = {
        method("UNIX As String", [] { return makeString("\n"); }),
        method("Macintosh As String", [] { return makeString("\r"); }),
        method("Windows As String", [] { return makeString("\r\n"); }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{endOfLineClass()}, stringFunctions()}; });

} // namespace

} // namespace studio
