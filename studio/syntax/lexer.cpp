#include "lexer.h"

#include "syntax/names.h"

#include <cctype>
#include <cstdlib>

namespace studio {

std::string Token::describe() const {
    switch (kind) {
    case TokenKind::EndOfLine:
        return "the end of the line";
    case TokenKind::End:
        return "the end of the file";
    case TokenKind::String:
        return "\"" + text + "\"";
    default:
        return "'" + text + "'";
    }
}

namespace {

bool startsName(unsigned char c) { return std::isalpha(c) || c == '_' || c >= 0x80; }
bool continuesName(unsigned char c) { return startsName(c) || std::isdigit(c); }

std::string utf8(char32_t code) {
    if (code < 0x80) return {char(code)};
    std::string result;
    int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    result += char((0xF0 << (3 - more) & 0xFF) | code >> (6 * more));
    while (more-- > 0) result += char(0x80 | (code >> (6 * more) & 0x3F));
    return result;
}

class Lexer {
  public:
    Lexer(std::string_view source, int file) : source_(source), file_(file) {}

    std::vector<Token> run() {
        if (source_.starts_with("\xEF\xBB\xBF")) index_ = lineStart_ = 3;
        if (source_.substr(index_).starts_with("#!")) skipToEndOfLine();
        while (skipBlanks()) next();
        if (!tokens_.empty() && tokens_.back().kind != TokenKind::EndOfLine) add(TokenKind::EndOfLine, "");
        add(TokenKind::End, "");
        return std::move(tokens_);
    }

  private:
    char at(std::size_t ahead = 0) const {
        return index_ + ahead < source_.size() ? source_[index_ + ahead] : '\0';
    }
    Position here() const { return {line_, int(index_ - lineStart_) + 1, file_}; }

    Token& add(TokenKind kind, std::string text) {
        Token token;
        token.kind = kind;
        token.text = std::move(text);
        token.position = start_;
        token.spaceBefore = space_;
        token.dotBefore =
            !tokens_.empty() && tokens_.back().kind == TokenKind::Symbol && tokens_.back().text == ".";
        tokens_.push_back(std::move(token));
        return tokens_.back();
    }

    void skipToEndOfLine() {
        while (index_ < source_.size() && at() != '\n') ++index_;
    }

    void newLine() {
        ++line_;
        lineStart_ = index_;
    }

    // An underscore at the end of a line joins the next line to it.
    bool skipContinuation() {
        std::size_t look = index_ + 1;
        while (look < source_.size() &&
               (source_[look] == ' ' || source_[look] == '\t' || source_[look] == '\r'))
            ++look;
        if (look < source_.size() && source_[look] != '\n' && source_[look] != '\'') return false;
        while (look < source_.size() && source_[look] != '\n') ++look;
        index_ = look + (look < source_.size());
        newLine();
        return true;
    }

    bool isRem() const {
        return source_.size() - index_ >= 3 && sameName(source_.substr(index_, 3), "rem") &&
               !continuesName(at(3));
    }

    // Returns false at the end of the text.
    bool skipBlanks() {
        space_ = false;
        while (index_ < source_.size()) {
            char c = at();
            bool afterDot = !tokens_.empty() && tokens_.back().text == ".";
            if (c == ' ' || c == '\t' || c == '\r') {
                ++index_;
            } else if (c == '\'' || (c == '/' && at(1) == '/') || (!afterDot && isRem())) {
                skipToEndOfLine();
            } else if (!(c == '_' && !continuesName(at(1)) && skipContinuation())) {
                break;
            }
            space_ = true;
        }
        start_ = here();
        return index_ < source_.size();
    }

    void next() {
        char c = at();
        if (c == '\n') {
            ++index_;
            if (!tokens_.empty() && tokens_.back().kind != TokenKind::EndOfLine)
                add(TokenKind::EndOfLine, "");
            newLine();
        } else if (startsName(c)) {
            std::size_t begin = index_;
            while (index_ < source_.size() && continuesName(at())) ++index_;
            add(TokenKind::Name, std::string(source_.substr(begin, index_ - begin)));
        } else if (std::isdigit((unsigned char)c) || (c == '.' && std::isdigit((unsigned char)at(1)))) {
            number();
        } else if (c == '"') {
            string();
        } else if (c == '&' && std::isalpha((unsigned char)at(1))) {
            prefixedNumber();
        } else {
            symbol();
        }
    }

    void number() {
        std::size_t begin = index_;
        bool real = false;
        while (std::isdigit((unsigned char)at())) ++index_;
        if (at() == '.' && std::isdigit((unsigned char)at(1))) {
            real = true;
            ++index_;
            while (std::isdigit((unsigned char)at())) ++index_;
        }
        std::size_t sign = (at(1) == '+' || at(1) == '-') ? 2 : 1;
        if ((at() == 'e' || at() == 'E') && std::isdigit((unsigned char)at(sign))) {
            real = true;
            index_ += sign;
            while (std::isdigit((unsigned char)at())) ++index_;
        }
        std::string text(source_.substr(begin, index_ - begin));
        Token& token = add(real ? TokenKind::Real : TokenKind::Integer, text);
        if (real)
            token.real = std::strtod(text.c_str(), nullptr);
        else
            token.number = std::strtoll(text.c_str(), nullptr, 10);
        if (startsName(at()))
            throw SourceError(here(), "expected an operator or the end of the number " + text);
    }

    void string() {
        std::string text;
        for (++index_;; ++index_) {
            if (index_ >= source_.size() || at() == '\n')
                throw SourceError(start_, "this string has no closing quote");
            if (at() != '"') {
                text += at();
            } else if (at(1) == '"') {
                text += '"';
                ++index_;
            } else {
                break;
            }
        }
        ++index_;
        add(TokenKind::String, std::move(text));
    }

    // &hFF, &o17, &b101, the character &u20AC, and the colour &cRRGGBB or &cRRGGBBAA.
    void prefixedNumber() {
        char letter = char(std::tolower((unsigned char)at(1)));
        int base = letter == 'h' || letter == 'c' || letter == 'u' ? 16
                   : letter == 'o'                                 ? 8
                   : letter == 'b'                                 ? 2
                                                                   : 0;
        if (!base) throw SourceError(start_, "expected &h, &o, &b, &u or &c");
        std::size_t begin = index_;
        index_ += 2;
        while (std::isalnum((unsigned char)at())) ++index_;
        std::string text(source_.substr(begin, index_ - begin));
        char* end = nullptr;
        std::uint64_t value = std::strtoull(text.c_str() + 2, &end, base);
        if (text.size() == 2 || *end) throw SourceError(start_, "'" + text + "' is not a number");
        if (letter == 'u') {
            add(TokenKind::String, utf8(char32_t(value)));
            return;
        }
        if (letter == 'c') {
            std::size_t digits = text.size() - 2;
            if (digits != 6 && digits != 8)
                throw SourceError(start_, "a colour is written &cRRGGBB or &cRRGGBBAA");
            // The last pair counts transparency: 00 is opaque.
            std::uint32_t alpha = digits == 8 ? 255 - (value & 0xFF) : 255;
            std::uint32_t rgb = std::uint32_t(digits == 8 ? value >> 8 : value);
            value = alpha << 24 | rgb;
        }
        add(letter == 'c' ? TokenKind::Color : TokenKind::Integer, text).number = std::int64_t(value);
    }

    void symbol() {
        static constexpr std::string_view pairs[] = {"<>", "<=", ">="};
        std::string_view rest = source_.substr(index_);
        for (std::string_view pair : pairs)
            if (rest.substr(0, 2) == pair) {
                index_ += 2;
                add(TokenKind::Symbol, std::string(pair));
                return;
            }
        static constexpr std::string_view singles = "+-*/\\^=<>(),.:#";
        if (singles.find(at()) == std::string_view::npos)
            throw SourceError(start_, std::string("unexpected character '") + at() + "'");
        add(TokenKind::Symbol, std::string(1, at()));
        ++index_;
    }

    std::string_view source_;
    int file_;
    std::size_t index_ = 0, lineStart_ = 0;
    int line_ = 1;
    Position start_;
    bool space_ = false;
    std::vector<Token> tokens_;
};

} // namespace

std::vector<Token> tokenize(std::string_view source, int file) { return Lexer(source, file).run(); }

} // namespace studio
