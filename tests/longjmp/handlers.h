// Handlers that are reached by longjmp. When an exception is raised, the unwinder asks each frame of the
// product from the inside out whether it has a handler. The first that has one is jumped to then and there,
// so that no frame in between runs anything, the product's or another's.
#pragma once

#include <csetjmp>

namespace longjmps {

struct Handler {
    jmp_buf place;
    void* thrown = nullptr;
    Handler* outer = nullptr;
    void* function = nullptr; // in whose frame the handler is

    // Makes the handler the innermost of this thread, and no longer.
    void enter();
    void leave();
};

} // namespace longjmps
