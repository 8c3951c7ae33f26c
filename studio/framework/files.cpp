#include "files.h"

#include "runtime/exceptions.h"

#include <cerrno>
#include <cstring>
#include <files/wholefile.h>

#include <filesystem>

namespace studio::files {

namespace fs = std::filesystem;

std::string absolute(const std::string& path) {
    std::error_code error;
    std::string result = fs::absolute(path, error).lexically_normal().string();
    if (result.size() > 1 && result.back() == '/') result.pop_back();
    return result;
}
std::string parent(const std::string& path) { return fs::path(path).parent_path().string(); }
std::string leaf(const std::string& path) { return fs::path(path).filename().string(); }
bool exists(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}
bool isDirectory(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string read(const std::string& path) {
    try {
        std::vector<std::uint8_t> bytes = wholefile::read(path);
        return std::string(bytes.begin(), bytes.end());
    } catch (const wholefile::Error& error) {
        raise("IOException", "cannot read " + path + ": " + error.what());
    }
}

void cannotWrite(const std::string& path, std::string reason) {
    if (reason.empty()) reason = std::strerror(errno);
    if (isDirectory(path))
        reason = "it is a folder";
    else if (!isDirectory(parent(absolute(path))))
        reason = "no such folder";
    raise("IOException", "cannot write " + path + ": " + reason);
}

std::FILE* openForWriting(const std::string& path, bool append) {
    try {
        return ::fdopen(wholefile::openToWrite(path, append), append ? "ab" : "wb");
    } catch (const wholefile::Error& error) {
        cannotWrite(path, error.what());
    }
}

} // namespace studio::files
