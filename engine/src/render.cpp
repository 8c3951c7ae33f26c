// Rendering: tiles, threads and the way into the target.
#include "codec.h"
#include "nodes.h"
#include "plan.h"
#include "thread_pool.h"

#include <color/vecmath.h>

#include <atomic>
#include <cmath>
#include <stdexcept>

namespace engine {

namespace {

std::atomic<int> wantedTile{0};

bool isFinite(const Rect& r) {
    return std::isfinite(r.x0) && std::isfinite(r.y0) && std::isfinite(r.x1) && std::isfinite(r.y1);
}

void check(const Rect& source, const Target& target, const Rect& dest, const Options& options) {
    checkLayout(target.layout);
    if (!target.pixels) throw std::invalid_argument("a target needs pixels");
    if (target.rowBytes / bytesPerPixel(target.layout.format) < static_cast<std::size_t>(target.layout.width))
        throw std::invalid_argument("rows of a target are shorter than their pixels");
    if (!isFinite(source) || !isFinite(dest))
        throw std::invalid_argument("only a finite area can be rendered");
    if (options.working && options.working->model() != color::Model::rgb)
        throw std::invalid_argument("the working space needs red, green and blue");
}

/// The pixels of all steps that one pixel takes, in a tile far from all edges.
double pixelsRead(const Image& image, std::pair<int, int> size) {
    auto [width, height] = size;
    std::map<const Node*, Rect> read;
    read[image.get()] = Rect::ofSize(0, 0, width, height);
    double sum = 0;
    for (const Node* node : readersFirst(image)) {
        const Rect& area = read[node];
        sum += toInt(area).count();
        for (std::size_t i = 0; i < node->inputs().size(); ++i)
            if (const Image& input = node->inputs()[i]; input && !area.isEmpty()) {
                Rect& all = read[input.get()];
                all = all.unite(node->regionOfInterest(i, area));
            }
    }
    return sum / width / height;
}

/// Width and height of tiles. Without neighbours, whole rows are cheapest; with them, tiles are large enough
/// that reading around them costs little, and small enough for the caches.
std::pair<int, int> tileSize(const IntRect& area, const Image& image) {
    if (int size = wantedTile) return {size, size};
    int width = area.width(), height = std::clamp((1 << 18) / area.width(), 16, 1024);
    if (readsAround(*image)) {
        width = std::min(width, 1024);
        height = 512;
        // Higher where that saves much, unless all of a tile is kept.
        if (keptNodes(image).empty())
            while (height < 1024 &&
                   pixelsRead(image, {width, 2 * height}) < 0.93 * pixelsRead(image, {width, height}))
                height *= 2;
    }
    // Enough tiles for every thread.
    int tiles = threadCount() * 2;
    while (height > 32 &&
           (area.width() + width - 1) / width * ((area.height() + height - 1) / height) < tiles)
        height = (height + 1) / 2;
    return {width, height};
}

/// Source over, where an alpha above 1 hides no more than all.
void over(const Span& above, const Span& below, int n) {
    for (int c = 0; c < 4; ++c)
        color::simd::run([=, s = above.plane[c], d = below.plane[c], alpha = above.plane[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) d[i] = s[i] + d[i] * color::simd::max(1 - alpha[i], 0);
        });
}

class Renderer {
  public:
    Renderer(const Image& image, const Target& target, const Options& options)
        : image_(image), target_(target), blend_(options.blend), settings_(settingsFor(image, options)),
          codec_(target.layout, settings_) {}

    void tile(const IntRect& area) const {
        RenderContext context(settings_, area);
        auto evaluator = context.prepare(image_, area);
        SpanBuffer buffer, below;
        std::size_t step = bytesPerPixel(target_.layout.format);
        for (int y = area.y0; y < area.y1; ++y) {
            std::uint8_t* row = static_cast<std::uint8_t*>(target_.pixels) +
                                static_cast<std::size_t>(target_.layout.height - 1 - y) * target_.rowBytes;
            for (int x = area.x0; x < area.x1; x += maxSpan) {
                int n = std::min(maxSpan, area.x1 - x);
                evaluator->row(x, y, n, buffer.span());
                if (blend_) {
                    codec_.decode(row + x * step, n, below.span());
                    over(buffer.span(), below.span(), n);
                    codec_.encode(below.span(), n, row + x * step);
                } else {
                    codec_.encode(buffer.span(), n, row + x * step);
                }
            }
        }
    }

  private:
    static RenderSettings settingsFor(const Image& image, const Options& options) {
        RenderSettings settings{nullptr, options.colorManaged, {}, {}};
        if (options.working && !options.working->sameAs(*color::ColorSpace::linearSRGB()))
            settings.working = options.working;
        settings.shared = keptNodes(image);
        if (!settings.shared.empty()) settings.readersFirst = readersFirst(image);
        return settings;
    }

    const Image& image_;
    const Target& target_;
    bool blend_;
    RenderSettings settings_;
    Codec codec_;
};

} // namespace

void setTileSize(int size) { wantedTile = std::clamp(size, 0, 8192); }

InstructionSet instructionSet() {
    return color::simd::current() == color::simd::Set::avx2 ? InstructionSet::avx2 : InstructionSet::sse2;
}

bool setInstructionSet(InstructionSet set) {
    return color::simd::select(set == InstructionSet::avx2 ? color::simd::Set::avx2 : color::simd::Set::sse2);
}

void render(const Image& image, const Rect& source, const Target& target, const Rect& dest,
            const Options& options) {
    check(source, target, dest, options);
    if (source.isEmpty() || dest.isEmpty()) return;
    double sx = dest.width() / source.width(), sy = dest.height() / source.height();
    Affine place{sx, 0, 0, sy, dest.x0 - source.x0 * sx, dest.y0 - source.y0 * sy};
    if (!place.isFinite()) throw std::invalid_argument("an area that is too large cannot be rendered");
    Image placed = transform(image ? image : empty(), place);

    IntRect area = centresIn(dest).intersect({0, 0, target.layout.width, target.layout.height});
    if (options.blend) area = area.intersect(toInt(placed->extent()));
    if (area.isEmpty()) return;
    auto [width, height] = tileSize(area, placed);
    int columns = (area.width() - 1) / width + 1, rows = (area.height() - 1) / height + 1;
    Renderer renderer(placed, target, options);
    // From the top downwards, as files are read.
    parallel(columns * rows, [&, width = width, height = height](int i) {
        int x0 = area.x0 + i % columns * width, y1 = area.y1 - i / columns * height;
        renderer.tile({x0, std::max(area.y0, y1 - height), std::min(area.x1, x0 + width), y1});
    });
}

} // namespace engine
