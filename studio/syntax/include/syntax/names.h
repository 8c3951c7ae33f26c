// Names of the language, which ignore case.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace studio {

std::string folded(std::string_view name); // in lower case: equal for equal names
bool sameName(std::string_view a, std::string_view b);
// The known name that `name` was probably meant to be: the one with the fewest letters added, left out or
// replaced. Empty when they all differ by more than a third.
std::string nearestName(std::string_view name, const std::vector<std::string>& known);
// "; did you mean 'x'?" with the nearest name, or empty.
std::string suggestion(std::string_view name, const std::vector<std::string>& known);

} // namespace studio
