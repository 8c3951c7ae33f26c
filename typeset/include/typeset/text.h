// Text set in lines, as outlines to fill. Plain C++: it knows neither pictures nor Apple's frameworks.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace typeset {

/// The family that stands in for any that is not there.
inline constexpr const char* kDefaultFamily = "DejaVu Sans";
/// In pixels per em, for sizes that are not positive.
inline constexpr double kDefaultSize = 12;
/// Larger sizes are limited to this one.
inline constexpr double kLargestSize = 32767;

struct Style {
    std::string family;
    double size = 0; ///< pixels per em
    bool bold = false, italic = false, underline = false;
};

/// Of a style's first font, in whole pixels, so that the lines of a text lie alike on the pixels.
struct Metrics {
    double ascent = 0, descent = 0; ///< both positive
    double lineHeight = 0;          ///< from baseline to baseline
};

/// Throws std::runtime_error when there is no font at all, as do the functions below.
Metrics metrics(const Style& style);

/// The family that text in `family` is drawn in: `family` itself, the set-up's counterpart of a well-known
/// one (DejaVu Serif for Times), or kDefaultFamily. The empty name and "System" are names of the default.
std::string familyFor(std::string_view family);
/// Whether familyFor() is more than a last resort.
bool knowsFamily(std::string_view family);
/// The names of all the families there are, in alphabetical order.
std::vector<std::string> families();

/// Receives outlines: closed curves that turn clockwise around what they enclose, to be filled by the
/// non-zero rule. In pixels, y downwards.
class Outlines {
  public:
    virtual ~Outlines() = default;
    virtual void move(double x, double y) = 0;
    virtual void line(double x, double y) = 0;
    virtual void curve(double x1, double y1, double x2, double y2, double x, double y) = 0;
    virtual void close() = 0;
};

/// What becomes of a line that is wider than the wrap width.
enum class TooWide { wraps, isCut };

/// Lines of glyphs. Line feeds, carriage returns and both together end a line; other control characters are
/// spaces. Right-to-left text runs in its own direction, and its lines end at the right of the wrap width. A
/// character that the style's font lacks comes from another font.
class Text {
  public:
    /// Ill-formed UTF-8 shows replacement characters. Lines break where Unicode's rules allow, and inside a
    /// word only if it is wider than a line; cut ones end with an ellipsis. A `wrapWidth` that is not
    /// positive is endless.
    Text(std::string_view utf8, const Style& style, double wrapWidth = 0, TooWide tooWide = TooWide::wraps);
    ~Text();
    Text(const Text&) = delete;

    /// The advance of the widest line, in pixels, without spaces at which a line was broken.
    double width() const;
    /// Of all lines, in pixels; one line at least, unless the text is empty.
    double height() const;
    /// The text's lines in the order of their characters.
    std::vector<std::string> lines() const;
    /// The outlines of everything, with the start of the first line's baseline at (x, y).
    void outline(double x, double y, Outlines& out) const;

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};

} // namespace typeset
