// The running host, as its own parts see it: objects, strings, exceptions and calls.
#pragma once

#include "language/ast.h"
#include "runtime/heap.h"

#include <studio/host.h>

#include <chrono>
#include <map>

namespace studio {

// ---- classes ---------------------------------------------------------------------------------------------

class ClassTable {
  public:
    ClassTable();

    Class* named(std::string_view name);      // made, undefined, when new
    Class* find(std::string_view name) const; // null when nobody defined it
    Class* root() const { return root_; }     // Object
    const Type* arrayOf(const Type* element);
    const Type* typeNamed(const ast::TypeName& name); // a class that nobody defined yet is fine
    const Type* typeNamed(std::string_view text);     // "Integer", "CIFilterKaz()"

    Signature resolve(const ast::Signature& parsed);
    Signature parse(std::string_view declaration);
    Constant parseConstant(std::string_view declaration);
    Literal literal(const ast::Expr& expression); // SourceError when it is none

    // Places the class's data behind its superclass's and makes it known.
    void define(Class& cls, Origin origin, Class* superclass, std::int32_t dataSize);
    std::unique_ptr<Method> makeMethod(std::string_view declaration, Class* owner, bool shared,
                                       Origin origin);
    Method* addFunction(std::unique_ptr<Method> function);
    const std::vector<const Method*>& functionsNamed(std::string_view name) const;
    const std::vector<std::unique_ptr<Method>>& functions() const { return functions_; }
    const std::vector<Class*>& definitionOrder() const { return order_; }

  private:
    std::map<std::string, std::unique_ptr<Class>, std::less<>> classes_;
    std::map<const Class*, std::unique_ptr<Type>> classTypes_;
    std::map<const Type*, std::unique_ptr<Type>> arrayTypes_;
    std::vector<Class*> order_;
    std::vector<std::unique_ptr<Method>> functions_;
    std::map<std::string, std::vector<const Method*>, std::less<>> functionIndex_;
    Class* root_;
};

// ---- the host --------------------------------------------------------------------------------------------

class TimerQueue;

// Services that are to fail, for tests: each countdown runs over good calls, and is negative when it is off.
struct FaultPlan {
    std::map<std::string, int, std::less<>> byService;
    int allocation = -1;
    bool struck = false; // the allocation failed

    bool active() const { return allocation >= 0 || !byService.empty(); }
    bool strikes(void* function);
};

struct Host::Impl {
    explicit Impl(HostOptions options);
    ~Impl();

    HostOptions options;
    Heap heap;
    ClassTable classes;
    std::optional<std::int32_t> recordVersion;
    std::vector<std::string> requested;
    REALobject pending = nullptr; // raised, not thrown yet; one host reference
    std::optional<int> quit;      // Quit was called below a plugin's frame
    std::function<void()> yieldHandler;
    std::unique_ptr<TimerQueue> timers;
    FaultPlan faults;
    bool yielding = false;
    // Set while a program runs: calls one of its routines; null answers for the rest.
    std::function<Bits(const Method&, REALobject, const Bits*)> runRoutine;
    std::function<void(REALobject)> noteRaised; // where an exception is first seen

    bool exposesArrayStorage() const { return version() <= 2013.9; }
    double version() const { return options.version.value_or(0.0); }
};

Host::Impl& runtime();
inline Heap& heap() { return runtime().heap; }
inline ClassTable& classes() { return runtime().classes; }

// ---- references held by C++ ------------------------------------------------------------------------------

struct ObjectRef {
    REALobject handle = nullptr;
    ObjectRef() = default;
    explicit ObjectRef(REALobject owned) : handle(owned) {}
    ObjectRef(ObjectRef&& other) noexcept : handle(other.release()) {}
    ObjectRef& operator=(ObjectRef&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~ObjectRef() {
        if (handle) heap().release(handle);
    }
    REALobject release() { return std::exchange(handle, nullptr); }
    operator REALobject() const { return handle; }
};

struct StringRef {
    REALstring handle = nullptr;
    StringRef() = default;
    explicit StringRef(REALstring owned) : handle(owned) {}
    StringRef(StringRef&& other) noexcept : handle(other.release()) {}
    ~StringRef() {
        if (handle) heap().release(handle);
    }
    REALstring release() { return std::exchange(handle, nullptr); }
    operator REALstring() const { return handle; }
};

inline Bits retain(const Type* type, Bits bits) {
    if (type->kind == Kind::String)
        Heap::retain(bits.string);
    else if (type->isObject())
        Heap::retain(bits.object);
    return bits;
}
inline void release(const Type* type, Bits bits) {
    if (type->kind == Kind::String)
        heap().release(bits.string);
    else if (type->isObject())
        heap().release(bits.object);
}

// ---- strings ---------------------------------------------------------------------------------------------

inline std::string_view bytesOf(REALstring s) { return s ? StringCell::of(s).text() : std::string_view(); }
inline std::uint32_t encodingOf(REALstring s) {
    return s ? StringCell::of(s).encoding : kREALTextEncodingUTF8;
}
std::string toUtf8(REALstring s);
REALstring makeString(std::string_view utf8); // one host reference

// ---- objects ---------------------------------------------------------------------------------------------

// A new instance with its class constructors run, superclass first; one host reference. Null when unknown.
REALobject newInstance(Class& cls);
REALobject newInstance(std::string_view className);
bool isA(REALobject object, std::string_view className);
std::string classNameOf(REALobject object); // as Print shows it

// ---- exceptions ------------------------------------------------------------------------------------------

// An exception of the language on its way through C++. Never thrown through a plugin's frame.
struct Raised {
    Value exception;
};

[[noreturn]] void raise(std::string_view className, std::string_view message);
[[noreturn]] void raise(Value exception);
// After a call that may have recorded an exception: throws it.
void throwPending();
// For code that a plugin called: records what is thrown and answers the empty result.
void record(const Raised& raised);

REALobject makeException(std::string_view className, std::string_view message);
std::string exceptionMessage(REALobject exception);

// ---- calls -----------------------------------------------------------------------------------------------

// Calls the method, its setter, or a property's accessors. Arguments are borrowed, results owned; exceptions
// are thrown. The arguments have the parameters' types already.
Bits invoke(const Method& method, REALobject self, const Bits* arguments);
void invokeSetter(const Method& method, REALobject self, const Bits* arguments);
Bits readProperty(const Property& property, REALobject self);
void writeProperty(const Property& property, REALobject self, Bits value); // takes the value over
void callHook(void* function, REALobject self, std::string_view name, Origin origin);
// A C function that a plugin can call: one per method of the host's own.
void* functionForPlugins(const Method& method, bool setter);

// Overloads, by the types of the arguments.
struct Choice {
    const Method* method = nullptr;
    std::string problem; // when there is none: for people
};
Choice chooseOverload(const std::vector<const Method*>& candidates, const std::vector<const Type*>& arguments,
                      std::string_view name, bool withSetterValue = false);

// ---- conversions -----------------------------------------------------------------------------------------

// How far a conversion goes; negative when the language does not make it by itself.
int conversionCost(const Type* from, const Type* to);
// Takes the bits over and answers bits of the other type. May raise.
Bits convert(const Type* from, const Type* to, Bits bits);

// ---- variants --------------------------------------------------------------------------------------------

REALobject boxVariant(const Type* type, Bits bits);    // takes over
Bits unboxVariant(REALobject variant, const Type* to); // borrows; owned result
std::int32_t variantType(REALobject variant);          // the code that VarType answers
bool variantsEqual(REALobject a, REALobject b);        // strings without regard to case
std::string display(const Type* type, Bits bits);      // as Print and Str show it
std::string display(REALobject variant);
std::string formatDouble(double value);
std::string formatSingle(float value);
double parseNumber(std::string_view text); // as Val does: what begins the text

// ---- arrays ----------------------------------------------------------------------------------------------

struct ArrayObject {
    REALarrayStruct face; // storage is null when it is not shown
    const Type* element;
    std::int32_t count;
    std::int32_t capacity;
    char* data;
};

inline ArrayObject& arrayOf(REALobject object) { return *reinterpret_cast<ArrayObject*>(object); }
bool isArray(REALobject object);
REALobject newArray(const Type* element, std::int32_t count = 0);
int elementSize(const Type* element);
Bits arrayGet(ArrayObject& array, std::int32_t index);                // owned; raises when out of bounds
void arraySet(ArrayObject& array, std::int32_t index, Bits value);    // takes over; raises when out of bounds
void arrayInsert(ArrayObject& array, std::int32_t index, Bits value); // takes over
void arrayRemove(ArrayObject& array, std::int32_t index);
void arrayResize(ArrayObject& array, std::int32_t count);
std::int32_t arrayIndexOf(ArrayObject& array, Bits value, std::int32_t from);
void arraySort(ArrayObject& array);
bool valuesEqual(const Type* type, Bits a, Bits b);
int compareValues(const Type* type, Bits a, Bits b);

// ---- registration and services ---------------------------------------------------------------------------

void defineFramework(ClassTable& classes);
void registerPluginClass(REALclassDefinition* record);
void registerPluginFunction(const void* record);
void* findService(std::string_view entryName); // null when there is none in this version
const Property* findProperty(REALobject object, std::string_view name);
const Method* findMethodBySignature(const Class& cls, const Signature& wanted, bool& setter);

} // namespace studio
