// CIRandomGenerator: noise.
#include "filter.h"
#include "kernel.h"
#include "noise.h"

namespace engine::generators {

namespace {

/// The number of a pixel, in each direction.
struct Numbered {
    struct Index {
        int x, y;
    };
    struct Row {
        int x, y;
        SIMD_INLINE Index at(int i) const { return {x + i, y}; }
    };
    Row row(int x, int y) const { return {x, y}; }
};

/// The noise as it is, equal to Core Image's in every byte.
Image build(const Inputs&) {
    return eachPlace(
        "random", Rect::infinite(), Numbered{},
        [r = noisePlane(0), g = noisePlane(1), b = noisePlane(2),
         a = noisePlane(3)](Numbered::Index at) SIMD_INLINE {
            return Pixel{r.pixel(at.x, at.y), g.pixel(at.x, at.y), b.pixel(at.x, at.y), a.pixel(at.x, at.y)};
        });
}

const Registrar filter{{"CIRandomGenerator",
                        "Random Generator",
                        "Makes noise: four random numbers for each pixel.",
                        fitted("a 256 x 256 tile of random(), equal in every byte", 0),
                        "10.4",
                        categories("Generator Video StillImage BuiltIn"),
                        {},
                        build}};

} // namespace

} // namespace engine::generators
