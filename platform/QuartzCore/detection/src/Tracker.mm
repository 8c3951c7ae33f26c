// Matches the faces of an image with known ones by how much they overlap.
#include "Tracker.h"

#include <algorithm>

namespace ci {
namespace {

double area(CGRect r) { return CGRectIsNull(r) ? 0 : static_cast<double>(r.size.width) * r.size.height; }

/// The area that two faces share as a fraction of the area that they cover together.
double overlap(CGRect a, CGRect b) {
    double both = area(CGRectIntersection(a, b));
    return both > 0 ? both / (area(a) + area(b) - both) : 0;
}

/// Less than this is a coincidence.
constexpr double kLeastOverlap = 0.15;

struct Pair {
    double overlap;
    std::size_t face, known;
};

} // namespace

std::vector<Track> Tracker::follow(const std::vector<CGRect>& faces) {
    std::vector<Pair> pairs;
    for (std::size_t f = 0; f < faces.size(); ++f)
        for (std::size_t k = 0; k < known_.size(); ++k)
            if (double o = overlap(faces[f], known_[k].bounds); o >= kLeastOverlap)
                pairs.push_back({o, f, k});
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair& a, const Pair& b) { return a.overlap > b.overlap; });

    constexpr std::size_t none = ~std::size_t();
    std::vector<std::size_t> faceOf(known_.size(), none), knownOf(faces.size(), none);
    for (const Pair& p : pairs)
        if (knownOf[p.face] == none && faceOf[p.known] == none) {
            knownOf[p.face] = p.known;
            faceOf[p.known] = p.face;
        }

    std::vector<Track> tracks;
    for (std::size_t f = 0; f < faces.size(); ++f) {
        if (knownOf[f] == none) {
            known_.push_back({{++last_, 0}, faces[f], 0});
            knownOf[f] = known_.size() - 1;
        }
        Known& known = known_[knownOf[f]];
        known.bounds = faces[f];
        known.missed = -1;
        ++known.track.frames;
        tracks.push_back(known.track);
    }
    for (Known& known : known_) ++known.missed;
    std::erase_if(known_, [](const Known& known) { return known.missed > kPatience; });
    return tracks;
}

} // namespace ci
