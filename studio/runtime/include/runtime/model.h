// Classes as the host knows them: the framework's, the plugins' and the program's, all in one model.
#pragma once

#include "runtime/types.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace studio {

// A value written in a declaration: a default or a constant.
struct Literal {
    const Type* type = nullptr;
    Bits bits;        // all but strings
    std::string text; // strings
};

struct Parameter {
    std::string name;
    const Type* type = nullptr;
    std::optional<Literal> defaultValue;
    bool byRef = false;
    bool assigns = false;    // takes the value in `object.Method(...) = value`
    bool extends = false;    // the value before the dot: `value.Function(...)`
    bool paramArray = false; // takes all remaining arguments
};

// A declaration, parsed: "Name(a As Integer, b As String = "x") As Type".
struct Signature {
    std::string name;
    std::vector<Parameter> parameters;
    const Type* result = nullptr; // null for a Sub

    std::string text() const;
    bool assigns() const { return !parameters.empty() && parameters.back().assigns; }
    std::size_t requiredCount() const;
};
// Equal except for parameter names and defaults.
bool sameSignature(const Signature& a, const Signature& b);

struct Routine;  // a compiled Sub or Function of a program
struct CallPlan; // how its C function is called
enum class Origin { Undefined, Framework, Plugin, Program };

struct Method {
    std::string declaration; // as received
    Signature signature;
    void* function = nullptr;
    void* setter = nullptr; // assignable: setter(instance, arguments..., value)
    std::uint32_t flags = 0;
    Class* owner = nullptr; // null for global functions
    bool shared = false;    // called without an instance
    Origin origin = Origin::Framework;
    Routine* routine = nullptr;
    mutable std::shared_ptr<CallPlan> plan, setterPlan;

    Signature setterSignature() const; // the parameters and the assigned value
    std::string fullName() const;
};

struct Property {
    std::string name;
    std::string typeName; // as received
    const Type* type = nullptr;
    std::uint32_t flags = 0;
    void* getter = nullptr; // getter(instance, parameter)
    void* setter = nullptr; // setter(instance, parameter, value)
    std::uint32_t parameter = 0;
    Class* owner = nullptr;
    bool shared = false;

    // Served from the instance data, at `parameter`.
    bool standardGetter() const { return getter == kREALStandardAccessor; }
    bool standardSetter() const { return setter == kREALStandardAccessor; }
};

struct Constant {
    std::string declaration;
    std::string name;
    Literal value;
};

struct Class {
    std::string name;
    Origin origin = Origin::Undefined; // Undefined: named by a declaration, but nobody defined it yet
    Class* superclass = nullptr;
    std::string superclassName;
    const Type* type = nullptr;
    const Type* arrayElement = nullptr; // the class of an array type
    int arrayRank = 1;

    // Of a program.
    bool isInterface = false;
    // A structure is a value, copied where it is stored: sets the fields of the first object to the second's.
    std::function<void(REALobject, REALobject)> copy;
    std::vector<Class*> interfaces;
    std::optional<Signature> delegate; // instances call a routine of that signature

    // What a plugin registered.
    const REALclassDefinition* record = nullptr;
    std::int32_t recordVersion = 0;
    std::uint32_t flags = 0;

    std::int32_t dataSize = 0;   // as received
    std::int32_t dataOffset = 0; // of this class's own data inside an instance
    std::int32_t instanceSize = 0;
    void* constructor = nullptr;                // constructor(instance), superclass first
    void* destructor = nullptr;                 // destructor(instance), subclass first
    std::function<void(REALobject)> initialize; // a program class's fields
    std::function<void(REALobject)> finalize;   // a program class's fields, an array's elements

    // How the language treats a class of the framework specially. Most classes leave these alone.
    std::int32_t variantType = kREALVariantObject;  // VarType's result
    REALobject (*fromString)(REALstring) = nullptr; // strings convert to and from it implicitly
    REALstring (*toString)(REALobject) = nullptr;
    // Sets the handler of an event: a delegate that is called with the object; null removes it.
    void (*setHandler)(REALobject, std::string_view event, REALobject handler) = nullptr;

    std::vector<std::unique_ptr<Method>> methods;
    std::vector<std::unique_ptr<Method>> sharedMethods;
    std::vector<Property> properties;
    std::vector<Property> sharedProperties;
    std::vector<Constant> constants;
    std::vector<std::string> events; // declarations

    bool isDefined() const { return origin != Origin::Undefined; }
    bool isA(const Class* ancestor) const;                 // or that interface
    const Property* property(std::string_view name) const; // own or inherited
    const Constant* constant(std::string_view name) const;
    const Method* method(std::string_view declaration) const; // own, by its text as received
    // All methods of that name: the class's own, then the inherited ones that these do not override.
    std::vector<const Method*> methodsNamed(std::string_view name) const;
    std::vector<const Method*> sharedMethodsNamed(std::string_view name) const;
    std::vector<const Method*> constructors() const; // of the nearest class that has any
};

} // namespace studio
