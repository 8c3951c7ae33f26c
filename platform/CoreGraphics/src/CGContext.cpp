// The C functions of CGContext, each a call of the Canvas behind it.
#include <CoreGraphics/CGContext.h>

#include <cg/canvas.h>

using namespace cg;

/// Calls `body` with the context; does nothing for null. Running out of memory ends the drawing and nothing
/// else.
template <class Body>
static void with(CGContextRef ref, Body body) {
    if (Canvas* context = get<Canvas>(ref)) guarded([&] { body(*context); });
}

/// The same with a result, which is `missing` for null.
template <class Result, class Body>
static Result ask(CGContextRef ref, Result missing, Body body) {
    Canvas* context = get<Canvas>(ref);
    return context ? body(*context) : missing;
}

CGContextRef CGContextRetain(CGContextRef context) {
    if (context) CFRetain(context);
    return context;
}
void CGContextRelease(CGContextRef context) {
    if (context) CFRelease(context);
}
void CGContextFlush(CGContextRef context) {}
void CGContextSynchronize(CGContextRef context) {}

void CGContextSaveGState(CGContextRef context) {
    with(context, [](Canvas& c) { c.save(); });
}
void CGContextRestoreGState(CGContextRef context) {
    with(context, [](Canvas& c) { c.restore(); });
}

// --- transform --------------------------------------------------------------------------------------------

void CGContextConcatCTM(CGContextRef context, CGAffineTransform t) {
    with(context, [&](Canvas& c) { c.state().ctm = CGAffineTransformConcat(t, c.state().ctm); });
}
void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy) {
    CGContextConcatCTM(context, CGAffineTransformMakeScale(sx, sy));
}
void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty) {
    CGContextConcatCTM(context, CGAffineTransformMakeTranslation(tx, ty));
}
void CGContextRotateCTM(CGContextRef context, CGFloat angle) {
    CGContextConcatCTM(context, CGAffineTransformMakeRotation(angle));
}
CGAffineTransform CGContextGetCTM(CGContextRef context) {
    return ask(context, CGAffineTransformIdentity, [](Canvas& c) { return c.state().ctm; });
}
// A unit of a bitmap's device space is a pixel, so this is the CTM.
CGAffineTransform CGContextGetUserSpaceToDeviceSpaceTransform(CGContextRef context) {
    return CGContextGetCTM(context);
}
static CGAffineTransform toUser(CGContextRef context) {
    return CGAffineTransformInvert(CGContextGetCTM(context));
}
CGPoint CGContextConvertPointToDeviceSpace(CGContextRef context, CGPoint point) {
    return CGPointApplyAffineTransform(point, CGContextGetCTM(context));
}
CGPoint CGContextConvertPointToUserSpace(CGContextRef context, CGPoint point) {
    return CGPointApplyAffineTransform(point, toUser(context));
}
CGSize CGContextConvertSizeToDeviceSpace(CGContextRef context, CGSize size) {
    return CGSizeApplyAffineTransform(size, CGContextGetCTM(context));
}
CGSize CGContextConvertSizeToUserSpace(CGContextRef context, CGSize size) {
    return CGSizeApplyAffineTransform(size, toUser(context));
}
CGRect CGContextConvertRectToDeviceSpace(CGContextRef context, CGRect rect) {
    return CGRectApplyAffineTransform(rect, CGContextGetCTM(context));
}
CGRect CGContextConvertRectToUserSpace(CGContextRef context, CGRect rect) {
    return CGRectApplyAffineTransform(rect, toUser(context));
}

// --- state ------------------------------------------------------------------------------------------------

void CGContextSetAlpha(CGContextRef context, CGFloat alpha) {
    with(context, [&](Canvas& c) { c.state().alpha = alpha > 0 ? std::min(alpha, 1.f) : 0; });
}
void CGContextSetBlendMode(CGContextRef context, CGBlendMode mode) {
    with(context, [&](Canvas& c) { c.state().blend = mode; });
}
void CGContextSetInterpolationQuality(CGContextRef context, CGInterpolationQuality quality) {
    with(context, [&](Canvas& c) { c.state().quality = quality; });
}
CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef context) {
    return ask(context, CGInterpolationQuality(kCGInterpolationDefault),
               [](Canvas& c) { return c.state().quality; });
}
void CGContextSetShouldAntialias(CGContextRef context, bool shouldAntialias) {
    with(context, [&](Canvas& c) { c.state().antialias = shouldAntialias; });
}
void CGContextSetLineWidth(CGContextRef context, CGFloat width) {
    with(context, [&](Canvas& c) { c.state().lineWidth = width; });
}

// --- colour -----------------------------------------------------------------------------------------------

using Slot = Retained<CGColorRef> GraphicsState::*;

static void setColor(CGContextRef context, Slot slot, CGColorRef color) {
    if (color) with(context, [&](Canvas& c) { c.state().*slot = Retained<CGColorRef>(color); });
}

static void setColor(CGContextRef context, Slot slot, CGColorSpaceRef space, const CGFloat* components) {
    setColor(context, slot, Retained<CGColorRef>::adopt(CGColorCreate(space, components)).get());
}

static void setColor(CGContextRef context, Slot slot, CGColorSpaceRef (*space)(),
                     std::initializer_list<CGFloat> components) {
    setColor(context, slot, Retained<CGColorSpaceRef>::adopt(space()).get(), components.begin());
}

static void setSpace(CGContextRef context, Slot slot, CGColorSpaceRef space) {
    // Black is 0 in every component except the black of CMYK.
    const CGFloat components[] = {0, 0, 0, 1, 1};
    const CGFloat gray[] = {0, 1};
    setColor(context, slot, space, CGColorSpaceGetNumberOfComponents(space) == 1 ? gray : components);
}

static void setComponents(CGContextRef context, Slot slot, const CGFloat* components) {
    with(context, [&](Canvas& c) {
        setColor(context, slot, CGColorGetColorSpace((c.state().*slot).get()), components);
    });
}

void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color) {
    setColor(context, &GraphicsState::fill, color);
}
void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color) {
    setColor(context, &GraphicsState::stroke, color);
}
void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space) {
    setSpace(context, &GraphicsState::fill, space);
}
void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space) {
    setSpace(context, &GraphicsState::stroke, space);
}
void CGContextSetFillColor(CGContextRef context, const CGFloat components[]) {
    setComponents(context, &GraphicsState::fill, components);
}
void CGContextSetStrokeColor(CGContextRef context, const CGFloat components[]) {
    setComponents(context, &GraphicsState::stroke, components);
}
void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    setColor(context, &GraphicsState::fill, CGColorSpaceCreateDeviceGray, {gray, alpha});
}
void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    setColor(context, &GraphicsState::stroke, CGColorSpaceCreateDeviceGray, {gray, alpha});
}
void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    setColor(context, &GraphicsState::fill, CGColorSpaceCreateDeviceRGB, {red, green, blue, alpha});
}
void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                CGFloat alpha) {
    setColor(context, &GraphicsState::stroke, CGColorSpaceCreateDeviceRGB, {red, green, blue, alpha});
}
void CGContextSetCMYKFillColor(CGContextRef context, CGFloat cyan, CGFloat magenta, CGFloat yellow,
                               CGFloat black, CGFloat alpha) {
    setColor(context, &GraphicsState::fill, CGColorSpaceCreateDeviceCMYK,
             {cyan, magenta, yellow, black, alpha});
}

// --- paths ------------------------------------------------------------------------------------------------

void CGContextBeginPath(CGContextRef context) {
    with(context, [](Canvas& c) { c.beginPath(); });
}
void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    with(context, [&](Canvas& c) { c.moveTo({x, y}); });
}
void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    with(context, [&](Canvas& c) { c.lineTo({x, y}); });
}
void CGContextAddCurveToPoint(CGContextRef context, CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                              CGFloat x, CGFloat y) {
    with(context, [&](Canvas& c) { c.curveTo({cp1x, cp1y}, {cp2x, cp2y}, {x, y}); });
}
void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat cpx, CGFloat cpy, CGFloat x, CGFloat y) {
    with(context, [&](Canvas& c) {
        // The same curve as a cubic: its control points are two thirds of the way to this one.
        CGPoint p = c.currentPoint();
        c.curveTo({p.x + (cpx - p.x) * 2 / 3, p.y + (cpy - p.y) * 2 / 3},
                  {x + (cpx - x) * 2 / 3, y + (cpy - y) * 2 / 3}, {x, y});
    });
}
void CGContextAddRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) { c.addRect(rect); });
}
void CGContextAddEllipseInRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) { c.addEllipse(rect); });
}
void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat startAngle,
                     CGFloat endAngle, int clockwise) {
    with(context, [&](Canvas& c) { c.addArc({x, y}, radius, startAngle, endAngle, clockwise); });
}
void CGContextClosePath(CGContextRef context) {
    with(context, [](Canvas& c) { c.closePath(); });
}
bool CGContextIsPathEmpty(CGContextRef context) {
    return ask(context, true, [](Canvas& c) { return c.pathIsEmpty(); });
}
void CGContextFillPath(CGContextRef context) {
    with(context, [](Canvas& c) { c.fillPath(false); });
}
void CGContextEOFillPath(CGContextRef context) {
    with(context, [](Canvas& c) { c.fillPath(true); });
}
void CGContextStrokePath(CGContextRef context) {
    with(context, [](Canvas& c) { c.strokePath(); });
}
void CGContextClip(CGContextRef context) {
    with(context, [](Canvas& c) { c.clipToPath(false); });
}
void CGContextEOClip(CGContextRef context) {
    with(context, [](Canvas& c) { c.clipToPath(true); });
}

// --- clipping ---------------------------------------------------------------------------------------------

void CGContextClipToRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) { c.clipTo(rect, nullptr); });
}
void CGContextClipToMask(CGContextRef context, CGRect rect, CGImageRef mask) {
    with(context, [&](Canvas& c) { c.clipTo(rect, mask); });
}
CGRect CGContextGetClipBoundingBox(CGContextRef context) {
    return ask(context, CGRectNull, [&](Canvas& c) {
        const IntRect& clip = c.state().clip;
        if (clip.isEmpty()) return CGRectNull;
        auto height = static_cast<int>(c.layout().height);
        CGRect device = CGRectMake(static_cast<CGFloat>(clip.x0), static_cast<CGFloat>(height - clip.y1),
                                   static_cast<CGFloat>(clip.width()), static_cast<CGFloat>(clip.height()));
        return CGContextConvertRectToUserSpace(context, device);
    });
}

// --- drawing ----------------------------------------------------------------------------------------------

void CGContextFillRects(CGContextRef context, const CGRect rects[], size_t count) {
    with(context, [&](Canvas& c) {
        c.beginPath();
        for (size_t i = 0; i < count; ++i) c.addRect(rects[i]);
        c.fillPath(false);
    });
}
void CGContextFillRect(CGContextRef context, CGRect rect) { CGContextFillRects(context, &rect, 1); }
void CGContextStrokeRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) {
        c.beginPath();
        c.addRect(rect);
        c.strokePath();
    });
}
void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width) {
    with(context, [&](Canvas& c) {
        CGFloat old = std::exchange(c.state().lineWidth, width);
        CGContextStrokeRect(context, rect);
        c.state().lineWidth = old;
    });
}
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) {
        c.beginPath();
        c.addEllipse(rect);
        c.fillPath(false);
    });
}
void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) {
        c.beginPath();
        c.addEllipse(rect);
        c.strokePath();
    });
}
void CGContextStrokeLineSegments(CGContextRef context, const CGPoint points[], size_t count) {
    with(context, [&](Canvas& c) {
        c.beginPath();
        for (size_t i = 0; i + 1 < count; i += 2) {
            c.moveTo(points[i]);
            c.lineTo(points[i + 1]);
        }
        c.strokePath();
    });
}
void CGContextClearRect(CGContextRef context, CGRect rect) {
    with(context, [&](Canvas& c) { c.clear(rect); });
}
void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image) {
    with(context, [&](Canvas& c) { c.draw(rect, image); });
}
