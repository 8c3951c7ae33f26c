// The library that finds faces, loaded when the first detector is made. No function here throws.
#pragma once

#include <vision/faces.h>

namespace ci {

/// Null, with the reason in `problem`, if the library or its data cannot be loaded.
vision::FaceFinder* faceFinder(std::string& problem);
/// Empty, with the reason in `problem`, if the search failed.
std::vector<vision::Face> findFaces(vision::FaceFinder& finder, const vision::GreyBitmap& bitmap,
                                    vision::Care care, std::string& problem);

} // namespace ci
