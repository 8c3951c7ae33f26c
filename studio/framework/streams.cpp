// TextInputStream and TextOutputStream.
#include "encodings.h"
#include "files.h"
#include "framework/folderitem.h"
#include "table.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace studio {

namespace {

struct InputStream {
    std::string text;
    std::size_t at = 0;
    std::uint32_t encoding = kREALTextEncodingUTF8; // of what is read
};
InputStream& input(REALobject self) { return dataOf<InputStream>(self); }

struct OutputStream {
    std::FILE* file = nullptr;
    std::string delimiter = "\n"; // at the end of each line
};

[[noreturn]] void cannotWrite() {
    raise("IOException", std::string("cannot write: ") + std::strerror(errno));
}

bool closed(REALobject self) {
    std::FILE* file = std::exchange(dataOf<OutputStream>(self).file, nullptr);
    return !file || std::fclose(file) == 0;
}

void put(REALobject self, REALstring text, bool line) {
    std::FILE* file = dataOf<OutputStream>(self).file;
    if (!file) raise("IOException", "the stream is closed");
    std::string utf8 = toUtf8(text) + (line ? dataOf<OutputStream>(self).delimiter : "");
    if (std::fwrite(utf8.data(), 1, utf8.size(), file) != utf8.size()) cannotWrite();
}

REALobject openForWriting(REALobject item, bool append) {
    if (!item) raise("NilObjectException", "file is nil");
    ObjectRef result(newInstance("TextOutputStream"));
    dataOf<OutputStream>(result).file = files::openForWriting(folderItemPath(item), append);
    return result.release();
}

/// Reads a file of text.
///     Dim file As FolderItem = GetFolderItem("lines.txt")
///     Dim out As TextOutputStream = TextOutputStream.Create(file)
///     out.Write("fig" + EndOfLine + "pear" + EndOfLine + "plum")
///     out.Close
///     Dim source As TextInputStream = TextInputStream.Open(file)
FrameworkClass textInputStreamClass() {
    FrameworkClass table = classWithData<InputStream>("TextInputStream");
    table.properties = {
        /// Whether everything has been read.
        ///     Print Str(source.EOF)
        property("EOF", "Boolean", [](REALobject self) { return input(self).at >= input(self).text.size(); }),
        /// The encoding of what is read; UTF-8 at first.
        ///     source.Encoding = Encodings.UTF8
        property(
            "Encoding", "TextEncoding", [](REALobject self) { return newTextEncoding(input(self).encoding); },
            [](REALobject self, std::uint32_t, REALobject encoding) {
                input(self).encoding = textEncodingCode(encoding);
            })};
    table.methods = {
        /// The next line without its end; empty at the end of the file.
        ///     Print source.ReadLine
        method("ReadLine As String",
               [](REALobject self) {
                   InputStream& in = input(self);
                   std::size_t end = in.text.find('\n', in.at);
                   std::string line = in.text.substr(in.at, end == std::string::npos ? end : end - in.at);
                   in.at = end == std::string::npos ? in.text.size() : end + 1;
                   if (!line.empty() && line.back() == '\r') line.pop_back();
                   return heap().newString(line, in.encoding);
               }),
        /// Everything that has not been read yet.
        ///     Print TextInputStream.Open(file).ReadAll
        method("ReadAll As String",
               [](REALobject self) {
                   InputStream& in = input(self);
                   REALstring result = heap().newString(std::string_view(in.text).substr(in.at), in.encoding);
                   in.at = in.text.size();
                   return result;
               }),
        /// At most this many bytes, in an encoding if one is given.
        ///     Print source.Read(2)
        method("Read(count As Integer, encoding As TextEncoding = Nil) As String",
               [](REALobject self, std::int32_t count, REALobject encoding) {
                   InputStream& in = input(self);
                   std::string bytes = in.text.substr(in.at, std::size_t(std::max(count, 0)));
                   in.at += bytes.size();
                   return heap().newString(bytes, encoding ? textEncodingCode(encoding) : in.encoding);
               }),
        /// Lets go of the text; nothing is left to read then.
        ///     source.Close
        method("Close", [](REALobject self) { input(self) = {}; }),
    };
    table.sharedMethods = {
        /// Opens a file for reading. Raises IOException if it cannot be read, NilObjectException without
        /// one.
        ///     Dim other As TextInputStream = TextInputStream.Open(file)
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

/// Writes a file of text, in UTF-8. It is closed when the stream goes.
///     Dim file As FolderItem = GetFolderItem("list.txt")
///     Dim list As TextOutputStream = TextOutputStream.Create(file)
FrameworkClass textOutputStreamClass() {
    FrameworkClass table = classWithData<OutputStream>("TextOutputStream");
    table.destructor = +[](REALobject self) {
        closed(self);
        dataOf<OutputStream>(self).~OutputStream();
    };
    table.properties = {
        /// What WriteLine writes behind each line; a line feed at first.
        ///     list.Delimiter = EndOfLine.Windows
        property(
            "Delimiter", "String",
            [](REALobject self) { return makeString(dataOf<OutputStream>(self).delimiter); },
            [](REALobject self, std::uint32_t, REALstring text) {
                dataOf<OutputStream>(self).delimiter = toUtf8(text);
            }),
    };
    table.methods = {
        /// Hands what has been written to the system.
        ///     list.Flush
        method("Flush",
               [](REALobject self) {
                   if (std::FILE* file = dataOf<OutputStream>(self).file) std::fflush(file);
               }),
        /// Writes text. Raises IOException if it cannot, or if the stream is closed.
        ///     list.Write("fig")
        method("Write(text As String)", [](REALobject self, REALstring text) { put(self, text, false); }),
        /// Writes text and a line end. Raises IOException if it cannot, or if the stream is closed.
        ///     list.WriteLine("fig")
        method("WriteLine(text As String = \"\")",
               [](REALobject self, REALstring text) { put(self, text, true); }),
        /// Writes what is pending and closes the file. Raises IOException if it cannot be written.
        ///     list.Close
        method("Close",
               [](REALobject self) {
                   if (!closed(self)) cannotWrite();
               }),
    };
    table.sharedMethods = {
        /// Opens a file for writing, and empties it. Raises IOException if it cannot be written,
        /// NilObjectException without one.
        ///     Dim fresh As TextOutputStream = TextOutputStream.Create(GetFolderItem("fresh.txt"))
        method("Create(file As FolderItem) As TextOutputStream",
               [](REALobject item) { return openForWriting(item, false); }),
        /// Opens a file to write behind what it holds. Raises IOException if it cannot be written,
        /// NilObjectException without one.
        ///     Dim more As TextOutputStream = TextOutputStream.Append(file)
        method("Append(file As FolderItem) As TextOutputStream",
               [](REALobject item) { return openForWriting(item, true); }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{textInputStreamClass(), textOutputStreamClass()}}; });

} // namespace

} // namespace studio
