// The live objects of every counted class, for leak checks.
#include <CoreGraphics/CGTesting.h>

#include <cg/object.h>

namespace cg {

namespace {
std::atomic<const LiveCount*> all = nullptr;
}

LiveCount::LiveCount(const char* name) noexcept : name_(name), next_(all.load()) {
    while (!all.compare_exchange_weak(next_, this)) {
    }
}

const LiveCount* LiveCount::first() { return all.load(); }

} // namespace cg

int PlatformLiveObjects(const char** names, int* counts, int capacity) {
    int n = 0;
    for (const cg::LiveCount* c = cg::LiveCount::first(); c && n < capacity; c = c->next(), ++n) {
        names[n] = c->name();
        counts[n] = c->count();
    }
    return n;
}
