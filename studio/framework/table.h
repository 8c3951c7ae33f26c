// The framework's classes and functions are tables: a declaration in the language and the C function that
// implements it. Plugins' classes come as the same kind of table, so the host treats both alike.
//
// Strings and objects are borrowed as arguments and owned as results. A function may raise() an exception.
//
// Each table lives in one file, which ends by handing it to a Registrar. Nothing else lists it.
#pragma once

#include "runtime/arrays.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"

#include <new>
#include <string>
#include <type_traits>
#include <vector>

namespace studio {

// The C types of a function, one letter each, checked against its declaration when the table is read.
template <class T>
constexpr char shapeOf() {
    if constexpr (std::is_void_v<T>)
        return 'v';
    else if constexpr (std::is_same_v<T, bool>)
        return 'b';
    else if constexpr (std::is_same_v<T, float>)
        return 'f';
    else if constexpr (std::is_same_v<T, double>)
        return 'd';
    else if constexpr (std::is_same_v<T, REALstring>)
        return 's';
    else if constexpr (std::is_same_v<T, REALobject>)
        return 'o';
    else if constexpr (std::is_integral_v<T>)
        return char('0' + sizeof(T));
}
template <class R, class... A>
std::string shapeOf(R (*)(A...)) {
    return {shapeOf<R>(), shapeOf<A>()...};
}

struct FrameworkMethod {
    const char* declaration;
    void* function;
    std::string shape;
    void* setter = nullptr;
    std::string setterShape = {};
};

template <class F>
FrameworkMethod method(const char* declaration, F function) {
    auto* pointer = +function;
    return {declaration, reinterpret_cast<void*>(pointer), shapeOf(pointer)};
}
// `object.Method(arguments) = value` as well.
template <class F, class S>
FrameworkMethod method(const char* declaration, F function, S setter) {
    FrameworkMethod result = method(declaration, function);
    auto* pointer = +setter;
    result.setter = reinterpret_cast<void*>(pointer);
    result.setterShape = shapeOf(pointer);
    return result;
}

struct FrameworkProperty {
    const char* name;
    const char* type;
    void* getter;
    std::string getterShape;
    void* setter = nullptr;
    std::string setterShape = {};
};

// getter(object); setter(object, unused, value)
template <class G>
FrameworkProperty property(const char* name, const char* type, G getter) {
    auto* pointer = +getter;
    return {name, type, reinterpret_cast<void*>(pointer), shapeOf(pointer)};
}
template <class G, class S>
FrameworkProperty property(const char* name, const char* type, G getter, S setter) {
    FrameworkProperty result = property(name, type, getter);
    auto* pointer = +setter;
    result.setter = reinterpret_cast<void*>(pointer);
    result.setterShape = shapeOf(pointer);
    return result;
}

struct FrameworkClass {
    const char* name;
    const char* superclass = nullptr;
    std::int32_t dataSize = 0;
    void (*constructor)(REALobject) = nullptr;
    void (*destructor)(REALobject) = nullptr;
    std::vector<FrameworkProperty> properties = {};
    std::vector<FrameworkMethod> methods = {};
    std::vector<FrameworkMethod> sharedMethods = {};
    std::vector<const char*> constants = {};
    std::vector<const char*> events = {};
    // See Class.
    std::int32_t variantType = kREALVariantObject;
    REALobject (*fromString)(REALstring) = nullptr;
    REALstring (*toString)(REALobject) = nullptr;
    void (*setHandler)(REALobject, std::string_view event, REALobject handler) = nullptr;
    void (*atYield)() = nullptr; // runs whenever the program yields
    void (*atEnd)() = nullptr;   // runs when a program is over
};

// The C++ data of a framework class, right behind the header: such a class inherits from Object only.
template <class Data>
Data& dataOf(REALobject object) {
    return *reinterpret_cast<Data*>(instanceData(object));
}
template <class Data>
FrameworkClass classWithData(const char* name) {
    FrameworkClass result;
    result.name = name;
    result.dataSize = (sizeof(Data) + 3) & ~3;
    result.constructor = +[](REALobject object) { new (instanceData(object)) Data(); };
    result.destructor = +[](REALobject object) { dataOf<Data>(object).~Data(); };
    return result;
}

// A subclass of RuntimeException without members of its own.
inline FrameworkClass exceptionClass(const char* name) {
    FrameworkClass result;
    result.name = name;
    result.superclass = "RuntimeException";
    return result;
}

using FrameworkFunctions = std::vector<FrameworkMethod>;

// What one file adds to the framework.
struct FrameworkPart {
    std::vector<FrameworkClass> classes = {};
    FrameworkFunctions functions = {};
};

// A static one at the end of the file makes the part known. Every host makes the tables afresh.
struct Registrar {
    explicit Registrar(FrameworkPart (*part)());
};

} // namespace studio
