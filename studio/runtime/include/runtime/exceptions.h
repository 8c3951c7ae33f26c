// The language's exceptions on their way through C++, and Quit.
#pragma once

#include "runtime/runtime.h"
#include "runtime/value.h"

#include <exception>
#include <new>
#include <stdexcept>

namespace studio {

// An exception of the language. Never thrown through a plugin's frame.
struct Raised {
    Value exception;
};

// Quit: unwinds the program up to its runner.
struct QuitRequest {
    int code;
};

[[noreturn]] void raise(std::string_view className, std::string_view message);
[[noreturn]] void raise(Value exception);
[[noreturn]] void raiseOutOfMemory(); // where there is no memory even for the exception, raises a spare one
void prepareForNoMemory();            // makes the spare one, once the framework is defined
// Runs `body`. What C++ throws when memory or a size runs out becomes the language's exception.
template <class Body>
auto inMemory(Body&& body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    raiseOutOfMemory();
}

// Runs `body`, which calls Core Foundation and what stands on it. Cocoa raises for want of memory there, and
// C++ cannot name what it raises.
template <class Body>
auto inCocoa(Body&& body) -> decltype(body()) {
    try {
        return body();
    } catch (...) {
        if (std::current_exception()) throw; // an exception of C++
    }
    raiseOutOfMemory();
}

// After a call that may have left an exception or Quit pending: throws it.
void throwPending();
// For code that a plugin called: leaves the exception pending until the plugin returns. The first one counts.
void leavePending(const Raised& raised);
// Runs `body`, and leaves whatever it throws pending. Without a result, returns the empty value of its type.
template <class Body>
auto leavingPending(Body&& body) -> decltype(body()) {
    try {
        return inMemory(std::forward<Body>(body));
    } catch (const Raised& raised) {
        leavePending(raised);
    } catch (const QuitRequest& request) {
        runtime().quit = request.code;
    }
    return decltype(body())();
}

REALobject makeException(std::string_view className, std::string_view message); // owned
std::string exceptionMessage(REALobject exception);

} // namespace studio
