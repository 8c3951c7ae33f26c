// Drawing on a bitmap: painting, clipping and building paths.
#include <cg/canvas.h>

#include "Blend.h"
#include "ImageSampler.h"
#include "Rasterizer.h"
#include "Stroke.h"

#include <algorithm>
#include <cstdlib>
#include <numbers>

namespace cg {

static LiveCount live("CGContext");

/// A source of colour for painted shapes.
struct Paint {
    virtual ~Paint() = default;
    /// Called before the rows of an area are read.
    virtual void prepare(const IntRect& area) {}
    /// Premultiplied pixels in the context's space.
    virtual void row(int x, int y, std::size_t n, const Planes& out) = 0;
};

namespace {

/// Rows and columns that are painted at once.
constexpr int tileWidth = 256, tileHeight = 64;

struct SolidPaint final : Paint {
    /// In the context's space, premultiplied; alpha alone if the context has none.
    SolidPaint(CGColorRef color, CGColorSpaceRef space)
        : colors(static_cast<int>(CGColorSpaceGetNumberOfComponents(space))) {
        float alpha = value[alphaPlane] = std::clamp(CGColorGetAlpha(color), 0.f, 1.f);
        std::vector<CGFloat> components = convertColor(color, space);
        for (std::size_t k = 0; k + 1 < components.size(); ++k) value[k] = components[k] * alpha;
    }
    void row(int, int, std::size_t n, const Planes& out) override {
        for (std::size_t k = 0; k < static_cast<std::size_t>(colors); ++k) std::fill_n(out[k], n, value[k]);
        std::fill_n(out[alphaPlane], n, value[alphaPlane]);
    }
    std::array<float, 5> value = {};
    int colors;
};

struct ImagePaint final : Paint {
    ImagePaint(const Image& image, ImageSampler::Role role, const ColorSpace* space, bool extended,
               const Matrix& toImage, ImageSampler::Quality quality)
        : sampler(image, role, space, extended, toImage, quality) {}
    void prepare(const IntRect& area) override { sampler.prepare(area); }
    void row(int x, int y, std::size_t n, const Planes& out) override { sampler.row(x, y, n, out); }
    ImageSampler sampler;
};

/// A colour through the coverage of a mask image.
struct StencilPaint final : Paint {
    StencilPaint(SolidPaint color, ImagePaint shape) : color(std::move(color)), shape(std::move(shape)) {}
    void prepare(const IntRect& area) override {
        shape.prepare(area);
        coverage.resize(static_cast<std::size_t>(area.width()));
    }
    void row(int x, int y, std::size_t n, const Planes& out) override {
        color.row(x, y, n, out);
        shape.row(x, y, n, coverage.planes());
        const float* covered = coverage.planes()[alphaPlane];
        for (std::size_t k = 0; k < out.size(); ++k)
            if (static_cast<int>(k) < color.colors || k == alphaPlane)
                for (std::size_t i = 0; i < n; ++i) out[k][i] *= covered[i];
    }
    SolidPaint color;
    ImagePaint shape;
    PlaneBuffer coverage;
};

Retained<CGColorRef> black() {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceGray());
    const CGFloat components[] = {0, 1};
    return Retained<CGColorRef>::adopt(CGColorCreate(space.get(), components));
}

Polygon corners(CGRect r, const Matrix& m) {
    double x0 = CGRectGetMinX(r), y0 = CGRectGetMinY(r), x1 = CGRectGetMaxX(r), y1 = CGRectGetMaxY(r);
    return {m.apply({x0, y0}), m.apply({x1, y0}), m.apply({x1, y1}), m.apply({x0, y1})};
}

/// From pixels of the bitmap to pixels of an image that fills `rect`; empty when `rect` has no area.
std::optional<Matrix> toImage(CGRect rect, const Image& image, const Matrix& toPixels) {
    CGRect r = CGRectStandardize(rect);
    double w = static_cast<double>(image.width()), h = static_cast<double>(image.height());
    // The image's top row lies at the upper edge of the rectangle.
    Matrix place = {r.size.width / w, 0, 0, -r.size.height / h, r.origin.x, r.origin.y + r.size.height};
    return place.then(toPixels).inverse();
}

std::vector<Polygon> outlines(const std::vector<Subpath>& path) {
    std::vector<Polygon> all;
    for (const Subpath& subpath : path) all.push_back(subpath.points);
    return all;
}

bool drawsTo(const PixelFormat& f, const Image::Layout& layout) {
    CGImageAlphaInfo alpha = layout.info & kCGBitmapAlphaInfoMask;
    if (f.colors == 0) return true;
    if (f.alpha == Alpha::straight || f.bits < 8) return false;
    if (f.colors == 1) return alpha == kCGImageAlphaNone;
    return f.colors == 3 && alpha != kCGImageAlphaNone;
}

} // namespace

Canvas::Canvas(void* data, const Image::Layout& layout, CGColorSpaceRef space,
               std::function<void(void*)> release)
    : Payload(&live), layout_(layout), space_(space), own_(nullptr, [](void* p) { std::free(p); }),
      release_(std::move(release)), data_(static_cast<std::uint8_t*>(data)) {
    bool alphaOnly = (layout.info & kCGBitmapAlphaInfoMask) == kCGImageAlphaOnly;
    ColorSpace* meaning = alphaOnly ? nullptr : get<ColorSpace>(space);
    if (!meaning && !alphaOnly) throw std::invalid_argument("no colour space");
    if (alphaOnly) space_ = {};
    int colors = meaning ? meaning->components() : 0;
    // The number of bits per pixel follows from the rest.
    CGImageAlphaInfo alpha = layout.info & kCGBitmapAlphaInfoMask;
    int samples = alphaOnly ? 1 : colors + (alpha != kCGImageAlphaNone);
    layout_.bitsPerPixel = static_cast<std::size_t>(samples) * layout.bitsPerComponent;
    auto format = PixelFormat::of(layout.bitsPerComponent, layout_.bitsPerPixel, colors, layout.info);
    if (!format || !drawsTo(*format, layout)) throw std::invalid_argument("unknown pixel layout");
    format_ = *format;

    constexpr std::size_t maxSide = 1u << 24;
    if (!layout.width || !layout.height || layout.width > maxSide || layout.height > maxSide)
        throw std::invalid_argument("bad size");
    std::size_t row = format_.rowBytes(layout.width);
    // Rows that begin at multiples of 16 bytes suit the vector instructions.
    if (!layout_.bytesPerRow && !data) layout_.bytesPerRow = (row + 15) / 16 * 16;
    if (layout_.bytesPerRow < row) throw std::invalid_argument("rows too short");
    if (!data) {
        if (layout_.bytesPerRow > SIZE_MAX / 2 / layout.height) throw std::bad_alloc();
        own_.reset(static_cast<std::uint8_t*>(std::calloc(layout.height, layout_.bytesPerRow)));
        if (!own_) throw std::bad_alloc();
        data_ = own_.get();
    }
    GraphicsState initial;
    initial.clip = {0, 0, static_cast<int>(layout.width), static_cast<int>(layout.height)};
    initial.fill = initial.stroke = black();
    states_.push_back(std::move(initial));
}

Canvas::~Canvas() {
    if (release_) release_(data_);
}

Matrix Canvas::toPixels() const {
    return Matrix::from(states_.back().ctm).then({1, 0, 0, -1, 0, static_cast<double>(layout_.height)});
}

// --- painting ---------------------------------------------------------------------------------------------

void Canvas::paint(Rasterizer& shape, bool evenOdd, Paint& paint) {
    const GraphicsState& s = state();
    IntRect all = shape.bounds();
    if (all.isEmpty()) return;
    auto rule = evenOdd ? Rasterizer::Rule::evenOdd : Rasterizer::Rule::nonZero;
    PlaneBuffer source(tileWidth), dest(tileWidth);
    std::vector<float> coverage(tileWidth);
    for (int top = all.y0; top < all.y1; top += tileHeight) {
        int bottom = std::min(top + tileHeight, all.y1);
        const std::vector<float>& band = shape.band(top, bottom, rule, s.antialias);
        for (int left = all.x0; left < all.x1; left += tileWidth) {
            int right = std::min(left + tileWidth, all.x1);
            auto n = static_cast<std::size_t>(right - left);
            paint.prepare({left, top, right, bottom});
            for (int y = top; y < bottom; ++y) {
                const float* covered = band.data() + (y - top) * all.width() + (left - all.x0);
                std::copy_n(covered, n, coverage.begin());
                if (s.mask) {
                    // The clip never reaches beyond its mask.
                    const IntRect& m = s.mask->bounds;
                    const float* mask = s.mask->coverage.data() + (y - m.y0) * m.width() + (left - m.x0);
                    for (std::size_t i = 0; i < n; ++i) coverage[i] *= mask[i];
                }
                if (std::all_of(coverage.begin(), coverage.begin() + static_cast<std::ptrdiff_t>(n),
                                [](float c) { return c == 0; }))
                    continue;
                paint.row(left, y, n, source.planes());
                if (s.alpha != 1)
                    for (std::size_t k = 0; k < source.planes().size(); ++k)
                        for (std::size_t i = 0; i < n; ++i) source.planes()[k][i] *= s.alpha;
                std::uint8_t* row = data_ + static_cast<std::size_t>(y) * layout_.bytesPerRow;
                format_.unpack(row, static_cast<std::size_t>(left), n, dest.planes());
                blendRow(s.blend, format_.colors, dest.planes(), source.planes(), coverage.data(), n);
                format_.pack(row, static_cast<std::size_t>(left), n, dest.planes());
            }
        }
    }
}

void Canvas::paintColor(Rasterizer& shape, bool evenOdd, CGColorRef color) {
    SolidPaint solid(color, space_.get());
    paint(shape, evenOdd, solid);
}

void Canvas::clear(CGRect rect) {
    // Every sample of a fully covered pixel becomes 0, the filler included.
    Rasterizer shape(state().clip);
    shape.add(corners(rect, toPixels()));
    CGBlendMode mode = std::exchange(state().blend, kCGBlendModeClear);
    Retained<CGColorRef> none = black();
    paintColor(shape, false, none.get());
    state().blend = mode;
    if (format_.padding < 0) return;
    IntRect all = shape.bounds();
    for (int y = all.y0; y < all.y1; ++y) {
        const std::vector<float>& covered =
            shape.band(y, y + 1, Rasterizer::Rule::nonZero, state().antialias);
        std::size_t pixelBytes = static_cast<std::size_t>(format_.pixelBits) / 8;
        for (int x = all.x0; x < all.x1; ++x)
            if (covered[static_cast<std::size_t>(x - all.x0)] == 1 && !state().mask)
                std::fill_n(data_ + static_cast<std::size_t>(y) * layout_.bytesPerRow +
                                static_cast<std::size_t>(x) * pixelBytes,
                            pixelBytes, 0);
    }
}

void Canvas::draw(CGRect rect, CGImageRef ref) {
    const Image* image = get<Image>(ref);
    if (!image || CGRectIsEmpty(rect)) return;
    Matrix pixels = toPixels();
    auto matrix = toImage(rect, *image, pixels);
    if (!matrix) return;
    Rasterizer shape(state().clip);
    shape.add(corners(rect, pixels));
    auto quality = state().quality == kCGInterpolationNone ? ImageSampler::Quality::nearest
                                                           : ImageSampler::Quality::smooth;
    const ColorSpace* space = get<ColorSpace>(space_.get());
    ImagePaint picture(*image, ImageSampler::Role::picture, space, format_.bits == 32, *matrix, quality);
    // An image without colours of its own shows the fill colour.
    if (picture.sampler.colors() == 0 && space) {
        StencilPaint stencil(SolidPaint(state().fill.get(), space_.get()), std::move(picture));
        paint(shape, false, stencil);
        return;
    }
    paint(shape, false, picture);
}

// --- clipping ---------------------------------------------------------------------------------------------

/// Intersects the clip with the shape, times the coverage of `paint` if there is one.
void Canvas::intersectClip(Rasterizer& shape, bool evenOdd, Paint* paint) {
    GraphicsState& s = state();
    auto mask = std::make_shared<ClipMask>();
    IntRect all = mask->bounds = s.clip.intersect(shape.bounds());
    if (all.isEmpty()) {
        s.clip = {};
        s.mask = nullptr;
        return;
    }
    auto width = static_cast<std::size_t>(all.width());
    mask->coverage.resize(width * static_cast<std::size_t>(all.height()));
    PlaneBuffer row(paint ? width : 0);
    auto rule = evenOdd ? Rasterizer::Rule::evenOdd : Rasterizer::Rule::nonZero;
    bool full = true;
    for (int top = all.y0; top < all.y1; top += tileHeight) {
        int bottom = std::min(top + tileHeight, all.y1);
        const std::vector<float>& band = shape.band(top, bottom, rule, s.antialias);
        if (paint) paint->prepare({all.x0, top, all.x1, bottom});
        for (int y = top; y < bottom; ++y) {
            float* out = mask->coverage.data() + static_cast<std::size_t>(y - all.y0) * width;
            std::copy_n(band.data() + static_cast<std::size_t>(y - top) * width, width, out);
            if (paint) {
                paint->row(all.x0, y, width, row.planes());
                for (std::size_t i = 0; i < width; ++i) out[i] *= row.planes()[alphaPlane][i];
            }
            if (s.mask) {
                const IntRect& m = s.mask->bounds;
                const float* old = s.mask->coverage.data() + (y - m.y0) * m.width() + (all.x0 - m.x0);
                for (std::size_t i = 0; i < width; ++i) out[i] *= old[i];
            }
            full = full && std::all_of(out, out + width, [](float c) { return c == 1; });
        }
    }
    s.clip = all;
    // A clip of whole pixels needs no mask.
    s.mask = full ? nullptr : std::move(mask);
}

void Canvas::clipTo(CGRect rect, CGImageRef ref) {
    const Image* image = get<Image>(ref);
    Rasterizer shape(state().clip);
    Matrix pixels = toPixels();
    shape.add(corners(rect, pixels));
    if (!image) return intersectClip(shape, false, nullptr);
    auto matrix = toImage(rect, *image, pixels);
    if (!matrix) return intersectClip(shape, false, nullptr);
    auto role = image->format().hasAlpha() ? ImageSampler::Role::picture : ImageSampler::Role::shape;
    ImagePaint paint(*image, role, nullptr, false, *matrix, ImageSampler::Quality::smooth);
    intersectClip(shape, false, &paint);
}

// --- paths ------------------------------------------------------------------------------------------------

void Canvas::beginPath() { path_.clear(); }

bool Canvas::pathIsEmpty() const { return path_.empty(); }

void Canvas::moveTo(CGPoint p) { path_.push_back({{toPixels().apply({p.x, p.y})}, false}); }

void Canvas::lineTo(CGPoint p) {
    if (path_.empty()) return;
    // After a closed subpath the next one begins where that one did.
    if (path_.back().closed) path_.push_back({{path_.back().points.front()}, false});
    path_.back().points.push_back(toPixels().apply({p.x, p.y}));
}

void Canvas::curveTo(CGPoint control1, CGPoint control2, CGPoint end) {
    if (path_.empty()) return;
    if (path_.back().closed) path_.push_back({{path_.back().points.front()}, false});
    Matrix m = toPixels();
    std::vector<Point>& points = path_.back().points;
    Point p0 = points.back(), p1 = m.apply({control1.x, control1.y}), p2 = m.apply({control2.x, control2.y}),
          p3 = m.apply({end.x, end.y});
    // A line for about two pixels of the control polygon leaves an error far below a tenth of a pixel.
    double length = std::hypot(p1.x - p0.x, p1.y - p0.y) + std::hypot(p2.x - p1.x, p2.y - p1.y) +
                    std::hypot(p3.x - p2.x, p3.y - p2.y);
    int steps = std::isfinite(length) ? std::clamp(toInt(length / 2), 4, 500) : 4;
    for (int i = 1; i <= steps; ++i) {
        double t = static_cast<double>(i) / steps, u = 1 - t;
        double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
        points.push_back(
            {a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y});
    }
}

void Canvas::closePath() {
    if (!path_.empty()) path_.back().closed = true;
}

void Canvas::addRect(CGRect r) { path_.push_back({corners(r, toPixels()), true}); }

void Canvas::addEllipse(CGRect rect) {
    CGRect r = CGRectStandardize(rect);
    CGFloat rx = r.size.width / 2, ry = r.size.height / 2, x = r.origin.x + rx, y = r.origin.y + ry;
    // The cubic that comes nearest to a quarter of a circle.
    constexpr CGFloat k = 0.55228475f;
    moveTo({x + rx, y});
    curveTo({x + rx, y + k * ry}, {x + k * rx, y + ry}, {x, y + ry});
    curveTo({x - k * rx, y + ry}, {x - rx, y + k * ry}, {x - rx, y});
    curveTo({x - rx, y - k * ry}, {x - k * rx, y - ry}, {x, y - ry});
    curveTo({x + k * rx, y - ry}, {x + rx, y - k * ry}, {x + rx, y});
    closePath();
}

void Canvas::addArc(CGPoint centre, double radius, double start, double end, bool clockwise) {
    constexpr double turn = 2 * std::numbers::pi;
    if (!std::isfinite(start) || !std::isfinite(end)) return;
    double sweep = end - start;
    if (clockwise)
        sweep = sweep > 0 ? std::fmod(sweep, turn) - turn : std::max(sweep, -turn);
    else
        sweep = sweep < 0 ? std::fmod(sweep, turn) + turn : std::min(sweep, turn);
    auto at = [&](double angle, double tangent) {
        double c = std::cos(angle), s = std::sin(angle);
        return CGPointMake(static_cast<CGFloat>(centre.x + radius * (c - tangent * s)),
                           static_cast<CGFloat>(centre.y + radius * (s + tangent * c)));
    };
    CGPoint first = at(start, 0);
    if (path_.empty() || path_.back().closed)
        moveTo(first);
    else
        lineTo(first);
    int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / (turn / 4))));
    double step = sweep / pieces, tangent = 4. / 3 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        double from = start + i * step, to = from + step;
        curveTo(at(from, tangent), at(to, -tangent), at(to, 0));
    }
}

CGPoint Canvas::currentPoint() const {
    auto inverse = toPixels().inverse();
    if (path_.empty() || !inverse) return CGPointZero;
    const Subpath& last = path_.back();
    Point p = inverse->apply(last.closed ? last.points.front() : last.points.back());
    return CGPointMake(static_cast<CGFloat>(p.x), static_cast<CGFloat>(p.y));
}

void Canvas::fillPath(bool evenOdd) {
    std::vector<Subpath> path = std::exchange(path_, {});
    Rasterizer shape(state().clip);
    for (const Polygon& outline : outlines(path)) shape.add(outline);
    paintColor(shape, evenOdd, state().fill.get());
}

void Canvas::strokePath() {
    std::vector<Subpath> path = std::exchange(path_, {});
    Rasterizer shape(state().clip);
    for (const Polygon& outline : strokeOutlines(path, state().lineWidth, toPixels())) shape.add(outline);
    paintColor(shape, false, state().stroke.get());
}

void Canvas::clipToPath(bool evenOdd) {
    std::vector<Subpath> path = std::exchange(path_, {});
    Rasterizer shape(state().clip);
    for (const Polygon& outline : outlines(path)) shape.add(outline);
    intersectClip(shape, evenOdd, nullptr);
}

} // namespace cg
