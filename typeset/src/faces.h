// Fonts, found by name and by the characters they have.
#pragma once

#include <typeset/text.h>

#include <hb.h>

namespace typeset {

/// A font of one style, in its own units.
class Face {
  public:
    virtual ~Face() = default;
    virtual hb_font_t* font() const = 0; // its scale is `unitsPerEm`
    /// Of one glyph with its origin at (x, y).
    virtual void outline(hb_codepoint_t glyph, double x, double y, double size, Outlines& out) const = 0;

    double unitsPerEm = 1000;
    double ascent = 0, descent = 0, gap = 0;
    double underlineTop = 0, underlineThickness = 0; // `underlineTop` is below the baseline when negative
};

/// The style's own font.
const Face& faceFor(const Style& style);
/// The first font in the style's order of preference that has all of `characters`, or else the first of them;
/// the style's own when none has it. That one comes first.
const Face& faceFor(const Style& style, std::u32string_view characters);

} // namespace typeset
