// The frame around everything that the host calls and that sends Cocoa messages.
#pragma once

#include <bridge/errors.h>

#import <Foundation/Foundation.h>

#include <utility>

namespace bridge {

// An autorelease pool for a scope; drained on every way out of it.
class AutoreleasePool {
  public:
    AutoreleasePool() : pool([[NSAutoreleasePool alloc] init]) {}
    ~AutoreleasePool() { [pool release]; }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

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

// The same inside an autorelease pool, for bodies that make temporary Cocoa objects.
template <class Body>
auto guardedInPool(Body&& body) -> decltype(body()) {
    AutoreleasePool pool;
    return guarded(std::forward<Body>(body));
}

} // namespace bridge
