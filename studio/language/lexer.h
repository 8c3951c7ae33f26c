// Text to tokens, for programs and for declarations alike.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace studio {

struct Position {
    int line = 1;
    int column = 1;
};

// A mistake in a program's text.
class SourceError : public std::runtime_error {
  public:
    SourceError(Position position, const std::string& message)
        : std::runtime_error(message), position(position) {}
    Position position;
};

enum class TokenKind { Name, Integer, Real, String, Color, Symbol, EndOfLine, End };

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;        // names and symbols as written, strings without quotes
    std::int64_t number = 0; // Integer and Color
    double real = 0;         // Real
    Position position;
    bool spaceBefore = false; // tells `Print (a)` from `Print(a)`
    bool dotBefore = false;   // a name after a dot is a member's, even when it is spelt like a keyword

    std::string describe() const; // for messages: "'Then'", "the end of the line"
};

std::vector<Token> tokenize(std::string_view source);

} // namespace studio
