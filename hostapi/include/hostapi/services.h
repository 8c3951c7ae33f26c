// The plugin's way to the host: one wrapper per host service. A wrapper asks the resolver for its entry on
// first use; while the host does not offer it, a call does nothing and answers 0, null or false.
#pragma once

#include <hostapi/abi.h>

#include <type_traits>

// The host's lookup function, set once by REALPluginMain before any wrapper is called.
extern REALResolver gResolver;

// What the host says of itself: its version as a double such as 2013.03, 0.0 when it does not say.
extern double rbversion_rbversion;

namespace host {

template <class Function>
class Service;

template <class Result, class... Arguments>
class Service<Result (*)(Arguments...)> {
  public:
    using Function = Result (*)(Arguments...);

    explicit constexpr Service(const char* entryName) : entryName(entryName) {}

    // The service's address, or null. A null answer is not kept for good: the next call asks again.
    Function resolve() {
        if (!cached) cached = reinterpret_cast<Function>(gResolver(entryName));
        return cached;
    }

    Result operator()(Arguments... arguments) {
        if (Function function = resolve()) return function(arguments...);
        return Result();
    }

  private:
    const char* entryName;
    Function cached = nullptr;
};

// Whether the host shows the element storage of its arrays (REALarrayStruct).
bool showsArrayStorage();

} // namespace host

#define HOST_SERVICE(wrapper, entry)                                                                         \
    inline constinit host::Service<host::service::entry> wrapper { #entry }

HOST_SERVICE(PluginGetStringData, PluginGetStringData); // reached through REALGetStringData of the bridge
HOST_SERVICE(StringGetCString, StringGetCString);       // likewise
HOST_SERVICE(REALDisposeStringData, PluginDisposeStringData);
HOST_SERVICE(REALCopyStringCFString, REALGetStringCFString);
HOST_SERVICE(REALGetStringCFString, REALGetStringCFString);
HOST_SERVICE(REALObjectIsA, RuntimeObjectIsa);
HOST_SERVICE(REALGetClassRef, pluginObjectType);
HOST_SERVICE(REALRegisterClass, PluginRegisterClass);
HOST_SERVICE(REALRegisterMethod, PluginRegisterMethod);
HOST_SERVICE(REALBuildString, REALBuildString);
HOST_SERVICE(REALLockObject, REALLockObject);
HOST_SERVICE(REALUnlockObject, REALUnlockObject);
HOST_SERVICE(REALLockString, REALLockString);
HOST_SERVICE(REALUnlockString, REALUnlockString);
HOST_SERVICE(REALGetStringEncoding, REALGetStringEncoding);
HOST_SERVICE(REALConvertString, REALConvertString);
HOST_SERVICE(REALSetStringEncoding, REALSetStringEncoding);
HOST_SERVICE(REALnewInstance, PluginNewInstance);
HOST_SERVICE(REALRaiseException, RuntimeRaiseException);
HOST_SERVICE(REALGetPropValueInt32, REALGetPropValueInt);
HOST_SERVICE(REALGetPropValueString, REALGetPropValueString);
HOST_SERVICE(REALGetPropValueDouble, REALGetPropValueDouble);
HOST_SERVICE(REALGetPropValueObject, REALGetPropValueObject);
HOST_SERVICE(REALGetPropValueInt64, REALGetPropValueInt64);
HOST_SERVICE(REALGetPropValueSingle, REALGetPropValueSingle);
HOST_SERVICE(REALSetPropValueInt32, REALSetPropValueInt);
HOST_SERVICE(REALSetPropValueString, REALSetPropValueString);
HOST_SERVICE(REALNewVariantString, StringToVariant);
HOST_SERVICE(REALNewVariantInteger, Int32ToVariant);
HOST_SERVICE(REALNewVariantDouble, DoubleToVariant);
HOST_SERVICE(REALNewVariantBoolean, BooleanToVariant);
HOST_SERVICE(REALNewVariantUInt32, UInt32ToVariant);
HOST_SERVICE(REALNewVariantInt64, Int64ToVariant);
HOST_SERVICE(REALNewVariantUInt64, UInt64ToVariant);
HOST_SERVICE(REALNewVariantSingle, SingleToVariant);
HOST_SERVICE(REALVariantToInt32, VariantToInt32);
HOST_SERVICE(REALVariantToInt64, VariantToInt64);
HOST_SERVICE(REALVariantToSingle, VariantToSingle);
HOST_SERVICE(REALVariantToDouble, VariantToDouble);
HOST_SERVICE(REALVariantToString, VariantToString);
HOST_SERVICE(REALLoadGlobalMethod, REALLoadGlobalMethod); // called with a null first argument
HOST_SERVICE(REALLoadObjectMethod, REALLoadObjectMethod);
HOST_SERVICE(REALCreateArray, RuntimeArrayCreateSingleDimBoundedArray);
HOST_SERVICE(REALGetArrayUBound, RuntimeUBound);
HOST_SERVICE(REALGetArrayInsertProc, RuntimeArrayDirectGetInsertProc);
HOST_SERVICE(REALGetArrayGetProc, RuntimeArrayDirectGetGetProc);
HOST_SERVICE(REALGetArrayString, RuntimeDirectReadStringArray);
HOST_SERVICE(REALYieldToRB, REALYieldToRB);
HOST_SERVICE(REALNewMemoryBlock, newMemoryBlock);
HOST_SERVICE(REALMemoryBlockGetPtr, memoryBlockGetPtr);
HOST_SERVICE(REALMemoryBlockGetSize, memoryBlockGetSize);
HOST_SERVICE(REALNewPicture, newPicture);
HOST_SERVICE(REALGetPictureGraphics, pluginPictureGraphicsGetter);
HOST_SERVICE(REALUnlockPictureDescription, unlockPictureDescription);
HOST_SERVICE(REALPictureClearCache, REALPictureClearCache);
HOST_SERVICE(REALGetPictureMask, REALGetPictureMask);
HOST_SERVICE(REALCopyPictureCGImage, REALCopyPictureCGImage);
HOST_SERVICE(REALFolderItemFromFSSpec, FolderItemFromFSSpec);
HOST_SERVICE(REALFSSpecFromFolderItem, REALFSSpecFromFolderItem);
HOST_SERVICE(REALFSRefFromFolderItem, REALFSRefFromFolderItem);
HOST_SERVICE(REALFolderItemFromParentFSRef, REALFolderItemFromParentFSRef);

#undef HOST_SERVICE

// A lock on a picture's description: in the kind that the host prefers, or in a kind asked for. Two entries.
inline constinit struct {
    host::Service<host::service::lockPictureDescription> preferred{"lockPictureDescription"};
    host::Service<host::service::REALLockPictureDescription> ofKind{"REALLockPictureDescription"};

    bool operator()(REALpicture picture, REALpictureDescription* out) { return preferred(picture, out); }
    bool operator()(REALpicture picture, REALpictureDescription* out, std::int32_t kind) {
        return ofKind(picture, out, kind);
    }
} REALLockPictureDescription;

// A host function by its declaration, or null.
inline void* REALLoadFrameworkMethod(const char* declaration) {
    return REALLoadGlobalMethod(nullptr, declaration);
}

namespace host {

// Reads an element through the accessor that the host hands out for the array, asked for again for every
// element. Strings and objects come locked; 0 or null when the host hands out none.
template <class Value>
struct ArrayGetter {
    Value operator()(REALarray array, std::int32_t index) const {
        using Get = void (*)(REALarray, std::int32_t, Value*);
        Value value = {};
        if (Get get = reinterpret_cast<Get>(REALGetArrayGetProc(array))) get(array, index, &value);
        return value;
    }
};

// Stores `value` at `index` of a host array through the array's own insert routine, which locks what it
// keeps. Nothing is inserted when the host hands out no routine.
template <class Value>
void insertArrayValue(REALarray array, std::int32_t index, Value value) {
    using Insert = void (*)(REALarray, std::int32_t, Value);
    if (Insert insert = reinterpret_cast<Insert>(REALGetArrayInsertProc(array))) insert(array, index, value);
}

// The element in the storage that the host shows, not locked; null storage when it shows none.
template <class Value>
const Value* shownElement(REALarray array, std::int32_t index) {
    if (!showsArrayStorage() || !array->storage) return nullptr;
    return static_cast<const Value*>(array->storage) + index;
}

// Locks a string or an object; leaves other values and null alone.
template <class Value>
Value locked(Value value) {
    if constexpr (std::is_same_v<Value, REALstring>) {
        if (value) REALLockString(value);
    } else if constexpr (std::is_same_v<Value, REALobject>) {
        if (value) REALLockObject(value);
    }
    return value;
}

// Reads an element: from the array's storage where the host shows it, else through its accessor.
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
