// The engine's kernels for Objective-C++: no function here throws.
#pragma once

#include "Shim.h"

#include <engine/kernels.h>

namespace ci {

/// Empty, and a failure, for a text with a mistake.
std::vector<engine::kernels::KernelPtr> compileKernels(const std::string& text, Failure& failure);
/// The image that a kernel computes. Of a warp the first argument is the image that it reads.
engine::Image applyKernel(const engine::kernels::KernelPtr& kernel,
                          std::vector<engine::kernels::Argument> arguments, const engine::Rect& extent,
                          engine::kernels::RegionFunction region, Failure& failure);

} // namespace ci
