// The engine, for Objective-C++: no function here throws. (Objective-C++ code cannot catch what C++ throws.)
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>
#include <engine/engine.h>

#include <string>

namespace ci {

/// Why something failed; empty when it did not.
struct Failure {
    bool memory = false;
    std::string reason;
    explicit operator bool() const { return !reason.empty(); }
};

/// How the numbers of pixels are to be read (or written).
struct SpaceChoice {
    enum class Kind { own, given, none };
    /// The image's own space, a given one, or no colour matching at all.
    Kind kind = Kind::own;
    cg::Retained<CGColorSpaceRef> space;
};

/// CGRectInfinite and the infinite rectangle are each other's; empty becomes CGRectZero.
engine::Rect fromCG(CGRect r);
CGRect toCG(const engine::Rect& r);
engine::Affine fromCG(const CGAffineTransform& t);
/// In sRGB, as the engine wants it.
engine::Color fromCG(CGColorRef color);

/// Null for null, and when memory is short.
engine::Image imageOf(CGImageRef image, const SpaceChoice& choice);
/// Pixels of a Core Image format; null for an unknown one, or a space that is no RGB. The bytes belong to
/// `owner`.
engine::Image imageOfBitmap(const void* bytes, std::size_t size, std::size_t rowBytes, CGSize pixels,
                            int format, CGColorSpaceRef space, std::shared_ptr<const void> owner);
engine::Image constant(const engine::Color& color);
engine::Image empty();
engine::Image transform(const engine::Image& image, const CGAffineTransform& matrix, Failure& failure);
engine::Image crop(const engine::Image& image, CGRect area, Failure& failure);
engine::Image sampled(const engine::Image& image, const CGAffineTransform& matrix, engine::Wrap wrap,
                      engine::Interpolation interpolation, Failure& failure);
engine::Image apply(const engine::FilterInfo& filter, const engine::Values& values, Failure& failure);

/// The pixels of a whole-numbered rectangle as a new image; null for a rectangle, format or space that cannot
/// be.
CGImageRef makeCGImage(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space,
                       const engine::Options& options, Failure& failure);
/// Writes them to memory. A null space means no colour matching.
void renderBitmap(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space, void* pixels,
                  std::size_t rowBytes, engine::Options options, Failure& failure);
/// Draws into the context under its state.
void draw(const engine::Image& image, CGContextRef context, CGRect dest, CGRect source,
          engine::Options options, Failure& failure);

} // namespace ci
