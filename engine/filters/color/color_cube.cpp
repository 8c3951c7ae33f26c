// CIColorCube, CIColorCubeWithColorSpace: colours looked up in a table with three dimensions.
#include "filter.h"
#include "kernel.h"

#include <cmath>
#include <cstring>

namespace engine {

namespace {

/// Floats r, g, b, a, premultiplied; red runs fastest, then green, then blue.
struct Cube {
    int side;
    std::vector<float> entries;

    /// Null when there are too few bytes.
    static std::shared_ptr<const Cube> of(const Inputs& in) {
        int side = static_cast<int>(in.number("inputCubeDimension", 2, 64));
        Bytes bytes = in.data("inputCubeData");
        std::size_t count = std::size_t(4) * side * side * side;
        if (bytes.size() < count * sizeof(float)) return nullptr;
        auto cube = std::make_shared<Cube>(Cube{side, std::vector<float>(count)});
        std::memcpy(cube->entries.data(), bytes.data(), count * sizeof(float));
        for (float& v : cube->entries)
            if (!std::isfinite(v)) v = 0;
        return cube;
    }

    /// The mix of the eight entries around a colour; what is out of 0..1 is taken as the nearest end.
    Rgba at(float r, float g, float b) const {
        std::array<int, 3> low;
        std::array<float, 3> part;
        const float colour[] = {r, g, b};
        for (int c = 0; c < 3; ++c) {
            float place = (colour[c] > 0 ? std::min(colour[c], 1.0f) : 0) * static_cast<float>(side - 1);
            low[c] = std::min(static_cast<int>(place), side - 2);
            part[c] = place - static_cast<float>(low[c]);
        }
        Rgba out{};
        for (int corner = 0; corner < 8; ++corner) {
            float weight = 1;
            int index = 0, stride = 1;
            for (int c = 0; c < 3; ++c, stride *= side) {
                int up = corner >> c & 1;
                weight *= up ? part[c] : 1 - part[c];
                index += (low[c] + up) * stride;
            }
            for (int c = 0; c < 4; ++c) out[c] += weight * entries[4 * index + c];
        }
        return out;
    }
};

/// The straight colour finds its place in the cube; alpha multiplies what is found there.
void lookUp(const Cube& cube, const Span& s, int n) {
    for (int i = 0; i < n; ++i) {
        float a = s.plane[3][i], inverse = unpremultiply(a);
        Rgba found = cube.at(s.plane[0][i] * inverse, s.plane[1][i] * inverse, s.plane[2][i] * inverse);
        for (int c = 0; c < 4; ++c) s.plane[c][i] = a * found[c];
    }
}

/// The places are colours of the working space.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    auto cube = Cube::of(in);
    if (!cube) return empty();
    return pointStep(image, "color cube", [cube](const RenderContext&) -> SpanFunction {
        return [cube](const Span& s, int, int, int n) { lookUp(*cube, s, n); };
    });
}

/// A step on straight colours; alpha stays.
template <class F>
void onStraight(const Span& s, int n, F step) {
    for (int c = 0; c < 3; ++c)
        for (int i = 0; i < n; ++i) s.plane[c][i] *= unpremultiply(s.plane[3][i]);
    step();
    for (int c = 0; c < 3; ++c)
        for (int i = 0; i < n; ++i) s.plane[c][i] *= s.plane[3][i];
}

/// From the numbers of one space to those of another; a space that is null has linear light.
void convert(const color::ColorSpacePtr& from, const color::ColorSpacePtr& to, const Span& s, int n) {
    float* planes[] = {s.plane[0], s.plane[1], s.plane[2]};
    if (from) from->converter().decode(planes, planes, n);
    if (to) to->converter().encode(planes, planes, n);
}

/// The places, and what is found there, are colours of the cube's own space. Without one (or where colours
/// are not matched), of the working space.
Image buildInSpace(const Inputs& in) {
    Image image = in.image("inputImage");
    Bytes profile = in.data("inputColorSpace");
    auto space = profile.empty() ? nullptr : color::ColorSpace::fromICC(profile);
    if (!image || !space || space->model() != color::Model::rgb) return build(in);
    auto cube = Cube::of(in);
    if (!cube) return empty();
    return pointStep(image, "color cube", [cube, space](const RenderContext& context) -> SpanFunction {
        if (!context.settings.colorManaged)
            return [cube](const Span& s, int, int, int n) { lookUp(*cube, s, n); };
        return [cube, space, working = context.settings.working](const Span& s, int, int, int n) {
            onStraight(s, n, [&] { convert(working, space, s, n); });
            lookUp(*cube, s, n);
            onStraight(s, n, [&] { convert(space, working, s, n); });
        };
    });
}

/// Of side 2: every corner is its own colour.
Bytes identity() {
    Bytes bytes;
    for (int corner = 0; corner < 8; ++corner)
        for (float v : {float(corner & 1), float(corner >> 1 & 1), float(corner >> 2), 1.0f}) {
            std::uint8_t raw[sizeof v];
            std::memcpy(raw, &v, sizeof v);
            bytes.insert(bytes.end(), raw, raw + sizeof v);
        }
    return bytes;
}

std::vector<InputInfo> cubeInputs() {
    return {imageInput(),
            numberInput("inputCubeDimension", "Cube Dimension", "Count",
                        {.value = 2, .identity = 2, .min = 2, .max = 64}),
            dataInput("inputCubeData", "Cube Data", identity(), identity())};
}

InputInfo spaceInput() {
    InputInfo info;
    info.key = "inputColorSpace";
    info.displayName = "Color Space";
    info.kind = InputKind::colorSpace;
    return info;
}

const Registrar cubes{{"CIColorCube", "Color Cube", "Looks every colour up in a table with three dimensions.",
                       publicDefinition("trilinear interpolation in a table"), "10.4",
                       categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                       cubeInputs(), build}};

const Registrar cubesInSpaces{
    {"CIColorCubeWithColorSpace", "Color Cube with ColorSpace",
     "Looks every colour up in a table with three dimensions, which holds colours of a space of its own.",
     publicDefinition("trilinear interpolation in a table, in the table's colour space"), "10.9",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     [] {
         std::vector<InputInfo> inputs = cubeInputs();
         inputs.push_back(spaceInput());
         return inputs;
     }(),
     buildInSpace}};

} // namespace

} // namespace engine
