// Threaded calls. Built twice: with the dispatch library (KAZ_DISPATCH is 1) and without. The linker leads
// some calls of the bridge to the functions below, which watch them or make them fail.
#include "bridge_test.h"

#include <bridge/guard.h>
#include <bridge/threads.h>

#include <Carbon/Carbon.h>

#import <QuartzCore/QuartzCore.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <thread>
#include <vector>

namespace {

// What the calls below saw, and which of them are to fail.
struct Watch {
    bool failAttributes = false, failThread = false, failMutex = false;
    int threads = 0;
    std::size_t stackSize = 0;
    void* (*entry)(void*) = nullptr;
    std::vector<Duration> pauses;                       // on the calling thread
    std::vector<std::string> ends;                      // what became of the thread
    std::atomic<int> unlocks{0};                        // of mutexes, on other threads
    std::vector<std::pair<std::string, int>> libraries; // that were looked for, and how
    int mutexes = 0, mutexesDestroyed = 0;
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

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                          void* argument) {
    if (watch.failThread) return EAGAIN;
    ++watch.threads;
    watch.entry = entry;
    pthread_attr_getstacksize(attributes, &watch.stackSize);
    return __real_pthread_create(thread, attributes, entry, argument);
}

int __real_pthread_join(pthread_t, void**);
int __wrap_pthread_join(pthread_t thread, void** result) {
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
    return __real_dlopen(path, mode);
}

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

    // Work that lasts until the host was given time so often.
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

// --- a thread of our own ----------------------------------------------------------------------------------

#if !KAZ_DISPATCH

TEST_F(Threads, TheThreadHasTwoMegabytesOfStack) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.stackSize, 0x200000u);
    EXPECT_EQ(watch.entry, &threadfunction);
}

TEST_F(Threads, TheThreadIsJoinedAndThenDetached) {
    RunThreaded(nullptr, nullptr, nullptr);
    EXPECT_EQ(watch.ends, (std::vector<std::string>{"join 0", "detach"}));
}

TEST_F(Threads, AFailureToCreateTheThreadLeavesTheResultEmptyAndRaisesNothing) {
    for (bool* failure : {&watch.failAttributes, &watch.failThread}) {
        *failure = true;
        yields = 0;
        bridge::AutoreleasePool pool;
        ImageLoadRequest request = {.data = [NSData data]};
        bool ran = false;
        RunThreaded(&request, DoWork, nullptr);
        RunThreaded(
            &ran, [](void* flag) { *static_cast<bool*>(flag) = true; },
            [](void*) { FAIL() << "idle was called"; });
        *failure = false;
        EXPECT_EQ(request.result, nil);
        EXPECT_FALSE(ran) << "the work ran after all";
        EXPECT_EQ(yields, 0);
        EXPECT_TRUE(host.takePendingException().isNil());
    }
    EXPECT_EQ(watch.mutexes, 4);
    EXPECT_EQ(watch.mutexesDestroyed, 4);
    EXPECT_TRUE(watch.ends.empty());
    expectClean();
}

#endif

// --- loading an image -------------------------------------------------------------------------------------

class Loading : public Threads {
  protected:
    ~Loading() override { [request.result release]; }

    static NSURL* photo() {
        const char* folder = std::getenv("KAZ_PHOTOS");
        return [NSURL fileURLWithPath:[NSString stringWithFormat:@"%s/astronaut.png", folder ? folder : "."]];
    }

    // What the work wrote to the log.
    std::string load() {
        testing::internal::CaptureStderr();
        RunThreaded(&request, DoWork, nullptr);
        return testing::internal::GetCapturedStderr();
    }

    CGFloat width() const { return [request.result extent].size.width; }

    bridge::AutoreleasePool pool;
    ImageLoadRequest request;
};

TEST_F(Loading, DataGivesAnImage) {
    request.data = [NSData dataWithContentsOfURL:photo()];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_EQ([request.result retainCount], 1u);
}

TEST_F(Loading, AURLGivesAnImage) {
    request.url = photo();
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_EQ([request.result retainCount], 1u);
}

TEST_F(Loading, OptionsGoWithTheURL) {
    NSDictionary* properties = [NSDictionary dictionaryWithObject:@"yes" forKey:@"mine"];
    request.url = photo();
    request.options = [NSDictionary dictionaryWithObject:properties forKey:kCIImageProperties];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(width(), 512);
    EXPECT_TRUE([[[request.result properties] objectForKey:@"mine"] isEqual:@"yes"]);
}

TEST_F(Loading, NothingGivesNothing) {
    EXPECT_EQ(load(), "");
    EXPECT_EQ(request.result, nil);
}

TEST_F(Loading, WhatIsNoPictureGivesNothing) {
    request.data = [NSData dataWithBytes:"no picture" length:10];
    EXPECT_EQ(load(), "");
    EXPECT_EQ(request.result, nil);
}

TEST_F(Loading, TheWorkerIsNamed) {
    struct Named {
        ImageLoadRequest request;
        char name[32] = "";
    } named;
    RunThreaded(
        &named,
        [](void* data) {
            auto* self = static_cast<Named*>(data);
            DoWork(&self->request);
            pthread_getname_np(pthread_self(), self->name, sizeof self->name);
        },
        nullptr);
    EXPECT_STREQ(named.name, "CIImageLoad");
}

TEST_F(Loading, TheNamingFunctionIsLookedForOnce) {
    load();
    load();
    EXPECT_EQ(watch.libraries,
              (std::vector<std::pair<std::string, int>>{{"/usr/lib/libpthread.dylib", RTLD_NOW}}));
}

} // namespace

// Options that cannot be read, and say so in the way they are told.
@interface UnreadableOptions : NSObject {
  @public
    id thrown;
}
@end

@implementation UnreadableOptions
- (id)objectForKey:(id)key {
    @throw thrown;
}
@end

namespace {

class FailingLoad : public Loading {
  public:
    void fail(id thrown) {
        UnreadableOptions* options = [[[UnreadableOptions alloc] init] autorelease];
        options->thrown = thrown;
        request.url = photo();
        request.options = (NSDictionary*)options;
    }
};

TEST_F(FailingLoad, ACocoaExceptionIsLoggedOnceAndGivesNil) {
    NSException* exception = [NSException exceptionWithName:@"Unreadable"
                                                     reason:@"the disk is gone"
                                                   userInfo:nil];
    fail(exception);
    std::string log = load();
    EXPECT_EQ(request.result, nil);
    EXPECT_TRUE(host.takePendingException().isNil());

    // After the log's own prefix comes the exception's description and the end of the line, nothing more.
    std::string line = std::string("] ") + [[exception description] UTF8String] + "\n";
    ASSERT_GE(log.size(), line.size());
    EXPECT_EQ(log.substr(log.size() - line.size()), line);
    EXPECT_EQ(log.find("the disk is gone"), log.rfind("the disk is gone")) << "logged twice:\n" << log;
    expectClean();
}

TEST_F(FailingLoad, AnythingElseThatIsThrownPasses) {
    fail(@"not an exception");
    testing::internal::CaptureStderr();
    bool passed = false;
    @try {
        DoWork(&request);
    } @catch (NSString*) {
        passed = true;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(passed);
    EXPECT_EQ(request.result, nil);
}

} // namespace
