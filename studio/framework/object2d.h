// Shapes as objects, and how Graphics draws them.
#pragma once

#include "runtime/objects.h"
#include "shapes.h"

#include <cstdint>
#include <functional>

namespace studio {

// Calls `fill` with what an Object2D consists of, in the order of drawing, and its colours; its middle is
// moved by x and y.
void drawObject2D(REALobject object, double x, double y,
                  const std::function<void(const shapes::Shape&, std::uint32_t color)>& fill);

} // namespace studio
