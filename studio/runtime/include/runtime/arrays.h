// Arrays: elements side by side, each in its own size, as plugins read them.
#pragma once

#include "runtime/types.h"

namespace studio {

struct ArrayObject {
    REALarrayStruct face; // storage is null on hosts that do not expose it
    const Type* element;
    std::int32_t count;
    std::int32_t capacity;
    char* data;
};

inline ArrayObject& arrayOf(REALobject object) { return *reinterpret_cast<ArrayObject*>(object); }
bool isArray(REALobject object);
REALobject newArray(const Type* element, std::int32_t count = 0); // owned
int elementSize(const Type* element);                             // in bytes

// An index outside the array raises OutOfBoundsException.
Bits arrayGet(ArrayObject& array, std::int32_t index);                // owned
void arraySet(ArrayObject& array, std::int32_t index, Bits value);    // takes over
void arrayInsert(ArrayObject& array, std::int32_t index, Bits value); // takes over
void arrayAppend(ArrayObject& array, Bits value);                     // takes over
void arrayRemove(ArrayObject& array, std::int32_t index);
void arrayResize(ArrayObject& array, std::int32_t count);
std::int32_t arrayIndexOf(ArrayObject& array, Bits value, std::int32_t from); // -1 when it is not there
void arraySort(ArrayObject& array);

bool valuesEqual(const Type* type, Bits a, Bits b);
int compareValues(const Type* type, Bits a, Bits b); // negative, zero or positive

} // namespace studio
