// Text in the encodings that host strings can have.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace studio::text {

inline constexpr std::uint32_t kMacRoman = 0;
inline constexpr std::uint32_t kLatin1 = 0x0201;

// Null when the encoding is not known or cannot express the text.
std::optional<std::string> toUtf8(std::string_view bytes, std::uint32_t encoding);
std::optional<std::string> fromUtf8(std::string_view utf8, std::uint32_t encoding);

// UTF-8, by code points.
std::size_t length(std::string_view utf8);
std::size_t byteOffset(std::string_view utf8, std::size_t characters);
char32_t decode(std::string_view utf8, std::size_t& index); // advances; malformed bytes stand for themselves
void append(std::string& utf8, char32_t character);
std::string upper(std::string_view utf8);
std::string lower(std::string_view utf8);
// Without regard to case, as the language compares strings: negative, zero or positive.
int compare(std::string_view a, std::string_view b);
// Searches from a character on; npos when there is none.
std::size_t find(std::string_view text, std::string_view part, std::size_t from = 0);

} // namespace studio::text
