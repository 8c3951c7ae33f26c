// A rectangle of pixels, and what fills or copies whole pixels of it: 4 bytes a pixel, alpha first,
// premultiplied; the top row first.
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
    void fill(std::uint32_t color);

    // Drawing takes any 32-bit places and sizes, and time for what is visible.
    using Place = std::int64_t;
    void fillRect(Place x, Place y, Place w, Place h, std::uint32_t color);
    void clearRect(Place x, Place y, Place w, Place h, std::uint32_t color); // replaces
    void draw(const Pixels& source, Place x, Place y, Place w, Place h, Place sx,
              Place sy); // as large as it is
    // Multiplies by what the mask lets through: black everything, white nothing.
    void applyMask(const Pixels& mask);
};

} // namespace studio
