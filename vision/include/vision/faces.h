// Faces in grey bitmaps. Plain C++, and a library of its own, so that only a process that looks for faces
// loads it.
#pragma once

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
    /// How sure the detector is; at least kSureness.
    double sureness = 0;
    /// The middle of each; empty when it is not visible. Left means the left side of the bitmap.
    std::optional<Point> leftEye, rightEye, mouth;
};

/// The side, in pixels, of the smallest face that is found: the detector looks through a window of this size.
/// For smaller faces, enlarge the picture.
inline constexpr double kSmallestFace = 72;

/// What a candidate has to reach. In 119 photographs without people, enlarged to twice their size, the most
/// face-like place reached 0.24; the least certain face of the tests reaches 0.47.
inline constexpr double kSureness = 0.35;

/// Finds upright faces that look towards the viewer, tilted by about 30 degrees at most.
class FaceFinder {
  public:
    virtual ~FaceFinder() = default;
    /// The largest first. Nothing for a bitmap without pixels. May be called from any thread. Throws when
    /// memory is short.
    virtual std::vector<Face> find(const GreyBitmap& bitmap) = 0;
};

} // namespace vision

/// The finder of this process, made on first use. Null when its data cannot be read; the reason is then in
/// `problem`.
extern "C" __attribute__((visibility("default"))) vision::FaceFinder* visionFaceFinder(std::string* problem);
