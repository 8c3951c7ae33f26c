// The engine's kernels, whose exceptions end here.
#include "Kernels.h"

#include "Attempt.h"

namespace ci {

std::vector<engine::kernels::KernelPtr> compileKernels(const std::string& text, Failure& failure) {
    return attempt(failure, [&] { return engine::kernels::compile(text); });
}

engine::Image applyKernel(const engine::kernels::KernelPtr& kernel,
                          std::vector<engine::kernels::Argument> arguments, const engine::Rect& extent,
                          engine::kernels::RegionFunction region, Failure& failure) {
    return attempt(failure, [&]() -> engine::Image {
        if (!kernel->isWarp()) return engine::kernels::apply(kernel, arguments, extent, std::move(region));
        const auto* image =
            arguments.empty() ? nullptr : std::get_if<engine::kernels::Sampler>(&arguments[0]);
        engine::kernels::Sampler read = image ? *image : engine::kernels::Sampler();
        if (image) arguments.erase(arguments.begin());
        return engine::kernels::applyWarp(kernel, read, arguments, extent, std::move(region));
    });
}

} // namespace ci
