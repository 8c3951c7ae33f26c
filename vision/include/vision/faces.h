// Faces in grey bitmaps. Plain C++, and a library of its own, so that only a process that looks for faces
// loads it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vision {

/// In pixels, from the upper left corner of the bitmap.
struct Point {
    double x = 0, y = 0;
};

/// 0 is black; the top row comes first.
struct GreyBitmap {
    const std::uint8_t* pixels = nullptr;
    int width = 0, height = 0;
    std::size_t rowBytes = 0;
};

struct Face {
    /// From the brows to the chin; may reach over the bitmap's edge.
    double x = 0, y = 0, width = 0, height = 0;
    /// How sure the detector is; at least kSureness for a face that looks towards the viewer.
    double sureness = 0;
    /// The middle of each; empty when it is not visible. Left means the left side of the bitmap.
    std::optional<Point> leftEye, rightEye, mouth;
};

/// The order of faces in a result.
inline bool larger(const Face& a, const Face& b) { return a.width * a.height > b.width * b.height; }

/// The area that two faces share as a fraction of the smaller one's.
inline double overlap(const Face& a, const Face& b) {
    double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    double smaller = std::min(a.width * a.height, b.width * b.height);
    return width > 0 && height > 0 && smaller > 0 ? width * height / smaller : 0;
}

/// In a bitmap that is larger by that factor.
inline Face scaled(Face face, double factor) {
    auto apply = [&](std::optional<Point>& p) {
        if (p) p = Point{p->x * factor, p->y * factor};
    };
    apply(face.leftEye);
    apply(face.rightEye);
    apply(face.mouth);
    face.x *= factor;
    face.y *= factor;
    face.width *= factor;
    face.height *= factor;
    return face;
}

/// Adds to `faces` those of `others` that none of them overlaps by half.
inline void addNew(std::vector<Face>& faces, const std::vector<Face>& others) {
    std::size_t known = faces.size();
    for (const Face& face : others)
        if (std::none_of(faces.begin(), faces.begin() + static_cast<std::ptrdiff_t>(known),
                         [&](const Face& each) { return overlap(each, face) > 0.5; }))
            faces.push_back(face);
}

/// The side, in pixels, of the smallest face that is found: the detector looks through a window of this size.
/// For smaller faces, enlarge the picture.
inline constexpr double kSmallestFace = 72;

/// What a candidate has to reach. In 119 photographs without people, enlarged to twice their size, the most
/// face-like place reached 0.24; the least certain face of the tests reaches 0.47.
inline constexpr double kSureness = 0.35;

enum class Care {
    /// Faces that look towards the viewer, tilted by about 30 degrees at most.
    Normal,
    /// Faces that look to the side as well, for several times the time.
    Thorough,
};

/// Finds upright faces.
class FaceFinder {
  public:
    virtual ~FaceFinder() = default;
    /// The largest first. Nothing for a bitmap without pixels. May be called from any thread. Throws when
    /// memory is short.
    virtual std::vector<Face> find(const GreyBitmap& bitmap, Care care = Care::Normal) = 0;
};

} // namespace vision

/// The finder of this process, made on first use. Null when its data cannot be read; the reason is then in
/// `problem`.
extern "C" __attribute__((visibility("default"))) vision::FaceFinder* visionFaceFinder(std::string* problem);
