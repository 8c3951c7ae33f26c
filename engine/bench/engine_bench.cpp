// How long whole renders take, in milliseconds and as multiples of copying the same picture in memory.
//
//     engine_bench             some filters, and chains of them
//     engine_bench CIBloom ... each of these filters on one core; processor time, so that other programs
//     count less
#include <engine/engine.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

using namespace engine;

namespace {

constexpr int width = 4000, height = 3000;

template <class F>
double bestOf(int times, F work) {
    double best = 1e9;
    for (int i = 0; i < times; ++i) {
        auto begin = std::chrono::steady_clock::now();
        work();
        std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
        best = std::min(best, took.count());
    }
    return best;
}

Image filtered(const char* name, Values values) { return engine::apply(*findFilter(name), values); }

Image chainOfEight(Image image) {
    image = filtered("CIExposureAdjust", {{"inputImage", image}, {"inputEV", 0.3}});
    image = filtered("CIGammaAdjust", {{"inputImage", image}, {"inputPower", 0.8}});
    image = filtered("CISepiaTone", {{"inputImage", image}, {"inputIntensity", 0.4}});
    image = filtered("CIVignette", {{"inputImage", image}, {"inputIntensity", 0.7}});
    image = filtered("CIHueAdjust", {{"inputImage", image}, {"inputAngle", 0.5}});
    image = filtered("CIColorControls", {{"inputImage", image}, {"inputSaturation", 1.2}});
    image = filtered("CIColorInvert", {{"inputImage", image}});
    return filtered("CIGammaAdjust", {{"inputImage", image}, {"inputPower", 1.1}});
}

/// With its standard values, but 60 % along the slider where those leave a picture as it is.
Image ofItself(const FilterInfo& info, const Image& image) {
    Values values;
    for (const InputInfo& input : info.inputs) {
        if (input.kind == InputKind::image) values[input.key] = image;
        bool idle = input.defaultValue && input.defaultValue == input.identity;
        if (input.kind == InputKind::number && idle && input.sliderMin && input.sliderMax)
            values[input.key] = *input.sliderMin * 0.4 + *input.sliderMax * 0.6;
    }
    return engine::apply(info, values);
}

double processorTime() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec * 1e-6;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t bytes = std::size_t{4} * width * height;
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        (*pixels)[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(i * 7919 >> 5);
    std::vector<std::uint8_t> out(bytes);
    double copy = bestOf(5, [&] { std::memcpy(out.data(), pixels->data(), bytes); });
    std::printf("%-28s %8.1f ms\n", "memcpy", copy);

    PixelLayout layout{width, height, Format::RGBA8, Alpha::premultiplied, color::ColorSpace::sRGB()};
    Image image = bitmap(layout, pixels->data(), 4 * width, pixels);
    Rect all{0, 0, width, height};
    if (argc > 1) setThreadCount(1);
    for (int i = 1; i < argc; ++i) {
        const FilterInfo* info = findFilter(argv[i]);
        if (!info) return std::fprintf(stderr, "no filter %s\n", argv[i]), 1;
        Image result = ofItself(*info, image);
        for (auto [set, name] : {std::pair(InstructionSet::avx2, "AVX2"), {InstructionSet::sse2, "SSE2"}}) {
            if (!setInstructionSet(set)) continue;
            double best = 1e9;
            for (int k = 0; k < 5; ++k) {
                double begin = processorTime();
                render(result, all, {layout, out.data(), 4 * width}, all);
                best = std::min(best, processorTime() - begin);
            }
            std::printf("%-32s %s %8.1f ms\n", argv[i], name, best);
        }
    }
    if (argc > 1) return 0;
    auto measure = [&](const char* what, const Image& image) {
        double took = bestOf(3, [&] { render(image, all, {layout, out.data(), 4 * width}, all); });
        std::printf("%-28s %8.1f ms  %6.1f x memcpy\n", what, took, took / copy);
    };
    auto measureAll = [&] {
        measure("no filter", image);
        measure("8 filters", chainOfEight(image));
        for (double radius : {3.0, 20.0, 100.0}) {
            char name[40];
            std::snprintf(name, sizeof name, "Gaussian, radius %g", radius);
            measure(name, filtered("CIGaussianBlur", {{"inputImage", image}, {"inputRadius", radius}}));
        }
        measure("box, radius 20", filtered("CIBoxBlur", {{"inputImage", image}, {"inputRadius", 20.0}}));
        measure("turned", transform(image, Affine::rotation(0.3)));
        measure("twirl", filtered("CITwirlDistortion", {{"inputImage", image}, {"inputRadius", 2000.0}}));
    };
    std::printf("\nbest instruction set, all cores\n");
    measureAll();
    setThreadCount(1);
    std::printf("\nbest instruction set, one core\n");
    measureAll();
    setInstructionSet(InstructionSet::sse2);
    std::printf("\nSSE2, one core\n");
    measureAll();
}
