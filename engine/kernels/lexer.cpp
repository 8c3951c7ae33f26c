// Words of the kernel language.
#include "lexer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace engine::kernels {

Mistake::Mistake(int line, const std::string& what)
    : std::invalid_argument("line " + std::to_string(line) + ": " + what), line(line) {}

Mistake::~Mistake() = default;

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

/// Longer ones first, so that the first match is the longest.
constexpr std::array<std::string_view, 44> symbols{
    "<<=", ">>=", "++", "--", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "==", "!=", "<=",
    ">=",  "&&",  "||", "^^", "<<", ">>", "+",  "-",  "*",  "/",  "%",  "<",  ">",  "=",  "!",
    "?",   ":",   ",",  ";",  ".",  "(",  ")",  "{",  "}",  "[",  "]",  "&",  "|",  "^"};

class Lexer {
  public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::vector<Token> all() {
        std::vector<Token> found;
        do {
            skipBlanks();
            found.push_back(next());
        } while (found.back().kind != Token::Kind::end);
        return found;
    }

  private:
    char at(std::size_t ahead) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

    void skipBlanks() {
        for (;;) {
            if (at_ < text_.size() && isBlank(text_[at_]))
                line_ += text_[at_++] == '\n';
            else if (at(0) == '/' && at(1) == '/')
                at_ = std::min(text_.find('\n', at_), text_.size());
            else if (at(0) == '/' && at(1) == '*')
                skipComment();
            else
                return;
        }
    }

    void skipComment() {
        std::size_t end = text_.find("*/", at_ + 2);
        if (end == text_.npos) throw Mistake(line_, "a comment that begins here never ends: expected */");
        line_ += static_cast<int>(std::count(text_.begin() + at_, text_.begin() + end, '\n'));
        at_ = end + 2;
    }

    Token next() {
        if (at_ == text_.size()) return {Token::Kind::end, {}, line_};
        if (isLetter(at(0))) return word();
        if (isDigit(at(0)) || (at(0) == '.' && isDigit(at(1)))) return number();
        for (std::string_view symbol : symbols)
            if (text_.substr(at_).starts_with(symbol)) return take(Token::Kind::symbol, symbol.size());
        if (at(0) == '#') throw Mistake(line_, "kernels have no preprocessor: expected a function, not '#'");
        bool visible = at(0) > ' ' && at(0) <= '~';
        throw Mistake(line_, visible ? std::string("the character '") + at(0) + "' has no meaning here"
                                     : "a character that is not ASCII, outside of a comment");
    }

    Token take(Token::Kind kind, std::size_t size) {
        Token token{kind, text_.substr(at_, size), line_};
        at_ += size;
        return token;
    }

    Token word() {
        std::size_t size = 1;
        while (isLetter(at(size)) || isDigit(at(size))) ++size;
        return take(Token::Kind::name, size);
    }

    Token number() {
        std::size_t size = 0;
        bool whole = true;
        auto digits = [&] {
            while (isDigit(at(size))) ++size;
        };
        digits();
        if (at(size) == '.') ++size, whole = false, digits();
        if (at(size) == 'e' || at(size) == 'E') {
            std::size_t sign = at(size + 1) == '+' || at(size + 1) == '-';
            if (!isDigit(at(size + 1 + sign))) throw Mistake(line_, "expected the digits of an exponent");
            size += 1 + sign, whole = false;
            digits();
        }
        Token token = take(whole ? Token::Kind::whole : Token::Kind::number, size);
        token.value = std::strtod(std::string(token.text).c_str(), nullptr);
        if (at(0) == 'f' && !whole) ++at_;
        if (isLetter(at(0)) || isDigit(at(0)))
            throw Mistake(line_, "a number cannot go on with '" + std::string(1, at(0)) + "'");
        if (whole && token.value > 1 << 24)
            throw Mistake(line_,
                          "a whole number is 16777216 at most; write " + std::string(token.text) + ".0");
        if (!std::isfinite(static_cast<float>(token.value)))
            throw Mistake(line_, "the number " + std::string(token.text) + " is too large");
        return token;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
};

} // namespace

std::vector<Token> tokens(std::string_view text) { return Lexer(text).all(); }

std::string quoted(const Token& token) {
    if (token.kind == Token::Kind::end) return "the end of the text";
    return "'" + std::string(token.text) + "'";
}

} // namespace engine::kernels
