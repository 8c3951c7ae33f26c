// Lists of numbers as text.
#pragma once

#include <CoreGraphics/CGBase.h>

#include <optional>
#include <string>
#include <vector>

namespace ci {

/// Numbers separated by blanks or commas, optionally in brackets or parentheses; empty for any other text.
std::optional<std::vector<CGFloat>> parseNumbers(const char* text);
/// With blanks between them, such as "1 0.5 0".
std::string joinNumbers(const CGFloat* values, std::size_t count);

} // namespace ci
