// BinaryStream: the bytes of a file or of a MemoryBlock, read and written from a position.
#include "encodings.h"
#include "files.h"
#include "framework/folderitem.h"
#include "framework/memoryblock.h"
#include "table.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace studio {

namespace {

struct Stream {
    std::FILE* file = nullptr;
    REALobject block = nullptr; // instead of a file
    std::int64_t at = 0;        // in the block
    bool littleEndian = false;
    bool writable = false;
};
Stream& stream(REALobject self) { return dataOf<Stream>(self); }

void close(REALobject self) {
    Stream& s = stream(self);
    if (std::FILE* file = std::exchange(s.file, nullptr)) std::fclose(file);
    heap().release(std::exchange(s.block, nullptr));
}

Stream& opened(REALobject self) {
    Stream& s = stream(self);
    if (!s.file && !s.block) raise("IOException", "the stream is closed");
    return s;
}

std::int64_t position(REALobject self) {
    Stream& s = opened(self);
    return s.file ? std::int64_t(ftello(s.file)) : s.at;
}

std::int64_t length(REALobject self) {
    Stream& s = opened(self);
    if (!s.file) return memoryBlockBytes(s.block).size;
    off_t here = ftello(s.file);
    fseeko(s.file, 0, SEEK_END);
    off_t end = ftello(s.file);
    fseeko(s.file, here, SEEK_SET);
    return end;
}

void setPosition(REALobject self, std::int64_t to) {
    Stream& s = opened(self);
    if (to < 0) raise("OutOfBoundsException", "a position cannot be negative");
    if (s.file)
        fseeko(s.file, off_t(to), SEEK_SET);
    else
        s.at = std::min<std::int64_t>(to, memoryBlockBytes(s.block).size);
}

// At most that many bytes.
std::string readBytes(REALobject self, std::int64_t count) {
    Stream& s = opened(self);
    count = std::clamp<std::int64_t>(count, 0, std::max<std::int64_t>(0, length(self) - position(self)));
    std::string result(std::size_t(count), '\0');
    if (s.file) {
        std::fseek(s.file, 0, SEEK_CUR); // after a write
        result.resize(std::fread(result.data(), 1, result.size(), s.file));
    } else {
        std::memcpy(result.data(), memoryBlockBytes(s.block).data + s.at, result.size());
        s.at += count;
    }
    return result;
}

void writeBytes(REALobject self, std::string_view bytes) {
    Stream& s = opened(self);
    if (!s.writable) raise("IOException", "the stream is open for reading only");
    if (s.file) {
        std::fseek(s.file, 0, SEEK_CUR); // after a read
        if (std::fwrite(bytes.data(), 1, bytes.size(), s.file) != bytes.size())
            raise("IOException", std::string("cannot write: ") + std::strerror(errno));
        return;
    }
    MemoryBlockBytes& block = memoryBlockBytes(s.block);
    std::int64_t end = s.at + std::int64_t(bytes.size());
    if (end > block.size) {
        if (end > INT32_MAX || !resizeMemoryBlock(s.block, std::int32_t(end)))
            raise("OutOfMemoryException", "There is no memory for the MemoryBlock.");
    }
    std::memcpy(block.data + s.at, bytes.data(), bytes.size());
    s.at = end;
}

// Numbers beyond the end are 0.
template <class T, class Shown>
Shown readNumber(REALobject self) {
    std::string bytes = readBytes(self, sizeof(T));
    if (bytes.size() < sizeof(T)) return Shown();
    if (!stream(self).littleEndian) std::reverse(bytes.begin(), bytes.end());
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return Shown(value);
}
template <class T, class Shown>
void writeNumber(REALobject self, Shown shown) {
    T value = T(shown);
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof value);
    if (!stream(self).littleEndian) std::reverse(bytes, bytes + sizeof value);
    writeBytes(self, {bytes, sizeof value});
}

REALobject openFile(REALobject item, const char* mode, bool writable) {
    if (!item) raise("NilObjectException", "file is nil");
    const std::string& path = folderItemPath(item);
    std::FILE* file = std::fopen(path.c_str(), mode);
    if (!file)
        raise("IOException",
              std::string("cannot ") + (writable ? "write " : "read ") + path + ": " + std::strerror(errno));
    REALobject result = newInstance("BinaryStream");
    stream(result).file = file;
    stream(result).writable = writable;
    return result;
}

REALobject create(REALobject item, bool overwrite) {
    if (item && !overwrite && files::exists(folderItemPath(item)))
        raise("IOException", folderItemPath(item) + " exists already");
    return openFile(item, "w+b", true);
}

template <class T, class Shown>
void numberInto(std::vector<FrameworkMethod>& methods, const char* read, const char* write) {
    methods.push_back(method(read, &readNumber<T, Shown>));
    methods.push_back(method(write, &writeNumber<T, Shown>));
}

FrameworkClass binaryStreamClass() {
    FrameworkClass table = classWithData<Stream>("BinaryStream");
    table.destructor = close;
    table.properties = {
        property(
            "LittleEndian", "Boolean", [](REALobject self) { return stream(self).littleEndian; },
            [](REALobject self, std::uint32_t, bool value) { stream(self).littleEndian = value; }),
        property(
            "Position", "UInt64", [](REALobject self) { return std::uint64_t(position(self)); },
            [](REALobject self, std::uint32_t, std::uint64_t to) { setPosition(self, std::int64_t(to)); }),
        property("Length", "UInt64", [](REALobject self) { return std::uint64_t(length(self)); }),
        property("EOF", "Boolean", [](REALobject self) { return position(self) >= length(self); }),
    };
    std::vector<FrameworkMethod>& methods = table.methods;
    methods = {
        method("Constructor(block As MemoryBlock)",
               [](REALobject self, REALobject block) {
                   if (!block) raise("NilObjectException", "the MemoryBlock is nil");
                   close(self);
                   stream(self).block = Heap::retain(block);
                   stream(self).writable = true;
               }),
        method("Read(count As Integer, encoding As TextEncoding = Nil) As String",
               [](REALobject self, std::int32_t count, REALobject encoding) {
                   return heap().newString(readBytes(self, count), textEncodingCode(encoding));
               }),
        method("Write(text As String)",
               [](REALobject self, REALstring text) { writeBytes(self, bytesOf(text)); }),
        method("ReadPString As String",
               [](REALobject self) {
                   std::int64_t count = readNumber<std::uint8_t, std::int32_t>(self);
                   return heap().newString(readBytes(self, count), kREALTextEncodingUnknown);
               }),
        method("WritePString(text As String)",
               [](REALobject self, REALstring text) {
                   std::string_view bytes = bytesOf(text).substr(0, 255);
                   writeNumber<std::uint8_t, std::int32_t>(self, std::int32_t(bytes.size()));
                   writeBytes(self, bytes);
               }),
        method("Flush",
               [](REALobject self) {
                   if (opened(self).file) std::fflush(stream(self).file);
               }),
        method("Close", close),
    };
    numberInto<std::uint8_t, std::int32_t>(methods, "ReadByte As Integer", "WriteByte(value As Integer)");
    numberInto<std::int16_t, std::int32_t>(methods, "ReadShort As Integer", "WriteShort(value As Integer)");
    numberInto<std::int32_t, std::int32_t>(methods, "ReadLong As Integer", "WriteLong(value As Integer)");
    numberInto<std::int8_t, std::int8_t>(methods, "ReadInt8 As Int8", "WriteInt8(value As Int8)");
    numberInto<std::uint8_t, std::uint8_t>(methods, "ReadUInt8 As UInt8", "WriteUInt8(value As UInt8)");
    numberInto<std::int16_t, std::int16_t>(methods, "ReadInt16 As Int16", "WriteInt16(value As Int16)");
    numberInto<std::uint16_t, std::uint16_t>(methods, "ReadUInt16 As UInt16", "WriteUInt16(value As UInt16)");
    numberInto<std::int32_t, std::int32_t>(methods, "ReadInt32 As Integer", "WriteInt32(value As Integer)");
    numberInto<std::uint32_t, std::uint32_t>(methods, "ReadUInt32 As UInt32", "WriteUInt32(value As UInt32)");
    numberInto<std::int64_t, std::int64_t>(methods, "ReadInt64 As Int64", "WriteInt64(value As Int64)");
    numberInto<std::uint64_t, std::uint64_t>(methods, "ReadUInt64 As UInt64", "WriteUInt64(value As UInt64)");
    numberInto<float, float>(methods, "ReadSingle As Single", "WriteSingle(value As Single)");
    numberInto<double, double>(methods, "ReadDouble As Double", "WriteDouble(value As Double)");
    table.sharedMethods = {
        method("Open(file As FolderItem, readWrite As Boolean = False) As BinaryStream",
               [](REALobject item, bool readWrite) {
                   return openFile(item, readWrite ? "r+b" : "rb", readWrite);
               }),
        method("Create(file As FolderItem, overwrite As Boolean = False) As BinaryStream", create),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{binaryStreamClass()}}; });

} // namespace

} // namespace studio
