// How long whole renders of 12 megapixels take, in milliseconds: by the clock with all cores, and in
// processor time of one core, which other programs disturb less, with the best instruction set and with SSE2.
//
//     engine_bench             all rows
//     engine_bench WORD ...    the rows whose names contain a word, and the filters that are named so, such
//     as
//                              CIBloom, each by itself
#include <engine/engine.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>

using namespace engine;

namespace {

constexpr int width = 4000, height = 3000;

double seconds(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// The milliseconds of the best of several turns: five, or as many as a second has.
template <class F>
double bestOf(clockid_t clock, F work) {
    double best = 1e9, sum = 0;
    for (int i = 0; i < 5 && sum < 1000; ++i) {
        double begin = seconds(clock);
        work();
        double took = (seconds(clock) - begin) * 1e3;
        best = std::min(best, took), sum += took;
    }
    return best;
}

Image filtered(const char* name, Values values) { return engine::apply(*findFilter(name), values); }

/// A filter with one number.
auto with(const char* name, const char* key, double value) {
    return [=](const Image& image) { return filtered(name, {{"inputImage", image}, {key, value}}); };
}

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

Image threeLayers(Image image) {
    Image half = filtered("CIColorMatrix", {{"inputImage", image}, {"inputAVector", Numbers{0, 0, 0, 0.5}}});
    for (double moved : {100.0, 200.0})
        image = composite(transform(half, Affine::translation(moved, moved)), image);
    return image;
}

Image turned(const Image& image) {
    Affine aboutCentre = Affine::translation(-width / 2.0, -height / 2.0)
                             .then(Affine::rotation(0.3))
                             .then(Affine::scale(1.2, 1.2))
                             .then(Affine::translation(width / 2.0, height / 2.0));
    return transform(image, aboutCentre);
}

Image convolved(const Image& image) {
    Numbers weights;
    for (int i = 0; i < 25; ++i) weights.push_back((i * 7 % 11 + 1) / 146.0);
    return filtered("CIConvolution5X5", {{"inputImage", image}, {"inputWeights", weights}});
}

/// Eight steps, each a filter laid over its own input, so that every result is needed twice.
Image screenedEightTimes(Image image, const char* name) {
    for (int i = 0; i < 8; ++i)
        image = filtered("CIScreenBlendMode", {{"inputImage", filtered(name, {{"inputImage", image}})},
                                               {"inputBackgroundImage", image}});
    return image;
}

Image eightTimes(Image image, const char* name) {
    for (int i = 0; i < 8; ++i) image = filtered(name, {{"inputImage", image}});
    return image;
}

struct Row {
    const char* name;
    std::function<Image(const Image&)> recipe;
    int shrink = 1;
};

const Row rows[] = {
    {"no filter", [](const Image& i) { return i; }},
    {"chain of eight", chainOfEight},
    {"Gaussian blur 5", with("CIGaussianBlur", "inputRadius", 5)},
    {"Gaussian blur 20", with("CIGaussianBlur", "inputRadius", 20)},
    {"Gaussian blur 100", with("CIGaussianBlur", "inputRadius", 100)},
    {"box blur 20", with("CIBoxBlur", "inputRadius", 20)},
    {"median", with("CIMedianFilter", "inputRadius", 1)},
    {"unsharp mask", with("CIUnsharpMask", "inputRadius", 2.5)},
    {"rotation with scale", turned},
    {"half size", [](const Image& i) { return transform(i, Affine::scale(0.5, 0.5)); }, 2},
    {"twirl",
     [](const Image& i) {
         return filtered("CITwirlDistortion", {{"inputImage", i},
                                               {"inputCenter", Numbers{width / 2.0, height / 2.0}},
                                               {"inputRadius", 1500.0}});
     }},
    {"quarter size, Lanczos", with("CILanczosScaleTransform", "inputScale", 0.25), 4},
    {"three layers", threeLayers},
    {"5 x 5 convolution", convolved},
    {"motion blur 40", with("CIMotionBlur", "inputRadius", 40)},
    {"pixellate 16", with("CIPixellate", "inputScale", 16)},
    {"crystallize 20", with("CICrystallize", "inputRadius", 20)},
    {"8 blurs", [](const Image& i) { return eightTimes(i, "CIGaussianBlur"); }},
    {"8 blurs, each screened", [](const Image& i) { return screenedEightTimes(i, "CIGaussianBlur"); }},
};

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

} // namespace

int main(int argc, char** argv) {
    std::size_t bytes = std::size_t{4} * width * height;
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        (*pixels)[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(i * 7919 >> 5);
    std::vector<std::uint8_t> out(bytes);
    double copy = bestOf(CLOCK_PROCESS_CPUTIME_ID, [&] { std::memcpy(out.data(), pixels->data(), bytes); });
    std::printf("%-32s %9s %9s %9s %12s\n", "", "all cores", "one core", "SSE2", "x copy");
    std::printf("%-32s %9s %9.1f\n", "copy", "", copy);

    PixelLayout layout{width, height, Format::RGBA8, Alpha::premultiplied, color::ColorSpace::sRGB()};
    Image image = bitmap(layout, pixels->data(), 4 * width, pixels);
    auto measure = [&](const char* name, const Image& result, int shrink = 1) {
        PixelLayout target = layout;
        target.width /= shrink, target.height /= shrink;
        Rect all{0, 0, static_cast<double>(target.width), static_cast<double>(target.height)};
        auto work = [&] { render(result, all, {target, out.data(), 4 * std::size_t(target.width)}, all); };
        setThreadCount(0);
        double clock = bestOf(CLOCK_MONOTONIC, work);
        setThreadCount(1);
        double best = bestOf(CLOCK_PROCESS_CPUTIME_ID, work);
        InstructionSet set = instructionSet();
        setInstructionSet(InstructionSet::sse2);
        double plain = bestOf(CLOCK_PROCESS_CPUTIME_ID, work);
        setInstructionSet(set);
        std::printf("%-32s %9.1f %9.1f %9.1f %12.1f\n", name, clock, best, plain, best / copy);
        std::fflush(stdout);
    };
    for (const Row& row : rows)
        if (argc == 1 ||
            std::any_of(argv + 1, argv + argc, [&](const char* word) { return std::strstr(row.name, word); }))
            measure(row.name, row.recipe(image), row.shrink);
    for (int i = 1; i < argc; ++i)
        if (const FilterInfo* info = findFilter(argv[i])) measure(argv[i], ofItself(*info, image));
}
