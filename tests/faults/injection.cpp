// The functions that the whole process calls by these names, because the program exports them.
#include "injection.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace faults {

namespace {

std::atomic<Kind> armed{Kind::none};
std::atomic<long> calls{0};
long first = 0;
bool further = false, short_ = false;

} // namespace

void arm(Kind kind, long n, bool onwards, bool cut) {
    first = n;
    further = onwards;
    short_ = cut;
    calls = 0;
    armed = kind;
}

long disarm() {
    armed = Kind::none;
    return calls;
}

bool strikes(Kind kind) {
    if (armed.load(std::memory_order_relaxed) != kind) return false;
    long call = ++calls;
    return first > 0 && (call == first || (further && call > first));
}

bool cuts() { return short_; }

void useSpareStack() {
    static thread_local char stack[1 << 16];
    stack_t spare = {};
    spare.ss_sp = stack;
    spare.ss_size = sizeof stack;
    sigaltstack(&spare, nullptr);
}

} // namespace faults

using faults::Kind;

#define EXPORTED extern "C" __attribute__((visibility("default")))

// ---- memory ----------------------------------------------------------------------------------------------
// Operator new takes its memory from malloc.

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

static bool outOfMemory() {
    if (!faults::strikes(Kind::memory)) return false;
    errno = ENOMEM;
    return true;
}

EXPORTED void* malloc(std::size_t size) { return outOfMemory() ? nullptr : __libc_malloc(size); }
EXPORTED void* calloc(std::size_t n, std::size_t size) {
    return outOfMemory() ? nullptr : __libc_calloc(n, size);
}
EXPORTED void* realloc(void* old, std::size_t size) {
    return outOfMemory() ? nullptr : __libc_realloc(old, size);
}
EXPORTED void* memalign(std::size_t align, std::size_t size) {
    return outOfMemory() ? nullptr : __libc_memalign(align, size);
}
EXPORTED void* aligned_alloc(std::size_t align, std::size_t size) { return memalign(align, size); }
EXPORTED int posix_memalign(void** out, std::size_t align, std::size_t size) {
    void* memory = memalign(align, size);
    if (!memory) return ENOMEM;
    *out = memory;
    return 0;
}

// ---- files -----------------------------------------------------------------------------------------------

template <class Function>
static Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}
static bool diskFails(int error) {
    if (faults::cuts() || !faults::strikes(Kind::file)) return false;
    errno = error;
    return true;
}
static std::size_t cut(std::size_t size) {
    return faults::cuts() && size > 1 && faults::strikes(Kind::file) ? size / 2 : size;
}

EXPORTED ssize_t read(int fd, void* out, std::size_t size) {
    static auto real = next<ssize_t (*)(int, void*, std::size_t)>("read");
    return diskFails(EIO) ? -1 : real(fd, out, cut(size));
}
EXPORTED ssize_t write(int fd, const void* bytes, std::size_t size) {
    static auto real = next<ssize_t (*)(int, const void*, std::size_t)>("write");
    return diskFails(ENOSPC) ? -1 : real(fd, bytes, cut(size));
}
EXPORTED int fsync(int fd) {
    static auto real = next<int (*)(int)>("fsync");
    return diskFails(EIO) ? -1 : real(fd);
}
EXPORTED int rename(const char* from, const char* to) {
    static auto real = next<int (*)(const char*, const char*)>("rename");
    return diskFails(EIO) ? -1 : real(from, to);
}
EXPORTED int open64(const char* path, int flags, ...) {
    static auto real = next<int (*)(const char*, int, mode_t)>("open64");
    __builtin_va_list rest;
    __builtin_va_start(rest, flags);
    mode_t mode = flags & O_CREAT ? __builtin_va_arg(rest, mode_t) : 0;
    __builtin_va_end(rest);
    return diskFails(EMFILE) ? -1 : real(path, flags, mode);
}
EXPORTED void* mmap(void* at, std::size_t size, int protection, int flags, int fd, off_t offset) noexcept {
    static auto real = next<void* (*)(void*, std::size_t, int, int, int, off_t)>("mmap");
    return fd >= 0 && diskFails(ENOMEM) ? MAP_FAILED : real(at, size, protection, flags, fd, offset);
}

// ---- threads ---------------------------------------------------------------------------------------------

namespace {
struct Start {
    void* (*body)(void*);
    void* argument;
};
} // namespace

EXPORTED int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                            void* argument) noexcept {
    static auto real =
        next<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
    auto* start = static_cast<Start*>(__libc_malloc(sizeof(Start)));
    *start = {body, argument};
    auto begin = [](void* begun) -> void* {
        Start own = *static_cast<Start*>(begun);
        free(begun);
        faults::useSpareStack();
        return own.body(own.argument);
    };
    int result = real(thread, attributes, begin, start);
    if (result) free(start);
    return result;
}
