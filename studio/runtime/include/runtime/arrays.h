// Arrays: elements side by side, each in its own size, as plugins read them.
#pragma once

#include "runtime/types.h"

#include <functional>
#include <vector>

namespace studio {

constexpr int kMostDimensions = 8;

struct ArrayObject {
    REALarrayStruct face; // storage is null on hosts that do not expose it
    const Type* element;
    std::int32_t count;
    std::int32_t capacity;
    char* data;
    // Elements lie row by row; `count` is the product of the extents.
    std::int32_t rank;
    std::int32_t extents[kMostDimensions]; // of an array of one dimension: unused
};

inline ArrayObject& arrayOf(REALobject object) { return *reinterpret_cast<ArrayObject*>(object); }
bool isArray(REALobject object);
REALobject newArray(const Type* element, std::int32_t count = 0); // owned
REALobject newArray(const Type* element, const std::vector<std::int32_t>& extents);
int elementSize(const Type* element); // in bytes

// An index outside the array raises OutOfBoundsException.
Bits arrayGet(ArrayObject& array, std::int32_t index);                // owned
void arraySet(ArrayObject& array, std::int32_t index, Bits value);    // takes over
void arrayInsert(ArrayObject& array, std::int32_t index, Bits value); // takes over
void arrayAppend(ArrayObject& array, Bits value);                     // takes over
void arrayRemove(ArrayObject& array, std::int32_t index);
void arrayResize(ArrayObject& array, std::int32_t count);
// Elements keep their indices; the rank stays the same.
void arrayResize(ArrayObject& array, const std::vector<std::int32_t>& extents);
std::int32_t arrayExtent(const ArrayObject& array, std::int32_t dimension); // from 1
std::int32_t arrayOffset(const ArrayObject& array, const std::int32_t* indices);
std::int32_t arrayIndexOf(ArrayObject& array, Bits value, std::int32_t from); // -1 when it is not there
void arraySort(ArrayObject& array);
// Negative, zero or positive as the first value goes before, with or after the second; borrows them.
using Comparison = std::function<int(Bits, Bits)>;
void arraySort(ArrayObject& array, const Comparison& compare);
// Sorts an array and moves the elements of others along; they must be as long as the first.
void arraySortWith(ArrayObject& array, const std::vector<ArrayObject*>& others);

bool valuesEqual(const Type* type, Bits a, Bits b);
int compareValues(const Type* type, Bits a, Bits b); // negative, zero or positive

} // namespace studio
