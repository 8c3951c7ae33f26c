#include "syntax/names.h"

#include <cctype>

namespace studio {

std::string folded(std::string_view name) {
    std::string result(name);
    for (char& c : result) c = char(std::tolower((unsigned char)c));
    return result;
}

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower((unsigned char)a[i]) != std::tolower((unsigned char)b[i])) return false;
    return true;
}

} // namespace studio
