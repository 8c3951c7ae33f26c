#include "files.h"

#include "runtime/exceptions.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
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
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) raise("IOException", "cannot read " + path + ": " + std::strerror(errno));
    std::string result;
    char buffer[65536];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;) result.append(buffer, n);
    std::fclose(file);
    return result;
}

void cannotWrite(const std::string& path) {
    std::string reason = std::strerror(errno);
    if (isDirectory(path))
        reason = "it is a folder";
    else if (!isDirectory(parent(absolute(path))))
        reason = "no such folder";
    raise("IOException", "cannot write " + path + ": " + reason);
}

void write(const std::string& path, const std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    bool written = file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (file && std::fclose(file) != 0) written = false;
    if (!written) cannotWrite(path);
}

} // namespace studio::files
