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
