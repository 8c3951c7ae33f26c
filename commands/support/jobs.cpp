// Many jobs on all cores, each in a process: a job that crashes is one that failed.
#include "jobs.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace commands {

namespace {

constexpr std::uint32_t none = UINT32_MAX;

/// What the processes share: the next job, and the job that each worker is at.
struct Shared {
    std::atomic<std::uint32_t> next;
    std::atomic<std::uint32_t> current[256];
};

/// A finished job, on the pipe to the parent; `size` bytes of its failure follow.
struct Message {
    std::uint32_t worker, size;
};

void send(int pipe, std::uint32_t worker, const std::string& failure) {
    // A message that fits PIPE_BUF arrives in one piece.
    std::string text = failure.substr(0, 2000);
    Message message{worker, std::uint32_t(text.size())};
    std::string bytes(reinterpret_cast<const char*>(&message), sizeof message);
    bytes += text;
    while (write(pipe, bytes.data(), bytes.size()) < 0 && errno == EINTR) {
    }
}

bool receive(int pipe, void* out, std::size_t size) {
    auto* bytes = static_cast<char*>(out);
    while (size > 0) {
        ssize_t n = read(pipe, bytes, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes += n;
        size -= std::size_t(n);
    }
    return true;
}

class Progress {
  public:
    Progress(std::size_t count, bool bar, const std::string& prefix)
        : count_(count), bar_(bar), prefix_(prefix) {}

    void finished(const std::string& failure) {
        ++done_;
        if (!failure.empty()) {
            ++failed_;
            clear();
            std::fprintf(stderr, "%s%s\n", prefix_.c_str(), failure.c_str());
        }
        show();
    }
    void show() {
        if (!bar_) return;
        auto now = std::chrono::steady_clock::now();
        if (done_ < count_ && now - shown_ < std::chrono::milliseconds(50)) return;
        shown_ = now;
        constexpr std::size_t width = 40;
        std::size_t full = count_ ? done_ * width / count_ : width;
        double seconds = std::chrono::duration<double>(now - begin_).count();
        std::fprintf(stderr, "\r[%s%s] %zu of %zu", std::string(full, '#').c_str(),
                     std::string(width - full, ' ').c_str(), done_, count_);
        if (failed_) std::fprintf(stderr, ", %zu failed", failed_);
        if (done_ && done_ < count_)
            std::fprintf(stderr, ", %.0f s left", seconds / double(done_) * double(count_ - done_));
        std::fputs("\033[K", stderr);
        std::fflush(stderr);
    }
    void clear() {
        if (bar_) std::fputs("\r\033[K", stderr);
    }
    std::size_t failed() const { return failed_; }

  private:
    using Time = std::chrono::steady_clock::time_point;
    std::size_t count_, done_ = 0, failed_ = 0;
    bool bar_;
    std::string prefix_;
    Time begin_ = std::chrono::steady_clock::now(), shown_;
};

} // namespace

std::size_t coreCount() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) != 0) return 1;
    return std::max(1, CPU_COUNT(&set));
}

std::size_t runJobs(const Jobs& jobs, std::size_t workers, bool bar, const std::string& prefix) {
    std::size_t count = jobs.count;
    Progress progress(count, bar, prefix);
    workers =
        std::clamp<std::size_t>(workers, 1, std::min<std::size_t>(std::max<std::size_t>(count, 1), 256));
    if (workers == 1 && count <= 1) {
        for (std::size_t i = 0; i < count; ++i) progress.finished(jobs.run(i));
        progress.clear();
        return progress.failed();
    }
    void* memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    Shared& shared = *new (memory) Shared{};
    int ends[2];
    if (pipe(ends) != 0) throw std::bad_alloc();
    std::vector<pid_t> children(workers);
    auto start = [&](std::uint32_t worker) {
        shared.current[worker] = none;
        std::fflush(nullptr);
        pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            prctl(PR_SET_PDEATHSIG, SIGTERM); // an interrupted parent takes its workers along
            for (std::uint32_t i; (i = shared.next++) < count;) {
                shared.current[worker] = i;
                send(ends[1], worker, jobs.run(i));
                shared.current[worker] = none;
            }
            _exit(0);
        }
        children[worker] = child;
        return child > 0;
    };
    std::size_t running = 0;
    for (std::uint32_t i = 0; i < workers; ++i) running += start(i);
    progress.show();
    // A thread of messages and one of ends would race; so the parent's end of the pipe stays open, and dead
    // workers are looked for whenever the pipe has been quiet.
    auto drain = [&](bool wait) {
        fd_set set;
        FD_ZERO(&set);
        FD_SET(ends[0], &set);
        timeval patience{0, wait ? 50000 : 0};
        if (select(ends[0] + 1, &set, nullptr, nullptr, &patience) <= 0) return false;
        Message message{};
        if (!receive(ends[0], &message, sizeof message)) return false;
        std::string failure(message.size, 0);
        receive(ends[0], failure.data(), failure.size());
        progress.finished(failure);
        return true;
    };
    while (running > 0) {
        if (drain(true)) continue;
        progress.show();
        int status = 0;
        for (pid_t ended; running > 0 && (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
            auto found = std::find(children.begin(), children.end(), ended);
            if (found == children.end()) continue;
            --running;
            auto worker = std::uint32_t(found - children.begin());
            while (drain(false)) {
            }
            std::uint32_t lost = shared.current[worker];
            if (lost == none || WIFEXITED(status)) continue;
            progress.finished(jobs.name(lost) + ": its process ended: " + strsignal(WTERMSIG(status)));
            if (shared.next < count) running += start(worker);
        }
    }
    while (drain(false)) {
    }
    close(ends[0]);
    close(ends[1]);
    munmap(memory, sizeof(Shared));
    progress.clear();
    return progress.failed();
}

} // namespace commands
