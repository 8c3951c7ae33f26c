// Reading and filling the host's arrays, element by element.
#pragma once

#include <hostapi/handles.h>

namespace host {

// Whether the host shows the element storage of its arrays (REALarrayStruct).
inline bool showsArrayStorage() { return rbversion_rbversion <= 2013.9; }

// Reads an element through the array's accessor, which the host is asked for each time. Strings and objects
// come locked; 0 or null when the host has no accessor.
template <class Value>
struct ArrayGetter {
    Value operator()(REALarray array, std::int32_t index) const {
        using Get = void (*)(REALarray, std::int32_t, Value*);
        Value value = {};
        if (Get get = reinterpret_cast<Get>(REALGetArrayGetProc(array))) get(array, index, &value);
        return value;
    }
};

// Inserts `value` at `index` through the array's own routine, which locks what it keeps. Does nothing when
// the host has no such routine.
template <class Value>
void insertArrayValue(REALarray array, std::int32_t index, Value value) {
    using Insert = void (*)(REALarray, std::int32_t, Value);
    if (Insert insert = reinterpret_cast<Insert>(REALGetArrayInsertProc(array))) insert(array, index, value);
}

// The element in the array's storage, not locked; null when the host does not show the storage.
template <class Value>
const Value* shownElement(REALarray array, std::int32_t index) {
    if (!showsArrayStorage() || !array->storage) return nullptr;
    return static_cast<const Value*>(array->storage) + index;
}

// Reads an element from the array's storage, or through its accessor where the host hides the storage.
template <class Value>
Value arrayValue(REALarray array, std::int32_t index) {
    if (const Value* element = shownElement<Value>(array, index)) return locked(*element);
    return ArrayGetter<Value>()(array, index);
}

// Likewise for a string array, which has a host service of its own.
inline REALstring stringArrayValue(REALstringArray array, std::int32_t index) {
    if (const REALstring* element = shownElement<REALstring>(array, index)) return locked(*element);
    return REALGetArrayString(array, index);
}

} // namespace host

// The names by which the host's own documentation knows the array accessors.
inline constexpr host::ArrayGetter<std::int64_t> REALGetArrayValueInt64;
inline constexpr host::ArrayGetter<std::int32_t> REALGetArrayValueInt32;
inline constexpr host::ArrayGetter<std::uint8_t> REALGetArrayValueUInt8;
inline constexpr host::ArrayGetter<float> REALGetArrayValueSingle;
inline constexpr host::ArrayGetter<double> REALGetArrayValueDouble;
inline constexpr host::ArrayGetter<REALstring> REALGetArrayValueString;
inline constexpr host::ArrayGetter<REALobject> REALGetArrayValueObject;
inline void REALInsertArrayValueString(REALarray array, std::int32_t index, REALstring value) {
    host::insertArrayValue(array, index, value);
}
inline void REALInsertArrayValueObject(REALarray array, std::int32_t index, REALobject value) {
    host::insertArrayValue(array, index, value);
}
