// Warps that are a formula: how far away each pixel reads, by its place.
#pragma once

#include "kernel.h"

namespace engine {

/// How far a warp reaches.
struct Reach {
    /// Where the pixels of a source of this extent go.
    std::function<Rect(const Rect& source)> extent;
    /// What the pixels of an area read, neighbours not counted.
    std::function<Rect(const Rect& area)> region;
};

/// Nothing moves farther than `distance` along either axis.
inline Reach upTo(double distance) {
    auto grown = [=](const Rect& r) { return r.grown(distance, distance); };
    return {grown, grown};
}

/// Only the inside of a circle moves, and stays inside.
inline Reach insideCircle(Point centre, double radius) {
    auto touched = [disc = squareAround(centre, radius)](const Rect& r) {
        return r.intersect(disc).isEmpty() ? r : r.unite(disc);
    };
    return {touched, touched};
}

template <class Place, class Formula>
class FormulaWarp : public Warp {
  public:
    FormulaWarp(std::string name, Reach reach, const Place& place, const Formula& formula)
        : name_(std::move(name)), reach_(std::move(reach)), place_(place), formula_(formula) {}

    std::string name() const override { return name_; }
    Rect extent(const Rect& source) const override { return reach_.extent(source); }
    Rect region(const Rect& area) const override { return reach_.region(area); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        eachDisplacement(n, formula_, dx, dy, place_.row(x, y));
    }

  private:
    std::string name_;
    Reach reach_;
    Place place_;
    Formula formula_;
};

/// Each pixel reads formula(position) away from itself, with the position as the place has it.
template <class Place, class Formula>
Image warp(const Image& image, std::string name, Reach reach, const Place& place, const Formula& formula) {
    return warp(image, std::make_shared<FormulaWarp<Place, Formula>>(std::move(name), std::move(reach), place,
                                                                     formula));
}

} // namespace engine
