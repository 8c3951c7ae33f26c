// The frame around everything that the host calls and that sends Cocoa messages.
#pragma once

#include <bridge/errors.h>
#include <bridge/raised.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

#include <type_traits>
#include <utility>

namespace bridge {

// Nothing may leave the end of a scope: what an object's dealloc raises is logged.
inline void drainLogged(NSAutoreleasePool* pool) {
    if (id raised = raisedBy<id>([&] { [pool release]; })) NSLog(@"%@\n", raised);
}

// An autorelease pool for a scope; drained on every way out of it.
class AutoreleasePool {
  public:
    AutoreleasePool() : pool([[NSAutoreleasePool alloc] init]) {}

    // Drains the pool before its scope ends; what an object's dealloc raises passes to the caller.
    void drain() { [pool.release() release]; }

  private:
    host::Entry<NSAutoreleasePool*, drainLogged> pool;
};

// Runs `body`. A Cocoa exception becomes a host exception, and the result is then the empty value of the
// body's type.
template <class Body>
auto guarded(Body&& body) -> decltype(body()) {
    using Result = decltype(body());
    if constexpr (std::is_void_v<Result>) {
        if (NSException* exception = raisedBy(body)) RaiseNSExceptionKaz(exception);
    } else {
        Result result = Result(); // read only when nothing was raised
        if (NSException* exception = raisedBy([&] { result = body(); })) {
            RaiseNSExceptionKaz(exception);
            return Result();
        }
        return result;
    }
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
