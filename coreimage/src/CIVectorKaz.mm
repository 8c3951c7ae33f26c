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
    property("X", "Double", getter<double, [](CIVector* v) { return [v X]; }>),
    property("Y", "Double", getter<double, [](CIVector* v) { return [v Y]; }>),
    property("Z", "Double", getter<double, [](CIVector* v) { return [v Z]; }>),
    property("W", "Double", getter<double, [](CIVector* v) { return [v W]; }>),
    property("Count", "Integer", getter<std::int32_t, [](CIVector* v) { return [v count]; }>),
    property("Description", "String", description),
    property("stringRepresentation", "String", stringRepresentation),
};

REALmethodDefinition methods[] = {
    method("copy as CIVectorKaz", copy),
    constructorWithHandle<kVector>(),
    method("Value(index as integer) as single", value),
    method("Constructor(values() as single)", initWithArray<float>),
    method("Constructor(values() as double)", initWithArray<double>),
    method("Constructor(x as single)", initWithX),
    method("Constructor(x as single, y as single)", initWithXY),
    method("Constructor(x as single, y as single, z as single)", initWithXYZ),
    method("Constructor(x as single, y as single, z as single, w as single)", initWithXYZW),
    method("Constructor(StringRepresentation as String)", initWithString),
};

REALmethodDefinition sharedMethods[] = {
    method("vectorWithX(x as single) as CIVectorKaz", vectorWithX),
    method("vectorWithXY(x as single, y as single) as CIVectorKaz", vectorWithXY),
    method("vectorWithXYZ(x as single, y as single, z as single) as CIVectorKaz", vectorWithXYZ),
    method("vectorWithXYZW(x as single, y as single, z as single, w as single) as CIVectorKaz",
           vectorWithXYZW),
    method("vectorWithString(s as string) as CIVectorKaz", vectorWithString),
};

void CIVectorConstructor(REALobject self) { constructWrapper(self); }
void CIVectorDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

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
