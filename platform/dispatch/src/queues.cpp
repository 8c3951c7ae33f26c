// The global queues, served by one set of threads.
#include <dispatch/dispatch.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

namespace {

struct Task {
    void* context;
    dispatch_function_t work;
};

constexpr std::array<long, 4> kPriorities = {DISPATCH_QUEUE_PRIORITY_HIGH, DISPATCH_QUEUE_PRIORITY_DEFAULT,
                                             DISPATCH_QUEUE_PRIORITY_LOW, DISPATCH_QUEUE_PRIORITY_BACKGROUND};

// More than there are cores, because tasks may block.
constexpr int kMostThreads = 64;

} // namespace

struct dispatch_queue_s {
    std::deque<Task> tasks;
};

namespace {

// The global queues and the threads that serve them: started when first needed, kept for the next task.
class Threads {
  public:
    dispatch_queue_t queue(long priority) {
        auto found = std::find(kPriorities.begin(), kPriorities.end(), priority);
        return found == kPriorities.end() ? nullptr : &queues_[std::size_t(found - kPriorities.begin())];
    }

    void submit(dispatch_queue_t queue, Task task) {
        std::lock_guard lock(mutex_);
        queue->tasks.push_back(task);
        ++waiting_;
        if (waiting_ > idle_ && count_ < kMostThreads) start();
        wake_.notify_one();
    }

  private:
    // Retries while the system is out of threads and there is none to do the work.
    void start() {
        for (;;) {
            try {
                std::thread([this] { serve(); }).detach();
                ++count_;
                return;
            } catch (const std::system_error&) {
                if (count_ > 0) return;
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        }
    }

    void serve() {
        std::unique_lock lock(mutex_);
        for (;;) {
            ++idle_;
            wake_.wait(lock, [this] { return waiting_ > 0; });
            --idle_;
            Task task = take();
            lock.unlock();
            task.work(task.context);
            lock.lock();
        }
    }

    // The oldest task of the highest priority; there is one.
    Task take() {
        --waiting_;
        auto queue = std::find_if(queues_.begin(), queues_.end(), [](auto& q) { return !q.tasks.empty(); });
        Task task = queue->tasks.front();
        queue->tasks.pop_front();
        return task;
    }

    std::array<dispatch_queue_s, kPriorities.size()> queues_; // in the order of kPriorities
    std::mutex mutex_;
    std::condition_variable wake_;
    int waiting_ = 0, idle_ = 0, count_ = 0;
};

Threads& threads() {
    static Threads* instance = new Threads; // never destroyed: its threads run until the process ends
    return *instance;
}

} // namespace

// A block as compilers lay it out (Clang's "Block Implementation Specification").
struct dispatch_block_s {
    struct Descriptor {
        unsigned long reserved, size;
        void (*copy)(dispatch_block_s* to, const dispatch_block_s* from); // these two only with kHasHelpers
        void (*dispose)(dispatch_block_s*);
    };
    static constexpr int kHasHelpers = 1 << 25, kIsGlobal = 1 << 28;

    void* isa;
    int flags, reserved;
    void (*invoke)(dispatch_block_s*);
    const Descriptor* descriptor;
};

namespace {

// A block that captures nothing lives as long as the process.
dispatch_block_s* copyOf(dispatch_block_s* block) {
    if (block->flags & dispatch_block_s::kIsGlobal) return block;
    auto* copy = static_cast<dispatch_block_s*>(std::malloc(block->descriptor->size));
    if (!copy) throw std::bad_alloc();
    std::memcpy(copy, block, block->descriptor->size);
    if (block->flags & dispatch_block_s::kHasHelpers) block->descriptor->copy(copy, block);
    return copy;
}

void runCopy(void* context) {
    auto* block = static_cast<dispatch_block_s*>(context);
    block->invoke(block);
    if (block->flags & dispatch_block_s::kIsGlobal) return;
    if (block->flags & dispatch_block_s::kHasHelpers) block->descriptor->dispose(block);
    std::free(block);
}

} // namespace

dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags) {
    return flags == 0 ? threads().queue(priority) : nullptr;
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
    threads().submit(queue, {context, work});
}

// The header declares it for compilers with blocks; this file takes them apart.
extern "C" void dispatch_async(dispatch_queue_t queue, dispatch_block_s* block);
void dispatch_async(dispatch_queue_t queue, dispatch_block_s* block) {
    dispatch_async_f(queue, copyOf(block), runCopy);
}
