// Work on another thread: on a dispatch queue where the system has them, else on a thread of our own.
#include <bridge/threads.h>
#include <hostapi/services.h>

#include <Carbon/Carbon.h>
#include <dispatch/dispatch.h>

#include <cstdlib>
#include <dlfcn.h>

// Not linked: on a system without a dispatch library these are null.
extern "C" {
decltype(dispatch_async) dispatch_async __attribute__((weak_import));
decltype(dispatch_async_f) dispatch_async_f __attribute__((weak_import));
decltype(dispatch_get_global_queue) dispatch_get_global_queue __attribute__((weak_import));
}

namespace {

using Function = void (*)(void* data);

// --- the guarded flag -------------------------------------------------------------------------------------

pthread_mutex_t* newMutex() {
    auto* mutex = static_cast<pthread_mutex_t*>(std::calloc(1, sizeof(pthread_mutex_t)));
    if (mutex) pthread_mutex_init(mutex, nullptr);
    return mutex;
}

void deleteMutex(ThreadedCall& call) {
    if (call.mutex) pthread_mutex_destroy(call.mutex);
    std::free(call.mutex);
    call.mutex = nullptr;
}

// Locks the mutex for a scope; null is ignored.
class Lock {
  public:
    explicit Lock(pthread_mutex_t* mutex) : mutex(mutex) {
        if (mutex) pthread_mutex_lock(mutex);
    }
    ~Lock() {
        if (mutex) pthread_mutex_unlock(mutex);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

  private:
    pthread_mutex_t* mutex; // a copy: the call may be gone once its caller sees that it is done
};

bool isDone(const ThreadedCall& call) {
    Lock lock(call.mutex);
    return call.done;
}

// --- the calling thread -----------------------------------------------------------------------------------

void pauseForAMillisecond() {
    AbsoluteTime until = AddDurationToAbsolute(durationMillisecond, UpTime());
    MPDelayUntil(&until);
}

// Polls instead of waiting, so that the host gets time; yields before the first check and after the last.
void waitUntilDone(const ThreadedCall& call, Function idle) {
    REALYieldToRB();
    while (!isDone(call)) {
        REALYieldToRB();
        pauseForAMillisecond();
        if (idle) idle(call.data);
    }
    REALYieldToRB();
    if (idle) idle(call.data);
}

// --- the two ways to get a worker -------------------------------------------------------------------------

void runTask(void* context) {
    auto* shared = static_cast<bridge::SharedCall*>(context);
    threadfunction(&shared->call);
    bridge::drop(shared);
}

void runDispatched(void* data, Function work, Function idle) {
    auto* shared = static_cast<bridge::SharedCall*>(std::calloc(1, sizeof(bridge::SharedCall)));
    if (!shared) return;
    shared->call = {.mutex = newMutex(), .running = true, .dispatched = true, .data = data, .work = work};
    shared->holders = 2;
    dispatch_async_f(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), shared, runTask);
    waitUntilDone(shared->call, idle);
    deleteMutex(shared->call);
    bridge::drop(shared);
}

// True when the thread was started.
bool start(ThreadedCall& call, pthread_t* thread) {
    constexpr std::size_t kStackSize = 0x200000;
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    pthread_attr_setstacksize(&attributes, kStackSize);
    bool started = pthread_create(thread, &attributes, threadfunction, &call) == 0;
    pthread_attr_destroy(&attributes);
    return started;
}

void runOnThread(void* data, Function work, Function idle) {
    ThreadedCall call = {.mutex = newMutex(), .data = data, .work = work, .idle = idle};
    pthread_t thread = {};
    if (!start(call, &thread)) {
        deleteMutex(call);
        return;
    }
    call.thread = thread;
    call.running = true;
    waitUntilDone(call, idle);
    deleteMutex(call);
    pthread_join(thread, nullptr);
    pthread_detach(thread); // kept although the thread was joined; the error is ignored
    call.thread = {};
    call.running = false;
}

// --- the name of a thread-----------------------------------------------------------------------------------

// The Mac's form: names the calling thread.
using SetName = int (*)(const char* name);

// A function that belongs to the process itself takes the thread first.
using SetNameOfThread = int (*)(pthread_t thread, const char* name);
SetNameOfThread setNameOfThread = nullptr;

// Null on systems before 10.6.
SetName setName = nullptr;

SetName findSetName() {
    constexpr char kFunction[] = "pthread_setname_np";
    if (void* library = dlopen("/usr/lib/libpthread.dylib", RTLD_NOW))
        return reinterpret_cast<SetName>(dlsym(library, kFunction));
    setNameOfThread = reinterpret_cast<SetNameOfThread>(dlsym(RTLD_DEFAULT, kFunction));
    if (!setNameOfThread) return nullptr;
    return [](const char* name) { return setNameOfThread(pthread_self(), name); };
}

} // namespace

void RunThreaded(void* data, void (*work)(void*), void (*idle)(void*)) {
    if (dispatch_async) // the function form came with it
        runDispatched(data, work, idle);
    else
        runOnThread(data, work, idle);
}

void* threadfunction(void* argument) {
    auto& call = *static_cast<ThreadedCall*>(argument);
    if (call.work) call.work(call.data);
    Lock lock(call.mutex);
    call.done = true;
    return nullptr;
}

void bridge::drop(SharedCall* shared) {
    if (--shared->holders == 0) std::free(shared);
}

void bridge::nameCurrentThread(const char* name) {
    static pthread_once_t lookedFor = PTHREAD_ONCE_INIT; // found or not
    pthread_once(&lookedFor, [] { setName = findSetName(); });
    if (setName) setName(name);
}
