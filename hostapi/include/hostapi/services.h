// The host's services, one function object each. A service asks the resolver for its entry on first use;
// while the host does not offer it, a call does nothing and returns 0, null or false.
#pragma once

#include <hostapi/abi.h>
#include <hostapi/lookup.h>

// The host's lookup function, set once by REALPluginMain before any service is called.
extern REALResolver gResolver;

// The host's version as a double such as 2013.03; 0.0 when the host does not tell.
extern double rbversion_rbversion;

namespace host {

inline void* askResolver(const char* entryName) { return gResolver(entryName); }

template <class Function>
using Service = LookedUpFunction<Function, askResolver>;

} // namespace host

#define HOST_SERVICE(name, entry)                                                                            \
    inline constinit host::Service<host::service::entry> name { #entry }

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

// Locks a picture's description, in the kind that the host prefers or in a given kind. Two entries.
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

// A function of the host's framework, found by its declaration.
template <class Function>
using FrameworkMethod = LookedUpFunction<Function, REALLoadFrameworkMethod>;

// A named property of a host object. 0 or null when it cannot be read, whatever the host wrote.
template <class Value>
Value propertyValue(Service<bool (*)(REALobject, const char*, Value*)>& read, REALobject object,
                    const char* name) {
    Value value = {};
    return read(object, name, &value) ? value : Value();
}

// A host class, found by its name. A class that is missing now may be registered later.
class NamedClass {
  public:
    constexpr NamedClass(const char* name) : name(name) {}

    bool hasMember(REALobject object) {
        REALclassRef found = reference.get([this] { return REALGetClassRef(name); });
        return found && REALObjectIsA(object, found);
    }

  private:
    const char* name;
    LookedUp<REALclassRef> reference;
};

} // namespace host
