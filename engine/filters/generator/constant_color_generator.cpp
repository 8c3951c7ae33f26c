// CIConstantColorGenerator: one colour everywhere.
#include "filter.h"

namespace engine {

namespace {

const Registrar filter{{"CIConstantColorGenerator",
                        "Constant Color",
                        "Fills everything with one colour.",
                        publicDefinition("one colour"),
                        "10.4",
                        categories("Generator Video StillImage BuiltIn"),
                        {colorInput("inputColor", "Color", "Color", {1, 0, 0, 1})},
                        [](const Inputs& in) { return constant(in.color("inputColor")); }}};

} // namespace

} // namespace engine
