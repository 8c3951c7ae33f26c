// Turns text into tokens, for programs and declarations alike.
#pragma once

#include "syntax/source_error.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace studio {

enum class TokenKind { Name, Integer, Real, String, Color, Symbol, EndOfLine, End };

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;        // names and symbols as written, strings without quotes
    std::int64_t number = 0; // Integer and Color
    double real = 0;         // Real
    Position position;
    bool spaceBefore = false; // distinguishes `Print (a)` from `Print(a)`
    bool dotBefore = false;   // a name after a dot is a member, even if it is spelt like a keyword

    std::string describe() const; // for messages: "'Then'", "the end of the line"
};

// A byte order mark and a first line that begins with `#!` are skipped. `file` is noted in the positions.
std::vector<Token> tokenize(std::string_view source, int file = 0);

} // namespace studio
