#include <typeset/text.h>

#include <gtest/gtest.h>
#include <hb-ot.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

using namespace typeset;

namespace {

// What HarfBuzz itself adds up to, in the set-up's font.
double advances(const std::string& text, double size, const std::string& file = "DejaVuSans.ttf") {
    hb_blob_t* blob = hb_blob_create_from_file_or_fail((KAZ_FONTS "/truetype/dejavu/" + file).c_str());
    if (!blob) throw std::runtime_error(file + " is missing");
    hb_face_t* face = hb_face_create(blob, 0);
    hb_font_t* font = hb_font_create(face);
    hb_buffer_t* buffer = hb_buffer_create();
    hb_buffer_add_utf8(buffer, text.data(), int(text.size()), 0, -1);
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(font, buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_position_t* places = hb_buffer_get_glyph_positions(buffer, &count);
    double sum = 0;
    for (unsigned i = 0; i < count; ++i) sum += places[i].x_advance;
    sum *= size / hb_face_get_upem(face);
    hb_buffer_destroy(buffer);
    hb_font_destroy(font);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    return sum;
}

struct Point {
    double x, y;
};
bool operator<(const Point& a, const Point& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }

// The ends of all curves, contour by contour.
struct Contours final : Outlines {
    std::vector<std::vector<Point>> all;
    bool open = false;

    Contours(const Text& text, double x = 0, double y = 0) { text.outline(x, y, *this); }
    void move(double x, double y) override {
        EXPECT_FALSE(open);
        open = true;
        all.push_back({{x, y}});
    }
    void line(double x, double y) override { all.back().push_back({x, y}); }
    void curve(double, double, double, double, double x, double y) override { line(x, y); }
    void close() override { open = false; }

    std::vector<Point> points() const {
        std::vector<Point> result;
        for (const auto& contour : all) result.insert(result.end(), contour.begin(), contour.end());
        std::sort(result.begin(), result.end());
        return result;
    }
    // Positive for the contours that turn clockwise, y downwards.
    double area() const {
        double sum = 0;
        for (const auto& c : all)
            for (std::size_t i = 0; i < c.size(); ++i) {
                const Point &p = c[i], &q = c[(i + 1) % c.size()];
                sum += (p.x * q.y - p.y * q.x) / 2;
            }
        return sum;
    }
};

void expectSame(const Contours& a, const Contours& b) {
    std::vector<Point> p = a.points(), q = b.points();
    ASSERT_EQ(p.size(), q.size());
    for (std::size_t i = 0; i < p.size(); ++i) {
        EXPECT_NEAR(p[i].x, q[i].x, 1e-9);
        EXPECT_NEAR(p[i].y, q[i].y, 1e-9);
    }
}

Style sized(double size) { return {"", size, false, false, false}; }
double width(const std::string& text, double size = 20) { return Text(text, sized(size)).width(); }
using Lines = std::vector<std::string>;

} // namespace

TEST(Text, IsAsWideAsHarfBuzzSays) {
    for (const char* text : {"AVA Ça va, Łódź, fine", "Καλημέρα κόσμε, ἀρχή", "Съешь ещё этих мягких булок",
                             "مرحبا بالعالم السَّلامُ عليكم", "שָׁלוֹם עולם", "Բարեւ աշխարհ", "გამარჯობა"})
        for (double size : {9.5, 12.0, 100.0}) {
            EXPECT_GT(width(text, size), 4 * size) << text;
            EXPECT_NEAR(width(text, size), advances(text, size), 1e-6) << text;
        }
    EXPECT_NEAR(Text("Times", {"times new roman", 20}).width(), advances("Times", 20, "DejaVuSerif.ttf"),
                1e-6);
    EXPECT_NEAR(Text("Bold", {"", 20, true}).width(), advances("Bold", 20, "DejaVuSans-Bold.ttf"), 1e-6);
    EXPECT_LT(width("AVA"), 2 * width("A") + width("V")) << "the letters are kerned";
}

TEST(Text, MixesDirections) {
    // Each word keeps its own direction, the sentence that of its first letter.
    EXPECT_NEAR(width("abc אבג def"), width("abc ") + width("אבג") + width(" def"), 1e-9);
    Contours both(Text("אב", sized(20)));
    Contours separate(Text("ב", sized(20)));
    Text("א", sized(20)).outline(width("ב"), 0, separate);
    expectSame(both, separate);
    // Digits run to the right even there: "12" to the left of the letter.
    Contours digits(Text("א12", sized(20))), placed(Text("12", sized(20)));
    Text("א", sized(20)).outline(width("12"), 0, placed);
    expectSame(digits, placed);
}

TEST(Text, JoinsArabicLetters) { EXPECT_LT(width("ببب"), 3 * width("ب") - 1); }

TEST(Text, PlacesMarksOnLetters) {
    EXPECT_NEAR(width("x\u0302"), width("x"), 1e-9);
    expectSame(Contours(Text("e\u0301", sized(20))), Contours(Text("é", sized(20))));
    // Above the letter, and above its middle.
    double letterTop = 0, left = 1e9, right = 0;
    for (Point p : Contours(Text("x", sized(20))).points()) letterTop = std::min(letterTop, p.y);
    for (Point p : Contours(Text("x\u0302", sized(20))).points())
        if (p.y < letterTop) left = std::min(left, p.x), right = std::max(right, p.x);
    EXPECT_NEAR((left + right) / 2, width("x") / 2, 0.5);
}

TEST(Text, WrapsAtWords) {
    Style style = sized(10);
    double limit = Text("The quick brown", style).width() + 0.01;
    Text text("The quick brown fox jumps over the lazy dog", style, limit);
    EXPECT_EQ(text.lines(), (Lines{"The quick brown", "fox jumps over", "the lazy dog"}));
    EXPECT_LE(text.width(), limit);
    EXPECT_EQ(text.height(), 3 * metrics(style).lineHeight);
    EXPECT_EQ(Text("well-known", style, Text("known", style).width() + 0.01).lines(),
              (Lines{"well-", "known"}));
    EXPECT_EQ(Text("a    b", style, Text("a", style).width() + 0.01).lines(), (Lines{"a", "b"}))
        << "spaces hang";
}

TEST(Text, BreaksWordsThatAreTooWide) {
    Style style = sized(10);
    EXPECT_EQ(Text("a mmmmm b", style, Text("mmm", style).width() + 0.01).lines(),
              (Lines{"a", "mmm", "mm b"}));
    // One character at least; its marks stay with it.
    EXPECT_EQ(Text("xy\u0302z", style, 0.5).lines(), (Lines{"x", "y\u0302", "z"}));
}

TEST(Text, EndsLinesWhereTheTextDoes) {
    EXPECT_EQ(Text("a\nb\rc\r\n\nd\n", {}).lines(), (Lines{"a", "b", "c", "", "d", ""}));
    EXPECT_EQ(width("mm\ni"), width("mm"));
    EXPECT_TRUE(Text("", {}).lines().empty());
    EXPECT_EQ(Text("", {}).height(), 0);
    EXPECT_EQ(Text("", {}).width(), 0);
    EXPECT_GT(width("a "), width("a")) << "written spaces count";
    EXPECT_EQ(width("a\tb"), width("a b"));
}

TEST(Text, IsCutWithAnEllipsis) {
    Style style = sized(10);
    double limit = Text("The quick b…", style).width() + 0.01;
    Text text("The quick brown fox\nshort", style, limit, TooWide::isCut);
    EXPECT_EQ(text.lines(), (Lines{"The quick b…", "short"}));
    EXPECT_EQ(Text("abc", style, 0.1, TooWide::isCut).lines(), (Lines{"…"}));
    EXPECT_EQ(Text("abc", style, 0, TooWide::isCut).lines(), (Lines{"abc"}));
}

TEST(Text, RightToLeftLinesEndAtTheRight) {
    Style style = sized(20);
    Contours wrapped(Text("אב", style, 300)), plain(Text("אב", style), 300 - Text("אב", style).width());
    expectSame(wrapped, plain);
    Contours cut(Text("אב", style, 300, TooWide::isCut));
    expectSame(cut, plain);
}

TEST(Text, TurnsOutlinesClockwise) {
    // So that an underline adds to the letters that it crosses.
    double letter = Contours(Text("l", sized(20))).area(),
           line = Contours(Text("l", {"", 20, false, false, true})).area();
    EXPECT_GT(letter, 0);
    double thickness = 1;
    EXPECT_NEAR(line - letter, thickness * width("l"), 1e-6);
}

TEST(Text, SlantsFontsWithoutItalics) {
    Contours upright(Text("l", sized(20))), slanted(Text("l", {"", 20, false, true}));
    ASSERT_EQ(upright.all.size(), slanted.all.size());
    for (std::size_t i = 0; i < upright.all[0].size(); ++i)
        EXPECT_NEAR(slanted.all[0][i].x, upright.all[0][i].x - 0.2 * upright.all[0][i].y, 1e-9);
}

TEST(Text, TakesAnyBytesAndSizes) {
    expectSame(Contours(Text("a\xFF\xC0\x80\xED\xA0\x80\xF5z", {})),
               Contours(Text("a\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDz", {})));
    expectSame(Contours(Text("\xE2\x82", {})), Contours(Text("\uFFFD\uFFFD", {})));
    for (double size : {0.0, -3.0, std::nan("")}) EXPECT_EQ(width("abc", size), width("abc", kDefaultSize));
    EXPECT_EQ(width("abc", 1e30), width("abc", kLargestSize));
    EXPECT_EQ(Text("abc", {}, std::nan("")).lines().size(), 1u);
}

TEST(Text, TakesAnyNumberOfMarks) {
    std::string text = "e";
    for (int i = 0; i < 200000; ++i) text += "\u0301";
    EXPECT_LT(width(text), 1.1 * width("e")); // in seconds, not in minutes
}

TEST(Fonts, AreFoundByName) {
    EXPECT_EQ(familyFor(""), "DejaVu Sans");
    EXPECT_EQ(familyFor("system"), "DejaVu Sans");
    EXPECT_EQ(familyFor("dejavu SERIF"), "DejaVu Serif");
    EXPECT_TRUE(knowsFamily("Courier"));
    EXPECT_FALSE(knowsFamily("No Such Family"));
    EXPECT_EQ(familyFor("No Such Family"), kDefaultFamily);
    std::vector<std::string> names = families();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::count(names.begin(), names.end(), "DejaVu Sans Mono"), 1);
}

TEST(Fonts, LendEachOtherCharacters) {
    // DejaVu Serif has no Arabic, DejaVu Sans has.
    EXPECT_NEAR(Text("سلام", {"DejaVu Serif", 20}).width(), advances("سلام", 20), 1e-6);
}

TEST(Fonts, HaveMetricsInWholePixels) {
    Metrics m = metrics(sized(12)); // 1901 and 483 of 2048 units
    EXPECT_EQ(m.ascent, 11);
    EXPECT_EQ(m.descent, 3);
    EXPECT_EQ(m.lineHeight, 14);
}
