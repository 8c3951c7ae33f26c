// Text for bytes and bytes for text: Base64, hexadecimal, URL components; and MD5.
#include "table.h"

#include <array>
#include <bit>
#include <cctype>
#include <cmath>

namespace studio {

namespace {

constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string encodedBase64(std::string_view bytes, std::int32_t lineLength) {
    std::string result;
    std::size_t column = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? (unsigned char)bytes[i + k] : 0);
        if (lineLength > 0 && column + 4 > std::size_t(lineLength)) {
            result += "\r\n";
            column = 0;
        }
        for (std::size_t k = 0; k < 4; ++k) result += k <= count ? kBase64[group >> (18 - 6 * k) & 63] : '=';
        column += 4;
    }
    return result;
}

std::string decodedBase64(std::string_view text) {
    std::string result;
    std::uint32_t group = 0;
    int bits = 0;
    for (char c : text) {
        std::size_t value = kBase64.find(c);
        if (c == '=') break;
        if (value == std::string_view::npos) continue; // line ends and the like
        group = group << 6 | std::uint32_t(value);
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        result += char(group >> bits & 0xFF);
    }
    return result;
}

std::string encodedHex(std::string_view bytes) {
    std::string result;
    for (unsigned char c : bytes) {
        result += "0123456789ABCDEF"[c >> 4];
        result += "0123456789ABCDEF"[c & 15];
    }
    return result;
}

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    c = char(std::tolower((unsigned char)c));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string decodedHex(std::string_view text) {
    std::string result;
    int high = -1;
    for (char c : text) {
        int value = digit(c);
        if (value < 0) continue;
        if (high >= 0) result += char(high << 4 | value);
        high = high >= 0 ? -1 : value;
    }
    return result;
}

std::string encodedURL(std::string_view bytes) {
    std::string result;
    for (char c : bytes) {
        if (std::isalnum((unsigned char)c) || std::string_view("-_.~").find(c) != std::string_view::npos)
            result += c;
        else
            result += "%" + encodedHex({&c, 1});
    }
    return result;
}

std::string decodedURL(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool escaped =
            text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0;
        result += escaped ? char(digit(text[i + 1]) << 4 | digit(text[i + 2])) : text[i];
        if (escaped) i += 2;
    }
    return result;
}

// RFC 1321.
std::string md5(std::string_view bytes) {
    static constexpr std::array<int, 16> kTurns = {7, 12, 17, 22, 5, 9, 14, 20, 4, 11, 16, 23, 6, 10, 15, 21};
    std::string message(bytes);
    message += '\x80';
    while (message.size() % 64 != 56) message += '\0';
    std::uint64_t bits = std::uint64_t(bytes.size()) * 8;
    for (int i = 0; i < 8; ++i) message += char(bits >> (8 * i) & 0xFF);
    std::array<std::uint32_t, 4> sum = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t block = 0; block < message.size(); block += 64) {
        auto word = [&](std::uint32_t i) {
            std::uint32_t value = 0;
            for (int k = 3; k >= 0; --k)
                value = value << 8 | (unsigned char)message[block + i * 4 + std::size_t(k)];
            return value;
        };
        auto [a, b, c, d] = sum;
        for (std::uint32_t i = 0; i < 64; ++i) {
            std::uint32_t mixed = i < 16   ? (b & c) | (~b & d)
                                  : i < 32 ? (d & b) | (~d & c)
                                  : i < 48 ? b ^ c ^ d
                                           : c ^ (b | ~d);
            std::uint32_t from = i < 16 ? i : i < 32 ? 5 * i + 1 : i < 48 ? 3 * i + 5 : 7 * i;
            auto constant = std::uint32_t(std::fabs(std::sin(double(i) + 1)) * 4294967296.0);
            std::uint32_t turned =
                std::rotl(a + mixed + constant + word(from % 16), kTurns[i / 16 * 4 + i % 4]);
            a = d;
            d = c;
            c = b;
            b += turned;
        }
        sum[0] += a;
        sum[1] += b;
        sum[2] += c;
        sum[3] += d;
    }
    std::string result;
    for (std::uint32_t part : sum)
        for (int k = 0; k < 4; ++k) result += char(part >> (8 * k) & 0xFF);
    return result;
}

// Bytes whose encoding the caller knows.
REALstring bytesString(const std::string& bytes) { return heap().newString(bytes, kREALTextEncodingUnknown); }

/// Bytes as text, and back. Decoding gives text without an encoding; DefineEncoding says which it has.
FrameworkFunctions codecFunctions() {
    return {
        /// The bytes in Base64, in lines of at most this many characters; 0 makes one line.
        ///     Print EncodeBase64("fig and pear", 0)
        method("EncodeBase64(s As String, lineWrap As Integer = 76) As String",
               [](REALstring s, std::int32_t lineWrap) {
                   return makeString(encodedBase64(bytesOf(s), lineWrap));
               }),
        /// The bytes that Base64 stands for; characters that do not belong to it are skipped.
        ///     Print DecodeBase64("ZmlnIGFuZCBwZWFy")
        method("DecodeBase64(s As String) As String",
               [](REALstring s) { return bytesString(decodedBase64(bytesOf(s))); }),
        /// Two hexadecimal digits for each byte.
        ///     Print EncodeHex("fig")
        method("EncodeHex(s As String) As String",
               [](REALstring s) { return makeString(encodedHex(bytesOf(s))); }),
        /// The bytes that pairs of hexadecimal digits stand for; other characters are skipped.
        ///     Print DecodeHex("666967")
        method("DecodeHex(s As String) As String",
               [](REALstring s) { return bytesString(decodedHex(bytesOf(s))); }),
        /// The text with every byte that has a meaning in URLs as % and two digits.
        ///     Print EncodeURLComponent("fig & pear")
        method("EncodeURLComponent(s As String) As String",
               [](REALstring s) { return makeString(encodedURL(bytesOf(s))); }),
        /// The text with each % and two digits turned into the byte they stand for.
        ///     Print DecodeURLComponent("fig%20%26%20pear")
        method("DecodeURLComponent(s As String) As String",
               [](REALstring s) { return bytesString(decodedURL(bytesOf(s))); }),
        /// The MD5 sum of the bytes, as 16 bytes (RFC 1321).
        ///     Print EncodeHex(MD5("fig"))
        method("MD5(s As String) As String", [](REALstring s) { return bytesString(md5(bytesOf(s))); }),
    };
}

const Registrar registrar([] { return FrameworkPart{{}, codecFunctions()}; });

} // namespace

} // namespace studio
