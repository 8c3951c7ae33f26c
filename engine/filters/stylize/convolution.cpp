// CIConvolution3X3, CIConvolution5X5, CIConvolution7X7, CIConvolution9Horizontal, CIConvolution9Vertical: the
// caller gives the weights.
#include "family.h"

namespace engine {

namespace {

struct Shape {
    const char *name, *displayName, *description;
    Source source;
    int width, height;
};

constexpr Shape shapes[] = {
    {"CIConvolution3X3", "3 by 3 Convolution", "Makes a pixel the weighted sum of the 9 pixels around it.",
     publicDefinition("a weighted sum, of linear light"), 3, 3},
    {"CIConvolution5X5", "5 by 5 Convolution", "Makes a pixel the weighted sum of the 25 pixels around it.",
     publicDefinition("a weighted sum, of linear light"), 5, 5},
    {"CIConvolution7X7", "7 by 7 Convolution", "Makes a pixel the weighted sum of the 49 pixels around it.",
     publicDefinition("a weighted sum, of linear light"), 7, 7},
    {"CIConvolution9Horizontal", "Horizontal 9 Convolution",
     "Makes a pixel the weighted sum of 9 pixels side by side.",
     publicDefinition("a weighted sum, of linear light"), 9, 1},
    {"CIConvolution9Vertical", "Vertical 9 Convolution",
     "Makes a pixel the weighted sum of 9 pixels above each other.",
     publicDefinition("a weighted sum, of linear light"), 1, 9},
};

/// The weights go row by row over the pixels as one sees them: the first is that of the upper left pixel.
/// Alpha is treated like the colours, which are premultiplied; so weights that add up to 0 leave an opaque
/// picture transparent unless the bias makes up for it. With a bias the picture is endless. (Public
/// definition. Core Image's pictures agree, with mean residuals of 0.30 to 0.40 of 255, when the sums are of
/// coded colours, as older systems computed them; here they are of linear light. In which row the weights
/// begin is our choice.)
Image convolved(const Shape& s, const Inputs& in) {
    Numbers weights = in.vector("inputWeights", s.width * s.height);
    std::vector<Tap> taps;
    for (int i = 0; i < s.width * s.height; ++i)
        taps.push_back({i % s.width - s.width / 2, s.height / 2 - i / s.width,
                        static_cast<float>(std::clamp(weights[i], -1e6, 1e6))});
    return convolution(in.image("inputImage"), "convolution", std::move(taps),
                       in.number("inputBias", -1e6, 1e6));
}

const auto registrars = registerFamily<shapes, convolved>([](const Shape& s) -> FilterInfo {
    Numbers middle(s.width * s.height);
    middle[s.width * s.height / 2] = 1;
    return {s.name,
            s.displayName,
            s.description,
            s.source,
            "10.9",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(), vectorInput("inputWeights", "Weights", "", middle, middle),
             numberInput("inputBias", "Bias", "", {.value = 0, .identity = 0})},
            nullptr};
});

} // namespace

} // namespace engine
