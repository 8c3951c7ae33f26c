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

Drawing::Drawing(Picture& picture) : context_(newContextOn(picture.pixels)) {
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

void Drawing::fill(const typeset::Text& text, double x, double y) {
    CGContextBeginPath(context_);
    PathOutlines outlines(context_);
    text.outline(x, y, outlines);
    CGContextFillPath(context_);
}

} // namespace studio
