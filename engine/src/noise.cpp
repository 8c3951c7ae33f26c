#include "noise.h"

#include <array>
#include <cstdint>
#include <vector>

namespace engine {

namespace {

/// The additive feedback generator of degree 31 that BSD and glibc have as random(), seeded with 42. It is
/// computed here, so that nobody else's calls of random() change the picture.
class FeedbackGenerator {
  public:
    FeedbackGenerator() {
        state_[0] = 42;
        for (int i = 1; i < degree; ++i)
            state_[i] = static_cast<std::uint32_t>(16807ull * state_[i - 1] % 2147483647u);
        for (int i = 0; i < 10 * degree; ++i) next();
    }
    std::uint32_t next() {
        std::uint32_t sum = state_[place_] += state_[(place_ + degree - separation) % degree];
        place_ = (place_ + 1) % degree;
        return sum >> 1;
    }

  private:
    static constexpr int degree = 31, separation = 3;
    std::array<std::uint32_t, degree> state_;
    int place_ = separation;
};

struct Tile {
    static constexpr std::size_t size = NoisePlane::size;
    std::array<std::vector<float>, 4> planes;

    /// Alpha, red, green, blue of each pixel, rows from the top.
    Tile() {
        for (auto& plane : planes) plane.resize(size * size);
        FeedbackGenerator random;
        for (std::size_t y = size; y-- > 0;)
            for (std::size_t x = 0; x < size; ++x)
                for (int component : {3, 0, 1, 2})
                    planes[component][y * size + x] = static_cast<float>(random.next() & 255) / 255;
    }
};

} // namespace

NoisePlane noisePlane(int component) {
    static const Tile tile;
    return {tile.planes[component].data()};
}

} // namespace engine
