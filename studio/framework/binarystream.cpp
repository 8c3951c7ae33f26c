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
FrameworkMethod reader(const char* declaration) {
    return method(declaration, &readNumber<T, Shown>);
}
template <class T, class Shown>
FrameworkMethod writer(const char* declaration) {
    return method(declaration, &writeNumber<T, Shown>);
}

/// The bytes of a file or of a MemoryBlock, read and written from a position. Numbers beyond the end read
/// as 0. A closed stream raises IOException, and so does writing to one that is open for reading only.
///     Dim stream As BinaryStream = BinaryStream.Create(GetFolderItem("numbers.bin"), True)
FrameworkClass binaryStreamClass() {
    FrameworkClass table = classWithData<Stream>("BinaryStream");
    table.destructor = close;
    table.properties = {
        /// Whether numbers are stored with their lowest byte first; False at first.
        ///     stream.LittleEndian = True
        property(
            "LittleEndian", "Boolean", [](REALobject self) { return stream(self).littleEndian; },
            [](REALobject self, std::uint32_t, bool value) { stream(self).littleEndian = value; }),
        /// The byte, from 0, at which the next reading or writing starts.
        ///     stream.Position = 0
        property(
            "Position", "UInt64", [](REALobject self) { return std::uint64_t(position(self)); },
            [](REALobject self, std::uint32_t, std::uint64_t to) { setPosition(self, std::int64_t(to)); }),
        /// How many bytes there are.
        ///     Print Str(stream.Length)
        property("Length", "UInt64", [](REALobject self) { return std::uint64_t(length(self)); }),
        /// Whether the position is at the end.
        ///     Print Str(stream.EOF)
        property("EOF", "Boolean", [](REALobject self) { return position(self) >= length(self); }),
    };
    table.methods = {
        /// Makes a stream of a block, which grows as it is written. Raises NilObjectException without one.
        ///     Dim memory As New BinaryStream(New MemoryBlock(0))
        method("Constructor(block As MemoryBlock)",
               [](REALobject self, REALobject block) {
                   if (!block) raise("NilObjectException", "the MemoryBlock is nil");
                   close(self);
                   stream(self).block = Heap::retain(block);
                   stream(self).writable = true;
               }),
        /// At most this many bytes as text, in an encoding if one is given.
        ///     Print Str(stream.Read(4).LenB)
        method("Read(count As Integer, encoding As TextEncoding = Nil) As String",
               [](REALobject self, std::int32_t count, REALobject encoding) {
                   return heap().newString(readBytes(self, count), textEncodingCode(encoding));
               }),
        /// Writes the bytes of a text.
        ///     stream.Write("fig")
        method("Write(text As String)",
               [](REALobject self, REALstring text) { writeBytes(self, bytesOf(text)); }),
        /// Text behind a byte that counts its bytes.
        ///     Print stream.ReadPString
        method("ReadPString As String",
               [](REALobject self) {
                   std::int64_t count = readNumber<std::uint8_t, std::int32_t>(self);
                   return heap().newString(readBytes(self, count), kREALTextEncodingUnknown);
               }),
        /// Writes text behind a byte that counts its bytes, at most 255 of them.
        ///     stream.WritePString("fig")
        method("WritePString(text As String)",
               [](REALobject self, REALstring text) {
                   std::string_view bytes = bytesOf(text).substr(0, 255);
                   writeNumber<std::uint8_t, std::int32_t>(self, std::int32_t(bytes.size()));
                   writeBytes(self, bytes);
               }),
        /// Hands what has been written to the system.
        ///     stream.Flush
        method("Flush",
               [](REALobject self) {
                   if (opened(self).file) std::fflush(stream(self).file);
               }),
        /// Closes the file, or lets go of the block.
        ///     Dim other As New BinaryStream(New MemoryBlock(4))
        ///     other.Close
        method("Close", close),
        /// A byte, from 0 to 255.
        ///     Print Str(stream.ReadByte)
        reader<std::uint8_t, std::int32_t>("ReadByte As Integer"),
        /// Writes a byte.
        ///     stream.WriteByte(255)
        writer<std::uint8_t, std::int32_t>("WriteByte(value As Integer)"),
        /// A signed number of 2 bytes.
        ///     Print Str(stream.ReadShort)
        reader<std::int16_t, std::int32_t>("ReadShort As Integer"),
        /// Writes a number in 2 bytes.
        ///     stream.WriteShort(-2)
        writer<std::int16_t, std::int32_t>("WriteShort(value As Integer)"),
        /// A signed number of 4 bytes.
        ///     Print Str(stream.ReadLong)
        reader<std::int32_t, std::int32_t>("ReadLong As Integer"),
        /// Writes a number in 4 bytes.
        ///     stream.WriteLong(-3)
        writer<std::int32_t, std::int32_t>("WriteLong(value As Integer)"),
        /// A signed byte.
        ///     Print Str(stream.ReadInt8)
        reader<std::int8_t, std::int8_t>("ReadInt8 As Int8"),
        /// Writes a signed byte.
        ///     stream.WriteInt8(-1)
        writer<std::int8_t, std::int8_t>("WriteInt8(value As Int8)"),
        /// An unsigned byte.
        ///     Print Str(stream.ReadUInt8)
        reader<std::uint8_t, std::uint8_t>("ReadUInt8 As UInt8"),
        /// Writes an unsigned byte.
        ///     stream.WriteUInt8(255)
        writer<std::uint8_t, std::uint8_t>("WriteUInt8(value As UInt8)"),
        /// A signed number of 2 bytes.
        ///     Print Str(stream.ReadInt16)
        reader<std::int16_t, std::int16_t>("ReadInt16 As Int16"),
        /// Writes a signed number in 2 bytes.
        ///     stream.WriteInt16(-2)
        writer<std::int16_t, std::int16_t>("WriteInt16(value As Int16)"),
        /// An unsigned number of 2 bytes.
        ///     Print Str(stream.ReadUInt16)
        reader<std::uint16_t, std::uint16_t>("ReadUInt16 As UInt16"),
        /// Writes an unsigned number in 2 bytes.
        ///     stream.WriteUInt16(65535)
        writer<std::uint16_t, std::uint16_t>("WriteUInt16(value As UInt16)"),
        /// A signed number of 4 bytes.
        ///     Print Str(stream.ReadInt32)
        reader<std::int32_t, std::int32_t>("ReadInt32 As Integer"),
        /// Writes a signed number in 4 bytes.
        ///     stream.WriteInt32(-3)
        writer<std::int32_t, std::int32_t>("WriteInt32(value As Integer)"),
        /// An unsigned number of 4 bytes.
        ///     Print Str(stream.ReadUInt32)
        reader<std::uint32_t, std::uint32_t>("ReadUInt32 As UInt32"),
        /// Writes an unsigned number in 4 bytes.
        ///     stream.WriteUInt32(3)
        writer<std::uint32_t, std::uint32_t>("WriteUInt32(value As UInt32)"),
        /// A signed number of 8 bytes.
        ///     Print Str(stream.ReadInt64)
        reader<std::int64_t, std::int64_t>("ReadInt64 As Int64"),
        /// Writes a signed number in 8 bytes.
        ///     stream.WriteInt64(-4)
        writer<std::int64_t, std::int64_t>("WriteInt64(value As Int64)"),
        /// An unsigned number of 8 bytes.
        ///     Print Str(stream.ReadUInt64)
        reader<std::uint64_t, std::uint64_t>("ReadUInt64 As UInt64"),
        /// Writes an unsigned number in 8 bytes.
        ///     stream.WriteUInt64(4)
        writer<std::uint64_t, std::uint64_t>("WriteUInt64(value As UInt64)"),
        /// A number in single precision.
        ///     Print Str(stream.ReadSingle)
        reader<float, float>("ReadSingle As Single"),
        /// Writes a number in single precision.
        ///     stream.WriteSingle(0.5)
        writer<float, float>("WriteSingle(value As Single)"),
        /// A number in double precision.
        ///     Print Str(stream.ReadDouble)
        reader<double, double>("ReadDouble As Double"),
        /// Writes a number in double precision.
        ///     stream.WriteDouble(0.5)
        writer<double, double>("WriteDouble(value As Double)"),
    };
    table.sharedMethods = {
        /// Opens a file for reading, or for both. Raises IOException if it cannot be opened,
        /// NilObjectException without one.
        ///     Dim photo As BinaryStream = BinaryStream.Open(SamplePhoto("coffee.png"))
        method("Open(file As FolderItem, readWrite As Boolean = False) As BinaryStream",
               [](REALobject item, bool readWrite) {
                   return openFile(item, readWrite ? "r+b" : "rb", readWrite);
               }),
        /// Makes a file to write and read. Raises IOException if it exists and is not to be overwritten, or
        /// cannot be written.
        ///     Dim fresh As BinaryStream = BinaryStream.Create(GetFolderItem("fresh.bin"), True)
        method("Create(file As FolderItem, overwrite As Boolean = False) As BinaryStream", create),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{binaryStreamClass()}}; });

} // namespace

} // namespace studio
