// TextInputStream and TextOutputStream.
#include "framework/files.h"
#include "framework/folderitem.h"
#include "framework/table.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

namespace studio {

namespace files {

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

void write(const std::string& path, const std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    bool written = file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (file && std::fclose(file) != 0) written = false;
    if (!written) raise("IOException", "cannot write " + path + ": " + std::strerror(errno));
}

} // namespace files

namespace {

struct InputStream {
    std::string text;
    std::size_t at = 0;
};
InputStream& input(REALobject self) { return dataOf<InputStream>(self); }

struct OutputStream {
    std::FILE* file = nullptr;
};

void close(REALobject self) {
    if (std::FILE* file = std::exchange(dataOf<OutputStream>(self).file, nullptr)) std::fclose(file);
}

void put(REALobject self, REALstring text, bool line) {
    std::FILE* file = dataOf<OutputStream>(self).file;
    if (!file) raise("IOException", "the stream is closed");
    std::string utf8 = toUtf8(text) + (line ? "\n" : "");
    if (std::fwrite(utf8.data(), 1, utf8.size(), file) != utf8.size()) raise("IOException", "cannot write");
}

REALobject openForWriting(REALobject item, const char* mode) {
    if (!item) raise("NilObjectException", "file is nil");
    std::string path = folderItemPath(item);
    std::FILE* file = std::fopen(path.c_str(), mode);
    if (!file) raise("IOException", "cannot write " + path + ": " + std::strerror(errno));
    REALobject result = newInstance("TextOutputStream");
    dataOf<OutputStream>(result).file = file;
    return result;
}

} // namespace

FrameworkClass textInputStreamClass() {
    FrameworkClass table = classWithData<InputStream>("TextInputStream");
    table.properties = {property("EOF", "Boolean",
                                 [](REALobject self) { return input(self).at >= input(self).text.size(); })};
    table.methods = {
        method("ReadLine As String",
               [](REALobject self) {
                   InputStream& in = input(self);
                   std::size_t end = in.text.find('\n', in.at);
                   std::string line = in.text.substr(in.at, end == std::string::npos ? end : end - in.at);
                   in.at = end == std::string::npos ? in.text.size() : end + 1;
                   if (!line.empty() && line.back() == '\r') line.pop_back();
                   return makeString(line);
               }),
        method("ReadAll As String",
               [](REALobject self) {
                   InputStream& in = input(self);
                   REALstring result = makeString(std::string_view(in.text).substr(in.at));
                   in.at = in.text.size();
                   return result;
               }),
        method("Close", [](REALobject self) { input(self) = {}; }),
    };
    table.sharedMethods = {
        method("Open(file As FolderItem) As TextInputStream",
               [](REALobject item) {
                   if (!item) raise("NilObjectException", "file is nil");
                   std::string text = files::read(folderItemPath(item));
                   REALobject result = newInstance("TextInputStream");
                   input(result).text = std::move(text);
                   return result;
               }),
    };
    return table;
}

FrameworkClass textOutputStreamClass() {
    FrameworkClass table = classWithData<OutputStream>("TextOutputStream");
    table.destructor = close;
    table.methods = {
        method("Write(text As String)", [](REALobject self, REALstring text) { put(self, text, false); }),
        method("WriteLine(text As String = \"\")",
               [](REALobject self, REALstring text) { put(self, text, true); }),
        method("Close", close),
    };
    table.sharedMethods = {
        method("Create(file As FolderItem) As TextOutputStream",
               [](REALobject item) { return openForWriting(item, "wb"); }),
        method("Append(file As FolderItem) As TextOutputStream",
               [](REALobject item) { return openForWriting(item, "ab"); }),
    };
    return table;
}

} // namespace studio
