// Long Cocoa work on another thread, while the host's own threads, timers and windows go on.
#pragma once

#include <atomic>
#include <cstddef>
#include <pthread.h>

// What the calling thread and the worker share.
struct ThreadedCall {
    pthread_t thread = {};            // null while dispatched, and after the join
    pthread_mutex_t* mutex = nullptr; // guards `done`; null when there was no memory for it
    bool running = false;             // a worker exists
    bool done = false;                // the worker has finished
    bool dispatched = false;          // the worker is the system's, not a thread of our own
    void* data = nullptr;
    void (*work)(void* data) = nullptr; // may be null
    void (*idle)(void* data) = nullptr; // may be null
};
static_assert(sizeof(ThreadedCall) == 6 * 4 && offsetof(ThreadedCall, data) == 3 * 4);

// Runs work(data) on another thread and returns when it has finished. Meanwhile the calling thread, which
// must be the host's, yields to the host about once a millisecond and then calls idle(data). `work` must
// not call the host, and neither function may throw. When no thread can be started, `work` does not run.
void RunThreaded(void* data, void (*work)(void* data), void (*idle)(void* data));

// The worker's body: takes the ThreadedCall and returns null.
void* threadfunction(void* call);

namespace bridge {

// A call on the heap, which the calling thread and the queued task share. The last to drop it frees it.
struct SharedCall {
    ThreadedCall call;
    std::atomic<int> holders;
};
void drop(SharedCall* shared);

// Gives the calling thread a name for debuggers and crash reports. Does nothing on a system that cannot name
// threads.
void nameCurrentThread(const char* name);

} // namespace bridge
