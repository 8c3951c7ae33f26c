// Convolutions with weights that the caller gives.
#include "registry.h"

#include <utility>

namespace engine {

namespace {

struct Shape {
    const char *name, *displayName, *description;
    int width, height;
};

constexpr Shape shapes[] = {
    {"CIConvolution3X3", "3 by 3 Convolution", "Makes a pixel of the 9 pixels around it, as weights tell.", 3,
     3},
    {"CIConvolution5X5", "5 by 5 Convolution", "Makes a pixel of the 25 pixels around it, as weights tell.",
     5, 5},
    {"CIConvolution7X7", "7 by 7 Convolution", "Makes a pixel of the 49 pixels around it, as weights tell.",
     7, 7},
    {"CIConvolution9Horizontal", "Horizontal 9 Convolution",
     "Makes a pixel of 9 pixels side by side, as weights tell.", 9, 1},
    {"CIConvolution9Vertical", "Vertical 9 Convolution",
     "Makes a pixel of 9 pixels above each other, as weights tell.", 1, 9},
};

/// The weights go row by row over the pixels as one sees them: the first is that of the upper left pixel.
/// Alpha is treated like the colours, which are premultiplied; so weights that add up to 0 leave an opaque
/// picture transparent unless the bias makes up for it. With a bias the picture is endless. (In which row the
/// weights begin is our choice.)
template <std::size_t shape>
Image build(const Inputs& in) {
    const Shape& s = shapes[shape];
    Numbers weights = in.vector("inputWeights", s.width * s.height);
    std::vector<Tap> taps;
    for (int i = 0; i < s.width * s.height; ++i)
        taps.push_back({i % s.width - s.width / 2, s.height / 2 - i / s.width,
                        static_cast<float>(std::clamp(weights[i], -1e6, 1e6))});
    return convolution(in.image("inputImage"), "convolution", std::move(taps),
                       in.number("inputBias", -1e6, 1e6));
}

template <std::size_t... i>
std::array<Registrar, sizeof...(i)> registerAll(std::index_sequence<i...>) {
    auto info = [](const Shape& s, Image (*build)(const Inputs&)) -> FilterInfo {
        Numbers middle(s.width * s.height);
        middle[s.width * s.height / 2] = 1;
        InputInfo bias = numberInput("inputBias", "Bias", "", {.value = 0, .identity = 0});
        return {s.name,
                s.displayName,
                s.description,
                "10.9",
                categories("Stylize Video StillImage BuiltIn"),
                {imageInput(), vectorInput("inputWeights", "Weights", "", middle, middle), bias},
                build};
    };
    return {Registrar(info(shapes[i], build<i>))...};
}

const auto registrars = registerAll(std::make_index_sequence<std::size(shapes)>());

} // namespace

} // namespace engine
