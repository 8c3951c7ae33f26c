// TextEncoding, Encodings, and the functions that read and change the encoding of a string.
#include "encodings.h"

#include "runtime/text.h"
#include "table.h"

#include <algorithm>

namespace studio {

namespace {

struct Known {
    const char* name; // in Encodings
    const char* internetName;
    std::int32_t code;
};
constexpr Known kKnown[] = {
    {"UTF8", "UTF-8", std::int32_t(kREALTextEncodingUTF8)},
    {"UTF16", "UTF-16", std::int32_t(kREALTextEncodingUTF16)},
    {"ASCII", "US-ASCII", 0x0600},
    {"MacRoman", "macintosh", std::int32_t(text::kMacRoman)},
    {"ISOLatin1", "ISO-8859-1", std::int32_t(text::kLatin1)},
};

struct TextEncoding {
    std::int32_t code = 0;
};
std::int32_t& codeOf(REALobject self) { return dataOf<TextEncoding>(self).code; }

REALobject encodingOfCode(std::int32_t code) { return newTextEncoding(std::uint32_t(code)); }

template <std::int32_t code>
REALobject known() {
    return encodingOfCode(code);
}

std::string internetName(std::int32_t code) {
    for (const Known& k : kKnown)
        if (k.code == code) return k.internetName;
    return "";
}

REALstring converted(REALstring s, REALobject encoding) {
    if (!encoding) raise("NilObjectException", "the encoding to convert to is nil");
    auto bytes = text::fromUtf8(toUtf8(s), textEncodingCode(encoding));
    if (!bytes) raise("InvalidArgumentException", "this text cannot be expressed in that encoding");
    return heap().newString(*bytes, textEncodingCode(encoding));
}

FrameworkClass textEncodingClass() {
    FrameworkClass table = classWithData<TextEncoding>("TextEncoding");
    table.properties = {
        property("Code", "Integer", [](REALobject self) { return codeOf(self); }),
        property("InternetName", "String",
                 [](REALobject self) { return makeString(internetName(codeOf(self))); }),
    };
    table.methods = {
        method("Chr(code As Integer) As String",
               [](REALobject self, std::int32_t code) {
                   std::string utf8;
                   text::append(utf8, char32_t(code));
                   auto bytes = text::fromUtf8(utf8, std::uint32_t(codeOf(self)));
                   if (!bytes)
                       raise("InvalidArgumentException",
                             "the encoding has no character " + std::to_string(code));
                   return heap().newString(*bytes, std::uint32_t(codeOf(self)));
               }),
        method("Equals(other As TextEncoding) As Boolean",
               [](REALobject self, REALobject other) { return other && codeOf(self) == codeOf(other); }),
        method("Operator_Compare(other As TextEncoding) As Integer",
               [](REALobject self, REALobject other) {
                   return std::int32_t(codeOf(self) > codeOf(other)) -
                          std::int32_t(codeOf(self) < codeOf(other));
               }),
        // Encodings are also known by their codes.
        method("Operator_Convert As Integer", [](REALobject self) { return codeOf(self); }),
        method("Operator_Convert(code As Integer)",
               [](REALobject self, std::int32_t code) { codeOf(self) = code; }),
    };
    return table;
}

FrameworkClass encodingsClass() {
    FrameworkClass table;
    table.name = "Encodings";
    table.sharedMethods = {
        method("UTF8 As TextEncoding", known<kKnown[0].code>),
        method("UTF16 As TextEncoding", known<kKnown[1].code>),
        method("ASCII As TextEncoding", known<kKnown[2].code>),
        method("MacRoman As TextEncoding", known<kKnown[3].code>),
        method("ISOLatin1 As TextEncoding", known<kKnown[4].code>),
    };
    return table;
}

FrameworkFunctions encodingFunctions() {
    return {
        method("Encoding(s As String) As TextEncoding",
               [](REALstring s) -> REALobject {
                   return encodingOf(s) == kREALTextEncodingUnknown
                              ? nullptr
                              : encodingOfCode(std::int32_t(encodingOf(s)));
               }),
        method("DefineEncoding(s As String, encoding As TextEncoding) As String",
               [](REALstring s, REALobject encoding) {
                   return heap().newString(bytesOf(s), textEncodingCode(encoding));
               }),
        method("ConvertEncoding(s As String, encoding As TextEncoding) As String", converted),
        method("GetInternetTextEncoding(name As String) As TextEncoding",
               [](REALstring name) -> REALobject {
                   for (const Known& k : kKnown)
                       if (text::compare(k.internetName, toUtf8(name)) == 0) return encodingOfCode(k.code);
                   return nullptr;
               }),
    };
}

const Registrar registrar([] {
    return FrameworkPart{{textEncodingClass(), encodingsClass()}, encodingFunctions()};
});

} // namespace

std::uint32_t textEncodingCode(REALobject encoding) {
    return encoding ? std::uint32_t(codeOf(encoding)) : kREALTextEncodingUnknown;
}

REALobject newTextEncoding(std::uint32_t code) {
    REALobject result = newInstance("TextEncoding");
    codeOf(result) = std::int32_t(code);
    return result;
}

} // namespace studio
