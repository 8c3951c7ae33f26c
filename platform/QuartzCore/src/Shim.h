// The engine for Objective-C++: no function here throws, because Objective-C++ code cannot catch C++
// exceptions.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>
#include <engine/kernels.h>

#include <functional>
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
/// Whether a rectangle is whole, finite and not absurdly large.
bool canBePixels(CGRect r);
/// Pixels of a Core Image format, which `owner` keeps alive; null for an unknown format or a space that is
/// not RGB.
engine::Image imageOfBitmap(const void* bytes, std::size_t size, std::size_t rowBytes, CGSize pixels,
                            int format, CGColorSpaceRef space, std::shared_ptr<const void> owner);
/// The same in data, which the image retains; null without any.
engine::Image imageOfBitmap(CFDataRef data, std::size_t rowBytes, CGSize pixels, int format,
                            CGColorSpaceRef space);
/// Pixels that are produced on demand. Null for an unknown format, an impossible size or a space that is not
/// RGB. The function writes rows of pixels, counted from the top; it may throw.
using RowProvider = std::function<void(int firstRow, int rows, std::size_t rowBytes, void* pixels)>;
engine::Image imageOfProvider(RowProvider provider, CGSize pixels, int format, CGColorSpaceRef space,
                              int stripRows);
engine::Image constant(const engine::Color& color);
engine::Image empty();
engine::Image transform(const engine::Image& image, const CGAffineTransform& matrix, Failure& failure);
engine::Image crop(const engine::Image& image, CGRect area, Failure& failure);
/// The image as a sampler reads it.
engine::Image sampled(const engine::kernels::Sampler& reader, Failure& failure);
/// How the image would be computed: "2 passes, 5 steps" and the steps, a line each.
std::string planOf(const engine::Image& image, Failure& failure);
engine::Image apply(const engine::FilterInfo& filter, const engine::Values& values, Failure& failure);

/// The pixels of a whole-numbered rectangle as a new image; null for an impossible rectangle, format or
/// space. Core Graphics has no 16-bit floats: their image has floats.
CGImageRef makeCGImage(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space,
                       const engine::Options& options, Failure& failure);
/// Writes the pixels to memory. A null space means no colour matching.
void renderBitmap(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space, void* pixels,
                  std::size_t rowBytes, engine::Options options, Failure& failure);
/// Draws into the context under its graphics state.
void draw(const engine::Image& image, CGContextRef context, CGRect dest, CGRect source,
          engine::Options options, Failure& failure);

} // namespace ci
