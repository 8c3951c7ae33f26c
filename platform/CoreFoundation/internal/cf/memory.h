// C++ that runs out of memory below Cocoa. Objective-C++ code cannot catch what C++ throws, and a Cocoa
// handler takes it for an object.
#pragma once

#include <type_traits>

namespace cf {

/// Runs body(data); raises Cocoa's NSMallocException when it throws for want of memory.
void runInMemory(void (*body)(void* data), void* data);

/// Runs `body` and returns its result; raises NSMallocException when C++ throws for want of memory.
template <class Body>
auto inMemory(Body&& body) -> decltype(body()) {
    using Result = decltype(body());
    if constexpr (std::is_void_v<Result>) {
        runInMemory([](void* data) { (*static_cast<std::remove_reference_t<Body>*>(data))(); }, &body);
    } else {
        struct Run {
            std::remove_reference_t<Body>& body;
            Result result;
        } run{body, Result()};
        runInMemory(
            [](void* data) {
                Run& begun = *static_cast<Run*>(data);
                begun.result = begun.body();
            },
            &run);
        return run.result;
    }
}

} // namespace cf
