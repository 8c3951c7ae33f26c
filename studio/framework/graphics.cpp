// Graphics and RGBSurface: two ways to a picture's pixels.
#include "framework/picture.h"
#include "picture_data.h"
#include "table.h"

namespace studio {

namespace {

// Both are just a reference to their picture.
struct View {
    REALobject picture = nullptr;
};

REALobject viewOf(const char* className, REALobject picture) {
    REALobject result = newInstance(className);
    dataOf<View>(result).picture = Heap::retain(picture);
    return result;
}

Picture& target(REALobject self) {
    REALobject picture = dataOf<View>(self).picture;
    if (!picture) raise("NilObjectException", "this " + classNameOf(self) + " belongs to no Picture");
    return pictureOf(picture);
}

void drawPicture(REALobject self, REALobject image, std::int32_t x, std::int32_t y, std::int32_t w,
                 std::int32_t h, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh) {
    constexpr std::int32_t kWhole = -10000;
    if (!image) raise("NilObjectException", "the picture to draw is nil");
    Picture& source = pictureOf(image);
    if (sw == kWhole) sw = source.pixels.width;
    if (sh == kWhole) sh = source.pixels.height;
    if (source.mask || &source == &target(self))
        target(self).pixels.draw(masked(image), x, y, w, h, sx, sy, sw, sh);
    else
        target(self).pixels.draw(source.pixels, x, y, w, h, sx, sy, sw, sh);
}

std::uint32_t pixel(REALobject self, std::int32_t x, std::int32_t y) {
    Pixels& pixels = target(self).pixels;
    return pixels.contains(x, y) ? pixels.color(x, y) : 0xFF000000;
}
void setPixel(REALobject self, std::int32_t x, std::int32_t y, std::uint32_t color) {
    Pixels& pixels = target(self).pixels;
    if (pixels.contains(x, y)) pixels.setColor(x, y, color);
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

FrameworkClass graphicsClass() {
    using I = std::int32_t;
    FrameworkClass table = viewClass("Graphics");
    table.properties = {
        property("Width", "Integer", [](REALobject self) { return I(target(self).pixels.width); }),
        property("Height", "Integer", [](REALobject self) { return I(target(self).pixels.height); }),
        property(
            "ForeColor", "Color", [](REALobject self) { return target(self).foreColor; },
            [](REALobject self, std::uint32_t, std::uint32_t color) { target(self).foreColor = color; }),
        property(
            "PenWidth", "Integer", [](REALobject self) { return target(self).penWidth; },
            [](REALobject self, std::uint32_t, I width) { target(self).penWidth = std::max(width, 1); }),
        property(
            "PenHeight", "Integer", [](REALobject self) { return target(self).penHeight; },
            [](REALobject self, std::uint32_t, I height) { target(self).penHeight = std::max(height, 1); }),
    };
    table.methods = {
        method("DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
               "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)",
               drawPicture),
        method("DrawPicture(Image As Picture, x As Integer, y As Integer)",
               [](REALobject self, REALobject image, I x, I y) {
                   if (!image) raise("NilObjectException", "the picture to draw is nil");
                   const Pixels& p = pictureOf(image).pixels;
                   drawPicture(self, image, x, y, p.width, p.height, 0, 0, p.width, p.height);
               }),
        method("FillRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   target(self).pixels.fillRect(x, y, w, h, target(self).foreColor);
               }),
        method("DrawRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   Picture& p = target(self);
                   I across = std::min(p.penWidth, w), down = std::min(p.penHeight, h);
                   p.pixels.fillRect(x, y, w, down, p.foreColor);
                   p.pixels.fillRect(x, y + h - down, w, h > down ? down : 0, p.foreColor);
                   p.pixels.fillRect(x, y + down, across, h - 2 * down, p.foreColor);
                   p.pixels.fillRect(x + w - across, y + down, w > across ? across : 0, h - 2 * down,
                                     p.foreColor);
               }),
        method("FillOval(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   target(self).pixels.fillOval(x, y, w, h, target(self).foreColor);
               }),
        method("DrawOval(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   target(self).pixels.drawOval(x, y, w, h, target(self).penWidth, target(self).foreColor);
               }),
        method("DrawLine(x1 As Integer, y1 As Integer, x2 As Integer, y2 As Integer)",
               [](REALobject self, I x1, I y1, I x2, I y2) {
                   Picture& p = target(self);
                   p.pixels.drawLine(x1, y1, x2, y2, p.penWidth, p.penHeight, p.foreColor);
               }),
        method("ClearRect(x As Integer, y As Integer, width As Integer, height As Integer)",
               [](REALobject self, I x, I y, I w, I h) {
                   target(self).pixels.clearRect(x, y, w, h, target(self).hasAlpha ? 0 : 0xFFFFFFFF);
               }),
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

FrameworkClass surfaceClass() {
    FrameworkClass table = viewClass("RGBSurface");
    table.properties = {
        property("Width", "Integer", [](REALobject self) { return std::int32_t(target(self).pixels.width); }),
        property("Height", "Integer",
                 [](REALobject self) { return std::int32_t(target(self).pixels.height); }),
    };
    table.methods = {
        method("Pixel(x As Integer, y As Integer) As Color", pixel, setPixel),
        method("FloodFill(x As Integer, y As Integer, color As Color)", floodFill),
        method("Transform(map() As Integer)",
               [](REALobject self, REALobject map) { transform(self, map, map, map); }),
        method("Transform(red() As Integer, green() As Integer, blue() As Integer)", transform),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{graphicsClass(), surfaceClass()}}; });

} // namespace

} // namespace studio
