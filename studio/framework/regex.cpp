// RegEx, RegExOptions and RegExMatch, over PCRE2. Offsets count bytes of UTF-8 text.
#define PCRE2_CODE_UNIT_WIDTH 8
#include "table.h"

#include <pcre2.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace studio {

namespace {

struct Options {
    bool caseSensitive = false, dotMatchAll = false, greedy = true, matchEmpty = true;
    bool replaceAllMatches = false, treatTargetAsOneLine = false;
    bool stringBeginIsLineBegin = true, stringEndIsLineEnd = true;
};

struct Span {
    std::size_t from, to; // npos: the group took no part
};

struct Match {
    std::string target;
    std::string replacement;
    std::vector<Span> groups; // the whole match first
};

struct RegEx {
    std::string pattern, replacement;
    REALobject options = nullptr;
    std::size_t searchStart = 0;
    std::string target; // of the last search, which Search without arguments goes on with
};

Options& optionsOf(REALobject self) { return dataOf<Options>(self); }
RegEx& regex(REALobject self) { return dataOf<RegEx>(self); }
Match& matchOf(REALobject self) { return dataOf<Match>(self); }

using Code = std::unique_ptr<pcre2_code, void (*)(pcre2_code*)>;

Code compiled(const std::string& pattern, const Options& options) {
    std::uint32_t flags = PCRE2_UTF | PCRE2_UCP;
    if (!options.caseSensitive) flags |= PCRE2_CASELESS;
    if (options.dotMatchAll) flags |= PCRE2_DOTALL;
    if (!options.greedy) flags |= PCRE2_UNGREEDY;
    if (!options.treatTargetAsOneLine) flags |= PCRE2_MULTILINE;
    int number = 0;
    std::size_t offset = 0;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), flags,
                                     &number, &offset, nullptr);
    if (!code) {
        PCRE2_UCHAR message[256];
        pcre2_get_error_message(number, message, sizeof message);
        raise("RegExException", "the pattern " + pattern + " is wrong at character " +
                                    std::to_string(offset + 1) + ": " +
                                    reinterpret_cast<const char*>(message));
    }
    return Code(code, pcre2_code_free);
}

std::optional<Match> find(const pcre2_code* code, const Options& options, const std::string& target,
                          std::size_t start) {
    if (start > target.size()) return std::nullopt;
    std::unique_ptr<pcre2_match_data, void (*)(pcre2_match_data*)> data(
        pcre2_match_data_create_from_pattern(code, nullptr), pcre2_match_data_free);
    std::uint32_t flags = 0;
    if (!options.matchEmpty) flags |= PCRE2_NOTEMPTY;
    if (!options.stringBeginIsLineBegin) flags |= PCRE2_NOTBOL;
    if (!options.stringEndIsLineEnd) flags |= PCRE2_NOTEOL;
    int count = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(target.data()), target.size(), start, flags,
                            data.get(), nullptr);
    if (count == PCRE2_ERROR_NOMATCH) return std::nullopt;
    if (count < 0) {
        PCRE2_UCHAR message[256];
        pcre2_get_error_message(count, message, sizeof message);
        raise("RegExException", std::string("the search failed: ") + reinterpret_cast<const char*>(message));
    }
    const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer(data.get());
    Match result;
    result.target = target;
    for (std::uint32_t i = 0; i < std::uint32_t(count); ++i)
        result.groups.push_back({offsets[2 * i], offsets[2 * i + 1]});
    return result;
}

std::string group(const Match& match, std::size_t index) {
    if (index >= match.groups.size() || match.groups[index].from == PCRE2_UNSET) return {};
    return match.target.substr(match.groups[index].from, match.groups[index].to - match.groups[index].from);
}

// \0 or $0 or \& is the whole match, \1 or $1 a group, \t \n \r are characters; another character after
// \ stands for itself.
std::string expanded(const Match& match, const std::string& pattern) {
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        char c = pattern[i], next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        bool marks = (c == '\\' || c == '$') && next;
        if (marks && next >= '0' && next <= '9') {
            result += group(match, std::size_t(next - '0'));
            ++i;
        } else if (marks && next == '&') {
            result += group(match, 0);
            ++i;
        } else if (c == '\\' && next) {
            result += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
            ++i;
        } else {
            result += c;
        }
    }
    return result;
}

const Options& settings(REALobject self) {
    static const Options standard;
    REALobject options = regex(self).options;
    return options ? optionsOf(options) : standard;
}

REALobject newMatch(Match match, const std::string& replacement) {
    REALobject result = newInstance("RegExMatch");
    matchOf(result) = std::move(match);
    matchOf(result).replacement = replacement;
    return result;
}

// Remembers where the next search goes on.
std::optional<Match> searchFrom(REALobject self, const std::string& target, std::size_t start) {
    RegEx& r = regex(self);
    Code code = compiled(r.pattern, settings(self));
    std::optional<Match> match = find(code.get(), settings(self), target, start);
    r.target = target;
    r.searchStart = 0;
    if (match) {
        r.searchStart = match->groups[0].to;
        if (match->groups[0].from == match->groups[0].to) ++r.searchStart;
    } else {
        r.target.clear();
    }
    return match;
}

REALobject search(REALobject self, const std::string& target, std::size_t start) {
    std::optional<Match> match = searchFrom(self, target, start);
    return match ? newMatch(std::move(*match), regex(self).replacement) : nullptr;
}

std::string replaced(REALobject self, const std::string& target, std::size_t start) {
    RegEx& r = regex(self);
    Code code = compiled(r.pattern, settings(self));
    std::string result = target.substr(0, std::min(start, target.size()));
    std::size_t done = result.size();
    for (std::size_t from = done; from <= target.size();) {
        std::optional<Match> match = find(code.get(), settings(self), target, from);
        if (!match) break;
        Span whole = match->groups[0];
        result += target.substr(done, whole.from - done) + expanded(*match, r.replacement);
        done = whole.to;
        from = whole.to;
        if (whole.from == whole.to) { // an empty match: go past the next character
            do ++from;
            while (from < target.size() && (target[from] & 0xC0) == 0x80);
        }
        if (!settings(self).replaceAllMatches) break;
    }
    return result + target.substr(done);
}

template <bool Options::*option>
FrameworkProperty optionProperty(const char* name) {
    return property(
        name, "Boolean", [](REALobject self) { return optionsOf(self).*option; },
        [](REALobject self, std::uint32_t, bool value) { optionsOf(self).*option = value; });
}

/// How a RegEx searches.
///     Dim options As New RegExOptions
FrameworkClass optionsClass() {
    FrameworkClass table = classWithData<Options>("RegExOptions");
    table.properties = {
        /// Whether case matters; off at first.
        ///     options.CaseSensitive = True
        optionProperty<&Options::caseSensitive>("CaseSensitive"),
        /// Whether a dot matches a line end as well; off at first.
        ///     options.DotMatchAll = True
        optionProperty<&Options::dotMatchAll>("DotMatchAll"),
        /// Whether repetitions take as much as they can; on at first.
        ///     options.Greedy = False
        optionProperty<&Options::greedy>("Greedy"),
        /// Whether an empty match counts; on at first.
        ///     options.MatchEmpty = False
        optionProperty<&Options::matchEmpty>("MatchEmpty"),
        /// Whether Replace replaces every match instead of the first; off at first.
        ///     options.ReplaceAllMatches = True
        optionProperty<&Options::replaceAllMatches>("ReplaceAllMatches"),
        /// Whether ^ matches at the start of the text; on at first.
        ///     options.StringBeginIsLineBegin = False
        optionProperty<&Options::stringBeginIsLineBegin>("StringBeginIsLineBegin"),
        /// Whether $ matches at the end of the text; on at first.
        ///     options.StringEndIsLineEnd = False
        optionProperty<&Options::stringEndIsLineEnd>("StringEndIsLineEnd"),
        /// Whether ^ and $ ignore the line ends within the text; off at first.
        ///     options.TreatTargetAsOneLine = True
        optionProperty<&Options::treatTargetAsOneLine>("TreatTargetAsOneLine"),
    };
    return table;
}

/// What a RegEx found: the whole match and its groups in parentheses.
///     Dim words As New RegEx
///     words.SearchPattern = "(\w+), (\w+)"
///     words.ReplacementPattern = "$2, $1"
///     Dim match As RegExMatch = words.Search("fig, pear")
FrameworkClass matchClass() {
    FrameworkClass table = classWithData<Match>("RegExMatch");
    table.properties = {
        /// How many groups there are, the whole match included.
        ///     Print Str(match.SubExpressionCount)
        property("SubExpressionCount", "Integer",
                 [](REALobject self) { return std::int32_t(matchOf(self).groups.size()); }),
    };
    auto checked = [](REALobject self, std::int32_t index) {
        if (index < 0 || std::size_t(index) >= matchOf(self).groups.size())
            raise("OutOfBoundsException", "the match has no group " + std::to_string(index));
        return std::size_t(index);
    };
    static const auto groupAt = checked;
    table.methods = {
        /// The text of a group; 0 is the whole match. Raises OutOfBoundsException if there is no such
        /// group.
        ///     Print match.SubExpressionString(1)
        method("SubExpressionString(index As Integer) As String",
               [](REALobject self, std::int32_t index) {
                   return makeString(group(matchOf(self), groupAt(self, index)));
               }),
        /// The byte, from 0, at which a group starts, or -1 if it took no part. Raises OutOfBoundsException
        /// if there is no such group.
        ///     Print Str(match.SubExpressionStartB(2))
        method("SubExpressionStartB(index As Integer) As Integer",
               [](REALobject self, std::int32_t index) {
                   std::size_t from = matchOf(self).groups[groupAt(self, index)].from;
                   return from == PCRE2_UNSET ? -1 : std::int32_t(from);
               }),
        /// The RegEx's ReplacementPattern with this match's groups filled in.
        ///     Print match.Replace
        method(
            "Replace As String",
            [](REALobject self) { return makeString(expanded(matchOf(self), matchOf(self).replacement)); }),
        /// A pattern with this match's groups filled in: \1 or $1 is a group, \0 or \& the whole match.
        ///     Print match.Replace("$2 and $1")
        method("Replace(pattern As String) As String",
               [](REALobject self, REALstring pattern) {
                   return makeString(expanded(matchOf(self), toUtf8(pattern)));
               }),
    };
    return table;
}

/// A pattern to search text for, in the syntax of Perl. A wrong pattern raises RegExException when it is
/// used.
///     Dim words As New RegEx
///     words.SearchPattern = "(\w+)@(\w+)"
FrameworkClass regexClass() {
    FrameworkClass table = classWithData<RegEx>("RegEx");
    table.destructor = +[](REALobject self) {
        heap().release(regex(self).options);
        regex(self).~RegEx();
    };
    table.properties = {
        /// What to search for.
        ///     words.SearchPattern = "\b(p\w+)"
        property(
            "SearchPattern", "String", [](REALobject self) { return makeString(regex(self).pattern); },
            [](REALobject self, std::uint32_t, REALstring text) { regex(self).pattern = toUtf8(text); }),
        /// What Replace puts in place of a match: \1 or $1 is a group, \0 or \& the whole match.
        ///     words.ReplacementPattern = "<$1>"
        property(
            "ReplacementPattern", "String",
            [](REALobject self) { return makeString(regex(self).replacement); },
            [](REALobject self, std::uint32_t, REALstring text) { regex(self).replacement = toUtf8(text); }),
        /// The byte, from 0, at which Search without arguments goes on.
        ///     Print Str(words.SearchStartPosition)
        property(
            "SearchStartPosition", "Integer",
            [](REALobject self) { return std::int32_t(regex(self).searchStart); },
            [](REALobject self, std::uint32_t, std::int32_t at) {
                regex(self).searchStart = std::size_t(std::max(at, 0));
            }),
        /// How the search is made. Nil means the options that a new RegExOptions has.
        ///     words.Options.CaseSensitive = True
        property(
            "Options", "RegExOptions",
            [](REALobject self) {
                if (!regex(self).options) regex(self).options = newInstance("RegExOptions");
                return Heap::retain(regex(self).options);
            },
            [](REALobject self, std::uint32_t, REALobject options) {
                heap().release(std::exchange(regex(self).options, Heap::retain(options)));
            }),
    };
    table.methods = {
        /// The next match in the text of the last search, or Nil if there is none. Raises RegExException
        /// for a wrong pattern.
        ///     Dim first As RegExMatch = words.Search("fig, pear, plum")
        ///     Dim second As RegExMatch = words.Search
        method("Search As RegExMatch",
               [](REALobject self) {
                   std::string target = regex(self).target;
                   return search(self, target, regex(self).searchStart);
               }),
        /// The first match from a byte on, counted from 0, or Nil if there is none. Raises RegExException
        /// for a wrong pattern.
        ///     Print words.Search("fig, pear").SubExpressionString(0)
        method("Search(target As String, start As Integer = 0) As RegExMatch",
               [](REALobject self, REALstring target, std::int32_t start) {
                   return search(self, toUtf8(target), std::size_t(std::max(start, 0)));
               }),
        /// The text with its first match replaced, or all of them as the options say. Raises RegExException
        /// for a wrong pattern.
        ///     Print words.Replace("fig, pear, plum")
        method("Replace(target As String, start As Integer = 0) As String",
               [](REALobject self, REALstring target, std::int32_t start) {
                   return makeString(replaced(self, toUtf8(target), std::size_t(std::max(start, 0))));
               }),
    };
    return table;
}

const Registrar registrar([] {
    return FrameworkPart{
        {optionsClass(), matchClass(), regexClass(),
         /// The pattern of a RegEx is wrong, or its search takes too much; the message says where.
         exceptionClass("RegExException")}};
});

} // namespace

} // namespace studio
