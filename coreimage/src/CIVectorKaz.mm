// CIVectorKaz: an immutable list of numbers for positions, rectangles, offsets and matrix rows.
#include "wrapper.h"

namespace coreimage {
namespace {

constexpr std::int32_t kMostValues = 32;

CIVector* vector(REALobject self) { return nativeHandle<CIVector*>(self); }

// --- properties -------------------------------------------------------------------------------------------

REALstring stringRepresentation(REALobject self, std::uint32_t) {
    return stringResult([&] { return [vector(self) stringRepresentation]; });
}

// --- methods ----------------------------------------------------------------------------------------------

REALobject copy(REALobject self) {
    return wrappedResult(kVector, [&] { return [[vector(self) copyWithZone:nullptr] autorelease]; });
}

float value(REALobject self, std::int32_t index) {
    return guarded([&]() -> float {
        if (!vector(self)) return 0;
        std::int32_t size = static_cast<std::int32_t>([vector(self) count]);
        if (index < 0 || index >= size) {
            RaiseOutOfBoundsException(index, 0, size, "index", "valueAtIndex");
            return 0;
        }
        return [vector(self) valueAtIndex:static_cast<size_t>(index)];
    });
}

template <class Element>
void initWithArray(REALobject self, REALarray values) {
    if (raisesWhenInitialized(self)) return;
    std::int32_t upperBound = REALGetArrayUBound(values);
    if (upperBound < 0) {
        RaiseException(bridge::kOutOfBounds, "empty array");
        return;
    }
    if (upperBound >= kMostValues) {
        RaiseException(bridge::kOutOfBounds, "Plugin limited to 32 values in array.");
        return;
    }
    construct(self, [&] {
        CGFloat elements[kMostValues];
        for (std::int32_t i = 0; i <= upperBound; ++i)
            elements[i] = static_cast<CGFloat>(host::arrayValue<Element>(values, i));
        return [[CIVector alloc] initWithValues:elements count:static_cast<size_t>(upperBound + 1)];
    });
}

// This constructor alone retains the vector it made, so that the wrapper holds two references and gives back
// one.
void initWithX(REALobject self, float a) {
    construct(self, [&] { return [[[CIVector alloc] initWithX:a] retain]; });
}

void initWithXY(REALobject self, float a, float b) {
    construct(self, [&] { return [[CIVector alloc] initWithX:a Y:b]; });
}

void initWithXYZ(REALobject self, float a, float b, float c) {
    construct(self, [&] { return [[CIVector alloc] initWithX:a Y:b Z:c]; });
}

void initWithXYZW(REALobject self, float a, float b, float c, float d) {
    construct(self, [&] { return [[CIVector alloc] initWithX:a Y:b Z:c W:d]; });
}

void initWithString(REALobject self, REALstring text) {
    construct(self, [&]() -> CIVector* {
        if (!text) return nil;
        return [[CIVector alloc] initWithString:bridge::temporaryString(text)];
    });
}

// --- tables -----------------------------------------------------------------------------------------------

REALproperty properties[] = {
    handleProperty(),
    /// The first number; 0 where there is none.
    ///     Print Str(self.X)
    property("X", "Double", getter<double, [](CIVector* v) { return [v X]; }>),
    /// The second number; 0 where there is none.
    ///     Print Str(self.Y)
    property("Y", "Double", getter<double, [](CIVector* v) { return [v Y]; }>),
    /// The third number; 0 where there is none.
    ///     Print Str(self.Z)
    property("Z", "Double", getter<double, [](CIVector* v) { return [v Z]; }>),
    /// The fourth number; 0 where there is none.
    ///     Print Str(self.W)
    property("W", "Double", getter<double, [](CIVector* v) { return [v W]; }>),
    /// How many numbers there are; 0 while the object is empty.
    ///     Print Str(self.Count)
    property("Count", "Integer", getter<std::int32_t, [](CIVector* v) { return [v count]; }>),
    /// The vector as Core Image describes it, for debugging.
    ///     Print self.Description
    property("Description", "String", description),
    /// The numbers as text in brackets, as NewCIVectorWithStringKaz reads them.
    ///     Print self.stringRepresentation
    property("stringRepresentation", "String", stringRepresentation),
};

REALmethodDefinition methods[] = {
    /// A vector of the same numbers; since vectors never change, it may be the same object.
    ///     Print self.copy.stringRepresentation
    method("copy as CIVectorKaz", copy),
    constructorWithHandle<kVector>(),
    /// The number at an index from 0; 0 while the object is empty. Raises OutOfBoundsException outside of the
    /// vector.
    ///     Print Str(self.Value(2))
    method("Value(index as integer) as single", value),
    /// Makes a vector of up to 32 numbers. Raises OutOfBoundsException for an empty or a longer array.
    ///     Dim list() As Single = Array(1, 2, 3)
    ///     Dim v As New CIVectorKaz(list)
    method("Constructor(values() as single)", initWithArray<float>),
    /// Makes a vector of up to 32 numbers, each narrowed to single precision. Raises OutOfBoundsException for
    /// an empty or a longer array.
    ///     Dim list() As Double = Array(0.1, 0.2, 0.3)
    ///     Dim v As New CIVectorKaz(list)
    method("Constructor(values() as double)", initWithArray<double>),
    /// Makes a vector of one number, which must not be an Integer: that is taken for a handle.
    ///     Dim v As New CIVectorKaz(1.0)
    method("Constructor(x as single)", initWithX),
    /// Makes a vector of two numbers, such as a position.
    ///     Dim v As New CIVectorKaz(1, 2)
    method("Constructor(x as single, y as single)", initWithXY),
    /// Makes a vector of three numbers.
    ///     Dim v As New CIVectorKaz(1, 2, 3)
    method("Constructor(x as single, y as single, z as single)", initWithXYZ),
    /// Makes a vector of four numbers, such as a rectangle's x, y, width and height.
    ///     Dim v As New CIVectorKaz(1, 2, 3, 4)
    method("Constructor(x as single, y as single, z as single, w as single)", initWithXYZW),
    /// Makes a vector from numbers in brackets; empty text leaves the object empty.
    ///     Dim v As New CIVectorKaz("[1 2 3]")
    method("Constructor(StringRepresentation as String)", initWithString),
};

REALmethodDefinition sharedMethods[] = {
    /// Returns a vector of one number.
    ///     Print CIVectorKaz.vectorWithX(1).stringRepresentation
    method("vectorWithX(x as single) as CIVectorKaz", vectorWithX),
    /// Returns a vector of two numbers, such as a position.
    ///     Print CIVectorKaz.vectorWithXY(1, 2).stringRepresentation
    method("vectorWithXY(x as single, y as single) as CIVectorKaz", vectorWithXY),
    /// Returns a vector of three numbers.
    ///     Print CIVectorKaz.vectorWithXYZ(1, 2, 3).stringRepresentation
    method("vectorWithXYZ(x as single, y as single, z as single) as CIVectorKaz", vectorWithXYZ),
    /// Returns a vector of four numbers, such as a rectangle's x, y, width and height.
    ///     Print CIVectorKaz.vectorWithXYZW(1, 2, 3, 4).stringRepresentation
    method("vectorWithXYZW(x as single, y as single, z as single, w as single) as CIVectorKaz",
           vectorWithXYZW),
    /// Returns a vector of numbers in brackets, or Nil for empty text.
    ///     Print CIVectorKaz.vectorWithString("[1 2]").stringRepresentation
    method("vectorWithString(s as string) as CIVectorKaz", vectorWithString),
};

void CIVectorConstructor(REALobject self) { constructWrapper(self); }
void CIVectorDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// A list of numbers for positions, rectangles, offsets and matrix rows; it never changes.
///     Dim corner As New CIVectorKaz(12, 34, 56, 78)
REALclassDefinition CIVectorKazClass = classDefinition(
    {.name = "CIVectorKaz", .constructor = CIVectorConstructor, .destructor = CIVectorDestructor}, properties,
    methods, {}, sharedMethods);

// --- functions that are also global -----------------------------------------------------------------------

REALobject vectorWithX(float a) {
    return wrappedResult(kVector, [&] { return [CIVector vectorWithX:a]; });
}

REALobject vectorWithXY(float a, float b) {
    return wrappedResult(kVector, [&] { return [CIVector vectorWithX:a Y:b]; });
}

REALobject vectorWithXYZ(float a, float b, float c) {
    return wrappedResult(kVector, [&] { return [CIVector vectorWithX:a Y:b Z:c]; });
}

REALobject vectorWithXYZW(float a, float b, float c, float d) {
    return wrappedResult(kVector, [&] { return [CIVector vectorWithX:a Y:b Z:c W:d]; });
}

REALobject vectorWithString(REALstring text) {
    if (!text) return nullptr;
    return wrappedResult(kVector, [&] { return [CIVector vectorWithString:bridge::temporaryString(text)]; });
}

} // namespace coreimage
