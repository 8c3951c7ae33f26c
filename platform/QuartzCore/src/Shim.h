// The engine for Objective-C++: no function here throws, because Objective-C++ code cannot catch C++
// exceptions.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>
#include <engine/engine.h>

#include <string>

namespace ci {

/// Why something failed; empty if it did not.
struct Failure {
    bool memory = false;
    std::string reason;
    explicit operator bool() const { return !reason.empty(); }
};

/// The colour space in which pixels are read or written.
struct SpaceChoice {
    enum class Kind { own, given, none };
    /// The image's own, a given one, or none: no colour matching.
    Kind kind = Kind::own;
    cg::Retained<CGColorSpaceRef> space;
};

/// CGRectInfinite corresponds to the infinite rectangle; empty rectangles become CGRectZero.
engine::Rect fromCG(CGRect r);
CGRect toCG(const engine::Rect& r);
engine::Affine fromCG(const CGAffineTransform& t);
/// In sRGB, as the engine wants it.
engine::Color fromCG(CGColorRef color);

/// Null for null, and if memory is short.
engine::Image imageOf(CGImageRef image, const SpaceChoice& choice);
/// Pixels of a Core Image format, in data that the image retains; null without data, for an unknown format or
/// a space that is not RGB.
engine::Image imageOfBitmap(CFDataRef data, std::size_t rowBytes, CGSize pixels, int format,
                            CGColorSpaceRef space);
engine::Image constant(const engine::Color& color);
engine::Image empty();
engine::Image transform(const engine::Image& image, const CGAffineTransform& matrix, Failure& failure);
engine::Image crop(const engine::Image& image, CGRect area, Failure& failure);
engine::Image sampled(const engine::Image& image, const CGAffineTransform& matrix, engine::Wrap wrap,
                      engine::Interpolation interpolation, Failure& failure);
/// How the image would be computed: "2 passes, 5 steps" and the steps, a line each.
std::string planOf(const engine::Image& image, Failure& failure);
engine::Image apply(const engine::FilterInfo& filter, const engine::Values& values, Failure& failure);

/// The pixels of a whole-numbered rectangle as a new image; null for an impossible rectangle, format or
/// space.
CGImageRef makeCGImage(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space,
                       const engine::Options& options, Failure& failure);
/// Writes the pixels to memory. A null space means no colour matching.
void renderBitmap(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space, void* pixels,
                  std::size_t rowBytes, engine::Options options, Failure& failure);
/// Draws into the context under its graphics state.
void draw(const engine::Image& image, CGContextRef context, CGRect dest, CGRect source,
          engine::Options options, Failure& failure);

} // namespace ci
