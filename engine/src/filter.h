// How a filter declares itself: one static Registrar for each, in its own file.
#pragma once

#include "nodes.h"

namespace engine {

struct Registrar {
    explicit Registrar(FilterInfo info);
};

/// What a filter stands on; for the arguments see Source.
constexpr Source publicDefinition(std::string_view text) { return {Source::Kind::publicDefinition, text}; }
constexpr Source fitted(std::string_view text, std::optional<double> residual = {}) {
    return {Source::Kind::fitted, text, residual};
}
constexpr Source ourOwn(std::string_view text) { return {Source::Kind::ourOwn, text}; }

/// From their names, separated by blanks.
std::vector<std::string> categories(std::string_view names);

struct NumberFacts {
    std::optional<double> value, identity, min, max, sliderMin, sliderMax;
};

/// For `type` see InputInfo; it may be empty.
InputInfo imageInput(std::string key = "inputImage", std::string displayName = "Image");
InputInfo numberInput(std::string key, std::string displayName, std::string_view type,
                      const NumberFacts& facts);
InputInfo vectorInput(std::string key, std::string displayName, std::string_view type, Numbers value,
                      std::optional<Numbers> identity = {});
InputInfo colorInput(std::string key, std::string displayName, std::string_view type, const Color& value,
                     std::optional<Color> identity = {});
InputInfo transformInput(std::string key, std::string displayName, std::string_view type = "Transform");
InputInfo dataInput(std::string key, std::string displayName, Bytes value, Bytes identity);

} // namespace engine
