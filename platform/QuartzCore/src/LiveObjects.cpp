#include <cg/object.h>

/// Fills in the name of each counted class and the number of its live instances, at most `capacity` of them.
/// Returns how many were filled in. For leak checks; not Apple's API.
extern "C" int PlatformLiveObjects(const char** names, int* counts, int capacity) {
    int n = 0;
    for (const cg::LiveCount* c = cg::LiveCount::first(); c && n < capacity; c = c->next(), ++n) {
        names[n] = c->name();
        counts[n] = c->count();
    }
    return n;
}
