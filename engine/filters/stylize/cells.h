// What CIPixellate, CIHexagonalPixellate, CICrystallize and CIPointillize share: pictures in cells of one
// colour each. A cell has the colour of the picture at its middle, mixed from the four pixels around, and no
// mean. (Fitted to Core Image's picture of CIPixellate.)
#pragma once

#include "filter.h"
#include "warps.h"

namespace engine {

/// The middle of the pattern.
inline Point cellCentre(const Inputs& in) {
    Point centre = in.point("inputCenter");
    return {std::clamp(centre.x, -1e6, 1e6), std::clamp(centre.y, -1e6, 1e6)};
}
inline double cellSize(const Inputs& in, const char* key) { return in.number(key, 1, 1e5); }

inline InputInfo cellCentreInput() { return vectorInput("inputCenter", "Center", "Position", {150, 150}); }

} // namespace engine
