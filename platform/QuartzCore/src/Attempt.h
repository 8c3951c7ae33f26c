// Turns C++ exceptions of the engine into failures. For .cpp files only: Objective-C++ code cannot catch
// them.
#pragma once

#include "Shim.h"

#include <exception>
#include <new>

namespace ci {

/// Runs `body`. If it throws, describes the exception in `failure` and returns an empty result.
template <class Body>
auto attempt(Failure& failure, Body body) noexcept -> decltype(body()) {
    using Result = decltype(body());
    try {
        return body();
    } catch (const std::bad_alloc&) {
        failure = {true, "out of memory"};
    } catch (const std::exception& e) {
        failure = {false, e.what()};
    }
    return Result();
}

} // namespace ci
