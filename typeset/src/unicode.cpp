// Characters, paragraphs, directions and scripts.
#include "unicode.h"

#include <fribidi/fribidi.h>
#include <linebreak.h>

#include <mutex>
#include <new>

namespace typeset {

std::u32string decoded(std::string_view utf8) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    std::u32string result;
    for (std::size_t i = 0; i < utf8.size();) {
        auto byte = static_cast<unsigned char>(utf8[i]);
        std::size_t length = byte < 0x80                   ? 1
                             : byte >= 0xF0 && byte < 0xF8 ? 4
                             : byte >= 0xE0                ? 3
                             : byte >= 0xC0                ? 2
                                                           : 0;
        if (byte >= 0xF8) length = 0;
        char32_t c = length == 1 ? byte : length ? byte & (0x7Fu >> length) : 0;
        bool good = length > 0 && i + length <= utf8.size();
        for (std::size_t k = 1; good && k < length; ++k) {
            auto next = static_cast<unsigned char>(utf8[i + k]);
            good = (next & 0xC0) == 0x80;
            c = c << 6 | (next & 0x3F);
        }
        good = good && c >= smallest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
        result += good ? c : U'\xFFFD';
        i += good ? length : 1;
    }
    return result;
}

std::string encoded(std::u32string_view text) {
    std::string result;
    for (char32_t c : text) {
        int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        constexpr unsigned lead[] = {0, 0xC0, 0xE0, 0xF0};
        result += static_cast<char>(lead[more] | c >> 6 * more);
        while (more-- > 0) result += static_cast<char>(0x80 | (c >> 6 * more & 0x3F));
    }
    return result;
}

namespace {

hb_unicode_general_category_t category(char32_t c) {
    return hb_unicode_general_category(hb_unicode_funcs_get_default(), c);
}

constexpr char32_t kJoiner = 0x200D, kNonJoiner = 0x200C;

bool isShared(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
}

std::vector<hb_script_t> scriptsOf(const std::u32string& text) {
    std::vector<hb_script_t> result;
    for (char32_t c : text) {
        hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), c);
        result.push_back(isShared(script) && !result.empty() ? result.back() : script);
    }
    // What stands before the first letter takes that letter's.
    for (std::size_t i = result.size(); i-- > 1;)
        if (isShared(result[i - 1])) result[i - 1] = result[i];
    return result;
}

void findLevels(Paragraph& p) {
    auto count = static_cast<FriBidiStrIndex>(p.text.size());
    std::vector<FriBidiChar> text(p.text.begin(), p.text.end());
    std::vector<FriBidiCharType> types(text.size());
    std::vector<FriBidiBracketType> brackets(text.size());
    std::vector<FriBidiLevel> levels(text.size());
    fribidi_get_bidi_types(text.data(), count, types.data());
    fribidi_get_bracket_types(text.data(), count, types.data(), brackets.data());
    FriBidiParType base = FRIBIDI_PAR_ON;
    if (!fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &base, levels.data()))
        throw std::bad_alloc();
    p.rightToLeft = FRIBIDI_IS_RTL(base);
    p.levels.assign(levels.begin(), levels.end());
}

Paragraph paragraph(std::u32string text) {
    static std::once_flag once;
    std::call_once(once, init_linebreak);
    Paragraph p;
    p.text = std::move(text);
    if (p.text.empty()) return p;
    for (char32_t& c : p.text)
        if (category(c) == HB_UNICODE_GENERAL_CATEGORY_CONTROL) c = U' ';
    p.scripts = scriptsOf(p.text);
    findLevels(p);
    std::vector<utf32_t> plain(p.text.begin(), p.text.end());
    std::vector<char> breaks(plain.size());
    set_linebreaks_utf32(plain.data(), plain.size(), "", breaks.data());
    for (char kind : breaks)
        p.breakAfter.push_back(kind == LINEBREAK_ALLOWBREAK || kind == LINEBREAK_MUSTBREAK);
    return p;
}

} // namespace

bool extends(char32_t c) {
    switch (category(c)) {
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK: // variation selectors are among these
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
        return true;
    default:
        return c == kJoiner || c == kNonJoiner;
    }
}

std::vector<Paragraph> paragraphs(std::string_view utf8) {
    std::vector<Paragraph> result;
    std::u32string text = decoded(utf8);
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != U'\n' && text[i] != U'\r') continue;
        result.push_back(paragraph(text.substr(start, i - start)));
        if (text[i] == U'\r' && i + 1 < text.size() && text[i + 1] == U'\n') ++i;
        start = i + 1;
    }
    if (!text.empty()) result.push_back(paragraph(text.substr(start)));
    return result;
}

} // namespace typeset
