// What runs a kernel's program on stretches of pixels.
#include "machine.h"

#include "kernel.h"

namespace engine::kernels {

namespace {

// What the formulas of the operations need and color/vecmath.h does not have.

/// From 2^23 on all numbers are whole.
SIMD_INLINE inline float floorOf(float x) { return simd::abs(x) < 8388608.f ? simd::floor(x) : x; }

/// Beyond a million radians hardly a digit is left, but the result stays a sine.
SIMD_INLINE inline float sineOf(float x) { return simd::clamp(simd::sin(x), -1, 1); }

/// The angle of (x, y): the polynomial 4.4.49 of Abramowitz and Stegun for the smaller of the two ratios.
SIMD_INLINE inline float arcTangentOf(float y, float x) {
    float ax = simd::abs(x), ay = simd::abs(y), most = simd::max(ax, ay);
    float t = most > 0 ? simd::min(ax, ay) / most : 0.f, q = t * t;
    float series =
        1 + q * (-0.3333314528f +
                 q * (0.1999355085f +
                      q * (-0.1420889944f +
                           q * (0.1065626393f +
                                q * (-0.0752896400f +
                                     q * (0.0429096138f + q * (-0.0161657367f + q * 0.0028662257f)))))));
    float angle = t * series;
    angle = ay > ax ? 1.57079633f - angle : angle;
    angle = x < 0 ? 3.14159265f - angle : angle;
    return simd::copySign(angle, y);
}

/// One step on n pixels.
SIMD_INLINE inline void runStep(Op op, float* to, const float* pa, const float* pb, const float* pc, int n) {
    switch (op) {
#define KERNEL_RUN(name, count, formula)                                                                     \
    case Op::name: {                                                                                         \
        SIMD_LOOP for (int i = 0; i < n; ++i) {                                                              \
            [[maybe_unused]] float a = pa[i], b = count > 1 ? pb[i] : 0.f, c = count > 2 ? pc[i] : 0.f;      \
            to[i] = formula;                                                                                 \
        }                                                                                                    \
        break;                                                                                               \
    }
        KERNEL_OPERATIONS(KERNEL_RUN)
#undef KERNEL_RUN
    default:
        break;
    }
}

} // namespace

float computed(Op op, float a, float b, float c) {
    float result = 0;
    simd::run([=, &result]() SIMD_INLINE { runStep(op, &result, &a, &b, &c, 1); });
    return result;
}

Machine::Machine(const Program& program, const std::vector<Rgba>& colors)
    : program_(program), memory_(static_cast<std::size_t>(program.registers) * mostAtOnce),
      registers_(program.registers) {
    for (int i = 0; i < program.registers; ++i) registers_[i] = own(i);
    for (const Program::Constant& c : program.constants) std::fill_n(own(c.to), mostAtOnce, c.value);
    for (const Program::ColorPart& c : program.colors)
        std::fill_n(own(c.to), mostAtOnce, colors[c.color][c.component]);
}

void Machine::setNeighbour(const Program::Neighbour& neighbour, const Span& pixels) {
    for (int c = 0; c < 4; ++c) registers_[neighbour.to[c]] = pixels.plane[c];
}

void Machine::run(int x, int y, int n, Source& source) {
    if (program_.placeX)
        for (int i = 0; i < n; ++i) registers_[*program_.placeX][i] = static_cast<float>(x + i) + 0.5f;
    if (program_.placeY) std::fill_n(registers_[*program_.placeY], n, static_cast<float>(y) + 0.5f);
    const Program::Step *step = program_.steps.data(), *end = step + program_.steps.size();
    while (step != end) {
        // From one reading to the next.
        simd::run([=, &step, registers = registers_.data()]() SIMD_INLINE {
            for (; step != end && step->op != Op::read; ++step)
                runStep(step->op, registers[step->to], registers[step->a], registers[step->b],
                        registers[step->c], n);
        });
        if (step == end) break;
        const Program::Reading& reading = program_.readings[step->to];
        Span out;
        for (int c = 0; c < 4; ++c) out.plane[c] = registers_[reading.to[c]];
        source.read(reading.sampler, registers_[step->a], registers_[step->b], n, out);
        ++step;
    }
}

} // namespace engine::kernels
