// The global queues: priorities, concurrency and the reuse of threads.
#include <dispatch/dispatch.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// Blocks on the stack and blocks that capture nothing refer to these, which a run time for blocks would
// bring.
extern "C" {
void* _NSConcreteStackBlock[32];
void* _NSConcreteGlobalBlock[32];
}

namespace {

// Counts arrivals and waits for a number of them.
class Meeting {
  public:
    void arrive() {
        std::lock_guard lock(mutex_);
        ++count_;
        changed_.notify_all();
    }
    bool reaches(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return count_ >= count; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

dispatch_queue_t queue() { return dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0); }

TEST(Queues, EachPriorityHasItsQueue) {
    EXPECT_NE(queue(), nullptr);
    EXPECT_EQ(dispatch_get_global_queue(0, 0), queue());
    EXPECT_NE(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_HIGH, 0), queue());
    EXPECT_NE(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_LOW, 0), queue());
    EXPECT_NE(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_BACKGROUND, 0), queue());
}

TEST(Queues, AnUnknownPriorityOrAFlagHasNoQueue) {
    EXPECT_EQ(dispatch_get_global_queue(1, 0), nullptr);
    EXPECT_EQ(dispatch_get_global_queue(0, 1), nullptr);
}

TEST(Queues, WorkRunsOnAnotherThreadWithItsContext) {
    struct Context {
        Meeting meeting;
        std::thread::id thread;
    } context;
    dispatch_async_f(queue(), &context, [](void* data) {
        static_cast<Context*>(data)->thread = std::this_thread::get_id();
        static_cast<Context*>(data)->meeting.arrive();
    });
    ASSERT_TRUE(context.meeting.reaches(1));
    EXPECT_NE(context.thread, std::this_thread::get_id());
}

TEST(Queues, TasksRunSideBySide) {
    // Each waits for all the others, so that one after the other they would never end.
    constexpr int kTasks = 8;
    struct Context {
        Meeting arrived, left;
        std::atomic<int> met{0};
    } context;
    for (int i = 0; i < kTasks; ++i)
        dispatch_async_f(queue(), &context, [](void* data) {
            auto& c = *static_cast<Context*>(data);
            c.arrived.arrive();
            if (c.arrived.reaches(kTasks)) ++c.met;
            c.left.arrive();
        });
    ASSERT_TRUE(context.left.reaches(kTasks));
    EXPECT_EQ(context.met, kTasks);
}

TEST(Queues, EveryTaskRunsOnce) {
    constexpr int kTasks = 2000;
    struct Context {
        Meeting meeting;
        std::vector<std::atomic<int>> runs = std::vector<std::atomic<int>>(kTasks);
    } context;
    struct Task {
        Context* context;
        int number;
    };
    std::vector<Task> tasks;
    for (int i = 0; i < kTasks; ++i) tasks.push_back({&context, i});
    for (Task& task : tasks)
        dispatch_async_f(queue(), &task, [](void* data) {
            auto& t = *static_cast<Task*>(data);
            ++t.context->runs[std::size_t(t.number)];
            t.context->meeting.arrive();
        });
    ASSERT_TRUE(context.meeting.reaches(kTasks));
    for (const auto& runs : context.runs) EXPECT_EQ(runs, 1);
}

TEST(Queues, AThreadServesOneTaskAfterAnother) {
    struct Context {
        Meeting meeting;
        bool servedBefore = false;
    } context;
    for (int i = 1; i <= 100 && !context.servedBefore; ++i) {
        dispatch_async_f(queue(), &context, [](void* data) {
            thread_local int served = 0;
            auto& c = *static_cast<Context*>(data);
            c.servedBefore = served++ > 0;
            c.meeting.arrive();
        });
        ASSERT_TRUE(context.meeting.reaches(i));
    }
    EXPECT_TRUE(context.servedBefore);
}

TEST(Queues, ABlockIsCopiedAndRunsOnceAndItsCopyGoes) {
    Meeting meeting;
    Meeting* here = &meeting;
    auto value = std::make_shared<int>(42);
    std::weak_ptr<int> held = value;
    std::atomic<int> seen{0}, *seenHere = &seen;
    {
        dispatch_async(queue(), ^{
            *seenHere += *value;
            here->arrive();
        });
    }
    value.reset(); // the block's copy has its own
    ASSERT_TRUE(meeting.reaches(1));
    EXPECT_EQ(seen, 42);
    for (int i = 0; i < 3000 && !held.expired(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(held.expired());
}

Meeting global;

TEST(Queues, ABlockThatCapturesNothingRuns) {
    dispatch_async(queue(), ^{
        global.arrive();
    });
    EXPECT_TRUE(global.reaches(1));
}

} // namespace
