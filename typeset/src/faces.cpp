// Fonts: the set-up's own, and behind them those of the machine, which are read when a text first needs them.
#include "faces.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <strings.h>

namespace typeset {

namespace {

bool sameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), b.size()) == 0;
}

// Well-known families and what stands in for them.
struct Counterpart {
    const char *family, *ours;
};
constexpr Counterpart kCounterparts[] = {
    {"Arial", kDefaultFamily},           {"Geneva", kDefaultFamily},
    {"Helvetica", kDefaultFamily},       {"Helvetica Neue", kDefaultFamily},
    {"Lucida Grande", kDefaultFamily},   {"Tahoma", kDefaultFamily},
    {"Verdana", kDefaultFamily},         {"Georgia", "DejaVu Serif"},
    {"Palatino", "DejaVu Serif"},        {"Times", "DejaVu Serif"},
    {"Times New Roman", "DejaVu Serif"}, {"Andale Mono", "DejaVu Sans Mono"},
    {"Courier", "DejaVu Sans Mono"},     {"Courier New", "DejaVu Sans Mono"},
    {"Menlo", "DejaVu Sans Mono"},       {"Monaco", "DejaVu Sans Mono"},
};

constexpr std::string_view kNamesOfDefault[] = {"", "System", "SmallSystem"};

// ---- a font file -----------------------------------------------------------------------------------------

struct FreeType {
    FT_Library library = nullptr;
    FreeType() {
        if (FT_Init_FreeType(&library)) throw std::runtime_error("FreeType does not start.");
    }
    ~FreeType() { FT_Done_FreeType(library); }
    FreeType(const FreeType&) = delete;
};

class FileFace final : public Face {
  public:
    FileFace(FT_Library library, const std::string& path, int index, bool slanted, bool thickened)
        : slant_(slanted ? kSlant : 0), thickened_(thickened) {
        if (FT_New_Face(library, path.c_str(), index, &face_))
            throw std::runtime_error("The font " + path + " cannot be read.");
        hb_blob_t* blob = hb_blob_create_from_file(path.c_str());
        hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index));
        font_ = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
        // A font of bitmaps alone has no units and no outlines.
        unitsPerEm = face_->units_per_EM ? face_->units_per_EM : 1000;
        ascent = face_->ascender;
        descent = -face_->descender;
        gap = std::max<double>(0, face_->height - ascent - descent);
        underlineThickness = face_->underline_thickness > 0 ? face_->underline_thickness : unitsPerEm / 20;
        underlineTop = face_->underline_position + underlineThickness / 2;
    }
    ~FileFace() override {
        hb_font_destroy(font_);
        FT_Done_Face(face_);
    }

    hb_font_t* font() const override { return font_; }

    void outline(hb_codepoint_t glyph, double x, double y, double size, Outlines& out) const override {
        if (FT_Load_Glyph(face_, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP)) return;
        if (face_->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return;
        FT_Outline& curves = face_->glyph->outline;
        if (thickened_) {
            auto strength = static_cast<FT_Pos>(unitsPerEm * kThickening);
            FT_Outline_Embolden(&curves, strength);
            FT_Outline_Translate(&curves, -strength / 2, -strength / 2);
        }
        // PostScript's outlines turn the other way.
        if (FT_Outline_Get_Orientation(&curves) == FT_ORIENTATION_POSTSCRIPT) FT_Outline_Reverse(&curves);
        Pen pen{x, y, size / unitsPerEm, slant_, out};
        static const FT_Outline_Funcs funcs = {Pen::move, Pen::line, Pen::conic, Pen::cubic, 0, 0};
        FT_Outline_Decompose(&curves, &funcs, &pen);
        pen.end();
    }

  private:
    static constexpr double kSlant = 0.2; // about 11 degrees, as of DejaVu's own oblique fonts
    static constexpr double kThickening = 1.0 / 24;

    struct Point {
        double x, y;
    };
    // Takes what FreeType decomposes.
    struct Pen {
        double x, y, scale, slant;
        Outlines& out;
        Point last = {};
        bool open = false;

        Point place(const FT_Vector* v) const {
            auto across = static_cast<double>(v->x), up = static_cast<double>(v->y);
            return {x + (across + slant * up) * scale, y - up * scale};
        }
        void end() {
            if (open) out.close();
            open = false;
        }
        static int move(const FT_Vector* to, void* self) {
            Pen& pen = *static_cast<Pen*>(self);
            pen.end();
            pen.last = pen.place(to);
            pen.open = true;
            pen.out.move(pen.last.x, pen.last.y);
            return 0;
        }
        static int line(const FT_Vector* to, void* self) {
            Pen& pen = *static_cast<Pen*>(self);
            pen.last = pen.place(to);
            pen.out.line(pen.last.x, pen.last.y);
            return 0;
        }
        // The same curve as a cubic: its control points are two thirds of the way to this one.
        static int conic(const FT_Vector* control, const FT_Vector* to, void* self) {
            Pen& pen = *static_cast<Pen*>(self);
            Point from = pen.last, c = pen.place(control), end = pen.place(to);
            pen.out.curve(from.x + (c.x - from.x) * 2 / 3, from.y + (c.y - from.y) * 2 / 3,
                          end.x + (c.x - end.x) * 2 / 3, end.y + (c.y - end.y) * 2 / 3, end.x, end.y);
            pen.last = end;
            return 0;
        }
        static int cubic(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
                         void* self) {
            Pen& pen = *static_cast<Pen*>(self);
            Point a = pen.place(control1), b = pen.place(control2), end = pen.place(to);
            pen.out.curve(a.x, a.y, b.x, b.y, end.x, end.y);
            pen.last = end;
            return 0;
        }
    };

    FT_Face face_ = nullptr;
    hb_font_t* font_ = nullptr;
    double slant_;
    bool thickened_;
};

// ---- folders of fonts ------------------------------------------------------------------------------------

std::string textOf(const FcPattern* pattern, const char* object, int index = 0) {
    FcChar8* value = nullptr;
    return FcPatternGetString(pattern, object, index, &value) == FcResultMatch
               ? reinterpret_cast<char*>(value)
               : std::string();
}
int numberOf(const FcPattern* pattern, const char* object) {
    int value = 0;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : 0;
}

struct Deleter {
    void operator()(FcConfig* p) const { FcConfigDestroy(p); }
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
    void operator()(FcFontSet* p) const { FcFontSetDestroy(p); }
    void operator()(FcObjectSet* p) const { FcObjectSetDestroy(p); }
};
template <class T>
using Owned = std::unique_ptr<T, Deleter>;

/// The folder of the set-up's fonts, or another that the environment names.
std::string fontsFolder() {
    const char* other = std::getenv("KAZ_FONTS");
    return other ? other : KAZ_FONTS;
}

std::string inXml(const std::string& text) {
    std::string result;
    for (char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else
            result += c;
    }
    return result;
}

class Collection {
  public:
    /// `folders` in the words of fontconfig's own configuration.
    explicit Collection(const std::string& folders) : config_(FcConfigCreate()) {
        std::string text =
            "<fontconfig>" + folders + "<cachedir prefix=\"xdg\">fontconfig</cachedir></fontconfig>";
        if (!config_ ||
            !FcConfigParseAndLoadFromMemory(config_.get(), reinterpret_cast<const FcChar8*>(text.c_str()),
                                            FcTrue) ||
            !FcConfigBuildFonts(config_.get()))
            throw std::runtime_error("The fonts cannot be listed.");
    }

    std::set<std::string> families() const {
        std::set<std::string> result;
        Owned<FcPattern> any(FcPatternCreate());
        Owned<FcObjectSet> names(FcObjectSetBuild(FC_FAMILY, nullptr));
        Owned<FcFontSet> fonts(FcFontList(config_.get(), any.get(), names.get()));
        for (int i = 0; fonts && i < fonts->nfont; ++i) result.insert(textOf(fonts->fonts[i], FC_FAMILY));
        return result;
    }

    /// The nearest to a style first; scalable ones alone.
    Owned<FcFontSet> sorted(const Style& style) const {
        Owned<FcPattern> wanted(FcPatternCreate());
        FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(style.family.c_str()));
        FcPatternAddInteger(wanted.get(), FC_WEIGHT, style.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(wanted.get(), FC_SLANT, style.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(wanted.get(), FC_OUTLINE, FcTrue);
        FcDefaultSubstitute(wanted.get());
        FcResult result = FcResultMatch;
        return Owned<FcFontSet>(FcFontSort(config_.get(), wanted.get(), FcFalse, nullptr, &result));
    }

  private:
    Owned<FcConfig> config_;
};

// ---- all of them -----------------------------------------------------------------------------------------

class Fonts {
  public:
    static Fonts& all() {
        static Fonts fonts;
        return fonts;
    }

    const std::optional<std::string>& find(const std::string& family) {
        auto known = found_.find(family);
        if (known == found_.end()) known = found_.emplace(family, search(family)).first;
        return known->second;
    }

    std::vector<std::string> families() {
        std::set<std::string> names = own_.families();
        names.merge(machine().families());
        return {names.begin(), names.end()};
    }

    const Face& face(const Style& style, std::u32string_view characters) {
        Style exact = style;
        exact.family = find(style.family).value_or(kDefaultFamily);
        const Face& first = load(*at(exact, 0), exact);
        if (characters.empty()) return first;
        for (std::u32string_view part : {characters, characters.substr(0, 1)})
            for (std::size_t i = 0; FcPattern* font = at(exact, i); ++i) {
                FcCharSet* has = nullptr;
                FcBool scalable = FcFalse;
                FcPatternGetBool(font, FC_SCALABLE, 0, &scalable);
                if (!scalable || FcPatternGetCharSet(font, FC_CHARSET, 0, &has) != FcResultMatch) continue;
                if (std::all_of(part.begin(), part.end(),
                                [&](char32_t c) { return FcCharSetHasChar(has, c); }))
                    return load(*font, exact);
            }
        return first;
    }

  private:
    std::optional<std::string> search(const std::string& family) {
        for (std::string_view name : kNamesOfDefault)
            if (sameName(name, family)) return kDefaultFamily;
        for (const std::string& name : own_.families())
            if (sameName(name, family)) return name;
        for (const std::string& name : machine().families())
            if (sameName(name, family)) return name;
        for (const Counterpart& c : kCounterparts)
            if (sameName(c.family, family)) return c.ours;
        return std::nullopt;
    }

    Collection& machine() {
        if (!machine_)
            machine_.emplace(
                "<dir>/usr/share/fonts</dir><dir>/usr/local/share/fonts</dir><dir prefix=\"xdg\">fonts</dir>"
                "<dir>~/.fonts</dir>");
        return *machine_;
    }

    struct Order {
        Owned<FcFontSet> first, second; // the set-up's or the machine's
    };
    using Key = std::tuple<std::string, bool, bool>;

    // The font at a place in the order of preference; null behind the last.
    FcPattern* at(const Style& style, std::size_t index) {
        Order& order = orders_[Key(style.family, style.bold, style.italic)];
        if (!order.first) {
            order.first = own_.sorted(style);
            // A family of the machine's precedes the set-up's fonts.
            if (order.first && order.first->nfont &&
                !sameName(textOf(order.first->fonts[0], FC_FAMILY), style.family)) {
                order.second = std::move(order.first);
                order.first = machine().sorted(style);
            }
        }
        auto count = [](const Owned<FcFontSet>& set) {
            return set ? static_cast<std::size_t>(set->nfont) : 0;
        };
        if (index < count(order.first)) return order.first->fonts[index];
        if (!order.second) order.second = machine().sorted(style);
        index -= count(order.first);
        if (index < count(order.second)) return order.second->fonts[index];
        if (count(order.first) + count(order.second) == 0)
            throw std::runtime_error("There is no font; the set-up's are missing in " + fontsFolder() + ".");
        return nullptr;
    }

    const Face& load(FcPattern& font, const Style& style) {
        std::string path = textOf(&font, FC_FILE);
        int index = numberOf(&font, FC_INDEX);
        bool slanted = style.italic && numberOf(&font, FC_SLANT) == FC_SLANT_ROMAN;
        bool thickened = style.bold && numberOf(&font, FC_WEIGHT) < FC_WEIGHT_DEMIBOLD;
        auto& face = faces_[{path, index, slanted, thickened}];
        if (!face) face = std::make_unique<FileFace>(freeType_.library, path, index, slanted, thickened);
        return *face;
    }

    FreeType freeType_;
    Collection own_{"<dir>" + inXml(fontsFolder()) + "</dir>"};
    std::optional<Collection> machine_;
    std::map<std::string, std::optional<std::string>> found_; // by the name asked for
    std::map<Key, Order> orders_;
    std::map<std::tuple<std::string, int, bool, bool>, std::unique_ptr<Face>> faces_;
};

} // namespace

const Face& faceFor(const Style& style) { return Fonts::all().face(style, {}); }
const Face& faceFor(const Style& style, std::u32string_view characters) {
    return Fonts::all().face(style, characters);
}

std::string familyFor(std::string_view family) {
    return Fonts::all().find(std::string(family)).value_or(kDefaultFamily);
}
bool knowsFamily(std::string_view family) { return Fonts::all().find(std::string(family)).has_value(); }
std::vector<std::string> families() { return Fonts::all().families(); }

} // namespace typeset
