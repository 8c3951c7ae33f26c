// What the ways to lay one picture over another share.
#pragma once

#include "family.h"
#include "kernel.h"

namespace engine {

struct Mode {
    const char *name, *displayName, *description;
    Source source;
    BlendMode blend;
};

inline Image laidOver(const Mode& mode, const Inputs& in) {
    return blend(mode.blend, in.image("inputImage"), in.image("inputBackgroundImage"));
}

/// Registers the modes of a table.
template <const auto& modes>
auto registerModes(std::string_view moreCategories) {
    return registerFamily<modes, laidOver>([&](const Mode& mode) -> FilterInfo {
        return {mode.name,
                mode.displayName,
                mode.description,
                mode.source,
                "10.4",
                categories("CompositeOperation Video StillImage Interlaced NonSquarePixels " +
                           std::string(moreCategories)),
                {imageInput(), imageInput("inputBackgroundImage", "Background Image")},
                nullptr};
    });
}

} // namespace engine
