// Bitwise: the bits of numbers, as unsigned 64-bit integers.
#include "table.h"

namespace studio {

namespace {

template <class Combine>
std::uint64_t combined(std::uint64_t a, std::uint64_t b, REALobject more, Combine combine) {
    std::uint64_t result = combine(a, b);
    for (std::int32_t i = 0; i < arrayOf(more).count; ++i)
        result = combine(result, arrayGet(arrayOf(more), i).u64);
    return result;
}

std::uint64_t lowest(std::int32_t bits) {
    if (bits < 1 || bits > 64) raise("InvalidArgumentException", "a number has 1 to 64 bits");
    return bits == 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << bits) - 1;
}

std::uint64_t shifted(std::uint64_t value, std::int32_t by, std::int32_t bits) { // to the left
    std::uint64_t mask = lowest(bits);
    value &= mask;
    if (by >= 64 || by <= -64) return 0;
    return (by >= 0 ? value << by : value >> -by) & mask;
}

std::uint64_t bitAnd(std::uint64_t a, std::uint64_t b, REALobject more) {
    return combined(a, b, more, [](auto x, auto y) { return x & y; });
}
std::uint64_t bitOr(std::uint64_t a, std::uint64_t b, REALobject more) {
    return combined(a, b, more, [](auto x, auto y) { return x | y; });
}
std::uint64_t bitXor(std::uint64_t a, std::uint64_t b, REALobject more) {
    return combined(a, b, more, [](auto x, auto y) { return x ^ y; });
}

/// The bits of numbers, as unsigned integers of 64 bits.
FrameworkClass bitwiseClass() {
    FrameworkClass table;
    table.name = "Bitwise";
    table.sharedMethods = {
        /// The bits that are set in all of the numbers.
        ///     Print Str(Bitwise.BitAnd(12, 10))
        method("BitAnd(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitAnd),
        /// The bits that are set in any of the numbers.
        ///     Print Str(Bitwise.BitOr(12, 10))
        method("BitOr(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitOr),
        /// The bits that are set in an odd number of the numbers.
        ///     Print Str(Bitwise.BitXor(12, 10))
        method("BitXor(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitXor),
        /// The number with each of its 64 bits turned over.
        ///     Print Str(Bitwise.OnesComplement(0))
        method("OnesComplement(value As UInt64) As UInt64", [](std::uint64_t value) { return ~value; }),
        /// The number shifted to the left within its lowest 1 to 64 bits. Raises InvalidArgumentException
        /// for another count of bits.
        ///     Print Str(Bitwise.ShiftLeft(1, 4))
        method("ShiftLeft(value As UInt64, by As Integer, bits As Integer = 64) As UInt64", shifted),
        /// The number shifted to the right within its lowest 1 to 64 bits. Raises InvalidArgumentException
        /// for another count of bits.
        ///     Print Str(Bitwise.ShiftRight(16, 4))
        method("ShiftRight(value As UInt64, by As Integer, bits As Integer = 64) As UInt64",
               [](std::uint64_t value, std::int32_t by, std::int32_t bits) {
                   return shifted(value, -by, bits);
               }),
    };
    return table;
}

/// The bits of numbers without the name of the class Bitwise.
FrameworkFunctions bitwiseFunctions() {
    return {
        /// The bits that are set in all of the numbers.
        ///     Print Str(BitwiseAnd(12, 10))
        method("BitwiseAnd(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitAnd),
        /// The bits that are set in any of the numbers.
        ///     Print Str(BitwiseOr(12, 10))
        method("BitwiseOr(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitOr),
        /// The bits that are set in an odd number of the numbers.
        ///     Print Str(BitwiseXor(12, 10))
        method("BitwiseXor(a As UInt64, b As UInt64, ParamArray more As UInt64) As UInt64", bitXor),
    };
}

const Registrar registrar([] { return FrameworkPart{{bitwiseClass()}, bitwiseFunctions()}; });

} // namespace

} // namespace studio
