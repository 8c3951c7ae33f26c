// The services that plugins ask for by name. One row per service: its name, its function, and the first host
// version that has it. A new service is its function and its row.
#include "services/services.h"

#include "framework/cfstring.h"
#include "framework/folderitem.h"
#include "framework/memoryblock.h"
#include "framework/picture.h"
#include "runtime/arrays.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/registration.h"
#include "runtime/strings.h"
#include "runtime/text.h"
#include "runtime/variants.h"
#include "syntax/source_error.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace studio {

namespace {

// What a call's arguments add to its note.
template <class Argument>
void describe(ServiceCall& call, Argument argument) {
    if constexpr (std::is_same_v<Argument, const char*>) {
        if (call.text.empty() && argument) call.text = argument;
    } else if constexpr (std::is_pointer_v<Argument> &&
                         !std::is_function_v<std::remove_pointer_t<Argument>>) {
        if (!call.subject) call.subject = argument;
    }
}

// Bodies may throw; a plugin's frame must never see it.
template <auto body>
struct Guarded;
template <class R, class... A, R (*body)(A...)>
struct Guarded<body> {
    static R call(A... arguments) {
        return leavingPending([&]() -> R {
            Services& services = Services::current();
            auto* self = reinterpret_cast<void*>(&call);
            if (services.logs()) {
                ServiceCall noted;
                (describe(noted, arguments), ...);
                services.note(self, std::move(noted));
            }
            if (services.strikes(self)) return R();
            return body(arguments...);
        });
    }
};

// ---- versions and registration ---------------------------------------------------------------------------

void RegisterPluginVersion(std::int32_t version) {
    if (version < 9 || version > 12)
        heap().violation("RegisterPluginVersion: there is no record version " + std::to_string(version));
    runtime().recordVersion = version;
}
double REALGetRBVersion() { return runtime().version(); }
void PluginRegisterClass(REALclassDefinition* record) { registerPluginClass(record); }
void PluginRegisterMethod(REALmethodDefinition* record) { registerPluginFunction(record); }

// ---- references ------------------------------------------------------------------------------------------

// Services that work on an object are never called with null.
bool given(const void* handle, const char* service) {
    if (!handle) heap().violation(std::string(service) + ": null");
    return handle;
}

void REALLockObject(REALobject object) {
    if (given(object, "REALLockObject")) heap().pluginLock(object);
}
void REALUnlockObject(REALobject object) {
    if (given(object, "REALUnlockObject")) heap().pluginUnlock(object);
}
void REALLockString(REALstring string) {
    if (given(string, "REALLockString")) heap().pluginLock(string);
}
void REALUnlockString(REALstring string) {
    if (given(string, "REALUnlockString")) heap().pluginUnlock(string);
}

// ---- strings ---------------------------------------------------------------------------------------------

std::optional<std::string> bytesIn(REALstring string, std::uint32_t encoding) {
    if (encoding == kREALTextEncodingUnknown || encoding == encodingOf(string))
        return std::string(bytesOf(string));
    auto utf8 = text::toUtf8(bytesOf(string), encodingOf(string));
    return utf8 ? text::fromUtf8(*utf8, encoding) : std::nullopt;
}

bool PluginGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out) {
    if (!heap().check(string, "PluginGetStringData")) return false;
    auto bytes = bytesIn(string, encoding);
    if (!bytes) return false;
    auto* data = static_cast<char*>(std::calloc(bytes->size() + 4, 1));
    if (!data) return false;
    std::memcpy(data, bytes->data(), bytes->size());
    // Without the service that disposes of the bytes, the plugin frees them itself.
    if (Services::current().find("PluginDisposeStringData")) heap().lend(data);
    *out = {data, std::uint32_t(bytes->size()),
            encoding == kREALTextEncodingUnknown ? encodingOf(string) : encoding};
    return true;
}

void PluginDisposeStringData(REALstringData* data) {
    if (!data || !data->data) return;
    // On a host without PluginGetStringData the plugin allocates the bytes itself, on the C heap like the
    // host.
    if (Services::current().find("PluginGetStringData") && !heap().takeBack(data->data)) {
        heap().violation("PluginDisposeStringData: these bytes do not come from PluginGetStringData");
        return;
    }
    std::free(data->data);
    data->data = nullptr;
    data->length = 0;
}

const char* StringGetCString(REALstring string) {
    if (!heap().check(string, "StringGetCString")) return nullptr;
    return string ? StringCell::of(string).buffer + 1 : "";
}

const void* REALGetStringCFString(REALstring string, std::uint32_t flags) {
    if (!heap().check(string, "REALGetStringCFString")) return nullptr;
    if (flags) heap().violation("REALGetStringCFString: the flags are not 0");
    return makeCFString(toUtf8(string));
}

REALstring REALBuildString(const char* bytes, std::int32_t length) {
    if (!bytes || length <= 0) return nullptr;
    return heap().handOut(heap().newString({bytes, std::size_t(length)}, kREALTextEncodingUnknown));
}

std::uint32_t REALGetStringEncoding(REALstring string) {
    return heap().check(string, "REALGetStringEncoding") ? encodingOf(string) : 0;
}

REALstring REALConvertString(REALstring string, std::uint32_t encoding) {
    if (!string || !heap().check(string, "REALConvertString")) return nullptr;
    auto bytes = bytesIn(string, encoding);
    return bytes ? heap().handOut(heap().newString(*bytes, encoding)) : nullptr;
}

void REALSetStringEncoding(REALstring string, std::uint32_t encoding) {
    if (string && heap().check(string, "REALSetStringEncoding")) heap().setEncoding(string, encoding);
}

// ---- objects and classes ---------------------------------------------------------------------------------

// The language ignores case, but a plugin spells the names of classes and properties as the host does.
void checkSpelling(const char* service, std::string_view given, std::string_view name) {
    if (given != name)
        heap().violation(std::string(service) + ": " + std::string(name) + " is spelt " + std::string(given));
}

Class* classFor(const char* service, const char* className) {
    Class* found = className ? classes().find(className) : nullptr;
    if (found) checkSpelling(service, className, found->name);
    return found;
}

REALobject PluginNewInstance(const char* className) {
    return classFor("PluginNewInstance", className) ? heap().handOut(newInstance(className)) : nullptr;
}

REALclassRef pluginObjectType(const char* className) {
    return reinterpret_cast<REALclassRef>(classFor("pluginObjectType", className));
}

bool RuntimeObjectIsa(REALobject object, REALclassRef cls) {
    if (!given(object, "RuntimeObjectIsa") || !given(cls, "RuntimeObjectIsa")) return false;
    if (!heap().check(object, "RuntimeObjectIsa")) return false;
    return classOf(object).isA(reinterpret_cast<Class*>(cls));
}

void RuntimeRaiseException(REALobject exception) {
    if (!given(exception, "RuntimeRaiseException") || !heap().check(exception, "RuntimeRaiseException"))
        return;
    if (!isA(exception, "RuntimeException")) {
        heap().violation("RuntimeRaiseException: a " + classNameOf(exception) + " is not an exception");
        return;
    }
    leavePending({Value::share(exception)});
}

// ---- properties ------------------------------------------------------------------------------------------

// The value of a property, provided that its type is acceptable.
template <class Out, class Accepts>
bool readAs(REALobject object, const char* name, const char* service, Out* out, Kind as, Accepts accepts) {
    if (!object || !name || !heap().check(object, service)) return false;
    const Property* property = findProperty(object, name);
    if (!property || !property->getter || !accepts(*property->type)) return false;
    checkSpelling(service, name, property->name);
    Bits bits = convert(property->type, simpleType(as), readProperty(*property, object));
    std::memcpy(out, &bits, sizeof *out);
    return true;
}

bool isWord(const Type& t) {
    return (t.isInteger() && elementSize(&t) <= 4) || t.kind == Kind::Color || t.kind == Kind::Boolean;
}

bool REALGetPropValueInt(REALobject object, const char* name, std::int32_t* out) {
    return readAs(object, name, "REALGetPropValueInt", out, Kind::Int32, isWord);
}
bool REALGetPropValueInt64(REALobject object, const char* name, std::int64_t* out) {
    return readAs(object, name, "REALGetPropValueInt64", out, Kind::Int64,
                  [](const Type& t) { return t.isInteger(); });
}
bool REALGetPropValueSingle(REALobject object, const char* name, float* out) {
    return readAs(object, name, "REALGetPropValueSingle", out, Kind::Single,
                  [](const Type& t) { return t.kind == Kind::Single; });
}
bool REALGetPropValueDouble(REALobject object, const char* name, double* out) {
    return readAs(object, name, "REALGetPropValueDouble", out, Kind::Double,
                  [](const Type& t) { return t.kind == Kind::Double || t.kind == Kind::Single; });
}
bool REALGetPropValueString(REALobject object, const char* name, REALstring* out) {
    if (!readAs(object, name, "REALGetPropValueString", out, Kind::String,
                [](const Type& t) { return t.kind == Kind::String; }))
        return false;
    heap().handOut(*out);
    return true;
}
bool REALGetPropValueObject(REALobject object, const char* name, REALobject* out) {
    if (!readAs(object, name, "REALGetPropValueObject", out, Kind::Variant,
                [](const Type& t) { return t.isObject(); }))
        return false;
    heap().handOut(*out);
    return true;
}

bool writeAs(REALobject object, const char* name, const char* service, const Type* type, Bits value,
             bool (*accepts)(const Type&)) {
    if (!object || !name || !heap().check(object, service)) return false;
    const Property* property = findProperty(object, name);
    if (!property || !property->setter || !accepts(*property->type)) return false;
    checkSpelling(service, name, property->name);
    writeProperty(*property, object, convert(type, property->type, retain(type, value)));
    return true;
}

bool REALSetPropValueInt(REALobject object, const char* name, std::int32_t value) {
    return writeAs(object, name, "REALSetPropValueInt", simpleType(Kind::Int32), Bits::of(value),
                   [](const Type& t) { return t.isInteger(); });
}
bool REALSetPropValueString(REALobject object, const char* name, REALstring value) {
    if (!heap().check(value, "REALSetPropValueString")) return false;
    return writeAs(object, name, "REALSetPropValueString", simpleType(Kind::String), Bits::of(value),
                   [](const Type& t) { return t.kind == Kind::String; });
}

// ---- variants --------------------------------------------------------------------------------------------

REALobject boxed(Kind kind, Bits bits) { return heap().handOut(boxVariant(simpleType(kind), bits)); }

REALobject BooleanToVariant(bool value) { return boxed(Kind::Boolean, Bits::of(value)); }
REALobject Int32ToVariant(std::int32_t value) { return boxed(Kind::Int32, Bits::of(value)); }
REALobject UInt32ToVariant(std::uint32_t value) { return boxed(Kind::UInt32, Bits::of(value)); }
REALobject Int64ToVariant(std::int64_t value) { return boxed(Kind::Int64, Bits::of(value)); }
REALobject UInt64ToVariant(std::uint64_t value) { return boxed(Kind::UInt64, Bits::of(value)); }
REALobject SingleToVariant(float value) { return boxed(Kind::Single, Bits::of(value)); }
REALobject DoubleToVariant(double value) { return boxed(Kind::Double, Bits::of(value)); }
REALobject StringToVariant(REALstring value) {
    if (!heap().check(value, "StringToVariant")) return nullptr;
    return boxed(Kind::String, Bits::of(Heap::retain(value)));
}

Bits unboxed(REALobject variant, Kind kind, const char* service) {
    return heap().check(variant, service) ? unboxVariant(variant, simpleType(kind)) : Bits();
}

std::int32_t VariantToInt32(REALobject variant) {
    return unboxed(variant, Kind::Int32, "VariantToInt32").i32;
}
std::int64_t VariantToInt64(REALobject variant) {
    return unboxed(variant, Kind::Int64, "VariantToInt64").i64;
}
float VariantToSingle(REALobject variant) { return unboxed(variant, Kind::Single, "VariantToSingle").f32; }
double VariantToDouble(REALobject variant) { return unboxed(variant, Kind::Double, "VariantToDouble").f64; }
REALstring VariantToString(REALobject variant) {
    return heap().handOut(unboxed(variant, Kind::String, "VariantToString").string);
}

// ---- the host's own functions and methods ----------------------------------------------------------------

// Nothing has a declaration that cannot be parsed.
template <class Find>
void* loadByDeclaration(const char* declaration, Find find) {
    if (!declaration) return nullptr;
    try {
        return find(classes().parse(declaration));
    } catch (const SourceError&) {
        return nullptr;
    }
}

void* REALLoadGlobalMethod(void* null, const char* declaration) {
    if (null) heap().violation("REALLoadGlobalMethod: the first argument is not null");
    return loadByDeclaration(declaration, [](const Signature& wanted) -> void* {
        for (const Method* function : classes().functionsNamed(wanted.name))
            if (sameSignature(function->signature, wanted)) return functionForPlugins(*function, false);
        return nullptr;
    });
}

void* REALLoadObjectMethod(REALobject object, const char* declaration) {
    if (!object || !heap().check(object, "REALLoadObjectMethod")) return nullptr;
    return loadByDeclaration(declaration, [&](const Signature& wanted) -> void* {
        bool setter = false;
        const Method* method = findMethodBySignature(classOf(object), wanted, setter);
        return method ? functionForPlugins(*method, setter) : nullptr;
    });
}

// ---- arrays ----------------------------------------------------------------------------------------------

bool checkArray(REALarray array, const char* service) {
    auto* object = reinterpret_cast<REALobject>(array);
    if (!given(object, service) || !heap().check(object, service)) return false;
    if (isArray(object)) return true;
    heap().violation(std::string(service) + ": a " + classNameOf(object) + " is not an array");
    return false;
}

ArrayObject& arrayOf(REALarray array) { return studio::arrayOf(reinterpret_cast<REALobject>(array)); }

REALarray RuntimeArrayCreateSingleDimBoundedArray(std::int32_t type, std::int32_t upperBound) {
    static constexpr Kind kinds[] = {Kind::Int32,   Kind::Single,  Kind::Double, Kind::String,
                                     Kind::Variant, Kind::Boolean, Kind::Int64,  Kind::UInt8};
    if (type < 0 || type > kREALArrayUInt8 || upperBound < -1) return nullptr;
    return reinterpret_cast<REALarray>(heap().handOut(newArray(simpleType(kinds[type]), upperBound + 1)));
}

std::int32_t RuntimeUBound(REALarray array) {
    return checkArray(array, "RuntimeUBound") ? arrayOf(array).count - 1 : -1;
}

// Between an element as plugins see it and its bits.
template <class T>
Bits elementBits(T value) {
    if constexpr (sizeof(T) < 4 && !std::is_same_v<T, bool>)
        return Bits::of(std::int32_t(value));
    else
        return Bits::of(value);
}
template <class T>
T elementValue(Bits bits) {
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

template <class T>
void insertElement(REALarray array, std::int32_t index, T value) {
    if (!checkArray(array, "insert into an array")) return;
    if constexpr (std::is_pointer_v<T>)
        if (!heap().check(value, "insert into an array")) return;
    Bits bits = elementBits(value);
    arrayInsert(arrayOf(array), index, retain(arrayOf(array).element, bits));
}

template <class T>
void getElement(REALarray array, std::int32_t index, T* out) {
    *out = T();
    if (!checkArray(array, "get from an array")) return;
    *out = elementValue<T>(arrayGet(arrayOf(array), index));
    if constexpr (std::is_pointer_v<T>) heap().handOut(*out);
}

struct ElementProcs {
    void* insert;
    void* get;
};
template <class T>
ElementProcs procsFor() {
    return {reinterpret_cast<void*>(&Guarded<&insertElement<T>>::call),
            reinterpret_cast<void*>(&Guarded<&getElement<T>>::call)};
}

ElementProcs procsOf(REALarray array) {
    switch (arrayOf(array).element->kind) {
    case Kind::Boolean:
        return procsFor<bool>();
    case Kind::Int8:
        return procsFor<std::int8_t>();
    case Kind::UInt8:
        return procsFor<std::uint8_t>();
    case Kind::Int16:
        return procsFor<std::int16_t>();
    case Kind::UInt16:
        return procsFor<std::uint16_t>();
    case Kind::Int64:
    case Kind::UInt64:
        return procsFor<std::int64_t>();
    case Kind::Single:
        return procsFor<float>();
    case Kind::Double:
        return procsFor<double>();
    case Kind::String:
        return procsFor<REALstring>();
    case Kind::Int32:
    case Kind::UInt32:
    case Kind::Color:
        return procsFor<std::int32_t>();
    default:
        return procsFor<REALobject>();
    }
}

void* RuntimeArrayDirectGetInsertProc(REALarray array) {
    return checkArray(array, "RuntimeArrayDirectGetInsertProc") ? procsOf(array).insert : nullptr;
}
void* RuntimeArrayDirectGetGetProc(REALarray array) {
    return checkArray(array, "RuntimeArrayDirectGetGetProc") ? procsOf(array).get : nullptr;
}

REALstring RuntimeDirectReadStringArray(REALstringArray array, std::int32_t index) {
    if (!checkArray(array, "RuntimeDirectReadStringArray")) return nullptr;
    if (arrayOf(array).element->kind != Kind::String) {
        heap().violation("RuntimeDirectReadStringArray: not an array of strings");
        return nullptr;
    }
    return heap().handOut(arrayGet(arrayOf(array), index).string);
}

// ---- yielding --------------------------------------------------------------------------------------------

void REALYieldToRB() { runtime().yield(); }

// ---- memory blocks ---------------------------------------------------------------------------------------

template <class Handle>
bool checkClass(Handle handle, const char* className, const char* service) {
    auto* object = reinterpret_cast<REALobject>(handle);
    if (!given(object, service) || !heap().check(object, service)) return false;
    if (isA(object, className)) return true;
    heap().violation(std::string(service) + ": a " + classNameOf(object) + " is not a " + className);
    return false;
}

REALmemoryBlock newMemoryBlock(std::int32_t size) {
    return reinterpret_cast<REALmemoryBlock>(heap().handOut(tryNewMemoryBlock(size)));
}
void* memoryBlockGetPtr(REALmemoryBlock block) {
    if (!checkClass(block, "MemoryBlock", "memoryBlockGetPtr")) return nullptr;
    return memoryBlockBytes(reinterpret_cast<REALobject>(block)).data;
}
std::int32_t memoryBlockGetSize(REALmemoryBlock block) {
    if (!checkClass(block, "MemoryBlock", "memoryBlockGetSize")) return -1;
    return memoryBlockBytes(reinterpret_cast<REALobject>(block)).size;
}

// ---- pictures --------------------------------------------------------------------------------------------

bool checkPicture(REALpicture picture, const char* service) {
    return checkClass(picture, "Picture", service);
}
REALobject objectOf(REALpicture picture) { return reinterpret_cast<REALobject>(picture); }

REALpicture newPicture(std::int32_t width, std::int32_t height, std::int32_t depth) {
    return reinterpret_cast<REALpicture>(heap().handOut(tryNewPicture(width, height, depth)));
}
REALobject pluginPictureGraphicsGetter(REALpicture picture) {
    return picture && checkPicture(picture, "pluginPictureGraphicsGetter")
               ? heap().handOut(pictureGraphics(objectOf(picture)))
               : nullptr;
}
bool REALLockPictureDescription(REALpicture picture, REALpictureDescription* out, std::int32_t kind) {
    return checkPicture(picture, "REALLockPictureDescription") &&
           describePicture(objectOf(picture), out, kind);
}
bool lockPictureDescription(REALpicture picture, REALpictureDescription* out) {
    return REALLockPictureDescription(picture, out, preferredDescription());
}
void unlockPictureDescription(REALpicture picture) {
    if (checkPicture(picture, "unlockPictureDescription")) undescribePicture(objectOf(picture));
}
void REALPictureClearCache(REALpicture picture) {
    if (checkPicture(picture, "REALPictureClearCache")) pictureChanged(objectOf(picture));
}
REALpicture REALGetPictureMask(REALpicture picture, bool create) {
    if (!checkPicture(picture, "REALGetPictureMask")) return nullptr;
    return reinterpret_cast<REALpicture>(heap().handOut(pictureMask(objectOf(picture), create)));
}
void* REALCopyPictureCGImage(REALpicture picture) {
    return checkPicture(picture, "REALCopyPictureCGImage") ? pictureCGImage(objectOf(picture)) : nullptr;
}

// ---- files -----------------------------------------------------------------------------------------------

bool REALFSRefFromFolderItem(REALfolderItem item, FSRef* out, HFSUniStr255* name) {
    return checkClass(item, "FolderItem", "REALFSRefFromFolderItem") &&
           fsRefOf(reinterpret_cast<REALobject>(item), out, name);
}
bool REALFSSpecFromFolderItem(REALfolderItem item, FSSpec* out) {
    return checkClass(item, "FolderItem", "REALFSSpecFromFolderItem") &&
           fsSpecOf(reinterpret_cast<REALobject>(item), out);
}
REALfolderItem REALFolderItemFromParentFSRef(const FSRef* parent, const HFSUniStr255* name) {
    return reinterpret_cast<REALfolderItem>(heap().handOut(folderItemIn(parent, name)));
}
REALfolderItem FolderItemFromFSSpec(const FSSpec* record) {
    return reinterpret_cast<REALfolderItem>(heap().handOut(folderItemOf(record)));
}

// ---- the table -------------------------------------------------------------------------------------------

struct Service {
    std::string_view name;
    void* function;
    double since = 0;
    bool allocates = false;
};

// The function must have exactly the type that the plugins' header gives the service.
template <class Declared, Declared body>
Service service(std::string_view name, double since = 0) {
    return {name, reinterpret_cast<void*>(&Guarded<body>::call), since};
}
Service allocating(Service row) {
    row.allocates = true;
    return row;
}
#define SERVICE(name, ...) service<::host::service::name, &name>(#name __VA_OPT__(, ) __VA_ARGS__)

const std::vector<Service>& allServices() {
    static const std::vector<Service> table = {
        SERVICE(RegisterPluginVersion),
        SERVICE(REALGetRBVersion),
        SERVICE(PluginRegisterClass),
        SERVICE(PluginRegisterMethod),
        SERVICE(REALLockObject),
        SERVICE(REALUnlockObject),
        SERVICE(REALLockString),
        SERVICE(REALUnlockString),
        allocating(SERVICE(PluginGetStringData, 2013.0)),
        SERVICE(PluginDisposeStringData, 2013.0),
        SERVICE(StringGetCString),
        allocating(SERVICE(REALGetStringCFString, 2012.0)),
        allocating(SERVICE(REALBuildString)),
        SERVICE(REALGetStringEncoding),
        allocating(SERVICE(REALConvertString)),
        SERVICE(REALSetStringEncoding),
        allocating(SERVICE(PluginNewInstance)),
        SERVICE(pluginObjectType),
        SERVICE(RuntimeObjectIsa),
        SERVICE(RuntimeRaiseException),
        SERVICE(REALGetPropValueInt),
        SERVICE(REALGetPropValueInt64),
        SERVICE(REALGetPropValueSingle),
        SERVICE(REALGetPropValueDouble),
        SERVICE(REALGetPropValueString),
        SERVICE(REALGetPropValueObject),
        SERVICE(REALSetPropValueInt),
        SERVICE(REALSetPropValueString),
        allocating(SERVICE(BooleanToVariant)),
        allocating(SERVICE(Int32ToVariant)),
        allocating(SERVICE(UInt32ToVariant)),
        allocating(SERVICE(Int64ToVariant)),
        allocating(SERVICE(UInt64ToVariant)),
        allocating(SERVICE(SingleToVariant)),
        allocating(SERVICE(DoubleToVariant)),
        allocating(SERVICE(StringToVariant)),
        SERVICE(VariantToInt32),
        SERVICE(VariantToInt64),
        SERVICE(VariantToSingle),
        SERVICE(VariantToDouble),
        allocating(SERVICE(VariantToString)),
        SERVICE(REALLoadGlobalMethod),
        SERVICE(REALLoadObjectMethod),
        allocating(SERVICE(RuntimeArrayCreateSingleDimBoundedArray)),
        SERVICE(RuntimeUBound),
        SERVICE(RuntimeArrayDirectGetInsertProc),
        SERVICE(RuntimeArrayDirectGetGetProc),
        SERVICE(RuntimeDirectReadStringArray),
        SERVICE(REALYieldToRB),
        allocating(SERVICE(newMemoryBlock)),
        SERVICE(memoryBlockGetPtr),
        SERVICE(memoryBlockGetSize),
        allocating(SERVICE(newPicture)),
        allocating(SERVICE(pluginPictureGraphicsGetter)),
        SERVICE(lockPictureDescription),
        SERVICE(REALLockPictureDescription),
        SERVICE(unlockPictureDescription),
        SERVICE(REALPictureClearCache),
        SERVICE(REALGetPictureMask),
        allocating(SERVICE(REALCopyPictureCGImage, 2012.0)),
        SERVICE(REALFSRefFromFolderItem),
        SERVICE(REALFSSpecFromFolderItem),
        allocating(SERVICE(REALFolderItemFromParentFSRef)),
        allocating(SERVICE(FolderItemFromFSSpec)),
    };
    return table;
}

Services* theServices = nullptr;

} // namespace

Services::Services(std::set<std::string> withheld) : withheld_(std::move(withheld)) { theServices = this; }
Services::~Services() { theServices = nullptr; }

Services& Services::current() {
    if (!theServices) throw UsageError("there is no host");
    return *theServices;
}

std::vector<std::string> Services::names() {
    std::vector<std::string> result;
    for (const Service& service : allServices()) result.emplace_back(service.name);
    return result;
}

void* Services::resolve(const char* entryName) {
    if (!theServices || !entryName) return nullptr;
    try {
        theServices->requested_.emplace_back(entryName);
    } catch (const std::bad_alloc&) { // a plugin's frame must never see it
    }
    return theServices->find(entryName);
}

void* Services::find(std::string_view entryName) const {
    if (std::find(withheld_.begin(), withheld_.end(), entryName) != withheld_.end()) return nullptr;
    if (entryName == "REALGetRBVersion" && !runtime().toldVersion) return nullptr;
    for (const Service& service : allServices())
        if (service.name == entryName)
            return runtime().version() >= service.since ? service.function : nullptr;
    return nullptr;
}

// ---- the log ---------------------------------------------------------------------------------------------

void Services::note(void* function, ServiceCall call) {
    for (const Service& service : allServices())
        if (service.function == function) {
            call.service = service.name;
            log_->push_back(std::move(call));
            return;
        }
}

// ---- faults ----------------------------------------------------------------------------------------------

void Services::fail(std::string_view service, int afterGoodCalls) {
    if (!find(service)) throw UsageError("there is no service " + std::string(service));
    faults_.byService[std::string(service)] = afterGoodCalls;
}

void Services::failAllocation(int afterGoodCalls) {
    faults_.allocation = afterGoodCalls;
    faults_.struck = false;
}

bool Services::strikes(void* function) {
    if (faults_.allocation < 0 && faults_.byService.empty()) return false;
    auto row = std::find_if(allServices().begin(), allServices().end(),
                            [&](const Service& service) { return service.function == function; });
    if (row == allServices().end()) return false;
    auto due = [](int& countdown) { return countdown >= 0 && countdown-- == 0; };
    if (auto named = faults_.byService.find(row->name);
        named != faults_.byService.end() && due(named->second))
        return true;
    if (row->allocates && due(faults_.allocation)) return faults_.struck = true;
    return false;
}

} // namespace studio
