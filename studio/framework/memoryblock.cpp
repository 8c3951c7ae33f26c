#include "framework/memoryblock.h"

#include "table.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace studio {

MemoryBlockBytes& memoryBlockBytes(REALobject block) { return dataOf<MemoryBlockBytes>(block); }

namespace {

bool resize(MemoryBlockBytes& block, std::int32_t size) {
    if (size < 0) return false;
    auto* data = static_cast<char*>(std::realloc(block.data, std::size_t(std::max(size, 1))));
    if (!data) return false;
    if (size > block.size) std::memset(data + block.size, 0, std::size_t(size - block.size));
    block.data = data;
    block.size = size;
    return true;
}

char* at(REALobject self, std::int32_t offset, std::int32_t size) {
    MemoryBlockBytes& block = memoryBlockBytes(self);
    if (offset < 0 || size < 0 || offset > block.size - size)
        raise("OutOfBoundsException", "bytes " + std::to_string(offset) + " to " +
                                          std::to_string(offset + size - 1) +
                                          " are outside the MemoryBlock of " + std::to_string(block.size));
    return block.data + offset;
}

template <class T>
T swapped(T value) {
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    std::reverse(bytes, bytes + sizeof(T));
    std::memcpy(&value, bytes, sizeof(T));
    return value;
}

// Stored: the type in memory; Shown: the type in the language.
template <class Stored, class Shown>
Shown read(REALobject self, std::int32_t offset) {
    Stored value;
    std::memcpy(&value, at(self, offset, sizeof value), sizeof value);
    return Shown(memoryBlockBytes(self).littleEndian ? value : swapped(value));
}
template <class Stored, class Shown>
void write(REALobject self, std::int32_t offset, Shown shown) {
    Stored value = Stored(shown);
    if (!memoryBlockBytes(self).littleEndian) value = swapped(value);
    std::memcpy(at(self, offset, sizeof value), &value, sizeof value);
}
template <class Stored, class Shown>
FrameworkMethod number(const char* declaration) {
    return method(declaration, &read<Stored, Shown>, &write<Stored, Shown>);
}

REALobject part(REALobject self, std::int32_t from, std::int32_t count) {
    MemoryBlockBytes& block = memoryBlockBytes(self);
    from = std::clamp(from, 0, block.size);
    count = std::clamp(count, 0, block.size - from);
    return newMemoryBlock({block.data + from, std::size_t(count)});
}

// The end of the text at an offset that ends with a NUL byte.
std::string_view cString(REALobject self, std::int32_t offset) {
    const char* text = at(self, offset, 1);
    return {text, strnlen(text, std::size_t(memoryBlockBytes(self).size - offset))};
}

std::int32_t colorBytes(std::int32_t bits) {
    if (bits != 24 && bits != 32) raise("InvalidArgumentException", "a colour in memory has 24 or 32 bits");
    return bits / 8;
}

void setBytes(REALobject self, std::int32_t offset, std::string_view bytes) {
    std::memcpy(at(self, offset, std::int32_t(bytes.size())), bytes.data(), bytes.size());
}

} // namespace

bool resizeMemoryBlock(REALobject block, std::int32_t size) { return resize(memoryBlockBytes(block), size); }

REALobject tryNewMemoryBlock(std::int32_t size) {
    ObjectRef object(newInstance("MemoryBlock"));
    return resize(memoryBlockBytes(object), size) ? object.release() : nullptr;
}

REALobject newMemoryBlock(std::string_view bytes) {
    REALobject object = tryNewMemoryBlock(std::int32_t(bytes.size()));
    if (!object) raise("OutOfMemoryException", "There is no memory for the MemoryBlock.");
    std::memcpy(memoryBlockBytes(object).data, bytes.data(), bytes.size());
    return object;
}

namespace {

/// Bytes in memory. Offsets are in bytes from 0; reading or writing outside raises OutOfBoundsException. A
/// text converts to a block of its bytes, and a block to text without an encoding.
///     Dim block As New MemoryBlock(64)
FrameworkClass memoryBlockClass() {
    FrameworkClass table = classWithData<MemoryBlockBytes>("MemoryBlock");
    table.destructor = +[](REALobject self) { std::free(memoryBlockBytes(self).data); };
    table.fromString = [](REALstring text) { return newMemoryBlock(bytesOf(text)); };
    table.toString = [](REALobject self) {
        MemoryBlockBytes& bytes = memoryBlockBytes(self);
        return heap().newString({bytes.data, std::size_t(bytes.size)}, kREALTextEncodingUnknown);
    };
    table.properties = {
        /// How many bytes there are. Setting it keeps what fits and fills the rest with 0; raises
        /// OutOfMemoryException if there is no memory.
        ///     block.Size = 128
        property(
            "Size", "Integer", [](REALobject self) { return memoryBlockBytes(self).size; },
            [](REALobject self, std::uint32_t, std::int32_t size) {
                if (!resize(memoryBlockBytes(self), size))
                    raise("OutOfMemoryException", "There is no memory for the MemoryBlock.");
            }),
        /// Whether numbers are stored with their lowest byte first; True at first.
        ///     block.LittleEndian = False
        property(
            "LittleEndian", "Boolean", [](REALobject self) { return memoryBlockBytes(self).littleEndian; },
            [](REALobject self, std::uint32_t, bool value) { memoryBlockBytes(self).littleEndian = value; }),
    };
    table.methods = {
        /// Makes a block of bytes that are 0. Raises InvalidArgumentException for a negative size,
        /// OutOfMemoryException if there is no memory.
        ///     Dim other As New MemoryBlock(16)
        method("Constructor(size As Integer)",
               [](REALobject self, std::int32_t size) {
                   if (size < 0)
                       raise("InvalidArgumentException", "a MemoryBlock cannot have a negative size");
                   if (!resize(memoryBlockBytes(self), size))
                       raise("OutOfMemoryException", "There is no memory for the MemoryBlock.");
               }),
        /// The byte at an offset, from 0 to 255.
        ///     block.Byte(0) = 255
        number<std::uint8_t, std::int32_t>("Byte(offset As Integer) As Integer"),
        /// The byte at an offset, from 0 to 255.
        ///     block.ByteValue(0) = 255
        number<std::uint8_t, std::int32_t>("ByteValue(offset As Integer) As Integer"),
        /// The signed byte at an offset.
        ///     block.Int8Value(0) = -1
        number<std::int8_t, std::int8_t>("Int8Value(offset As Integer) As Int8"),
        /// The unsigned byte at an offset.
        ///     block.UInt8Value(0) = 255
        number<std::uint8_t, std::uint8_t>("UInt8Value(offset As Integer) As UInt8"),
        /// The signed number in 2 bytes at an offset.
        ///     block.Int16Value(0) = -2
        number<std::int16_t, std::int16_t>("Int16Value(offset As Integer) As Int16"),
        /// The unsigned number in 2 bytes at an offset.
        ///     block.UInt16Value(0) = 65535
        number<std::uint16_t, std::uint16_t>("UInt16Value(offset As Integer) As UInt16"),
        /// The signed number in 4 bytes at an offset.
        ///     block.Int32Value(0) = -3
        number<std::int32_t, std::int32_t>("Int32Value(offset As Integer) As Integer"),
        /// The signed number in 4 bytes at an offset.
        ///     block.Long(0) = -3
        number<std::int32_t, std::int32_t>("Long(offset As Integer) As Integer"),
        /// The unsigned number in 4 bytes at an offset.
        ///     block.UInt32Value(0) = 3
        number<std::uint32_t, std::uint32_t>("UInt32Value(offset As Integer) As UInt32"),
        /// The signed number in 8 bytes at an offset.
        ///     block.Int64Value(0) = -4
        number<std::int64_t, std::int64_t>("Int64Value(offset As Integer) As Int64"),
        /// The unsigned number in 8 bytes at an offset.
        ///     block.UInt64Value(0) = 4
        number<std::uint64_t, std::uint64_t>("UInt64Value(offset As Integer) As UInt64"),
        /// The signed number in 2 bytes at an offset.
        ///     block.Short(0) = -2
        number<std::int16_t, std::int32_t>("Short(offset As Integer) As Integer"),
        /// The unsigned number in 2 bytes at an offset.
        ///     block.UShort(0) = 65535
        number<std::uint16_t, std::int32_t>("UShort(offset As Integer) As Integer"),
        /// Whether the byte at an offset is not 0.
        ///     block.BooleanValue(0) = True
        method(
            "BooleanValue(offset As Integer) As Boolean",
            [](REALobject self, std::int32_t offset) { return *at(self, offset, 1) != 0; },
            [](REALobject self, std::int32_t offset, bool value) { *at(self, offset, 1) = value; }),
        /// The colour at an offset: red, green and blue in 24 bits, or behind an unused byte in 32. Raises
        /// InvalidArgumentException for other counts of bits.
        ///     block.ColorValue(0, 24) = &cFF8000
        method(
            "ColorValue(offset As Integer, bits As Integer) As Color",
            [](REALobject self, std::int32_t offset, std::int32_t bits) {
                const char* from = at(self, offset, colorBytes(bits)) + (bits == 32);
                std::uint32_t color = 0xFF;
                for (int i = 0; i < 3; ++i) color = color << 8 | (unsigned char)from[i];
                return color;
            },
            [](REALobject self, std::int32_t offset, std::int32_t bits, std::uint32_t color) {
                char* to = at(self, offset, colorBytes(bits));
                if (bits == 32) *to++ = 0;
                for (int i = 0; i < 3; ++i) to[i] = char(color >> (16 - 8 * i) & 0xFF);
            }),
        /// The text at an offset that ends with a byte of 0, which is written as well.
        ///     block.CString(0) = "fig"
        method(
            "CString(offset As Integer) As String",
            [](REALobject self, std::int32_t offset) {
                return heap().newString(cString(self, offset), kREALTextEncodingUnknown);
            },
            [](REALobject self, std::int32_t offset, REALstring value) {
                setBytes(self, offset, std::string(bytesOf(value)) + std::string(1, 0));
            }),
        /// The text at an offset behind a byte that counts its bytes; at most 255 are written.
        ///     block.PString(0) = "fig"
        method(
            "PString(offset As Integer) As String",
            [](REALobject self, std::int32_t offset) {
                std::int32_t length = (unsigned char)*at(self, offset, 1);
                return heap().newString({at(self, offset + 1, length), std::size_t(length)},
                                        kREALTextEncodingUnknown);
            },
            [](REALobject self, std::int32_t offset, REALstring value) {
                std::string_view text = bytesOf(value).substr(0, 255);
                setBytes(self, offset, std::string(1, char(text.size())) + std::string(text));
            }),
        /// The number in single precision at an offset.
        ///     block.SingleValue(0) = 0.5
        number<float, float>("SingleValue(offset As Integer) As Single"),
        /// The number in double precision at an offset.
        ///     block.DoubleValue(0) = 0.5
        number<double, double>("DoubleValue(offset As Integer) As Double"),
        /// This many bytes at an offset as text; shorter text is filled up with bytes of 0.
        ///     block.StringValue(0, 8) = "fig"
        method(
            "StringValue(offset As Integer, length As Integer) As String",
            [](REALobject self, std::int32_t offset, std::int32_t length) {
                return heap().newString({at(self, offset, length), std::size_t(length)},
                                        kREALTextEncodingUnknown);
            },
            [](REALobject self, std::int32_t offset, std::int32_t length, REALstring value) {
                std::string_view bytes = bytesOf(value);
                char* target = at(self, offset, length);
                std::memset(target, 0, std::size_t(length));
                std::memcpy(target, bytes.data(), std::min(bytes.size(), std::size_t(length)));
            }),
        /// A new block of the first bytes, or of all if there are fewer.
        ///     Print Str(block.LeftB(4).Size)
        method("LeftB(count As Integer) As MemoryBlock",
               [](REALobject self, std::int32_t count) { return part(self, 0, count); }),
        /// A new block of the last bytes, or of all if there are fewer.
        ///     Print Str(block.RightB(4).Size)
        method("RightB(count As Integer) As MemoryBlock",
               [](REALobject self, std::int32_t count) {
                   return part(
                       self, memoryBlockBytes(self).size - std::clamp(count, 0, memoryBlockBytes(self).size),
                       count);
               }),
        /// A new block of the bytes from an offset on, of as many as there are.
        ///     Print Str(block.MidB(2, 4).Size)
        method("MidB(offset As Integer, count As Integer = 2147483647) As MemoryBlock",
               [](REALobject self, std::int32_t offset, std::int32_t count) {
                   return part(self, offset, count);
               }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{memoryBlockClass()}}; });

} // namespace

} // namespace studio
