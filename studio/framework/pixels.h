// A rectangle of pixels and drawing into it: 4 bytes a pixel, alpha first, premultiplied; the top row first.
#pragma once

#include <cstdint>
#include <vector>

namespace studio {

struct Pixels {
    int width = 0, height = 0;
    std::vector<std::uint8_t> bytes;

    void resize(int w, int h);
    std::uint8_t* at(int x, int y) {
        return &bytes[(std::size_t(y) * std::size_t(width) + std::size_t(x)) * 4];
    }
    const std::uint8_t* at(int x, int y) const { return const_cast<Pixels*>(this)->at(x, y); }
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }

    // Colours are the language's: 0xAARRGGBB, not premultiplied.
    std::uint32_t color(int x, int y) const;
    void setColor(int x, int y, std::uint32_t color); // replaces
    void blend(int x, int y, std::uint32_t color);    // draws over; ignores pixels outside
    void fill(std::uint32_t color);
    void fillRect(int x, int y, int w, int h, std::uint32_t color);
    void clearRect(int x, int y, int w, int h, std::uint32_t color); // replaces
    void fillOval(int x, int y, int w, int h, std::uint32_t color);
    void drawOval(int x, int y, int w, int h, int pen, std::uint32_t color);
    void drawLine(int x1, int y1, int x2, int y2, int penWidth, int penHeight, std::uint32_t color);
    // Scales by averaging the source pixels that fall on a pixel, so smaller copies are smooth.
    void draw(const Pixels& source, int x, int y, int w, int h, int sx, int sy, int sw, int sh);
    // Multiplies by what the mask lets through: black everything, white nothing.
    void applyMask(const Pixels& mask);
};

} // namespace studio
