// Containers within containers, on their way from the host to Cocoa.
#pragma once

#include <hostapi/abi.h>

namespace bridge {

// The conversion of a host dictionary or array, for a scope. Raises Cocoa's invalid-argument exception for
// one that contains itself, which would never end, and for one nested so deeply that the stack would.
class Nesting {
  public:
    explicit Nesting(REALobject container);
    ~Nesting() { innermost = outer; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

  private:
    // Brent's search for a cycle: each container is compared with the one at the last depth that was a power
    // of two, so that a level costs the same at any depth.
    struct Level {
        int depth;
        REALobject mark;
    };
    static Level innermost;

    Level outer;
};

} // namespace bridge
