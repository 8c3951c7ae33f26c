// Reading and replacing whole files.
#include <files/wholefile.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wholefile {

namespace {

[[noreturn]] void fail(int error = errno) { throw Error(std::strerror(error)); }

void requireRegular(const struct stat& status) {
    if (S_ISDIR(status.st_mode)) throw Error("it is a folder");
    if (!S_ISREG(status.st_mode)) throw Error("it is not a regular file");
}

/// Closes its descriptor at the end of a scope.
struct Descriptor {
    int fd;
    explicit Descriptor(int fd) : fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

/// Where a write to `path` goes: the end of a chain of symbolic links.
std::string target(const std::string& path) {
    std::string result = path;
    for (int links = 0; links < 40; ++links) {
        char text[PATH_MAX];
        ssize_t length = ::readlink(result.c_str(), text, sizeof text);
        if (length < 0) return result;
        std::string linked(text, static_cast<std::size_t>(length));
        if (linked.empty() || linked[0] != '/') linked = result.substr(0, result.rfind('/') + 1) + linked;
        result = linked;
    }
    fail(ELOOP);
}

/// The draft that is being written, for the handler of signals; empty when there is none.
char unfinished[PATH_MAX];

void interrupted(int signal) {
    if (unfinished[0]) ::unlink(unfinished);
    ::_exit(128 + signal);
}

/// A new file beside `path`, removed again unless it takes the name.
class Draft {
  public:
    explicit Draft(const std::string& path) : path_(path), file_(create()) {}
    Draft(const Draft&) = delete;
    ~Draft() {
        if (!name_.empty()) ::unlink(name_.c_str());
        unfinished[0] = 0;
    }

    void fill(std::span<const std::uint8_t> bytes) {
        while (!bytes.empty()) {
            ssize_t written = ::write(file_.fd, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) fail(written < 0 ? errno : ENOSPC);
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
    }
    void setMode(mode_t mode) {
        if (::fchmod(file_.fd, mode) != 0) fail();
    }
    void takeName() {
        // The bytes reach the disk before the name does, or a power cut would leave an empty file.
        if (::fsync(file_.fd) != 0 && errno != EINVAL) fail();
        if (::close(std::exchange(file_.fd, -1)) != 0) fail();
        if (::rename(name_.c_str(), path_.c_str()) != 0) fail();
        name_.clear();
    }

  private:
    int create() {
        static std::atomic<unsigned> count;
        std::string folder = path_.substr(0, path_.rfind('/') + 1);
        for (int tries = 0; tries < 100; ++tries) {
            name_ = folder + ".kaz-" + std::to_string(::getpid()) + "-" + std::to_string(++count);
            int fd = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (fd >= 0) {
                if (name_.size() < sizeof unfinished) std::strcpy(unfinished, name_.c_str());
                return fd;
            }
            if (errno == EEXIST) continue;
            int error = errno;
            name_.clear();
            if (error == ENOENT) throw Error("no such folder");
            fail(error);
        }
        name_.clear();
        fail(EEXIST);
    }

    std::string path_, name_;
    Descriptor file_;
};

} // namespace

int open(const std::string& path) {
    int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) fail();
    Descriptor file(fd);
    struct stat status;
    if (::fstat(fd, &status) != 0) fail();
    requireRegular(status);
    return std::exchange(file.fd, -1);
}

std::vector<std::uint8_t> read(const std::string& path, std::size_t limit) {
    Descriptor file(open(path));
    struct stat status;
    if (::fstat(file.fd, &status) != 0) fail();
    auto tooLarge = [] { throw Error("it is too large"); };
    if (static_cast<std::uint64_t>(status.st_size) > limit) tooLarge();
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t length = 0;
    for (;;) {
        // One byte more than there should be tells a file that grew, or one that hides its size.
        if (length == bytes.size()) bytes.resize(length + std::clamp<std::size_t>(length / 2, 1, 1u << 20));
        ssize_t n = ::read(file.fd, bytes.data() + length, bytes.size() - length);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) fail();
        if (n == 0) break;
        length += static_cast<std::size_t>(n);
        if (length > limit) tooLarge();
    }
    bytes.resize(length);
    return bytes;
}

int openToWrite(const std::string& path, bool append) {
    struct stat status;
    auto require = [&] {
        if (!S_ISCHR(status.st_mode)) requireRegular(status);
    };
    // Asked first, because a pipe without a reader cannot be opened at all.
    if (::stat(path.c_str(), &status) == 0) require();
    int flags = O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC | (append ? O_APPEND : O_TRUNC);
    Descriptor file(::open(path.c_str(), flags, 0666));
    if (file.fd < 0 || ::fstat(file.fd, &status) != 0) fail();
    require();
    return std::exchange(file.fd, -1);
}

void replace(const std::string& path, std::span<const std::uint8_t> bytes) {
    std::string final = target(path);
    struct stat status;
    std::optional<mode_t> mode;
    if (::stat(final.c_str(), &status) == 0) {
        requireRegular(status);
        if (::access(final.c_str(), W_OK) != 0) fail();
        mode = status.st_mode & 07777;
    } else if (errno != ENOENT) {
        fail();
    }
    Draft draft(final);
    draft.fill(bytes);
    if (mode) draft.setMode(*mode);
    draft.takeName();
}

void removeDraftsWhenInterrupted() {
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, interrupted);
}

} // namespace wholefile
