// Makers for the class definition records, so that a class file reads like its table of declarations.
#pragma once

#include <hostapi/abi.h>

#include <iterator>

namespace host {

// The standard flags of methods and classes, and of properties.
inline constexpr std::uint32_t kMethodFlags = 4;
inline constexpr std::uint32_t kClassFlags = 4;
inline constexpr std::uint32_t kPropertyFlags = 6;

// Flags that only newer hosts know; FixConsoleFlags folds or clears them.
inline constexpr std::uint32_t kConsoleSafe = 0x40000;
inline constexpr std::uint32_t kConsoleSafe8 = 0x80000;
inline constexpr std::uint32_t kDesktopOnly = 0x100000;

template <class Function>
REALmethodDefinition method(const char* declaration, Function* function, std::uint32_t flags = kMethodFlags) {
    return {reinterpret_cast<void*>(function), nullptr, declaration, flags, {}};
}

// A method that can be read and assigned to.
template <class Getter, class Setter>
REALmethodDefinition accessor(const char* declaration, Getter* getter, Setter* setter) {
    return {reinterpret_cast<void*>(getter), reinterpret_cast<void*>(setter), declaration, kMethodFlags, {}};
}

template <class Getter>
REALproperty property(const char* name, const char* type, Getter* getter) {
    return {nullptr, name, type, kPropertyFlags, reinterpret_cast<void*>(getter), nullptr, 0, {}};
}

// A property that the host reads from the instance data itself, `offset` bytes from its start.
inline REALproperty field(const char* name, const char* type, std::uint32_t offset) {
    return {nullptr, name, type, kPropertyFlags, kREALStandardAccessor, nullptr, offset, {}};
}

// The same for a property that the host writes, too.
inline REALproperty settableField(const char* name, const char* type, std::uint32_t offset,
                                  std::uint32_t flags = kPropertyFlags) {
    return {nullptr, name, type, flags, kREALStandardAccessor, kREALStandardAccessor, offset, {}};
}

inline REALconstant constant(const char* declaration) { return {declaration, {}}; }

// A class but for its tables. A null pointer means that the class has no such function.
struct ClassDescription {
    const char* name;
    const char* superclass = nullptr;
    std::int32_t dataSize = 4;
    void (*constructor)(REALobject) = nullptr;
    void (*destructor)(REALobject) = nullptr;
};

template <class Record>
struct Table {
    Record* records = nullptr;
    std::int32_t count = 0;

    Table() = default;
    template <std::size_t N>
    Table(Record (&table)[N]) : records(table), count(static_cast<std::int32_t>(N)) {}

    Record* begin() const { return records; }
    Record* end() const { return records + count; }
};

inline REALclassDefinition classDefinition(const ClassDescription& description,
                                           Table<REALproperty> properties,
                                           Table<REALmethodDefinition> methods = {},
                                           Table<REALconstant> constants = {},
                                           Table<REALmethodDefinition> sharedMethods = {}) {
    REALclassDefinition record = {};
    record.version = 12;
    record.name = description.name;
    record.superclass = description.superclass;
    record.dataSize = description.dataSize;
    record.constructor = reinterpret_cast<void*>(description.constructor);
    record.destructor = reinterpret_cast<void*>(description.destructor);
    record.properties = properties.records;
    record.propertyCount = properties.count;
    record.methods = methods.records;
    record.methodCount = methods.count;
    record.constants = constants.records;
    record.constantCount = constants.count;
    record.flags = kClassFlags;
    record.sharedMethods = sharedMethods.records;
    record.sharedMethodCount = sharedMethods.count;
    return record;
}

} // namespace host
