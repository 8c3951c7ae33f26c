// Names of the language, which ignore case.
#pragma once

#include <string>
#include <string_view>

namespace studio {

std::string folded(std::string_view name); // in lower case: equal for equal names
bool sameName(std::string_view a, std::string_view b);

} // namespace studio
