// C++ that runs out of memory below Cocoa: C++ alone can catch it.
#include "raise.h"

#include <cf/memory.h>

#include <new>
#include <stdexcept>

void cf::runInMemory(void (*body)(void* data), void* data) {
    try {
        body(data);
        return;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    raiseOutOfMemory(); // outside of the handlers, which end first
}
