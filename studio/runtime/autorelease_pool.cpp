#include "runtime/autorelease_pool.h"

// The Objective-C runtime's C interface, since the host itself is not written in Objective-C.
extern "C" {
void* objc_getClass(const char* name);
void* sel_registerName(const char* name);
using Implementation = void* (*)(void* receiver, void* selector);
Implementation objc_msg_lookup(void* receiver, void* selector);
}

namespace studio {

namespace {

void* send(void* receiver, void* selector) {
    return receiver ? objc_msg_lookup(receiver, selector)(receiver, selector) : nullptr;
}

} // namespace

AutoreleasePool::AutoreleasePool() {
    static void* const poolClass = objc_getClass("NSAutoreleasePool");
    static void* const create = sel_registerName("new");
    pool_ = send(poolClass, create);
}

AutoreleasePool::~AutoreleasePool() {
    static void* const drain = sel_registerName("drain");
    send(pool_, drain);
}

} // namespace studio
