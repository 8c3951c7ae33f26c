// The steps that filters are built from. As in the public functions, a null image gives a null image.
#pragma once

#include "tile.h"

namespace engine {

/// Makes a step for one render, where colours depend on its working space.
using SpanMaker = std::function<SpanFunction(const RenderContext&)>;

/// A step that computes each pixel from that pixel alone (and its place).
Image pointStep(const Image& image, std::string name, SpanMaker make);
/// Pixels computed from their place alone.
Image generator(std::string name, const Rect& extent, SpanMaker make);

/// r' = m[0][0] r + m[0][1] g + m[0][2] b + m[0][3] a + m[0][4] and so on, on straight colour.
using ColorMatrix = std::array<std::array<double, 5>, 4>;
/// Consecutive matrices become one.
Image colorMatrix(const Image& image, const ColorMatrix& matrix);
/// A matrix of the colours that leaves alpha as it is.
ColorMatrix colorsOnly(const std::array<double, 9>& rgb, double bias = 0);

/// The components of each pixel times a number that depends on its place, or always the same one.
using Weights = std::function<void(int x, int y, int n, float* weights)>;
Image weighted(const Image& image, std::string name, Weights weights);
Image weighted(const Image& image, double weight);

/// A combination of two images, pixel by pixel, on premultiplied colours.
struct BlendMode {
    const char* name;
    /// Pixels `above` and `below`; the result goes to `below`.
    void (*run)(const Span& above, const Span& below, int n);
    /// Whether the result can be visible where only one of the images is.
    bool onlyAbove = true, onlyBelow = true;
};
void sourceOver(const Span& above, const Span& below, int n);
/// With one image missing the result is the other where that can show without it, and null otherwise.
Image blend(const BlendMode& mode, const Image& above, const Image& below);
/// The sum of all components; a missing image adds nothing.
Image sum(const Image& a, const Image& b);

/// Makes a pixel from the pixels of several images at its place: `pixels` are theirs in order, and the result
/// goes to the first.
using CombineFunction = std::function<void(const Span* pixels, int n)>;
/// At most maxCombined images; a null one is clear. The result is transparent outside of `extent`.
constexpr std::size_t maxCombined = 4;
Image combine(std::string name, const Rect& extent, std::vector<Image> images, CombineFunction step);

/// Convolution with a Gaussian of standard deviation `sigma`.
Image gaussian(const Image& image, double sigma);
/// The mean of the square that reaches `reach` pixels to each side of a pixel.
Image boxBlur(const Image& image, int reach);

/// Computes pixels x..x+n-1 of row y from the pixels around them, which `in` holds.
using NeighbourFunction = std::function<void(const Pixels& in, int x, int y, int n, const Span& out)>;
using NeighbourMaker = std::function<NeighbourFunction(const RenderContext&)>;
/// A step that reads the pixels up to `reach` away to each side. Edge pixels continue outwards, and the
/// extent stays.
Image neighbourhood(const Image& image, std::string name, int reach, NeighbourMaker make);

/// The weight of the pixel that lies (dx, dy) away.
struct Tap {
    int dx, dy;
    float weight;
};
/// The weighted sum of the taps, and a bias that makes the image infinite; alpha is treated like the colours.
Image convolution(const Image& image, std::string name, std::vector<Tap> taps, double bias = 0);

/// The pixels that a filter sums up over an extent: those whose centres lie in it. An infinite extent is cut
/// to the image. Empty when that leaves no pixels, or too many to be read.
IntRect summedArea(const Image& image, Rect extent);

/// Where a warp reads.
class Warp {
  public:
    virtual ~Warp() = default;
    virtual std::string name() const = 0;
    /// Where the pixels of a source of this extent go.
    virtual Rect extent(const Rect& source) const = 0;
    /// What the pixels of `area` read, neighbours not counted.
    virtual Rect region(const Rect& area) const = 0;
    /// For the centres of pixels x..x+n-1 of row y, which lie in one block: how far away from them to read.
    virtual void displace(int x, int y, int n, float* dx, float* dy) const = 0;
};
Image warp(const Image& image, std::shared_ptr<const Warp> warp);

/// A warp that is drawn in a second image, the map.
struct MapWarp {
    /// The farthest that it reads, in each direction.
    double reach;
    /// For n pixels, and the same n of the map: how far away from each to read. Neighbours in the map can be
    /// read, too: one pixel to the left and right, and `step` floats back and ahead for those below and
    /// above.
    std::function<void(const Span& map, std::ptrdiff_t step, int n, float* dx, float* dy)> displace;
};
/// Without a map the image stays as it is.
Image warp(std::string name, const Image& image, const Image& map, const MapWarp& warp);

/// The square that reaches `radius` to each side of a point.
inline Rect squareAround(Point centre, double radius) {
    return {centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius};
}

} // namespace engine
