// Threaded calls. Built twice: with the dispatch library (KAZ_DISPATCH is 1) and without. The linker
// redirects some calls of the bridge to the functions below, which watch them or make them fail.
#include "bridge_test.h"

#include <bridge/threads.h>

#include <Carbon/Carbon.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dispatch/dispatch.h>
#include <dlfcn.h>
#include <memory>
#include <optional>
#include <semaphore.h>
#include <thread>
#include <vector>

namespace {

// What the functions below saw, and which of them fail.
struct Watch {
    bool failAttributes = false, failThread = false, failMutex = false;
    int threads = 0;
    std::size_t stackSize = 0;
    void* (*entry)(void*) = nullptr;
    std::vector<Duration> pauses;  // on the calling thread
    std::vector<std::string> ends; // what was released, in order
    ThreadedCall* call = nullptr;  // what the thread was given
    pthread_t thread = {};
    pthread_mutex_t* mutexAtJoin = nullptr;
    struct {
        std::vector<std::pair<long, unsigned long>> queuesAsked; // priorities and flags
        dispatch_queue_t queue = nullptr, used = nullptr;
        std::optional<ThreadedCall> call; // as it was queued
        bridge::SharedCall* shared = nullptr;
        int tasks = 0;
    } dispatch;
    std::atomic<int> unlocks{0};                        // of mutexes, on other threads
    std::vector<std::pair<std::string, int>> libraries; // that were opened, with the mode
    int mutexes = 0, mutexesDestroyed = 0;

    // Where to find the function that names threads: as it is, in a library, in a library that lacks it,
    // nowhere.
    enum { Here, Library, EmptyLibrary, Nowhere } naming = Here;
    std::vector<void*> namingLookups; // the libraries that were searched for it
    std::vector<std::string> names;   // given to the library's function
};
Watch watch;

const pthread_t mainThread = pthread_self();
bool isMainThread() { return pthread_equal(mainThread, pthread_self()) != 0; }

} // namespace

extern "C" {

int __real_pthread_attr_init(pthread_attr_t*);
int __wrap_pthread_attr_init(pthread_attr_t* attributes) {
    return watch.failAttributes ? ENOMEM : __real_pthread_attr_init(attributes);
}

int __real_pthread_attr_destroy(pthread_attr_t*);
int __wrap_pthread_attr_destroy(pthread_attr_t* attributes) {
    watch.ends.push_back("attributes");
    return __real_pthread_attr_destroy(attributes);
}

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                          void* argument) {
    if (watch.failThread) return EAGAIN;
    ++watch.threads;
    watch.entry = entry;
    watch.call = static_cast<ThreadedCall*>(argument);
    pthread_attr_getstacksize(attributes, &watch.stackSize);
    int error = __real_pthread_create(thread, attributes, entry, argument);
    watch.thread = *thread;
    return error;
}

int __real_pthread_join(pthread_t, void**);
int __wrap_pthread_join(pthread_t thread, void** result) {
    watch.mutexAtJoin = watch.call->mutex;
    int error = __real_pthread_join(thread, result);
    watch.ends.push_back("join " + std::to_string(error));
    return error;
}

int __real_pthread_detach(pthread_t);
int __wrap_pthread_detach(pthread_t thread) {
    watch.ends.push_back("detach");
    return __real_pthread_detach(thread);
}

int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
    ++watch.mutexes;
    EXPECT_EQ(attributes, nullptr);
    return __real_pthread_mutex_init(mutex, attributes);
}

int __real_pthread_mutex_destroy(pthread_mutex_t*);
int __wrap_pthread_mutex_destroy(pthread_mutex_t* mutex) {
    ++watch.mutexesDestroyed;
    watch.ends.push_back("mutex");
    return __real_pthread_mutex_destroy(mutex);
}

int __real_pthread_mutex_unlock(pthread_mutex_t*);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    int error = __real_pthread_mutex_unlock(mutex);
    if (!isMainThread()) ++watch.unlocks;
    return error;
}

void* __real_calloc(std::size_t, std::size_t);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (watch.failMutex && count * size == sizeof(pthread_mutex_t)) return nullptr;
    return __real_calloc(count, size);
}

AbsoluteTime __real_AddDurationToAbsolute(Duration, AbsoluteTime);
AbsoluteTime __wrap_AddDurationToAbsolute(Duration duration, AbsoluteTime time) {
    watch.pauses.push_back(duration);
    return __real_AddDurationToAbsolute(duration, time);
}

void* __real_dlopen(const char*, int);
void* __wrap_dlopen(const char* path, int mode) {
    watch.libraries.emplace_back(path, mode);
    if (watch.naming == Watch::Library || watch.naming == Watch::EmptyLibrary) return &watch;
    return watch.naming == Watch::Nowhere ? nullptr : __real_dlopen(path, mode);
}

void* __real_dlsym(void*, const char*);
void* __wrap_dlsym(void* library, const char* name) {
    if (std::strcmp(name, "pthread_setname_np") != 0) return __real_dlsym(library, name);
    watch.namingLookups.push_back(library);
    if (watch.naming == Watch::Here) return __real_dlsym(library, name);
    if (watch.naming != Watch::Library) return nullptr;
    return reinterpret_cast<void*>(+[](const char* given) {
        EXPECT_FALSE(isMainThread());
        watch.names.push_back(given);
        return 0;
    });
}

#if KAZ_DISPATCH

dispatch_queue_t __real_dispatch_get_global_queue(long, unsigned long);
dispatch_queue_t __wrap_dispatch_get_global_queue(long priority, unsigned long flags) {
    watch.dispatch.queuesAsked.emplace_back(priority, flags);
    return watch.dispatch.queue = __real_dispatch_get_global_queue(priority, flags);
}

struct Task {
    void* context;
    dispatch_function_t work;
};
// POSIX's, which a race detector understands.
sem_t tasksFinished;
const int tasksFinishedError = sem_init(&tasksFinished, 0, 0);

void runAndCount(void* data) {
    const std::unique_ptr<Task> task(static_cast<Task*>(data));
    task->work(task->context);
    sem_post(&tasksFinished);
}

void __real_dispatch_async_f(dispatch_queue_t, void*, dispatch_function_t);
void __wrap_dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    watch.dispatch.used = queue;
    watch.dispatch.shared = static_cast<bridge::SharedCall*>(context);
    watch.dispatch.call = watch.dispatch.shared->call;
    ++watch.dispatch.tasks;
    __real_dispatch_async_f(queue, new Task{context, work}, runAndCount);
}

// A worker outlives its call by a few instructions, in which it still writes to `watch`.
void waitForTasks() {
    ASSERT_EQ(tasksFinishedError, 0);
    for (; watch.dispatch.tasks > 0; --watch.dispatch.tasks) sem_wait(&tasksFinished);
}

#else

// A system that has the function form and not the one with a block counts as one without the library.
dispatch_queue_t dispatch_get_global_queue(long, unsigned long) { return nullptr; }
void dispatch_async_f(dispatch_queue_t, void*, dispatch_function_t) { std::abort(); }
void waitForTasks() {} // threads are joined

#endif

} // extern "C"

namespace {

class Threads : public BridgeTest {
  public:
    Threads() {
        std::destroy_at(&watch);
        std::construct_at(&watch);
        host.onYield([this] {
            EXPECT_TRUE(isMainThread());
            if (++yields == 1 && untilFinished)
                while (watch.unlocks == 0) std::this_thread::yield();
            if (yields == releaseAt) released = true;
        });
    }
    ~Threads() override { waitForTasks(); }

    // Work that lasts until the host has been given time `releaseAt` times.
    static void waitForRelease(void* test) {
        while (!static_cast<Threads*>(test)->released) std::this_thread::yield();
        static_cast<Threads*>(test)->finished = true;
    }

    int pauses() const { return static_cast<int>(watch.pauses.size()); }

    // The unlock at the end of the worker's life comes after its flag is set.
    void finishInTheFirstYield() { untilFinished = true; }

    int yields = 0, releaseAt = 6, idles = 0;
    bool untilFinished = false;
    std::atomic<bool> released{false}, finished{false};
};

TEST_F(Threads, WorkThatReturnsAtOnceCostsAYieldBeforeTheFirstCheckAndOneAfterTheLoop) {
    finishInTheFirstYield();
    std::atomic<int> runs{0};
    RunThreaded(
        &runs, [](void* data) { ++*static_cast<std::atomic<int>*>(data); }, nullptr);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(yields, 2);
    EXPECT_EQ(pauses(), 0);
    expectClean();
}

TEST_F(Threads, TheHostGetsTimeBeforeDuringAndAfter) {
    RunThreaded(this, waitForRelease, nullptr);
    EXPECT_TRUE(finished);
    EXPECT_GE(yields, releaseAt + 1);
    EXPECT_EQ(yields,
              pauses() + 2); // one for each look that finds the work unfinished, one before, one after
}

TEST_F(Threads, EachPauseIsAMillisecond) {
    releaseAt = 12;
    AbsoluteTime before = UpTime();
    RunThreaded(this, waitForRelease, nullptr);
    AbsoluteTime after = UpTime();
    EXPECT_GE(pauses(), 10);
    for (Duration pause : watch.pauses) EXPECT_EQ(pause, 1);
    auto nanoseconds = [](AbsoluteTime t) { return (std::uint64_t{t.hi} << 32) | t.lo; };
    EXPECT_GE(nanoseconds(after) - nanoseconds(before), 10u * 1000000);
}

TEST_F(Threads, IdleIsCalledAfterEveryPauseAndOnceMoreAtTheEnd) {
    RunThreaded(this, waitForRelease, [](void* test) {
        EXPECT_TRUE(isMainThread());
        auto* self = static_cast<Threads*>(test);
        // The last yield has no pause; its idle call comes after it.
        ++self->idles;
        EXPECT_EQ(self->yields, self->idles + 1);
    });
    EXPECT_EQ(idles, pauses() + 1);
    EXPECT_GE(idles, 5);
}

TEST_F(Threads, TheHostYieldsThenPausesThenIsIdle) {
    static std::vector<std::string> steps;
    static Threads* test;
    steps.clear();
    test = this;
    host.onYield([this] {
        steps.push_back(std::string(watch.pauses.size() - std::size_t(idles), 'p') + "yield");
        if (++yields == 3) released = true;
        if (released)
            while (watch.unlocks == 0) std::this_thread::yield();
    });
    RunThreaded(this, waitForRelease, [](void*) {
        ++test->idles;
        steps.push_back("idle after " + std::to_string(watch.pauses.size()));
    });
    // Before the first check; twice round the loop; after it.
    EXPECT_EQ(steps, (std::vector<std::string>{"yield", "yield", "idle after 1", "yield", "idle after 2",
                                               "yield", "idle after 2"}));
}

TEST_F(Threads, IdleIsCalledOnceForWorkThatReturnsAtOnce) {
    finishInTheFirstYield();
    RunThreaded(
        this, [](void*) {}, [](void* test) { ++static_cast<Threads*>(test)->idles; });
    EXPECT_EQ(idles, 1);
}

TEST_F(Threads, WithIdleNullNothingButYieldsAndPausesHappens) {
    RunThreaded(this, waitForRelease, nullptr);
    EXPECT_EQ(idles, 0);
    EXPECT_EQ(yields, pauses() + 2);
    EXPECT_TRUE(host.takePendingException().isNil());
    expectClean();
}

TEST_F(Threads, NullWorkStillEnds) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_GE(yields, 2);
    EXPECT_EQ(yields, pauses() + 2);
}

TEST_F(Threads, TheWorkRunsOnAnotherThread) {
    std::thread::id worker;
    RunThreaded(
        &worker, [](void* id) { *static_cast<std::thread::id*>(id) = std::this_thread::get_id(); }, nullptr);
    EXPECT_NE(worker, std::thread::id());
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST_F(Threads, TheDispatchLibraryIsUsedWhereItIs) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.threads, KAZ_DISPATCH ? 0 : 1);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "dispatch_async_f") != nullptr, bool(KAZ_DISPATCH));
}

TEST_F(Threads, ACallDuringAYieldRunsToItsEnd) {
    bool nested = false, ran = false;
    host.onYield([&] {
        if (!std::exchange(nested, true))
            RunThreaded(
                &ran, [](void* flag) { *static_cast<bool*>(flag) = true; }, nullptr);
        released = ran;
    });
    RunThreaded(this, waitForRelease, nullptr);
    EXPECT_TRUE(ran);
    EXPECT_TRUE(finished);
}

TEST_F(Threads, ManyCallsLeaveNothingBehind) {
    for (int i = 0; i < 100; ++i) RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.mutexes, 100);
    EXPECT_EQ(watch.mutexesDestroyed, 100);
}

TEST_F(Threads, WithoutMemoryForAMutexTheFlagIsReadPlainly) {
    watch.failMutex = true;
    RunThreaded(this, waitForRelease, nullptr);
    watch.failMutex = false;
    EXPECT_TRUE(finished);
    EXPECT_EQ(watch.mutexes, 0);
    EXPECT_EQ(watch.mutexesDestroyed, 0);
    EXPECT_EQ(yields, pauses() + 2);
}

TEST_F(Threads, TheBodyRunsTheWorkAndSetsTheFlag) {
    for (bool locked : {true, false}) {
        pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
        int runs = 0;
        ThreadedCall call = {.mutex = locked ? &mutex : nullptr, .data = &runs, .work = [](void* data) {
                                 ++*static_cast<int*>(data);
                             }};
        EXPECT_EQ(threadfunction(&call), nullptr);
        EXPECT_EQ(runs, 1);
        EXPECT_TRUE(call.done);
        EXPECT_EQ(pthread_mutex_trylock(&mutex), 0) << "still locked";
    }
}

// --- the dispatch library ---------------------------------------------------------------------------------

#if KAZ_DISPATCH

TEST_F(Threads, TheQueueIsTheGlobalOneOfDefaultPriority) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.dispatch.queuesAsked, (std::vector<std::pair<long, unsigned long>>{{0, 0}}));
    EXPECT_EQ(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
    EXPECT_NE(watch.dispatch.used, nullptr);
    EXPECT_EQ(watch.dispatch.used, watch.dispatch.queue);
}

TEST_F(Threads, TheDispatchedRecordSaysThatItRunsAndKeepsTheIdleFunctionBack) {
    RunThreaded(this, waitForRelease, [](void*) {});
    ASSERT_TRUE(watch.dispatch.call);
    const ThreadedCall& call = *watch.dispatch.call;
    EXPECT_EQ(call.thread, pthread_t());
    EXPECT_NE(call.mutex, nullptr);
    EXPECT_TRUE(call.running);
    EXPECT_FALSE(call.done);
    EXPECT_TRUE(call.dispatched);
    EXPECT_EQ(call.data, this);
    EXPECT_EQ(call.work, &waitForRelease);
    EXPECT_EQ(call.idle, nullptr);
}

TEST_F(Threads, TheDispatchedRecordGoesOnceBothSidesAreThrough) {
    bridge::SharedCall* shared = nullptr;
    host.onYield([&] {
        if (!shared) ++(shared = watch.dispatch.shared)->holders; // the test's own hold
        released = true;
    });
    RunThreaded(this, waitForRelease, nullptr);
    ASSERT_NE(shared, nullptr);
    EXPECT_TRUE(shared->call.done);
    EXPECT_EQ(shared->call.mutex, nullptr);
    while (shared->holders != 1) std::this_thread::yield(); // for the task, which may be last
    bridge::drop(shared);
}

#endif

// --- a thread of our own ----------------------------------------------------------------------------------

#if !KAZ_DISPATCH

TEST_F(Threads, TheThreadHasTwoMegabytesOfStack) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.stackSize, 0x200000u);
    EXPECT_EQ(watch.entry, &threadfunction);
}

TEST_F(Threads, TheMutexIsGivenUpBeforeTheThreadIsJoinedAndThenDetached) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.ends, (std::vector<std::string>{"attributes", "mutex", "join 0", "detach"}));
    EXPECT_EQ(watch.mutexAtJoin, nullptr);
}

TEST_F(Threads, TheRecordNamesItsThreadWhileTheHostIsGivenTime) {
    void (*idle)(void*) = [](void*) {};
    host.onYield([&] {
        ASSERT_NE(watch.call, nullptr);
        const ThreadedCall& call = *watch.call;
        EXPECT_TRUE(pthread_equal(call.thread, watch.thread));
        EXPECT_NE(call.thread, pthread_t());
        EXPECT_NE(call.mutex, nullptr);
        EXPECT_TRUE(call.running);
        EXPECT_FALSE(call.dispatched);
        EXPECT_EQ(call.data, this);
        EXPECT_EQ(call.work, &waitForRelease);
        EXPECT_EQ(call.idle, idle);
        if (++yields == releaseAt) released = true;
    });
    RunThreaded(this, waitForRelease, idle);
    EXPECT_GE(yields, releaseAt);
}

TEST_F(Threads, AFailureToCreateTheThreadLeavesTheResultEmptyAndRaisesNothing) {
    for (bool* failure : {&watch.failAttributes, &watch.failThread}) {
        *failure = true;
        yields = 0;
        int result = 0;
        bool ran = false;
        RunThreaded(
            &result, [](void* data) { *static_cast<int*>(data) = 1; }, nullptr);
        RunThreaded(
            &ran, [](void* flag) { *static_cast<bool*>(flag) = true; },
            [](void*) { FAIL() << "idle was called"; });
        *failure = false;
        EXPECT_EQ(result, 0);
        EXPECT_FALSE(ran) << "the work ran after all";
        EXPECT_EQ(yields, 0);
        EXPECT_TRUE(host.takePendingException().isNil());
    }
    EXPECT_EQ(watch.mutexes, 4);
    // Two calls without attributes, two whose attributes go before the mutex.
    EXPECT_EQ(watch.ends,
              (std::vector<std::string>{"mutex", "mutex", "attributes", "mutex", "attributes", "mutex"}));
    expectClean();
}

#endif

// --- the name of a thread ---------------------------------------------------------------------------------

// Opened once, however many threads are named.
const std::vector<std::pair<std::string, int>> kNamingLibrary = {{"/usr/lib/libpthread.dylib", RTLD_NOW}};

class Naming : public Threads {
  protected:
    static void nameWorker() {
        RunThreaded(
            nullptr, [](void*) { bridge::nameCurrentThread("Worker"); }, nullptr);
    }

    static std::string nameOfThisThread() {
        char name[32] = "";
        pthread_getname_np(pthread_self(), name, sizeof name);
        return name;
    }
    // The name of a worker that names itself.
    static std::string nameOfWorker() {
        std::string name;
        RunThreaded(
            &name,
            [](void* data) {
                bridge::nameCurrentThread("Worker");
                *static_cast<std::string*>(data) = nameOfThisThread();
            },
            nullptr);
        return name;
    }
};

TEST_F(Naming, TheWorkerIsNamed) { EXPECT_EQ(nameOfWorker(), "Worker"); }

TEST_F(Naming, TheNamingFunctionIsLookedForOnce) {
    nameWorker();
    nameWorker();
    EXPECT_EQ(watch.libraries, kNamingLibrary);
}

TEST_F(Naming, TheLibrarysNamingFunctionIsCalledWithTheNameAloneEachTime) {
    watch.naming = Watch::Library;
    nameWorker();
    nameWorker();
    EXPECT_EQ(watch.names, (std::vector<std::string>{"Worker", "Worker"}));
    EXPECT_EQ(watch.libraries, kNamingLibrary);
    EXPECT_EQ(watch.namingLookups, std::vector<void*>{&watch});
}

TEST_F(Naming, WithALibraryThatLacksTheNamingFunctionTheWorkerStaysUnnamed) {
    watch.naming = Watch::EmptyLibrary;
    EXPECT_EQ(nameOfWorker(), nameOfThisThread());
    EXPECT_EQ(nameOfWorker(), nameOfThisThread());
    EXPECT_EQ(watch.libraries, kNamingLibrary);
    EXPECT_EQ(watch.namingLookups, std::vector<void*>{&watch});
}

TEST_F(Naming, OnASystemWithoutTheNamingFunctionTheWorkerStaysUnnamed) {
    watch.naming = Watch::Nowhere;
    EXPECT_EQ(nameOfWorker(), nameOfThisThread());
    EXPECT_EQ(nameOfWorker(), nameOfThisThread());
    EXPECT_EQ(watch.libraries, kNamingLibrary);
    EXPECT_EQ(watch.namingLookups, std::vector<void*>{RTLD_DEFAULT});
}

} // namespace
