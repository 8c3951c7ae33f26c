#include "drawing.h"

#include <algorithm>
#include <cmath>

namespace studio {

CGContextRef newContextOn(Pixels& p) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(p.bytes.data(), std::size_t(p.width), std::size_t(p.height), 8,
                              std::size_t(p.width) * 4, space, kCGImageAlphaPremultipliedFirst);
    CGColorSpaceRelease(space);
    return context;
}

// Outlines are cut one pixel beyond the clip, where the cut does not show.
Drawing::Drawing(Picture& picture, shapes::Point origin, shapes::Box clip)
    : context_(newContextOn(picture.pixels)),
      origin_(origin), visible_{clip.x - 1, clip.y - 1, clip.width + 2, clip.height + 2} {
    CGContextTranslateCTM(context_, 0, CGFloat(picture.pixels.height));
    CGContextScaleCTM(context_, 1, -1);
    CGContextClipToRect(
        context_, CGRectMake(CGFloat(clip.x), CGFloat(clip.y), CGFloat(clip.width), CGFloat(clip.height)));
    auto component = [&](int shift) { return CGFloat(picture.foreColor >> shift & 255) / 255; };
    CGContextSetRGBFillColor(context_, component(16), component(8), component(0), component(24));
}

Drawing::~Drawing() { CGContextRelease(context_); }

namespace {

// Adds outlines to a context's path.
struct PathOutlines final : typeset::Outlines {
    CGContextRef context;
    explicit PathOutlines(CGContextRef context) : context(context) {}

    void move(double x, double y) override { CGContextMoveToPoint(context, CGFloat(x), CGFloat(y)); }
    void line(double x, double y) override { CGContextAddLineToPoint(context, CGFloat(x), CGFloat(y)); }
    void curve(double x1, double y1, double x2, double y2, double x, double y) override {
        CGContextAddCurveToPoint(context, CGFloat(x1), CGFloat(y1), CGFloat(x2), CGFloat(y2), CGFloat(x),
                                 CGFloat(y));
    }
    void close() override { CGContextClosePath(context); }
};

} // namespace

void Drawing::fill(const shapes::Shape& shape) {
    CGContextBeginPath(context_);
    PathOutlines outlines(context_);
    for (const auto& outline : shapes::clipped(shapes::moved(shape, origin_), visible_)) {
        if (outline.empty()) continue;
        outlines.move(outline[0].x, outline[0].y);
        for (const shapes::Point& p : outline) outlines.line(p.x, p.y);
        outlines.close();
    }
    CGContextFillPath(context_);
}

void Drawing::fill(const typeset::Text& text, double x, double y) {
    CGContextBeginPath(context_);
    PathOutlines outlines(context_);
    text.outline(origin_.x + x, origin_.y + y, outlines);
    CGContextFillPath(context_);
}

namespace {

// A picture's pixels as an image, without copying them.
CGImageRef newImageOf(const Pixels& p) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGDataProviderRef provider =
        CGDataProviderCreateWithData(nullptr, p.bytes.data(), p.bytes.size(), nullptr);
    CGImageRef image =
        CGImageCreate(std::size_t(p.width), std::size_t(p.height), 8, 32, std::size_t(p.width) * 4, space,
                      kCGImageAlphaPremultipliedFirst, provider, nullptr, true, kCGRenderingIntentDefault);
    CGDataProviderRelease(provider);
    CGColorSpaceRelease(space);
    return image;
}

// One axis of a scaled copy.
struct Axis {
    double to, toLength, from, fromLength;

    bool isEmpty() const { return !(toLength > 0 && fromLength > 0); }

    void limitSource(double low, double high) {
        double scale = toLength / fromLength;
        double start = std::max(from, low), end = std::min(from + fromLength, high);
        to += (start - from) * scale;
        from = start;
        fromLength = end - start;
        toLength = fromLength * scale;
    }

    // Lets go of source pixels that do not reach `low` to `low + size`. Otherwise a context's floats were too
    // coarse.
    void reduce(double low, double size) {
        constexpr double kExactFloats = 1 << 20, kMargin = 2;
        if (std::abs(to) + toLength < kExactFloats) return;
        double scale = fromLength / toLength, first = from + (low - to) * scale;
        limitSource(std::floor(first) - kMargin, std::ceil(first + size * scale) + kMargin);
    }
};

} // namespace

void Drawing::draw(const Pixels& source, shapes::Box to, shapes::Box from) {
    Axis x = {origin_.x + to.x, to.width, from.x, from.width},
         y = {origin_.y + to.y, to.height, from.y, from.height};
    if (x.isEmpty() || y.isEmpty()) return;
    x.limitSource(0, source.width);
    y.limitSource(0, source.height);
    if (x.isEmpty() || y.isEmpty()) return;
    x.reduce(visible_.x, visible_.width);
    y.reduce(visible_.y, visible_.height);
    if (x.isEmpty() || y.isEmpty()) return;
    CGImageRef whole = newImageOf(source);
    CGImageRef part = CGImageCreateWithImageInRect(
        whole, CGRectMake(CGFloat(x.from), CGFloat(y.from), CGFloat(x.fromLength), CGFloat(y.fromLength)));
    CGContextSaveGState(context_);
    // An image stands upright where y points upwards.
    CGContextTranslateCTM(context_, CGFloat(x.to), CGFloat(y.to + y.toLength));
    CGContextScaleCTM(context_, 1, -1);
    CGContextDrawImage(context_, CGRectMake(0, 0, CGFloat(x.toLength), CGFloat(y.toLength)), part);
    CGContextRestoreGState(context_);
    CGImageRelease(part);
    CGImageRelease(whole);
}

} // namespace studio
