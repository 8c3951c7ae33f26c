// The payload of CGContext objects: a bitmap to draw on, the graphics states and the current path.
#pragma once

#include <CoreGraphics/CGBitmapContext.h>

#include <cg/color.h>
#include <cg/geometry.h>
#include <cg/image.h>

#include <functional>
#include <vector>

namespace cg {

struct Subpath;
class Rasterizer;
struct Paint;

/// Coverage of the pixels of a clip that is not a plain rectangle.
struct ClipMask {
    IntRect bounds;
    std::vector<float> coverage;
};

/// What SaveGState saves.
struct GraphicsState {
    CGAffineTransform ctm = CGAffineTransformIdentity;
    /// In pixels, counted from the top.
    IntRect clip;
    std::shared_ptr<const ClipMask> mask;
    Retained<CGColorRef> fill, stroke;
    CGFloat alpha = 1;
    CGFloat lineWidth = 1;
    CGBlendMode blend = kCGBlendModeNormal;
    CGInterpolationQuality quality = kCGInterpolationDefault;
    bool antialias = true;
};

/// A bitmap context. For one thread at a time.
class CG_INTERNAL Canvas final : public Payload {
  public:
    using Ref = CGContextRef;

    /// Memory of its own for null `data`. Throws std::invalid_argument for a layout that cannot be drawn to.
    Canvas(void* data, const Image::Layout& layout, CGColorSpaceRef space,
           std::function<void(void*)> release);
    ~Canvas() override;

    const char* typeName() const override { return "CGContext"; }

    const Image::Layout& layout() const { return layout_; }
    const PixelFormat& format() const { return format_; }
    CGColorSpaceRef space() const { return space_.get(); }
    std::uint8_t* data() const { return data_; }

    GraphicsState& state() { return states_.back(); }
    void save() { states_.push_back(states_.back()); }
    void restore() {
        if (states_.size() > 1) states_.pop_back();
    }

    /// From user space to pixels counted from the top.
    Matrix toPixels() const;

    void clear(CGRect rect);
    void draw(CGRect rect, CGImageRef image);
    void clipTo(CGRect rect, CGImageRef mask);

    // The current path, in pixels; curves are made of lines.
    void beginPath();
    bool pathIsEmpty() const;
    void moveTo(CGPoint p);
    void lineTo(CGPoint p);
    void curveTo(CGPoint control1, CGPoint control2, CGPoint p);
    void closePath();
    void addRect(CGRect rect);
    void addEllipse(CGRect rect);
    void addArc(CGPoint centre, double radius, double start, double end, bool clockwise);
    /// The end of the path in user space, the origin for an empty one.
    CGPoint currentPoint() const;
    // These three consume the path.
    void fillPath(bool evenOdd);
    void strokePath();
    void clipToPath(bool evenOdd);

  private:
    void paint(Rasterizer& shape, bool evenOdd, Paint& paint);
    void paintColor(Rasterizer& shape, bool evenOdd, CGColorRef color);
    void intersectClip(Rasterizer& shape, bool evenOdd, Paint* paint);

    Image::Layout layout_;
    PixelFormat format_;
    Retained<CGColorSpaceRef> space_;
    std::unique_ptr<std::uint8_t[], void (*)(void*)> own_;
    std::function<void(void*)> release_;
    std::uint8_t* data_;
    std::vector<GraphicsState> states_;
    std::vector<Subpath> path_;
};

} // namespace cg
