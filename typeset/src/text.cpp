// Lines of text: runs of one font, script and direction are shaped, and placed in the order in which they are
// seen.
#include "faces.h"
#include "unicode.h"

#include <algorithm>
#include <cmath>

namespace typeset {

namespace {

double sizeOf(const Style& style) {
    return style.size > 0 ? std::min(style.size, kLargestSize) : kDefaultSize;
}

/// Characters of a paragraph, of one font, script and direction.
struct Run {
    std::size_t from, to;
    const Face* face;
    std::uint8_t level;
};

struct Glyph {
    hb_codepoint_t id;
    std::size_t character;     // the first of those that it stands for
    double advance, right, up; // pixels; the offset from the pen
};

struct Buffer {
    hb_buffer_t* ref = hb_buffer_create();
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    ~Buffer() { hb_buffer_destroy(ref); }
};

/// On one letter. No text has more (Unicode's Stream-Safe Text Format), and shaping takes the square of their
/// number.
constexpr std::size_t kMostMarks = 31;

/// A paragraph with the font of each character.
class Setter {
  public:
    Setter(const Paragraph& paragraph, const Style& style)
        : p_(paragraph), size_(sizeOf(style)), faces_(paragraph.text.size()) {
        // A character and the marks on it come from one font.
        for (std::size_t i = 0; i < p_.text.size();) {
            std::size_t end = i + 1;
            while (end < p_.text.size() && extends(p_.text[end])) ++end;
            const Face& face = faceFor(style, std::u32string_view(p_.text).substr(i, end - i));
            std::fill(faces_.begin() + std::ptrdiff_t(i), faces_.begin() + std::ptrdiff_t(end), &face);
            i = end;
        }
    }

    /// In the order of their characters; spaces at the end run as the paragraph does.
    std::vector<Run> runs(std::size_t from, std::size_t to) const {
        std::vector<Run> result;
        std::size_t visible = withoutSpaces(from, to), marks = 0;
        for (std::size_t i = from; i < to; ++i) {
            auto level = i < visible ? p_.levels[i] : std::uint8_t(p_.rightToLeft);
            marks = extends(p_.text[i]) ? marks + 1 : 0;
            bool same = !result.empty() && result.back().level == level && result.back().face == faces_[i] &&
                        p_.scripts[i] == p_.scripts[i - 1] && (marks == 0 || marks % kMostMarks != 0);
            if (same)
                result.back().to = i + 1;
            else
                result.push_back({i, i + 1, faces_[i], level});
        }
        return result;
    }

    /// From left to right.
    std::vector<Glyph> shaped(const Run& run) const {
        Buffer buffer;
        // The whole paragraph, because letters join to their neighbours.
        hb_buffer_add_utf32(buffer.ref, reinterpret_cast<const std::uint32_t*>(p_.text.data()),
                            int(p_.text.size()), unsigned(run.from), int(run.to - run.from));
        hb_buffer_set_direction(buffer.ref, run.level & 1 ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer.ref, p_.scripts[run.from]);
        hb_shape(run.face->font(), buffer.ref, nullptr, 0);
        unsigned count = 0;
        const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer.ref, &count);
        const hb_glyph_position_t* places = hb_buffer_get_glyph_positions(buffer.ref, &count);
        double scale = size_ / run.face->unitsPerEm;
        std::vector<Glyph> result;
        for (unsigned i = 0; i < count; ++i)
            result.push_back({infos[i].codepoint, infos[i].cluster, places[i].x_advance * scale,
                              places[i].x_offset * scale, places[i].y_offset * scale});
        return result;
    }

    double width(std::size_t from, std::size_t to) const {
        double sum = 0;
        for (const Run& run : runs(from, to))
            for (const Glyph& glyph : shaped(run)) sum += glyph.advance;
        return sum;
    }

    /// What each character adds to the paragraph's width; characters drawn as one add to the first of them,
    /// the others have NaN, because a line cannot break before them.
    std::vector<double> advances() const {
        std::vector<double> result(p_.text.size(), std::nan(""));
        for (const Run& run : runs(0, p_.text.size()))
            for (const Glyph& glyph : shaped(run)) {
                double& sum = result[glyph.character];
                sum = (std::isnan(sum) ? 0 : sum) + glyph.advance;
            }
        return result;
    }

    std::size_t withoutSpaces(std::size_t from, std::size_t to) const {
        while (to > from && p_.text[to - 1] == U' ') --to;
        return to;
    }

  private:
    const Paragraph& p_;
    double size_;
    std::vector<const Face*> faces_;
};

/// Ends of lines, the paragraph's own last.
std::vector<std::size_t> broken(const Paragraph& p, const Setter& setter, double wrapWidth) {
    std::vector<std::size_t> ends;
    std::size_t count = p.text.size(), start = 0, allowed = 0;
    std::vector<double> advances = setter.advances();
    double width = 0, sinceAllowed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isnan(advances[i])) {
            if (p.breakAfter[i]) allowed = i + 1, sinceAllowed = 0;
            continue;
        }
        // Spaces hang over the end of a line.
        while (p.text[i] != U' ' && width + advances[i] > wrapWidth && i > start) {
            bool atWord = allowed > start;
            start = atWord ? allowed : i;
            width = atWord ? sinceAllowed : 0;
            ends.push_back(start);
        }
        width += advances[i];
        sinceAllowed += advances[i];
        if (p.breakAfter[i]) allowed = i + 1, sinceAllowed = 0;
    }
    ends.push_back(count);
    return ends;
}

/// The paragraph cut so that it and an ellipsis are no wider than `limit`; as it is if it fits.
Paragraph cut(const Paragraph& p, const Style& style, double limit) {
    Setter setter(p, style);
    if (setter.width(0, p.text.size()) <= limit) return p;
    std::vector<double> advances = setter.advances();
    constexpr char32_t kEllipsis = U'\x2026';
    Paragraph dots = paragraphs(encoded(std::u32string(1, kEllipsis))).front();
    double width = Setter(dots, style).width(0, 1);
    std::size_t end = 0;
    for (std::size_t i = 0; i < advances.size(); ++i) {
        if (std::isnan(advances[i])) continue;
        if (width > limit) break;
        end = i;
        width += advances[i];
    }
    std::u32string text = p.text.substr(0, setter.withoutSpaces(0, end)) + kEllipsis;
    return paragraphs(encoded(text)).front();
}

} // namespace

struct Text::Contents {
    struct Placed {
        const Face* face;
        std::vector<Glyph> glyphs;
    };
    struct Line {
        std::u32string text;
        std::vector<Placed> runs; // from left to right
        double width = 0, start = 0;
    };

    Style style;
    double size;
    Metrics metrics;
    std::vector<Line> lines;

    void add(const Paragraph& p, double wrapWidth, bool wraps) {
        Setter setter(p, style);
        std::size_t from = 0;
        auto ends = wraps ? broken(p, setter, wrapWidth) : std::vector<std::size_t>{p.text.size()};
        for (std::size_t to : ends) {
            // A broken line ends before its spaces; those that a program wrote at the end of a text count.
            std::size_t end = to < p.text.size() ? setter.withoutSpaces(from, to) : to;
            Line line = set(setter, from, end);
            line.text = p.text.substr(from, end - from);
            if (p.rightToLeft && wrapWidth > 0) line.start = wrapWidth - line.width;
            lines.push_back(std::move(line));
            from = to;
        }
    }

    static Line set(const Setter& setter, std::size_t from, std::size_t to) {
        Line line;
        std::vector<Run> runs = setter.runs(from, to);
        // From the innermost level out, what runs to the left is turned around (Unicode's rule L2).
        int highest = 0;
        for (const Run& run : runs) highest = std::max<int>(highest, run.level);
        for (int level = highest; level > 0; --level)
            for (auto i = runs.begin(); i != runs.end();) {
                auto inside = [level](const Run& run) { return run.level >= level; };
                auto first = std::find_if(i, runs.end(), inside),
                     last = std::find_if_not(first, runs.end(), inside);
                std::reverse(first, last);
                i = last;
            }
        for (const Run& run : runs) {
            line.runs.push_back({run.face, setter.shaped(run)});
            for (const Glyph& glyph : line.runs.back().glyphs) line.width += glyph.advance;
        }
        return line;
    }
};

Metrics metrics(const Style& style) {
    const Face& face = faceFor(style);
    double scale = sizeOf(style) / face.unitsPerEm;
    Metrics result;
    result.ascent = std::round(face.ascent * scale);
    result.descent = std::round(face.descent * scale);
    result.lineHeight = result.ascent + result.descent + std::round(face.gap * scale);
    return result;
}

Text::Text(std::string_view utf8, const Style& style, double wrapWidth, TooWide tooWide)
    : contents_(new Contents{style, sizeOf(style), metrics(style), {}}) {
    bool limited = wrapWidth > 0, cuts = limited && tooWide == TooWide::isCut;
    for (const Paragraph& p : paragraphs(utf8))
        contents_->add(cuts ? cut(p, style, wrapWidth) : p, wrapWidth, limited && !cuts);
}

Text::~Text() = default;

double Text::width() const {
    double widest = 0;
    for (const Contents::Line& line : contents_->lines) widest = std::max(widest, line.width);
    return widest;
}

double Text::height() const { return double(contents_->lines.size()) * contents_->metrics.lineHeight; }

std::vector<std::string> Text::lines() const {
    std::vector<std::string> result;
    for (const Contents::Line& line : contents_->lines) result.push_back(encoded(line.text));
    return result;
}

void Text::outline(double x, double y, Outlines& out) const {
    const Contents& c = *contents_;
    const Face& own = faceFor(c.style);
    for (const Contents::Line& line : c.lines) {
        double pen = x + line.start;
        if (c.style.underline && line.width > 0) {
            double scale = c.size / own.unitsPerEm, right = pen + line.width;
            // On whole pixels, and at least one, so that it is as dark as the letters.
            double thickness = std::max(1.0, std::round(own.underlineThickness * scale));
            double top = std::round(y - own.underlineTop * scale);
            out.move(pen, top);
            out.line(right, top);
            out.line(right, top + thickness);
            out.line(pen, top + thickness);
            out.close();
        }
        for (const Contents::Placed& run : line.runs)
            for (const Glyph& glyph : run.glyphs) {
                run.face->outline(glyph.id, pen + glyph.right, y - glyph.up, c.size, out);
                pen += glyph.advance;
            }
        y += c.metrics.lineHeight;
    }
}

} // namespace typeset
