// The frame around everything that the host calls and that sends Cocoa messages.
#pragma once

#include <bridge/errors.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

#include <type_traits>
#include <utility>

namespace bridge {

// An autorelease pool for a scope; drained on every way out of it.
class AutoreleasePool {
  public:
    AutoreleasePool() : pool([[NSAutoreleasePool alloc] init]) {}
    // Nothing may leave a destructor: what an object's dealloc raises here is logged.
    ~AutoreleasePool() {
        @try {
            drain();
        } @catch (id raised) {
            NSLog(@"%@\n", raised);
        }
    }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

    // Drains the pool before its scope ends; what an object's dealloc raises passes to the caller.
    void drain() { [std::exchange(pool, nil) release]; }

  private:
    NSAutoreleasePool* pool;
};

// Runs `body`. A Cocoa exception becomes a host exception, and the result is then the empty value of the
// body's type.
template <class Body>
auto guarded(Body&& body) -> decltype(body()) {
    @try {
        return std::forward<Body>(body)();
    } @catch (NSException* exception) {
        RaiseNSExceptionKaz(exception);
    }
    return decltype(body())();
}

// The same inside an autorelease pool, for bodies that make temporary Cocoa objects. When an object raises as
// the pool drains, the body's result is given back.
template <class Body>
auto guardedInPool(Body&& body) -> decltype(body()) {
    using Result = decltype(body());
    return guarded([&]() -> Result {
        AutoreleasePool pool;
        if constexpr (std::is_void_v<Result>) {
            guarded(std::forward<Body>(body));
            pool.drain();
        } else {
            host::Held result(guarded(std::forward<Body>(body)));
            pool.drain();
            return result.release();
        }
    });
}

} // namespace bridge
