#include "runtime/text.h"

#include <hostapi/abi.h>

#include <cstring>

namespace studio::text {

char32_t decode(std::string_view s, std::size_t& i) {
    auto byte = [&](std::size_t at) { return at < s.size() ? (unsigned char)s[at] : 0u; };
    unsigned char c = (unsigned char)s[i];
    int extra = c >= 0xF0 && c < 0xF8 ? 3 : c >= 0xE0 ? 2 : c >= 0xC2 ? 1 : 0;
    if (c < 0x80 || c >= 0xF8 || extra == 0) return ++i, c;
    char32_t result = c & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
        if ((byte(i + std::size_t(k)) & 0xC0) != 0x80) return ++i, c;
        result = result << 6 | (byte(i + std::size_t(k)) & 0x3F);
    }
    i += 1 + std::size_t(extra);
    return result;
}

void append(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | c >> 6);
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | c >> 12);
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | c >> 18);
        out += char(0x80 | (c >> 12 & 0x3F));
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

namespace {

std::string utf16ToUtf8(std::string_view bytes) {
    std::string result;
    auto unit = [&](std::size_t i) {
        std::uint16_t u;
        std::memcpy(&u, bytes.data() + i * 2, 2);
        return u;
    };
    for (std::size_t i = 0, n = bytes.size() / 2; i < n; ++i) {
        char32_t c = unit(i);
        if (i == 0 && c == 0xFEFF) continue;
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < n && (unit(i + 1) & 0xFC00) == 0xDC00)
            c = 0x10000 + ((c - 0xD800) << 10) + (unit(++i) - 0xDC00u);
        append(result, c);
    }
    return result;
}

std::string utf8ToUtf16(std::string_view utf8) {
    std::string result;
    auto put = [&](std::uint16_t u) { result.append(reinterpret_cast<char*>(&u), 2); };
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t c = decode(utf8, i);
        if (c >= 0x10000) {
            put(std::uint16_t(0xD800 + ((c - 0x10000) >> 10)));
            put(std::uint16_t(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            put(std::uint16_t(c));
        }
    }
    return result;
}

// The upper half of Mac Roman.
constexpr char16_t kMacRomanUpper[] =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";

// Enough of simple case mapping for Latin, Greek and Cyrillic.
char32_t toLower(char32_t c) {
    if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
    if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F))
        return c + 32;
    if (c >= 0x100 && c <= 0x137) return c | 1;
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return c & 1 ? c + 1 : c;
    if (c >= 0x14A && c <= 0x177) return c | 1;
    if (c == 0x178) return 0xFF;
    if (c >= 0x400 && c <= 0x40F) return c + 80;
    return c;
}

char32_t toUpper(char32_t c) {
    if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
    if ((c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) ||
        (c >= 0x430 && c <= 0x44F))
        return c - 32;
    if (c == 0xFF) return 0x178;
    if ((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) return c & ~1u;
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return c & 1 ? c : c - 1;
    if (c >= 0x450 && c <= 0x45F) return c - 80;
    return c;
}

} // namespace

std::optional<std::string> toUtf8(std::string_view bytes, std::uint32_t encoding) {
    std::string result;
    switch (encoding) {
    case kREALTextEncodingUTF8:
    case kREALTextEncodingUnknown:
        return std::string(bytes);
    case kREALTextEncodingUTF16:
        return utf16ToUtf8(bytes);
    case kREALTextEncodingASCII: // lenient: anything beyond ASCII is taken for UTF-8
        return std::string(bytes);
    case kLatin1:
        for (unsigned char c : bytes) append(result, c);
        return result;
    case kMacRoman:
        for (unsigned char c : bytes) append(result, c < 0x80 ? c : kMacRomanUpper[c - 0x80]);
        return result;
    default:
        return std::nullopt;
    }
}

std::optional<std::string> fromUtf8(std::string_view utf8, std::uint32_t encoding) {
    std::string result;
    switch (encoding) {
    case kREALTextEncodingUTF8:
    case kREALTextEncodingUnknown:
        return std::string(utf8);
    case kREALTextEncodingUTF16:
        return utf8ToUtf16(utf8);
    case kREALTextEncodingASCII:
    case kLatin1:
        for (std::size_t i = 0; i < utf8.size();) {
            char32_t c = decode(utf8, i);
            if (c > (encoding == kLatin1 ? 0xFFu : 0x7Fu)) return std::nullopt;
            result += char(c);
        }
        return result;
    case kMacRoman:
        for (std::size_t i = 0; i < utf8.size();) {
            char32_t c = decode(utf8, i);
            int code = c < 0x80 ? int(c) : -1;
            for (int k = 0; k < 128 && code < 0; ++k)
                if (kMacRomanUpper[k] == c) code = 128 + k;
            if (code < 0) return std::nullopt;
            result += char(code);
        }
        return result;
    default:
        return std::nullopt;
    }
}

std::size_t length(std::string_view utf8) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < utf8.size(); ++count) decode(utf8, i);
    return count;
}

std::size_t byteOffset(std::string_view utf8, std::size_t characters) {
    std::size_t i = 0;
    while (characters-- > 0 && i < utf8.size()) decode(utf8, i);
    return i;
}

std::string upper(std::string_view utf8) {
    std::string result;
    for (std::size_t i = 0; i < utf8.size();) append(result, toUpper(decode(utf8, i)));
    return result;
}

std::string lower(std::string_view utf8) {
    std::string result;
    for (std::size_t i = 0; i < utf8.size();) append(result, toLower(decode(utf8, i)));
    return result;
}

int compare(std::string_view a, std::string_view b) {
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        char32_t x = toLower(decode(a, i)), y = toLower(decode(b, j));
        if (x != y) return x < y ? -1 : 1;
    }
    return i < a.size() ? 1 : j < b.size() ? -1 : 0;
}

std::size_t find(std::string_view text, std::string_view part, std::size_t from) {
    std::size_t character = 0;
    for (std::size_t i = 0;; ++character) {
        if (character >= from) {
            std::size_t x = i, y = 0;
            while (y < part.size() && x < text.size() &&
                   toLower(decode(text, x)) == toLower(decode(part, y))) {
            }
            // The last step may have read one character too many, so the text consumed is compared as a
            // whole.
            if (y >= part.size() && compare(text.substr(i, x - i), part) == 0) return character;
        }
        if (i >= text.size()) return std::string_view::npos;
        decode(text, i);
    }
}

} // namespace studio::text
