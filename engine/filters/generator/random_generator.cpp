// CIRandomGenerator: noise.
#include "filter.h"
#include "kernel.h"
#include "noise.h"

namespace engine::generators {

namespace {

/// The number of a pixel, in each direction.
struct Numbered {
    struct Index {
        std::uint32_t x, y;
    };
    struct Row {
        int x;
        std::uint32_t y;
        SIMD_INLINE Index at(int i) const { return {static_cast<std::uint32_t>(x + i), y}; }
    };
    Row row(int x, int y) const { return {x, static_cast<std::uint32_t>(y)}; }
};

/// Each component of each pixel a number of its own, 0..1, always the same ones; the colours are straight.
Image build(const Inputs&) {
    constexpr std::uint32_t apart = 0x51ed270bu;
    return eachPlace("random", Rect::infinite(), Numbered{}, [](Numbered::Index at) SIMD_INLINE {
        return premultiplied({noiseAt(at.x, at.y), noiseAt(at.x, at.y + apart),
                              noiseAt(at.x, at.y + 2 * apart), noiseAt(at.x, at.y + 3 * apart)});
    });
}

const Registrar filter{{"CIRandomGenerator",
                        "Random Generator",
                        "Makes noise: four random numbers for each pixel.",
                        "10.4",
                        categories("Generator Video StillImage BuiltIn"),
                        {},
                        build}};

} // namespace

} // namespace engine::generators
