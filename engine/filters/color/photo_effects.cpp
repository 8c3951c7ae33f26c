// CIPhotoEffectChrome, Fade, Instant, Mono, Noir, Process, Tonal, Transfer: the looks of films and prints.
#include "filter.h"
#include "photo_effect_tables.h"

#include <cmath>
#include <cstring>

namespace engine {

namespace {

struct Look {
    const char *name, *displayName, *description;
    Source source;
    std::string_view table;
};

constexpr Look looks[] = {
    {"CIPhotoEffectChrome", "Photo Effect Chrome", "Exaggerates colours, as slides on chrome film do.",
     fitted("a table of 11 x 11 x 11 colours", 0.51), photo::chrome},
    {"CIPhotoEffectFade", "Photo Effect Fade", "Fades colours.",
     fitted("a table of 11 x 11 x 11 colours", 0.2), photo::fade},
    {"CIPhotoEffectInstant", "Photo Effect Instant", "Distorts colours as instant pictures do.",
     fitted("a table of 11 x 11 x 11 colours", 0.27), photo::instant},
    {"CIPhotoEffectMono", "Photo Effect Mono", "Makes a black-and-white picture of low contrast.",
     fitted("a table of 11 x 11 x 11 grays", 0.19), photo::mono},
    {"CIPhotoEffectNoir", "Photo Effect Noir", "Makes a black-and-white picture of high contrast.",
     fitted("a table of 11 x 11 x 11 grays", 0.21), photo::noir},
    {"CIPhotoEffectProcess", "Photo Effect Process", "Gives a picture cool colours.",
     fitted("a table of 11 x 11 x 11 colours", 0.33), photo::process},
    {"CIPhotoEffectTonal", "Photo Effect Tonal", "Makes a black-and-white picture that keeps the contrast.",
     fitted("a table of 11 x 11 x 11 grays", 0.2), photo::tonal},
    {"CIPhotoEffectTransfer", "Photo Effect Transfer", "Gives a picture warm colours.",
     fitted("a table of 11 x 11 x 11 colours", 0.35), photo::transfer},
};

constexpr int lattice = 11, finer = 3, side = (lattice - 1) * finer + 1;

/// The entries of a table, from 0 to 1.
class Table {
  public:
    explicit Table(std::string_view digits) : digits_(digits) {
        constexpr std::size_t grays = 2 * lattice * lattice * lattice;
        channels_ = digits.size() == grays ? 1 : 3;
    }
    /// Beyond an end the table goes on straight.
    double at(int r, int g, int b, int channel) const {
        if (outside(r)) return straight(r, [&](int i) { return at(i, g, b, channel); });
        if (outside(g)) return straight(g, [&](int i) { return at(r, i, b, channel); });
        if (outside(b)) return straight(b, [&](int i) { return at(r, g, i, channel); });
        int entry = ((b * lattice + g) * lattice + r) * channels_ + channel % channels_;
        return (16 * digit(digits_[2 * entry]) + digit(digits_[2 * entry + 1])) / 255.0;
    }

  private:
    static bool outside(int i) { return i < 0 || i >= lattice; }
    template <class F>
    static double straight(int i, F f) {
        return i < 0 ? 2 * f(0) - f(1) : 2 * f(lattice - 1) - f(lattice - 2);
    }
    static int digit(char c) { return c <= '9' ? c - '0' : c - 'a' + 10; }

    std::string_view digits_;
    int channels_;
};

/// Catmull and Rom's cubic through the middle two of four values.
double cubic(const std::array<double, 4>& v, double t) {
    return v[1] + 0.5 * t *
                      (v[2] - v[0] +
                       t * (2 * v[0] - 5 * v[1] + 4 * v[2] - v[3] + t * (3 * (v[1] - v[2]) + v[3] - v[0])));
}

/// The lattice refined, one axis after the other, to the bytes of a colour cube.
Bytes cubeOf(std::string_view digits) {
    Table table(digits);
    auto along = [](int i, auto value) {
        int low = std::min(i / finer, lattice - 2);
        std::array<double, 4> v;
        for (int k = 0; k < 4; ++k) v[k] = value(low - 1 + k);
        return cubic(v, static_cast<double>(i - low * finer) / finer);
    };
    std::vector<float> cube(std::size_t(4) * side * side * side, 1.0f);
    std::vector<double> red(side * (lattice + 2) * (lattice + 2)), green(side * side * (lattice + 2));
    for (int c = 0; c < 3; ++c) {
        auto reds = [&](int r, int g, int b) -> double& {
            return red[(r * (lattice + 2) + g + 1) * (lattice + 2) + b + 1];
        };
        auto greens = [&](int r, int g, int b) -> double& {
            return green[(r * side + g) * (lattice + 2) + b + 1];
        };
        for (int r = 0; r < side; ++r) {
            for (int g = -1; g <= lattice; ++g)
                for (int b = -1; b <= lattice; ++b)
                    reds(r, g, b) = along(r, [&](int i) { return table.at(i, g, b, c); });
            for (int g = 0; g < side; ++g) {
                for (int b = -1; b <= lattice; ++b)
                    greens(r, g, b) = along(g, [&](int i) { return reds(r, i, b); });
                for (int b = 0; b < side; ++b)
                    cube[4 * ((std::size_t(b) * side + g) * side + r) + c] = static_cast<float>(
                        std::clamp(along(b, [&](int i) { return greens(r, g, i); }), 0.0, 1.0));
            }
        }
    }
    Bytes bytes(cube.size() * sizeof(float));
    std::memcpy(bytes.data(), cube.data(), bytes.size());
    return bytes;
}

/// A colour cube of sRGB's coded colours, made when an effect is first used. (Fitted to Core Image's
/// pictures, mean residuals 0.3 to 0.7 of 255.)
template <std::size_t i>
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    static const Bytes cube = cubeOf(looks[i].table);
    return apply(*findFilter("CIColorCubeWithColorSpace"),
                 {{"inputImage", image},
                  {"inputCubeDimension", static_cast<double>(side)},
                  {"inputCubeData", cube},
                  {"inputColorSpace", color::ColorSpace::sRGB()->iccData()}});
}

template <std::size_t... i>
std::array<Registrar, sizeof...(i)> registerAll(std::index_sequence<i...>) {
    auto info = [](const Look& look, Image (*build)(const Inputs&)) -> FilterInfo {
        return {
            look.name,        look.displayName,
            look.description, look.source,
            "10.9",           categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
            {imageInput()},   build};
    };
    return {Registrar(info(looks[i], build<i>))...};
}

const auto registrars = registerAll(std::make_index_sequence<std::size(looks)>());

} // namespace

} // namespace engine
