// Containers within containers, on their way from the host to Cocoa.
#pragma once

#include <hostapi/abi.h>
#include <hostapi/ledger.h>

namespace bridge {

// The conversion of a host dictionary or array, for a scope. Raises Cocoa's invalid-argument exception for
// one that contains itself, which would never end, and for one nested so deeply that the stack would.
class Nesting {
  public:
    explicit Nesting(REALobject container) : outer(enter(container)) {}

  private:
    // Brent's search for a cycle: each container is compared with the one at the last depth that was a power
    // of two, so that a level costs the same at any depth.
    struct Level {
        int depth;
        REALobject mark;
        bool left; // for a deeper one
        explicit operator bool() const { return left; }
    };
    static Level innermost;

    // Returns the level outside of the container.
    static Level enter(REALobject container);
    static void leave(Level outer) { innermost = outer; }

    host::Entry<Level, leave> outer;
};

} // namespace bridge
