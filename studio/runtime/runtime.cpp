#include "runtime/runtime.h"

#include "runtime/value.h"

#include <utility>

namespace studio {

namespace {

Runtime* current = nullptr;

} // namespace

Runtime::Runtime(std::optional<double> version) : toldVersion(version), heap(version.value_or(0.0) < 2013.0) {
    if (current) throw UsageError("this process already has a host");
    current = this;
}

Runtime::~Runtime() {
    heap.release(outOfMemory);
    current = nullptr;
}

Runtime& runtime() {
    if (!current) throw UsageError("there is no host");
    return *current;
}

void Runtime::yield() {
    if (yieldThread && yieldThread()) return;
    if (std::exchange(yielding_, true)) return;
    struct Done {
        bool& yielding;
        ~Done() { yielding = false; }
    } done{yielding_};
    for (const auto& hook : yieldHooks) hook();
    if (yieldHandler) yieldHandler();
}

} // namespace studio
