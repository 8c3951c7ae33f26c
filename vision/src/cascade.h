// A detector by Viola and Jones ("Rapid Object Detection using a Boosted Cascade of Simple Features", 2001):
// a cascade of stages, each a sum of small decision trees that compare sums of rectangles.
#pragma once

#include <vision/faces.h>

namespace vision {

/// A square where a cascade saw what it looks for.
struct Sighting {
    double x = 0, y = 0, side = 0;
    /// The number of windows nearby that agreed.
    int votes = 0;
};

class Cascade {
  public:
    /// Reads OpenCV's format of upright Haar features. Throws std::runtime_error when the file is missing or
    /// damaged.
    explicit Cascade(const std::string& file);

    /// What squares of at least that side show, with at least so many votes.
    std::vector<Sighting> find(const GreyBitmap& bitmap, double smallest, int leastVotes) const;

  private:
    struct Rectangle {
        int x, y, width, height;
        float weight;
    };
    using Feature = std::vector<Rectangle>;
    struct Node {
        std::size_t feature;
        float threshold;
        /// The next node of the tree, or a leaf when it is not positive.
        int below, otherwise;
    };
    struct Tree {
        std::vector<Node> nodes;
        std::vector<float> leaves;
    };
    struct Stage {
        float threshold;
        std::vector<Tree> trees;
    };
    class Level;

    void check() const;

    int side_ = 0;
    std::vector<Stage> stages_;
    std::vector<Feature> features_;
};

} // namespace vision
