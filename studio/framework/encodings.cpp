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

/// How the bytes of a text spell characters.
///     Dim latin As TextEncoding = Encodings.ISOLatin1
FrameworkClass textEncodingClass() {
    FrameworkClass table = classWithData<TextEncoding>("TextEncoding");
    table.properties = {
        /// The number of the encoding, as on a Mac.
        ///     Print Str(latin.Code)
        property("Code", "Integer", [](REALobject self) { return codeOf(self); }),
        /// The name of the encoding in mail and web pages; empty for an unknown one.
        ///     Print latin.InternetName
        property("InternetName", "String",
                 [](REALobject self) { return makeString(internetName(codeOf(self))); }),
    };
    table.methods = {
        /// The character with this Unicode number in the encoding. Raises InvalidArgumentException if the
        /// encoding lacks it.
        ///     Print Str(latin.Chr(233).LenB)
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
        /// Whether the other is the same encoding; False for Nil.
        ///     Print Str(latin.Equals(Encodings.UTF8))
        method("Equals(other As TextEncoding) As Boolean",
               [](REALobject self, REALobject other) { return other && codeOf(self) == codeOf(other); }),
        /// Compares the codes, which makes = work.
        ///     Print Str(latin = Encodings.UTF8)
        method("Operator_Compare(other As TextEncoding) As Integer",
               [](REALobject self, REALobject other) {
                   return std::int32_t(codeOf(self) > codeOf(other)) -
                          std::int32_t(codeOf(self) < codeOf(other));
               }),
        // Encodings are also known by their codes.
        /// The code, where an encoding is assigned to an Integer.
        ///     Dim code As Integer = latin
        method("Operator_Convert As Integer", [](REALobject self) { return codeOf(self); }),
        /// The encoding with this code, where an Integer is assigned to an encoding.
        ///     Dim known As TextEncoding = latin.Code
        method("Operator_Convert(code As Integer)",
               [](REALobject self, std::int32_t code) { codeOf(self) = code; }),
    };
    return table;
}

/// The encodings that texts can be converted to.
FrameworkClass encodingsClass() {
    FrameworkClass table;
    table.name = "Encodings";
    table.sharedMethods = {
        /// Unicode in 1 to 4 bytes for each character, the encoding of a program's own texts.
        ///     Print Encodings.UTF8.InternetName
        method("UTF8 As TextEncoding", known<kKnown[0].code>),
        /// Unicode in 2 or 4 bytes for each character, in the byte order of the machine.
        ///     Print Encodings.UTF16.InternetName
        method("UTF16 As TextEncoding", known<kKnown[1].code>),
        /// The 128 characters of ASCII.
        ///     Print Encodings.ASCII.InternetName
        method("ASCII As TextEncoding", known<kKnown[2].code>),
        /// The Mac's 256 characters for western Europe.
        ///     Print Encodings.MacRoman.InternetName
        method("MacRoman As TextEncoding", known<kKnown[3].code>),
        /// The 256 characters of ISO 8859-1.
        ///     Print Encodings.ISOLatin1.InternetName
        method("ISOLatin1 As TextEncoding", known<kKnown[4].code>),
    };
    return table;
}

/// The encodings of texts.
///     Dim name As String = "café"
FrameworkFunctions encodingFunctions() {
    return {
        /// The encoding of a text, or Nil if it is not known.
        ///     Print name.Encoding.InternetName
        method("Encoding(s As String) As TextEncoding",
               [](REALstring s) -> REALobject {
                   return encodingOf(s) == kREALTextEncodingUnknown
                              ? nullptr
                              : encodingOfCode(std::int32_t(encodingOf(s)));
               }),
        /// The same bytes with another encoding; Nil makes it unknown.
        ///     Print Str(name.DefineEncoding(Encodings.ISOLatin1).Len)
        method("DefineEncoding(s As String, encoding As TextEncoding) As String",
               [](REALstring s, REALobject encoding) {
                   return heap().newString(bytesOf(s), textEncodingCode(encoding));
               }),
        /// The same characters in another encoding. Raises NilObjectException without one,
        /// InvalidArgumentException if it lacks a character.
        ///     Print Str(name.ConvertEncoding(Encodings.MacRoman).LenB)
        method("ConvertEncoding(s As String, encoding As TextEncoding) As String", converted),
        /// The encoding with a name such as ISO-8859-1, whatever its case, or Nil if it is not known.
        ///     Print Str(GetInternetTextEncoding("utf-8").Code)
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
