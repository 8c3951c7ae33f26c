// Core Image's kernel language: texts become kernels, and kernels with their arguments become images.
//
// A kernel computes each pixel by itself, from the pixel's position, its arguments and what it reads of
// images. docs/kernels.md describes the language.
#pragma once

#include <engine/engine.h>

#include <functional>
#include <stdexcept>

namespace engine::kernels {

/// A mistake in a text. what() begins with "line 3: " and says what was expected.
class ENGINE_API Mistake : public std::invalid_argument {
  public:
    Mistake(int line, const std::string& what);
    ~Mistake() override;
    const int line; ///< counted from 1
};

/// What an argument has to be.
enum class ParameterKind {
    sampler, ///< an image, read anywhere
    sample,  ///< an image, of which the kernel gets the pixel at its own place
    color,   ///< a colour, as a premultiplied pixel of the working space
    vector,  ///< numbers: `size` is 2 to 4, and 1 for a single number
};

struct Parameter {
    std::string name;
    ParameterKind kind = ParameterKind::vector;
    int size = 1;
    /// Of images: their numbers are read as they are, without colour matching.
    bool table = false;
};

/// An image and how a kernel reads it. The matrix takes the image to where it is seen.
struct Sampler {
    Image image;
    Affine matrix = {};
    Wrap wrap = Wrap::black;
    Interpolation interpolation = Interpolation::linear;
};

/// Numbers may also be given for a colour, and a colour for a vec4: then nothing is matched.
using Argument = std::variant<Numbers, Color, Sampler>;

/// The part of sampler `index`, counted from 0, that the pixels of `area` depend on, where it is seen. Called
/// from the threads that render; may throw, which ends the render.
using RegionFunction = std::function<Rect(std::size_t index, const Rect& area)>;

/// One kernel of a text. Immutable.
class ENGINE_API Kernel {
  public:
    virtual ~Kernel() = default;
    virtual const std::string& name() const = 0;
    virtual const std::vector<Parameter>& parameters() const = 0;
    /// Whether the result is a place to read an image at (a vec2) instead of a pixel (a vec4).
    virtual bool isWarp() const = 0;
};
using KernelPtr = std::shared_ptr<const Kernel>;

/// The kernels of a text, in order; at least one. Throws Mistake.
ENGINE_API std::vector<KernelPtr> compile(std::string_view text);

/// The image that a kernel computes inside `extent`. Without a region function a sampler is read as far as
/// `area` where the kernel does not show how far it reads. What the function says only saves time: pixels
/// outside are computed when they are read. Throws std::invalid_argument for arguments of the wrong number or
/// kind and for a warp.
ENGINE_API Image apply(const KernelPtr& kernel, const std::vector<Argument>& arguments, const Rect& extent,
                       RegionFunction region = {});
/// The image that a warp makes of another one. Throws as apply() does, and for a kernel that is no warp.
ENGINE_API Image applyWarp(const KernelPtr& kernel, const Sampler& image,
                           const std::vector<Argument>& arguments, const Rect& extent,
                           RegionFunction region = {});

} // namespace engine::kernels
