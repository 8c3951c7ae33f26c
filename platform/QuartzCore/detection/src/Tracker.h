// Follows faces from image to image.
#pragma once

#include "Features.h"

#include <vector>

namespace ci {

class Tracker {
  public:
    /// Identifies each face, in their order, with the known face that it overlaps most, or as a new one. A
    /// face that is not seen is remembered where it was for the next kPatience images.
    std::vector<Track> follow(const std::vector<CGRect>& faces);

    static constexpr int kPatience = 4;

  private:
    struct Known {
        Track track;
        CGRect bounds;
        int missed = 0;
    };
    std::vector<Known> known_;
    int last_ = 0;
};

} // namespace ci
