// What runs a kernel's program on stretches of pixels.
#pragma once

#include "program.h"

namespace engine::kernels {

/// The most pixels that a step computes at once: enough that choosing the step costs little, and few enough
/// that the registers of most kernels stay in the first cache.
constexpr int mostAtOnce = 128;

/// Where a program's readings get their pixels from.
class Source {
  public:
    virtual ~Source() = default;
    /// out = the sampler at (u, v), for n pixels; places may be anything, not-a-number included.
    virtual void read(int sampler, const float* u, const float* v, int n, const Span& out) = 0;
};

/// The registers of one program; used by one thread.
class Machine {
  public:
    /// `colors` are those of Program::colors.
    Machine(const Program& program, const std::vector<Rgba>& colors);

    /// Before run(): the pixels of a neighbour, which have to stay until run() is done.
    void setNeighbour(const Program::Neighbour& neighbour, const Span& pixels);
    /// Computes pixels x..x+n-1 of row y; n is at most mostAtOnce.
    void run(int x, int y, int n, Source& source);
    /// The result of the last run.
    const float* result(int component) const { return registers_[program_.result[component]]; }

  private:
    float* own(int index) { return &memory_[static_cast<std::size_t>(index) * mostAtOnce]; }

    const Program& program_;
    std::vector<float> memory_;
    std::vector<float*> registers_;
};

} // namespace engine::kernels
