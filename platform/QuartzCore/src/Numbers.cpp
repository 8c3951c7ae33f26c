// Lists of numbers as text.
#include "Numbers.h"

#include <charconv>
#include <cstdio>
#include <string_view>

namespace ci {

std::optional<std::vector<CGFloat>> parseNumbers(const char* text) {
    if (!text) return {};
    std::string_view rest = text;
    constexpr std::string_view blanks = " \t\r\n,";
    auto trim = [&] {
        rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
        rest.remove_suffix(rest.size() - (rest.find_last_not_of(blanks) + 1));
    };
    trim();
    for (std::string_view pair : {"[]", "()"})
        if (rest.size() >= 2 && rest.front() == pair[0] && rest.back() == pair[1]) {
            rest = rest.substr(1, rest.size() - 2);
            break;
        }
    trim();
    std::vector<CGFloat> values;
    while (!rest.empty()) {
        std::string_view word = rest.substr(0, rest.find_first_of(blanks));
        std::string_view digits = word.front() == '+' ? word.substr(1) : word;
        CGFloat value = 0;
        auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (error != std::errc() || end != digits.data() + digits.size()) return {};
        values.push_back(value);
        rest.remove_prefix(word.size());
        trim();
    }
    return values;
}

std::string joinNumbers(const CGFloat* values, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char word[32];
        std::snprintf(word, sizeof word, i ? " %g" : "%g", double(values[i]));
        text += word;
    }
    return text;
}

} // namespace ci
