// Work on all cores.
#pragma once

#include <functional>

namespace engine {

/// Calls work(0) .. work(count - 1) on the pool's threads and this one, and waits for all. The first
/// exception ends it early and is thrown here.
void parallel(int count, const std::function<void(int)>& work);
int threadCount();

} // namespace engine
