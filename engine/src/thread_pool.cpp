// The threads that render.
#include "thread_pool.h"

#include <engine/engine.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

namespace engine {

namespace {

std::atomic<int> wanted{0};

struct Job {
    Job(int n, int helpers, const std::function<void(int)>& f) : count(n), helpers(helpers), work(f) {}

    void run() {
        for (int i; (i = next++) < count;) {
            try {
                work(i);
            } catch (...) {
                std::lock_guard lock(mutex);
                if (!error) error = std::current_exception();
                next = count;
            }
        }
    }

    const int count;
    int helpers; // threads that may still join
    const std::function<void(int)>& work;
    std::atomic<int> next{0};
    std::mutex mutex;
    std::exception_ptr error;
    int running = 0; // helpers at work
};

/// Threads are started when first needed, and stay.
class Pool {
  public:
    ~Pool() {
        {
            std::lock_guard lock(mutex_);
            ending_ = true;
            wake_.notify_all();
        }
        for (auto& t : threads_) t.join();
    }

    void run(Job& job) {
        if (job.helpers > 0) {
            std::lock_guard lock(mutex_);
            // The caller works, too, so that rendering does without threads that cannot be started.
            try {
                while (static_cast<int>(threads_.size()) < job.helpers)
                    threads_.emplace_back([this] { serve(); });
            } catch (const std::system_error&) {
            }
            jobs_.push_back(&job);
            wake_.notify_all();
        }
        job.run();
        std::unique_lock lock(mutex_);
        jobs_.erase(std::remove(jobs_.begin(), jobs_.end(), &job), jobs_.end());
        done_.wait(lock, [&] { return job.running == 0; });
    }

  private:
    void serve() {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [&] { return ending_ || !jobs_.empty(); });
            if (ending_) return;
            Job& job = *jobs_.front();
            ++job.running;
            if (--job.helpers == 0) jobs_.pop_front();
            lock.unlock();
            job.run();
            lock.lock();
            jobs_.erase(std::remove(jobs_.begin(), jobs_.end(), &job), jobs_.end());
            if (--job.running == 0) done_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_, done_;
    std::deque<Job*> jobs_;
    std::vector<std::thread> threads_;
    bool ending_ = false;
};

} // namespace

int threadCount() {
    int count = wanted;
    return count > 0 ? count : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void setThreadCount(int count) { wanted = std::clamp(count, 0, 64); }

void parallel(int count, const std::function<void(int)>& work) {
    static Pool pool;
    Job job(count, std::min(threadCount(), count) - 1, work);
    pool.run(job);
    if (job.error) std::rethrow_exception(job.error);
}

} // namespace engine
