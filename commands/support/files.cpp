// Writing files whole or not at all. Not Objective-C++, which never catches what wholefile throws.
#include "files.h"

#include <files/wholefile.h>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace commands {

namespace {

bool writeAll(int file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        ssize_t n = write(file, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        bytes = bytes.subspan(std::size_t(n));
    }
    return true;
}

} // namespace

std::string writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
    if (path == "-")
        return writeAll(STDOUT_FILENO, bytes)
                   ? ""
                   : std::string("cannot write the standard output: ") + std::strerror(errno);
    std::string refusal = "cannot write " + path + ": ";
    struct stat status;
    bool replaces = stat(path.c_str(), &status) == 0;
    if (replaces && S_ISDIR(status.st_mode)) return refusal + "it is a folder";
    // Pipes and devices cannot be replaced.
    if (replaces && !S_ISREG(status.st_mode)) {
        int file = open(path.c_str(), O_WRONLY);
        bool written = file >= 0 && writeAll(file, bytes);
        if (file < 0 || close(file) != 0 || !written) return refusal + std::strerror(errno);
        return {};
    }
    try {
        wholefile::replace(path, bytes);
        return {};
    } catch (const wholefile::Error& error) {
        return refusal + error.what();
    }
}

} // namespace commands
