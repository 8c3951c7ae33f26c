// Kernels as straight lines of operations on single numbers: how they are built, and what runs them.
#pragma once

#include "tile.h"

#include <engine/kernels.h>

#include <map>
#include <optional>

/// Every operation: its name, how many operands it has, and what it makes of a, b and c. Booleans are 0
/// and 1. Outside of a function's domain the result is some number, never a trap.
#define KERNEL_OPERATIONS(_)                                                                                 \
    _(negate, 1, -a)                                                                                         \
    _(add, 2, a + b)                                                                                         \
    _(subtract, 2, a - b)                                                                                    \
    _(multiply, 2, a* b)                                                                                     \
    _(divide, 2, a / b)                                                                                      \
    _(multiplyAdd, 3, a* b + c)                                                                              \
    _(minimum, 2, b < a ? b : a)                                                                             \
    _(maximum, 2, a < b ? b : a)                                                                             \
    _(modulo, 2, a - b * floorOf(a / b))                                                                     \
    _(absolute, 1, simd::abs(a))                                                                             \
    _(sign, 1, a > 0 ? 1.f : a < 0 ? -1.f : 0.f)                                                             \
    _(floor, 1, floorOf(a))                                                                                  \
    _(ceiling, 1, -floorOf(-a))                                                                              \
    _(truncate, 1, a < 0 ? -floorOf(-a) : floorOf(a))                                                        \
    _(fraction, 1, a - floorOf(a))                                                                           \
    _(squareRoot, 1, simd::sqrt(a))                                                                          \
    _(inverseRoot, 1, a > 0 ? 1 / simd::sqrt(a) : 0.f)                                                       \
    _(inverseAlpha, 1, unpremultiply(a))                                                                     \
    _(exp2, 1, simd::exp2(a))                                                                                \
    _(log2, 1, simd::log2(simd::max(a, 1.2e-38f)))                                                           \
    _(power, 2, simd::pow(a, b))                                                                             \
    _(sine, 1, sineOf(a))                                                                                    \
    _(cosine, 1, sineOf(a + 1.57079633f))                                                                    \
    _(arcTangent, 2, arcTangentOf(a, b))                                                                     \
    _(less, 2, a < b ? 1.f : 0.f)                                                                            \
    _(atMost, 2, a <= b ? 1.f : 0.f)                                                                         \
    _(equal, 2, a == b ? 1.f : 0.f)                                                                          \
    _(choose, 3, a != 0 ? b : c)

namespace engine::kernels {

enum class Op : std::uint8_t {
#define KERNEL_NAME(name, count, formula) name,
    KERNEL_OPERATIONS(KERNEL_NAME)
#undef KERNEL_NAME
    // What a line begins with: a constant, the place of the pixel, a component of a colour argument, a number
    // that is not known yet.
    constant,
    placeX,
    placeY,
    color,
    unknown,
    // A reading of a sampler (a: u, b: v, c: which one), and a component of it (a: the reading, b: which
    // one).
    read,
    component,
};
int operandsOf(Op op);

/// One operation on single numbers, as the machine does it.
float computed(Op op, float a, float b, float c);

/// How a sampler that a kernel reads lies.
struct Reader {
    Affine fromPlace; ///< from where the image is seen to where its pixels are
    Rect extent;      ///< where the image is seen
    Interpolation interpolation = Interpolation::linear;
};

/// The operations of a kernel after optimisation, on numbered registers of a stretch of pixels each.
struct Program {
    using Register = std::uint16_t;
    struct Step {
        Op op;
        Register to, a, b, c;
    };
    /// A pixel that lies a whole number of pixels away; no step computes it.
    struct Neighbour {
        int sampler, dx, dy;
        std::array<Register, 4> to;
    };
    /// A reading anywhere; `to` of its step is its index.
    struct Reading {
        int sampler;
        std::array<Register, 4> to;
    };
    struct Constant {
        Register to;
        float value;
    };
    struct ColorPart {
        Register to;
        int color, component;
    };
    /// How a sampler is read.
    struct Use {
        bool read = false;
        /// Whether there are only neighbours; `box` has their offsets, edges included.
        bool neighboursOnly = false;
        IntRect box;
        /// If all places are a linear function of the pixel's: these functions.
        std::optional<std::vector<Affine>> places;
    };

    int registers = 0;
    std::vector<Step> steps;
    std::vector<Neighbour> neighbours;
    std::vector<Reading> readings;
    std::vector<Constant> constants;
    std::vector<ColorPart> colors;
    std::optional<Register> placeX, placeY;
    std::vector<Use> uses; // one for each sampler
    std::array<Register, 4> result{};
};

/// Builds a program. Values are numbered; equal ones are one, and what can be computed now is.
class Graph {
  public:
    /// At most so many values, so that a text cannot take all memory and time, and registers
    /// can be counted in 16 bits.
    static constexpr int mostValues = 30000;

    int constant(float value);
    int operation(Op op, int a, int b = -1, int c = -1);
    /// The values that a line begins with.
    int placeX() { return value({Op::placeX, {-1, -1, -1}}); }
    int placeY() { return value({Op::placeY, {-1, -1, -1}}); }
    int color(int index, int component) { return value({Op::color, {index, component, -1}}); }
    int unknown() { return value({Op::unknown, {static_cast<int>(values_.size()), -1, -1}}); }
    /// A component of sampler `index` at (u, v), where its pixels are.
    int read(int index, int u, int v, int component);

    /// Empty for a value that is computed for each pixel.
    std::optional<float> known(int value) const;

    /// What computes these values.
    Program program(const std::array<int, 4>& result, const std::vector<Reader>& readers) const;

  private:
    struct Value {
        Op op;
        std::array<int, 3> operands;
        float constant = 0;
    };
    /// x times the pixel's place, y times, and a rest.
    struct Linear {
        double x, y, rest;
    };

    int value(const Value& value);
    std::optional<Linear> linearOf(const Value& value) const;

    std::vector<Value> values_;
    std::vector<std::optional<Linear>> linear_;
    std::map<std::array<int, 5>, int> numbers_;
};

/// A text or a kernel that became too long to be run.
struct TooLong {};

} // namespace engine::kernels
