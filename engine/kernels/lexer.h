// Words of the kernel language.
#pragma once

#include <engine/kernels.h>

namespace engine::kernels {

struct Token {
    enum class Kind { name, whole, number, symbol, end };
    Kind kind = Kind::end;
    std::string_view text;
    int line = 1;
    double value = 0; // of numbers
};

/// All tokens of a text, the last one of kind `end`; they refer to the text. Throws Mistake.
std::vector<Token> tokens(std::string_view text);

/// A token as a message names it: 'vec5', or the end of the text.
std::string quoted(const Token& token);

} // namespace engine::kernels
