// What CIBloom and CIGloom share: a radius and an intensity.
#pragma once

#include "filter.h"
#include "kernel.h"

namespace engine {

inline FilterInfo glowInfo(const char* name, const char* displayName, const char* description, Source source,
                           Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            source,
            "10.4",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(),
             numberInput("inputRadius", "Radius", "Distance",
                         {.value = 10, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 100}),
             numberInput("inputIntensity", "Intensity", "Scalar",
                         {.value = 0.5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
            build};
}

} // namespace engine
