// Fuzzing the kernel language: any text is kernels or a mistake with a line, and any kernel computes pixels.
#include "specialiser.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace engine;

/// Arguments that suit a kernel.
std::vector<kernels::Argument> argumentsFor(const kernels::Kernel& kernel) {
    std::vector<kernels::Argument> arguments;
    for (const kernels::Parameter& p : kernel.parameters()) {
        if (p.kind == kernels::ParameterKind::vector)
            arguments.push_back(Numbers(static_cast<std::size_t>(p.size), 1.5));
        else if (p.kind == kernels::ParameterKind::color)
            arguments.push_back(Color{1, 0.5, 0, 1});
        else
            arguments.push_back(kernels::Sampler{crop(constant({0, 1, 0, 1}), Rect::ofSize(0, 0, 20, 10))});
    }
    return arguments;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    setThreadCount(1);
    std::string_view text(reinterpret_cast<const char*>(bytes), size);
    try {
        // What is compiled into the fuzzer, and then the library, which goes on from there.
        auto unit = kernels::parse(text);
        kernels::check(*unit);
        for (const auto& function : unit->functions)
            if (function->isKernel) kernels::verify(*unit, *function);
        for (const auto& kernel : kernels::compile(text)) {
            Rect area = Rect::ofSize(-2, -2, 9, 5);
            auto arguments = argumentsFor(*kernel);
            Image image = kernel->isWarp()
                              ? kernels::applyWarp(kernel, {crop(constant({}), area)}, arguments, area)
                              : kernels::apply(kernel, arguments, area);
            std::vector<float> pixels(9 * 5 * 4);
            render(image, area, {{9, 5, Format::RGBAf}, pixels.data(), 9 * 16}, Rect::ofSize(0, 0, 9, 5));
        }
    } catch (const kernels::Mistake& mistake) {
        if (mistake.line < 1 || mistake.line > 1 + std::count(text.begin(), text.end(), '\n')) std::abort();
    }
    return 0;
}
