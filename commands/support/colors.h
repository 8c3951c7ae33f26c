// Colours by the names of CSS.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace commands {

struct NamedColor {
    const char* name;
    unsigned rgb; ///< 0xRRGGBB
};

/// The 16 names of HTML and the most usual of CSS's others.
inline constexpr NamedColor namedColors[] = {
    {"black", 0x000000},   {"white", 0xFFFFFF},     {"red", 0xFF0000},       {"lime", 0x00FF00},
    {"blue", 0x0000FF},    {"yellow", 0xFFFF00},    {"cyan", 0x00FFFF},      {"aqua", 0x00FFFF},
    {"magenta", 0xFF00FF}, {"fuchsia", 0xFF00FF},   {"gray", 0x808080},      {"grey", 0x808080},
    {"silver", 0xC0C0C0},  {"maroon", 0x800000},    {"olive", 0x808000},     {"green", 0x008000},
    {"purple", 0x800080},  {"teal", 0x008080},      {"navy", 0x000080},      {"orange", 0xFFA500},
    {"gold", 0xFFD700},    {"pink", 0xFFC0CB},      {"brown", 0xA52A2A},     {"beige", 0xF5F5DC},
    {"ivory", 0xFFFFF0},   {"khaki", 0xF0E68C},     {"coral", 0xFF7F50},     {"salmon", 0xFA8072},
    {"tomato", 0xFF6347},  {"crimson", 0xDC143C},   {"violet", 0xEE82EE},    {"indigo", 0x4B0082},
    {"orchid", 0xDA70D6},  {"plum", 0xDDA0DD},      {"lavender", 0xE6E6FA},  {"turquoise", 0x40E0D0},
    {"skyblue", 0x87CEEB}, {"steelblue", 0x4682B4}, {"chocolate", 0xD2691E}, {"tan", 0xD2B48C}};

} // namespace commands
