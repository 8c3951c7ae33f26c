#include "drawing.h"

namespace studio {

CGContextRef newContextOn(Pixels& p) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef context =
        CGBitmapContextCreate(p.bytes.data(), std::size_t(p.width), std::size_t(p.height), 8,
                              std::size_t(p.width) * 4, space, kCGImageAlphaPremultipliedFirst);
    CGColorSpaceRelease(space);
    return context;
}

// Outlines are cut one pixel beyond the border, where the cut does not show.
Drawing::Drawing(Picture& picture)
    : context_(newContextOn(picture.pixels)), visible_{-1, -1, picture.pixels.width + 2.0,
                                                       picture.pixels.height + 2.0} {
    CGContextTranslateCTM(context_, 0, CGFloat(picture.pixels.height));
    CGContextScaleCTM(context_, 1, -1);
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
    for (const auto& outline : shapes::clipped(shape, visible_)) {
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
    text.outline(x, y, outlines);
    CGContextFillPath(context_);
}

} // namespace studio
