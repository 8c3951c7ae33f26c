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

/// Functions of text. Each can also be called on its first argument, as in name.Uppercase. Characters count
/// from 1 and case is ignored; the functions whose names end in B count bytes and heed case.
///     Dim line As String = "fig, pear, plum"
FrameworkFunctions stringFunctions() {
    return {
        /// The number of characters.
        ///     Print Str(line.Len)
        method("Len(s As String) As Integer", [](REALstring s) { return count(text::length(toUtf8(s))); }),
        /// The number of bytes.
        ///     Print Str(line.LenB)
        method("LenB(s As String) As Integer", [](REALstring s) { return count(bytesOf(s).size()); }),
        /// The first characters, or all of them if there are fewer.
        ///     Print line.Left(3)
        method("Left(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   return makeString(characters(toUtf8(s), 0, std::size_t(std::max(n, 0))));
               }),
        /// The first bytes, or all of them if there are fewer.
        ///     Print line.LeftB(3)
        method("LeftB(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   return sameEncoding(s, bytesOf(s).substr(0, std::size_t(std::max(n, 0))));
               }),
        /// The last characters, or all of them if there are fewer.
        ///     Print line.Right(4)
        method("Right(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   string utf8 = toUtf8(s);
                   std::size_t length = text::length(utf8),
                               wanted = std::min(std::size_t(std::max(n, 0)), length);
                   return makeString(characters(utf8, length - wanted, wanted));
               }),
        /// The characters from a place on; a start below 1 counts as 1.
        ///     Print line.Mid(6, 4)
        method("Mid(s As String, start As Integer, length As Integer = 2147483647) As String",
               [](REALstring s, std::int32_t start, std::int32_t length) {
                   return makeString(characters(toUtf8(s), std::size_t(std::max(start, 1) - 1),
                                                std::size_t(std::max(length, 0))));
               }),
        /// The bytes from a place on; a start below 1 counts as 1.
        ///     Print line.MidB(6, 4)
        method("MidB(s As String, start As Integer, length As Integer = 2147483647) As String",
               [](REALstring s, std::int32_t start, std::int32_t length) {
                   string_view bytes = bytesOf(s);
                   std::size_t from = std::min(std::size_t(std::max(start, 1) - 1), bytes.size());
                   return sameEncoding(s, bytes.substr(from, std::size_t(std::max(length, 0))));
               }),
        /// The place of the first occurrence, or 0 if there is none.
        ///     Print Str(line.InStr("pear"))
        method("InStr(s As String, find As String) As Integer",
               [](REALstring s, REALstring part) { return place(1, toUtf8(s), toUtf8(part)); }),
        /// The place of the first occurrence from a place on, or 0 if there is none.
        ///     Print Str(InStr(6, line, "p"))
        method("InStr(start As Integer, s As String, find As String) As Integer",
               [](std::int32_t start, REALstring s, REALstring part) {
                   return place(start, toUtf8(s), toUtf8(part));
               }),
        /// The text with the first occurrence replaced.
        ///     Print line.Replace(", ", "; ")
        method("Replace(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return makeString(replaced(toUtf8(s), toUtf8(find), toUtf8(with), false));
               }),
        /// The text with every occurrence replaced.
        ///     Print line.ReplaceAll(", ", "; ")
        method("ReplaceAll(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return makeString(replaced(toUtf8(s), toUtf8(find), toUtf8(with), true));
               }),
        /// The place of the first occurrence in bytes, or 0 if there is none.
        ///     Print Str(line.InStrB("pear"))
        method("InStrB(s As String, find As String) As Integer",
               [](REALstring s, REALstring part) { return placeB(1, bytesOf(s), bytesOf(part)); }),
        /// The place of the first occurrence from a byte on, or 0 if there is none.
        ///     Print Str(InStrB(6, line, "p"))
        method("InStrB(start As Integer, s As String, find As String) As Integer",
               [](std::int32_t start, REALstring s, REALstring part) {
                   return placeB(start, bytesOf(s), bytesOf(part));
               }),
        /// The text with the first occurrence of these bytes replaced.
        ///     Print line.ReplaceB(", ", "; ")
        method("ReplaceB(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return sameEncoding(s, replacedB(bytesOf(s), bytesOf(find), bytesOf(with), false));
               }),
        /// The text with every occurrence of these bytes replaced.
        ///     Print line.ReplaceAllB(", ", "; ")
        method("ReplaceAllB(s As String, find As String, replacement As String) As String",
               [](REALstring s, REALstring find, REALstring with) {
                   return sameEncoding(s, replacedB(bytesOf(s), bytesOf(find), bytesOf(with), true));
               }),
        /// The last bytes, or all of them if there are fewer.
        ///     Print line.RightB(4)
        method("RightB(s As String, count As Integer) As String",
               [](REALstring s, std::int32_t n) {
                   string_view bytes = bytesOf(s);
                   std::size_t wanted = std::min(std::size_t(std::max(n, 0)), bytes.size());
                   return sameEncoding(s, bytes.substr(bytes.size() - wanted));
               }),
        /// The field at an index from 1, between separators compared byte by byte; empty beyond the last.
        ///     Print line.NthFieldB(", ", 2)
        method("NthFieldB(s As String, separator As String, index As Integer) As String",
               [](REALstring s, REALstring separator, std::int32_t index) -> REALstring {
                   std::vector<string_view> all = fieldsB(bytesOf(s), bytesOf(separator));
                   if (index < 1 || std::size_t(index) > all.size()) return nullptr;
                   return sameEncoding(s, all[std::size_t(index) - 1]);
               }),
        /// The number of fields between separators compared byte by byte; 0 for empty text.
        ///     Print Str(line.CountFieldsB(", "))
        method("CountFieldsB(s As String, separator As String) As Integer",
               [](REALstring s, REALstring separator) {
                   return count(fieldsB(bytesOf(s), bytesOf(separator)).size());
               }),
        /// The fields between separators compared byte by byte; an empty separator splits into bytes.
        ///     Dim fruits() As String = line.SplitB(", ")
        method("SplitB(s As String, separator As String = \" \") As String()",
               [](REALstring s, REALstring separator) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (string_view field : fieldsB(bytesOf(s), bytesOf(separator)))
                       arrayAppend(arrayOf(result), Bits::of(sameEncoding(s, field)));
                   return result;
               }),
        /// The text without blanks and control characters at both ends.
        ///     Print Trim("  fig ")
        method("Trim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), true, true)); }),
        /// The text without blanks and control characters at its start.
        ///     Print LTrim("  fig")
        method("LTrim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), true, false)); }),
        /// The text without blanks and control characters at its end.
        ///     Print RTrim("fig  ")
        method("RTrim(s As String) As String",
               [](REALstring s) { return makeString(trimmed(toUtf8(s), false, true)); }),
        /// The text in capitals.
        ///     Print line.Uppercase
        method("Uppercase(s As String) As String",
               [](REALstring s) { return makeString(text::upper(toUtf8(s))); }),
        /// The text in small letters.
        ///     Print line.Lowercase
        method("Lowercase(s As String) As String",
               [](REALstring s) { return makeString(text::lower(toUtf8(s))); }),
        /// The text with each word capitalised and its other letters small.
        ///     Print line.Titlecase
        method("Titlecase(s As String) As String",
               [](REALstring s) { return makeString(titlecase(toUtf8(s))); }),
        /// Compares two texts and returns -1, 0 or 1; mode 0 compares bytes, any other mode ignores case.
        ///     Print Str(StrComp("Fig", "fig", 0))
        method("StrComp(a As String, b As String, mode As Integer) As Integer",
               [](REALstring a, REALstring b, std::int32_t mode) -> std::int32_t {
                   int order =
                       mode == 0 ? bytesOf(a).compare(bytesOf(b)) : text::compare(toUtf8(a), toUtf8(b));
                   return order < 0 ? -1 : order > 0;
               }),
        /// The field at an index from 1; empty beyond the last.
        ///     Print line.NthField(", ", 2)
        method("NthField(s As String, separator As String, index As Integer) As String",
               [](REALstring s, REALstring separator, std::int32_t index) -> REALstring {
                   std::vector<string> all = fields(toUtf8(s), toUtf8(separator));
                   if (index < 1 || std::size_t(index) > all.size()) return nullptr;
                   return makeString(all[std::size_t(index) - 1]);
               }),
        /// The number of fields; 0 for empty text.
        ///     Print Str(line.CountFields(", "))
        method("CountFields(s As String, separator As String) As Integer",
               [](REALstring s, REALstring separator) {
                   return count(fields(toUtf8(s), toUtf8(separator)).size());
               }),
        /// The fields between separators; an empty separator splits into characters.
        ///     Dim fruits() As String = line.Split(", ")
        method("Split(s As String, separator As String = \" \") As String()",
               [](REALstring s, REALstring separator) {
                   REALobject result = newArray(simpleType(Kind::String));
                   for (const string& field : fields(toUtf8(s), toUtf8(separator)))
                       arrayAppend(arrayOf(result), Bits::of(makeString(field)));
                   return result;
               }),
        /// The texts joined into one. Raises NilObjectException without an array.
        ///     Print Join(Array("fig", "pear"), " and ")
        method("Join(parts() As String, separator As String = \" \") As String", joined),
        /// The texts joined into one, the same as Join.
        ///     Print JoinB(Array("fig", "pear"), "+")
        method("JoinB(parts() As String, separator As String = \" \") As String", joined),

        /// The value as text, with a point in numbers whatever the language of the machine.
        ///     Print Str(1.5)
        method("Str(value As Variant) As String",
               [](REALobject value) { return makeString(display(value)); }),
        /// The number through a mask, the same as Format.
        ///     Print Str(0.125, "0.0%")
        method("Str(value As Double, mask As String) As String",
               [](double value, REALstring mask) { return makeString(formatted(value, toUtf8(mask))); }),
        /// The number through a mask of 0 (always a digit), # (a digit where there is one), comma (groups
        /// thousands), % (times 100) and + (shows the sign); semicolons separate masks for negative numbers
        /// and 0.
        ///     Print Format(12345.678, "#,##0.00")
        method("Format(value As Double, mask As String) As String",
               [](double value, REALstring mask) { return makeString(formatted(value, toUtf8(mask))); }),
        /// The value as text, the same as Str.
        ///     Print CStr(True)
        method("CStr(value As Variant) As String",
               [](REALobject value) { return makeString(display(value)); }),
        /// The number at the start of the text, or 0 if there is none.
        ///     Print Str(Val("12.5 kg"))
        method("Val(s As String) As Double", [](REALstring s) { return parseNumber(toUtf8(s)); }),
        /// The number at the start of the text, the same as Val.
        ///     Print Str(CDbl("12.5"))
        method("CDbl(s As String) As Double", [](REALstring s) { return parseNumber(toUtf8(s)); }),
        /// The whole number at the start of the text, or 0 if there is none.
        ///     Print Str(CLong("5000000000"))
        method("CLong(s As String) As Int64",
               [](REALstring s) { return std::int64_t(parseNumber(toUtf8(s))); }),
        /// Whether the value is a number, or a text that holds a number and nothing else.
        ///     Print Str(IsNumeric("1e3"))
        method("IsNumeric(value As Variant) As Boolean",
               [](REALobject value) {
                   std::int32_t type = variantType(value);
                   if (type != kREALVariantString)
                       return type >= kREALVariantInt32 && type <= kREALVariantCurrency;
                   StringRef text(unboxVariant(value, simpleType(Kind::String)).string);
                   return isNumeric(toUtf8(text));
               }),
        /// The character with this Unicode number.
        ///     Print Chr(233)
        method("Chr(code As Integer) As String",
               [](std::int32_t code) {
                   string result;
                   text::append(result, char32_t(code));
                   return makeString(result);
               }),
        /// One byte as text without an encoding.
        ///     Print Str(ChrB(200).LenB)
        method("ChrB(code As Integer) As String",
               [](std::int32_t code) {
                   char byte = char(code);
                   return heap().newString({&byte, 1}, kREALTextEncodingUnknown);
               }),
        /// The Unicode number of the first character, or 0 for empty text.
        ///     Print Str(Asc("A"))
        method("Asc(s As String) As Integer",
               [](REALstring s) -> std::int32_t {
                   string utf8 = toUtf8(s);
                   std::size_t i = 0;
                   return utf8.empty() ? 0 : std::int32_t(text::decode(utf8, i));
               }),
        /// The first byte, or 0 for empty text.
        ///     Print Str(AscB("A"))
        method("AscB(s As String) As Integer",
               [](REALstring s) -> std::int32_t {
                   return bytesOf(s).empty() ? 0 : (unsigned char)bytesOf(s)[0];
               }),
        /// The number in base 16; negative numbers count as unsigned.
        ///     Print Hex(255)
        method("Hex(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 16)); }),
        /// The number in base 8; negative numbers count as unsigned.
        ///     Print Oct(8)
        method("Oct(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 8)); }),
        /// The number in base 2; negative numbers count as unsigned.
        ///     Print Bin(5)
        method("Bin(value As Integer) As String",
               [](std::int32_t value) { return makeString(inBase(std::uint32_t(value), 2)); }),
        /// The line end of this system, a line feed.
        ///     Print "fig" + EndOfLine + "pear"
        method("EndOfLine As String", [] { return makeString("\n"); }),
    };
}

/// The line ends of several systems.
FrameworkClass endOfLineClass() {
    FrameworkClass table;
    table.name = "EndOfLine";
    table.sharedMethods = {
        /// A line feed.
        ///     Print Str(EndOfLine.UNIX.Asc)
        method("UNIX As String", [] { return makeString("\n"); }),
        /// A carriage return.
        ///     Print Str(EndOfLine.Macintosh.Asc)
        method("Macintosh As String", [] { return makeString("\r"); }),
        /// A carriage return and a line feed.
        ///     Print Str(EndOfLine.Windows.Len)
        method("Windows As String", [] { return makeString("\r\n"); }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{endOfLineClass()}, stringFunctions()}; });

} // namespace

} // namespace studio
