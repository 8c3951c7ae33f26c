// What Unicode says of characters and paragraphs.
#pragma once

#include <hb.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace typeset {

std::u32string decoded(std::string_view utf8); // U+FFFD for what is ill-formed
std::string encoded(std::u32string_view text);

/// Whether a character belongs to the one before it: marks, joiners and variation selectors.
bool extends(char32_t character);

/// A paragraph's characters, one entry each.
struct Paragraph {
    std::u32string text;              // without the end of the line; control characters are spaces
    std::vector<std::uint8_t> levels; // of embedding: odd ones run to the left
    std::vector<hb_script_t> scripts; // characters that all scripts share take their neighbour's
    std::vector<bool> breakAfter;
    bool rightToLeft = false;
};

std::vector<Paragraph> paragraphs(std::string_view utf8);

} // namespace typeset
