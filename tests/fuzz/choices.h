// Choices that a fuzzer's bytes make, one after the other. Bytes that are used up choose the first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace fuzz {

class Choices {
  public:
    Choices(const std::uint8_t* bytes, std::size_t size) : next_(bytes), end_(bytes + size) {}

    bool left() const { return next_ < end_; }
    std::size_t below(std::size_t count) {
        if (count < 2 || !left()) return 0;
        std::size_t value = *next_++;
        if (count > 256 && left()) value = value << 8 | *next_++;
        return value % count;
    }
    template <class Range>
    auto& among(Range& range) {
        return *(std::begin(range) + std::ptrdiff_t(below(std::size(range))));
    }

  private:
    const std::uint8_t *next_, *end_;
};

} // namespace fuzz
