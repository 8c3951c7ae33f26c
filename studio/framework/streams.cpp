// TextInputStream and TextOutputStream.
#include "files.h"
#include "framework/folderitem.h"
#include "table.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace studio {

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
    if (!file) files::cannotWrite(path);
    REALobject result = newInstance("TextOutputStream");
    dataOf<OutputStream>(result).file = file;
    return result;
}

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

const Registrar registrar([] { return FrameworkPart{{textInputStreamClass(), textOutputStreamClass()}}; });

} // namespace

} // namespace studio
