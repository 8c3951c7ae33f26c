// Graphics and RGBSurface: two ways to a picture's pixels.
#include "drawing.h"
#include "framework/picture.h"
#include "object2d.h"
#include "picture_data.h"
#include "table.h"

#include <typeset/text.h>

#include <cstdio>
#include <set>

namespace studio {

namespace {

// Both see a part of a picture, the whole one unless the program asks for less.
struct View {
    REALobject picture = nullptr;
    shapes::Box bounds = {}; // places count from its corner
    shapes::Box clip = {};   // what may be changed
};

REALobject viewOf(const char* className, REALobject picture) {
    REALobject result = newInstance(className);
    const Pixels& pixels = pictureOf(picture).pixels;
    shapes::Box whole = {0, 0, double(pixels.width), double(pixels.height)};
    dataOf<View>(result) = {Heap::retain(picture), whole, whole};
    return result;
}

Picture& target(REALobject self) {
    REALobject picture = dataOf<View>(self).picture;
    if (!picture) raise("NilObjectException", "this " + classNameOf(self) + " belongs to no Picture");
    return pictureOf(picture);
}

shapes::Box box(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    return {double(x), double(y), double(width), double(height)};
}

// A box of the view within the picture, and what of it may be changed.
shapes::Box placed(REALobject self, shapes::Box box) {
    const View& view = dataOf<View>(self);
    return {box.x + view.bounds.x, box.y + view.bounds.y, box.width, box.height};
}
shapes::Box allowed(REALobject self, shapes::Box box) {
    return shapes::intersection(placed(self, box), dataOf<View>(self).clip);
}

void fillRect(REALobject self, shapes::Box box) {
    Picture& picture = target(self);
    shapes::Box to = allowed(self, box);
    picture.pixels.fillRect(Pixels::Place(to.x), Pixels::Place(to.y), Pixels::Place(to.width),
                            Pixels::Place(to.height), picture.foreColor);
}

Drawing drawing(REALobject self) {
    Picture& picture = target(self);
    const View& view = dataOf<View>(self);
    return Drawing(picture, {view.bounds.x, view.bounds.y}, view.clip);
}

void drawPicture(REALobject self, REALobject image, std::int32_t x, std::int32_t y, std::int32_t w,
                 std::int32_t h, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh) {
    constexpr std::int32_t kWhole = -10000;
    if (!image) raise("NilObjectException", "the picture to draw is nil");
    Picture& source = pictureOf(image);
    if (sw == kWhole) sw = source.pixels.width;
    if (sh == kWhole) sh = source.pixels.height;
    Picture& picture = target(self);
    auto draw = [&](const Pixels& pixels) {
        if (w != sw || h != sh) return drawing(self).draw(pixels, box(x, y, w, h), box(sx, sy, sw, sh));
        shapes::Box all = placed(self, box(x, y, w, h)), to = allowed(self, box(x, y, w, h));
        picture.pixels.draw(pixels, Pixels::Place(to.x), Pixels::Place(to.y), Pixels::Place(to.width),
                            Pixels::Place(to.height), Pixels::Place(sx + to.x - all.x),
                            Pixels::Place(sy + to.y - all.y));
    };
    if (source.mask || &source == &picture)
        draw(masked(image));
    else
        draw(source.pixels);
}

REALobject clipped(REALobject self, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    target(self); // there must be one
    shapes::Box part = box(x, y, std::max(width, 0), std::max(height, 0));
    REALobject result = newInstance("Graphics");
    dataOf<View>(result) = {Heap::retain(dataOf<View>(self).picture), placed(self, part),
                            allowed(self, part)};
    return result;
}

std::uint32_t pixel(REALobject self, std::int32_t x, std::int32_t y) {
    const Pixels& pixels = target(self).pixels;
    shapes::Box at = allowed(self, box(x, y, 1, 1));
    return at.width > 0 && at.height > 0 ? pixels.color(int(at.x), int(at.y)) : 0xFF000000;
}
void setPixel(REALobject self, std::int32_t x, std::int32_t y, std::uint32_t color) {
    Pixels& pixels = target(self).pixels;
    shapes::Box at = allowed(self, box(x, y, 1, 1));
    if (at.width > 0 && at.height > 0) pixels.setColor(int(at.x), int(at.y), color);
}

// ---- shapes ----------------------------------------------------------------------------------------------

void fill(REALobject self, const shapes::Shape& shape) { drawing(self).fill(shape); }

shapes::Pen pen(REALobject self) { return {double(target(self).penWidth), double(target(self).penHeight)}; }

// The language counts a polygon's numbers from 1: x, y, x, y; the element 0 is not used.
std::vector<shapes::Point> corners(REALobject points) {
    if (!points) raise("NilObjectException", "the array of points is nil");
    std::vector<shapes::Point> result;
    for (std::int32_t i = 1; i + 1 < arrayOf(points).count; i += 2)
        result.push_back(
            {double(arrayGet(arrayOf(points), i).i32), double(arrayGet(arrayOf(points), i + 1).i32)});
    return result;
}

void drawObject(REALobject self, REALobject object, std::int32_t x, std::int32_t y) {
    Picture& picture = target(self);
    std::uint32_t before = picture.foreColor;
    drawObject2D(object, x, y, [&](const shapes::Shape& shape, std::uint32_t color) {
        picture.foreColor = color;
        fill(self, shape);
        picture.foreColor = before;
    });
}

// ---- text ------------------------------------------------------------------------------------------------

// Calls `body`; what typesetting throws, for want of a font, becomes the program's exception.
template <class Body>
auto withFonts(Body body) {
    try {
        return body();
    } catch (const std::runtime_error& error) {
        raise("UnsupportedOperationException", error.what());
    }
}

void drawString(REALobject self, REALstring text, double x, double y, double wrapWidth, bool condense) {
    Picture& picture = target(self);
    auto tooWide = condense ? typeset::TooWide::isCut : typeset::TooWide::wraps;
    withFonts([&] {
        typeset::Text lines(toUtf8(text), picture.textStyle, wrapWidth, tooWide);
        drawing(self).fill(lines, x, y);
    });
}

double stringWidth(REALobject self, REALstring text) {
    return withFonts([&] { return typeset::Text(toUtf8(text), target(self).textStyle).width(); });
}
double stringHeight(REALobject self, REALstring text, double wrapWidth) {
    return withFonts([&] { return typeset::Text(toUtf8(text), target(self).textStyle, wrapWidth).height(); });
}
double textAscent(REALobject self) {
    return withFonts([&] { return typeset::metrics(target(self).textStyle).ascent; });
}
double textHeight(REALobject self) {
    return withFonts([&] { return typeset::metrics(target(self).textStyle).lineHeight; });
}

// A program written for a machine with other fonts goes on with the default; its user is told once.
void setTextFont(REALobject self, std::uint32_t, REALstring name) {
    static std::set<std::string> told;
    std::string family = toUtf8(name);
    target(self).textStyle.family = family;
    if (!withFonts([&] { return typeset::knowsFamily(family); }) && told.insert(family).second)
        std::fprintf(stderr, "studio: there is no font \"%s\"; its text is drawn in %s\n", family.c_str(),
                     typeset::kDefaultFamily);
}

// One of the style's switches as a property.
template <bool typeset::Style::*Switch>
FrameworkProperty styleSwitch(const char* name) {
    return property(
        name, "Boolean", [](REALobject self) { return target(self).textStyle.*Switch; },
        [](REALobject self, std::uint32_t, bool on) { target(self).textStyle.*Switch = on; });
}

std::int32_t fontCount() {
    return withFonts([] { return std::int32_t(typeset::families().size()); });
}
REALstring fontName(std::int32_t index) {
    std::vector<std::string> names = withFonts([] { return typeset::families(); });
    if (index < 0 || std::size_t(index) >= names.size())
        raise("OutOfBoundsException", "there is no font " + std::to_string(index));
    return makeString(names[std::size_t(index)]);
}

FrameworkClass viewClass(const char* name) {
    FrameworkClass table = classWithData<View>(name);
    table.destructor = +[](REALobject self) { heap().release(dataOf<View>(self).picture); };
    return table;
}

} // namespace

REALobject pictureGraphics(REALobject picture) { return viewOf("Graphics", picture); }
REALobject pictureSurface(REALobject picture) { return viewOf("RGBSurface", picture); }

namespace {

/// Draws on a picture. Places are in pixels from the upper left corner, with y downwards; what lies outside
/// is left out. The pen hangs to the right of and below the point that it draws.
///     Dim canvas As New Picture(200, 120, 32)
///     Dim g As Graphics = canvas.Graphics
FrameworkClass graphicsClass() {
    using I = std::int32_t;
    FrameworkClass table = viewClass("Graphics");
    table.properties = {
        /// The width of the part of the picture that is drawn on, in pixels.
        ///     Print Str(g.Width)
        property("Width", "Integer", [](REALobject self) { return I(dataOf<View>(self).bounds.width); }),
        /// The height of the part of the picture that is drawn on, in pixels.
        ///     Print Str(g.Height)
        property("Height", "Integer", [](REALobject self) { return I(dataOf<View>(self).bounds.height); }),
        /// The colour of everything that is drawn; black at first.
        ///     g.ForeColor = RGB(0, 102, 204)
        property(
            "ForeColor", "Color", [](REALobject self) { return target(self).foreColor; },
            [](REALobject self, std::uint32_t, std::uint32_t color) { target(self).foreColor = color; }),
        /// The width of the pen in pixels, at least 1.
        ///     g.PenWidth = 3
        property(
            "PenWidth", "Integer", [](REALobject self) { return target(self).penWidth; },
            [](REALobject self, std::uint32_t, I width) { target(self).penWidth = std::max(width, 1); }),
        /// The height of the pen in pixels, at least 1.
        ///     g.PenHeight = 3
        property(
            "PenHeight", "Integer", [](REALobject self) { return target(self).penHeight; },
            [](REALobject self, std::uint32_t, I height) { target(self).penHeight = std::max(height, 1); }),
        /// The font's family. If the machine does not have it, text is drawn in DejaVu Sans and standard
        /// error says so.
        ///     g.TextFont = "Times"
        property(
            "TextFont", "String", [](REALobject self) { return makeString(target(self).textStyle.family); },
            setTextFont),
        /// The size of text in pixels; 0 is 12.
        ///     g.TextSize = 24
        property(
            "TextSize", "Single", [](REALobject self) { return float(target(self).textStyle.size); },
            [](REALobject self, std::uint32_t, float size) { target(self).textStyle.size = double(size); }),
        /// Whether text is bold.
        ///     g.Bold = True
        styleSwitch<&typeset::Style::bold>("Bold"),
        /// Whether text is slanted.
        ///     g.Italic = True
        styleSwitch<&typeset::Style::italic>("Italic"),
        /// Whether text is underlined.
        ///     g.Underline = True
        styleSwitch<&typeset::Style::underline>("Underline"),
        /// The height of the font above the base line, in whole pixels.
        ///     Print Str(g.TextAscent)
        property("TextAscent", "Double", textAscent),
        /// The distance of two lines of text, in whole pixels.
        ///     Print Str(g.TextHeight)
        property("TextHeight", "Double", textHeight),
    };
    table.methods = {
        /// Draws a part of a picture, scaled to a width and height; a part of -10000 is the whole width or
        /// height. Raises NilObjectException without a picture.
        ///     g.DrawPicture(canvas, 100, 60, 50, 30, 0, 0, 200, 120)
        method("DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
               "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)",
               drawPicture),
        /// Draws a picture in its own size. Raises NilObjectException without one.
        ///     g.DrawPicture(New Picture(20, 20, 32), 10, 10)
        method("DrawPicture(Image As Picture, x As Integer, y As Integer)",
               [](REALobject self, REALobject image, I x, I y) {
                   if (!image) raise("NilObjectException", "the picture to draw is nil");
                   const Pixels& p = pictureOf(image).pixels;
                   drawPicture(self, image, x, y, p.width, p.height, 0, 0, p.width, p.height);
               }),
        /// Fills a rectangle.
        ///     g.FillRect(10, 10, 80, 40)
        method("FillRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) { fillRect(self, box(x, y, w, h)); }),
        /// Draws the frame of a rectangle, inside of it.
        ///     g.DrawRect(10, 10, 80, 40)
        method("DrawRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   double left = x, top = y, width = w, height = h;
                   double across = std::min(target(self).penWidth, w),
                          down = std::min(target(self).penHeight, h);
                   fillRect(self, {left, top, width, down});
                   fillRect(self, {left, top + height - down, width, height > down ? down : 0});
                   fillRect(self, {left, top + down, across, height - 2 * down});
                   fillRect(self, {left + width - across, top + down, width > across ? across : 0,
                                   height - 2 * down});
               }),
        /// Fills the oval that fits into a rectangle.
        ///     g.FillOval(10, 10, 80, 40)
        method("FillOval(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) { fill(self, shapes::oval(box(x, y, w, h))); }),
        /// Draws the frame of the oval that fits into a rectangle.
        ///     g.DrawOval(10, 10, 80, 40)
        method("DrawOval(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   fill(self, shapes::ovalFrame(box(x, y, w, h), pen(self)));
               }),
        /// Fills a rectangle whose corners are quarters of an oval of arcWidth by arcHeight.
        ///     g.FillRoundRect(10, 10, 80, 40, 16, 16)
        method("FillRoundRect(x As Integer, y As Integer, width As Integer, height As Integer, "
               "arcWidth As Integer, arcHeight As Integer)",
               [](REALobject self, I x, I y, I w, I h, I arcWidth, I arcHeight) {
                   fill(self, shapes::roundRect(box(x, y, w, h), {double(arcWidth), double(arcHeight)}));
               }),
        /// Draws the frame of a rectangle whose corners are quarters of an oval of arcWidth by arcHeight.
        ///     g.DrawRoundRect(10, 10, 80, 40, 16, 16)
        method("DrawRoundRect(x As Integer, y As Integer, width As Integer, height As Integer, "
               "arcWidth As Integer, arcHeight As Integer)",
               [](REALobject self, I x, I y, I w, I h, I arcWidth, I arcHeight) {
                   fill(self, shapes::roundRectFrame(box(x, y, w, h), {double(arcWidth), double(arcHeight)},
                                                     pen(self)));
               }),
        /// Draws a line with the pen.
        ///     g.DrawLine(0, 0, 200, 120)
        method("DrawLine(x1 As Integer, y1 As Integer, x2 As Integer, y2 As Integer)",
               [](REALobject self, I x1, I y1, I x2, I y2) {
                   fill(self, shapes::line({double(x1), double(y1)}, {double(x2), double(y2)}, pen(self)));
               }),
        /// Fills a polygon given as x, y, x, y from element 1 on. Raises NilObjectException without an
        /// array.
        ///     g.FillPolygon(Array(0, 20, 20, 60, 20, 40, 60))
        method("FillPolygon(points() As Integer)",
               [](REALobject self, REALobject points) { fill(self, shapes::polygon(corners(points))); }),
        /// Draws the closed frame of a polygon given as x, y, x, y from element 1 on. Raises
        /// NilObjectException without an array.
        ///     g.DrawPolygon(Array(0, 20, 20, 60, 20, 40, 60))
        method("DrawPolygon(points() As Integer)",
               [](REALobject self, REALobject points) {
                   fill(self, shapes::polygonFrame(corners(points), pen(self)));
               }),
        /// Draws a shape with its own colours; x and y are added to its place.
        ///     g.DrawObject(New OvalShape, 100, 80)
        method("DrawObject(object As Object2D, x As Integer = 0, y As Integer = 0)", drawObject),
        /// A Graphics for a part of the picture: its places count from the part's corner, and it changes
        /// nothing outside.
        ///     Dim part As Graphics = g.Clip(50, 30, 100, 60)
        method("Clip(x As Integer, y As Integer, width As Integer, height As Integer) As Graphics", clipped),
        /// Makes a rectangle white, or clear in a picture with an alpha channel.
        ///     g.ClearRect(10, 10, 80, 40)
        method("ClearRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   Picture& picture = target(self);
                   shapes::Box to = allowed(self, box(x, y, w, h));
                   picture.pixels.clearRect(Pixels::Place(to.x), Pixels::Place(to.y), Pixels::Place(to.width),
                                            Pixels::Place(to.height), picture.hasAlpha ? 0 : 0xFFFFFFFF);
               }),
        /// Draws text with its base line at y. A wrapWidth above 0 breaks lines at that many pixels or,
        /// with condense, cuts the text off there with an ellipsis.
        ///     g.DrawString("Figs and pears", 10, 30, 100)
        method("DrawString(text As String, x As Double, y As Double, wrapWidth As Double = 0, "
               "condense As Boolean = False)",
               drawString),
        /// The width of the text in pixels.
        ///     Print Str(g.StringWidth("Figs"))
        method("StringWidth(text As String) As Double", stringWidth),
        /// The height in pixels of the text, broken into lines of a width; 0 breaks nothing.
        ///     Print Str(g.StringHeight("Figs and pears", 40))
        method("StringHeight(text As String, wrapWidth As Double) As Double", stringHeight),
        /// The colour of a pixel; outside of the picture it is black, and setting one there does nothing.
        ///     g.Pixel(3, 4) = &cFF0000
        method("Pixel(x As Integer, y As Integer) As Color", pixel, setPixel),
    };
    return table;
}

// Every channel of every pixel through a table of its own.
void transform(REALobject self, REALobject red, REALobject green, REALobject blue) {
    std::uint8_t tables[3][256];
    REALobject given[3] = {red, green, blue};
    for (int channel = 0; channel < 3; ++channel) {
        if (!given[channel] || arrayOf(given[channel]).count < 256)
            raise("OutOfBoundsException", "expected 256 values to transform a channel");
        for (std::int32_t i = 0; i < 256; ++i)
            tables[channel][i] = std::uint8_t(std::clamp(arrayGet(arrayOf(given[channel]), i).i32, 0, 255));
    }
    Pixels& pixels = target(self).pixels;
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x) {
            std::uint32_t c = pixels.color(x, y);
            pixels.setColor(x, y,
                            (c & 0xFF000000) | std::uint32_t(tables[0][c >> 16 & 255] << 16) |
                                std::uint32_t(tables[1][c >> 8 & 255] << 8) | tables[2][c & 255]);
        }
}

// Fills the pixels that are joined to one and have its colour.
void floodFill(REALobject self, std::int32_t x, std::int32_t y, std::uint32_t color) {
    Pixels& pixels = target(self).pixels;
    if (!pixels.contains(x, y)) return;
    std::uint32_t old = pixels.color(x, y);
    if (old == color) return;
    std::vector<std::pair<int, int>> waiting = {{x, y}};
    while (!waiting.empty()) {
        auto [px, py] = waiting.back();
        waiting.pop_back();
        if (!pixels.contains(px, py) || pixels.color(px, py) != old) continue;
        pixels.setColor(px, py, color);
        if (pixels.color(px, py) == old) return; // the colour cannot be told apart once it is stored
        for (auto [dx, dy] : {std::pair(1, 0), {-1, 0}, {0, 1}, {0, -1}})
            waiting.emplace_back(px + dx, py + dy);
    }
}

/// The pixels of a picture one by one. Places count from the upper left corner.
///     Dim canvas As New Picture(64, 48, 32)
///     Dim surface As RGBSurface = canvas.RGBSurface
FrameworkClass surfaceClass() {
    FrameworkClass table = viewClass("RGBSurface");
    table.properties = {
        /// The width in pixels.
        ///     Print Str(surface.Width)
        property("Width", "Integer", [](REALobject self) { return std::int32_t(target(self).pixels.width); }),
        /// The height in pixels.
        ///     Print Str(surface.Height)
        property("Height", "Integer",
                 [](REALobject self) { return std::int32_t(target(self).pixels.height); }),
    };
    table.methods = {
        /// The colour of a pixel; outside of the picture it is black, and setting one there does nothing.
        ///     surface.Pixel(3, 4) = &cFF0000
        method("Pixel(x As Integer, y As Integer) As Color", pixel, setPixel),
        /// Gives a colour to a pixel and all that are joined to it and have the same colour.
        ///     surface.FloodFill(10, 10, &c3366FF)
        method("FloodFill(x As Integer, y As Integer, color As Color)", floodFill),
        /// Replaces each of red, green and blue by the entry of a table of 256 values. Raises
        /// OutOfBoundsException for a shorter table.
        ///     Dim inverse(255) As Integer
        ///     For i As Integer = 0 To 255
        ///       inverse(i) = 255 - i
        ///     Next
        ///     surface.Transform(inverse)
        method("Transform(map() As Integer)",
               [](REALobject self, REALobject map) { transform(self, map, map, map); }),
        /// Replaces red, green and blue by the entries of a table of 256 values for each. Raises
        /// OutOfBoundsException for a shorter table.
        ///     Dim same(255), half(255) As Integer
        ///     For i As Integer = 0 To 255
        ///       same(i) = i
        ///       half(i) = i \ 2
        ///     Next
        ///     surface.Transform(same, half, half)
        method("Transform(red() As Integer, green() As Integer, blue() As Integer)", transform),
    };
    return table;
}

/// The fonts of the machine.
FrameworkFunctions fontFunctions() {
    return {
        /// How many families of fonts there are.
        ///     Print Str(FontCount > 0)
        method("FontCount() As Integer", fontCount),
        /// The name of a family, by an index from 0. Raises OutOfBoundsException if there is no such font.
        ///     Print Str(Font(0).Len > 0)
        method("Font(index As Integer) As String", fontName),
    };
}

const Registrar registrar([] { return FrameworkPart{{graphicsClass(), surfaceClass()}, fontFunctions()}; });

} // namespace

} // namespace studio
