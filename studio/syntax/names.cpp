#include "syntax/names.h"

#include <algorithm>
#include <cctype>

namespace studio {

namespace {

std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t next = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = row[j];
            row[j] = next;
        }
    }
    return row[b.size()];
}

} // namespace

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

std::string nearestName(std::string_view name, const std::vector<std::string>& known) {
    std::string best;
    std::size_t nearest = std::max<std::size_t>(2, name.size() / 3) + 1;
    for (const std::string& candidate : known) {
        std::size_t distance = editDistance(folded(name), folded(candidate));
        if (distance < nearest) {
            nearest = distance;
            best = candidate;
        }
    }
    return best;
}

std::string suggestion(std::string_view name, const std::vector<std::string>& known) {
    std::string best = nearestName(name, known);
    return best.empty() ? "" : "; did you mean '" + best + "'?";
}

} // namespace studio
