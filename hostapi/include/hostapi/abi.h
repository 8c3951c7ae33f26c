// The host's binary interface: every record layout and every service signature that the host, this plugin
// and its sibling plugin share. Plain C++, no platform headers, so that each side can include it alone.
//
// Words and pointers are 32 bits wide. All functions use the C calling convention. A "locked" handle carries
// one reference that its receiver gives back with the matching unlock service.
#pragma once

#include <cstdint>

static_assert(sizeof(void*) == 4, "the host is a 32-bit process");

// ---------------------------------------------------------------------------------------------------------
// Handles
// ---------------------------------------------------------------------------------------------------------

struct REALclassRefStruct;    // a class, looked up by name
struct REALmemoryBlockStruct; // every handle below is also an object: it begins with the object header
struct REALfolderItemStruct;
struct REALpictureStruct;

// The header of every host object; instance data begins right behind it.
struct REALobjectStruct {
    std::uint32_t header[6]; // the host's own: class, reference count and links
};
static_assert(sizeof(REALobjectStruct) == 24);

// Byte offset of the instance data of a root class inside a host object.
inline constexpr std::int32_t kREALInstanceDataOffset = sizeof(REALobjectStruct);

// A host string as hosts before 2013.0 lay it out. Later hosts keep their layout to themselves.
struct REALstringStruct {
    std::uint32_t referenceCount;
    char* buffer; // the text begins one byte after this address and is followed by a NUL
    std::uint32_t encoding;
    std::uint32_t length; // in bytes
};
static_assert(sizeof(REALstringStruct) == 16);

// An array. Hosts up to 2013.9 show their element storage; later ones, and arrays that have no plain storage,
// hold null there. Elements lie side by side: 1 byte for Boolean and UInt8, 4 bytes for Integer, Single,
// String and objects, 8 bytes for Int64 and Double.
struct REALarrayStruct {
    REALobjectStruct object;
    void* storage;
};
static_assert(sizeof(REALarrayStruct) == 28);
using REALstringArrayStruct = REALarrayStruct;

using REALobject = REALobjectStruct*;
using REALstring = REALstringStruct*;
using REALarray = REALarrayStruct*;
using REALstringArray = REALstringArrayStruct*;
using REALmemoryBlock = REALmemoryBlockStruct*;
using REALfolderItem = REALfolderItemStruct*;
using REALpicture = REALpictureStruct*;
using REALclassRef = REALclassRefStruct*;

// Element types of arrays, for "RuntimeArrayCreateSingleDimBoundedArray".
enum REALArrayType : std::int32_t {
    kREALArrayInt32 = 0,
    kREALArraySingle = 1,
    kREALArrayDouble = 2,
    kREALArrayString = 3,
    kREALArrayObject = 4, // objects and variants
    kREALArrayBoolean = 5,
    kREALArrayInt64 = 6,
    kREALArrayUInt8 = 7,
};

// Type codes of variants, as VarType answers them. An array's code is its element's plus kREALVariantArray.
enum REALVariantType : std::int32_t {
    kREALVariantNil = 0,
    kREALVariantInt32 = 2,
    kREALVariantInt64 = 3,
    kREALVariantSingle = 4,
    kREALVariantDouble = 5,
    kREALVariantCurrency = 6,
    kREALVariantDate = 7,
    kREALVariantString = 8,
    kREALVariantObject = 9,
    kREALVariantBoolean = 11,
    kREALVariantColor = 16,
    kREALVariantArray = 0x1000,
};

// Text encodings are the platform's CFStringEncoding values.
enum REALTextEncoding : std::uint32_t {
    kREALTextEncodingUnknown = 0xFFFF, // asks for the string's own encoding
    kREALTextEncodingUTF16 = 0x0100,
    kREALTextEncodingASCII = 0x0600,
    kREALTextEncodingUTF8 = 0x08000100,
};

// The bytes of a host string, NUL-terminated, a block of the C heap. Given back with
// "PluginDisposeStringData".
struct REALstringData {
    void* data;
    std::uint32_t length; // in bytes, without the terminator
    std::uint32_t encoding;
};
static_assert(sizeof(REALstringData) == 12);

// ---------------------------------------------------------------------------------------------------------
// Class definition records
// ---------------------------------------------------------------------------------------------------------
// The version of the records decides their layout: versions 10 to 12 use the full records below, version 9
// the prefixes named *9.

// How methods are called: method(instance, arguments...); shared methods and global functions:
// f(arguments...). `setter`, where set, makes the method assignable: setter(instance, arguments..., value).
// Integer is int32_t, UInt32 uint32_t, Boolean bool, Single float, Double double; strings, arrays and objects
// are handles. A method named "Constructor" is called by New; one named "Destructor" when the last reference
// goes, before the class's own destructor. Results that are handles come locked; null stands for nil and for
// the empty string.
struct REALmethodDefinition {
    void* function;
    void* setter;
    const char* declaration;
    std::uint32_t flags;
    std::uint32_t reserved[2];
};
static_assert(sizeof(REALmethodDefinition) == 24);

struct REALmethodDefinition9 {
    void* function;
    void* setter;
    const char* declaration;
    std::uint32_t flags;
};
static_assert(sizeof(REALmethodDefinition9) == 16);

// getter(instance, parameter) -> value; setter(instance, parameter, value). kREALStandardAccessor in either
// lets the host read or write the instance data itself, at the byte offset `parameter`: a standard getter
// locks the object it hands out, a standard setter is a plain store that locks and unlocks nothing.
struct REALproperty {
    const char* group;
    const char* name;
    const char* type;
    std::uint32_t flags;
    void* getter;
    void* setter;
    std::uint32_t parameter;
    std::uint32_t reserved[5];
};
static_assert(sizeof(REALproperty) == 48);

struct REALproperty9 {
    const char* group;
    const char* name;
    const char* type;
    std::uint32_t flags;
    void* getter;
    void* setter;
    std::uint32_t parameter;
    std::uint32_t reserved[3];
};
static_assert(sizeof(REALproperty9) == 40);

inline void* const kREALStandardAccessor = reinterpret_cast<void*>(-1);

struct REALconstant {
    const char* declaration; // name = value, a string value in double quotes
    std::uint32_t reserved[4];
};
static_assert(sizeof(REALconstant) == 20);

struct REALconstant9 {
    const char* declaration;
    std::uint32_t reserved[2];
};
static_assert(sizeof(REALconstant9) == 12);

struct REALevent {
    const char* declaration;
    std::uint32_t reserved[2];
};
static_assert(sizeof(REALevent) == 12);

struct REALevent9 {
    const char* declaration;
    std::uint32_t reserved;
};
static_assert(sizeof(REALevent9) == 8);

struct REALclassDefinition {
    std::int32_t version;
    const char* name;
    const char* superclass;
    std::int32_t dataSize;
    std::int32_t dataOffset; // the host writes it: where this class's data begins inside an object
    void* constructor;       // constructor(instance): called for each new instance, superclass first
    void* destructor;        // destructor(instance): called when the last reference goes, subclass first
    void* properties;
    std::int32_t propertyCount;
    void* methods;
    std::int32_t methodCount;
    void* events;
    std::int32_t eventCount;
    void* eventInstances;
    std::int32_t eventInstanceCount;
    const char* interfaces;
    std::uint32_t unused[2];
    void* constants;
    std::int32_t constantCount;
    std::uint32_t flags;
    void* sharedProperties;
    std::int32_t sharedPropertyCount;
    void* sharedMethods;
    std::int32_t sharedMethodCount;
    std::uint32_t reserved[4]; // absent from version 9
};
static_assert(sizeof(REALclassDefinition) == 29 * 4);
inline constexpr int kREALClassDefinition9Words = 25;

// ---------------------------------------------------------------------------------------------------------
// Pictures
// ---------------------------------------------------------------------------------------------------------

enum REALPictureDescriptionKind : std::int32_t {
    kREALPictureGWorld = 4,       // handle: a QuickDraw off-screen world (GWorldPtr)
    kREALPictureCGContext = 8,    // handle: a Core Graphics bitmap context (CGContextRef)
    kREALPicturePixelBuffer = 10, // handle: a REALpixelBuffer
};

struct REALpictureDescription {
    std::int32_t kind; // as delivered
    void* handle;
    std::uint32_t reserved[6];
};
static_assert(sizeof(REALpictureDescription) == 32);

// The host's pixel buffer: one pointer per row, 4 bytes a pixel.
struct REALpixelBuffer {
    std::int32_t format; // 0: 32 bits a pixel
    std::int32_t width;
    std::int32_t height;
    std::uint8_t hostPrivate[7228 - 12];
    void** rows;
};
static_assert(sizeof(REALpixelBuffer) == 7232);

// ---------------------------------------------------------------------------------------------------------
// Files: the platform's own records, passed through
// ---------------------------------------------------------------------------------------------------------

struct FSRef;
struct FSSpec;
struct HFSUniStr255;

// ---------------------------------------------------------------------------------------------------------
// Services
// ---------------------------------------------------------------------------------------------------------

// The host hands this to REALPluginMain; it returns the address of a service, or null.
using REALResolver = void* (*)(const char* entryName);

namespace host::service {

// Versions. The record version is 9 to 12; the host version a double such as 2013.03.
using RegisterPluginVersion = void (*)(std::int32_t recordVersion);
using REALGetRBVersion = double (*)();

// Registration. The host keeps pointers into the records for the life of the process.
using PluginRegisterClass = void (*)(REALclassDefinition*);
using PluginRegisterMethod = void (*)(REALmethodDefinition*);

// References.
using REALLockObject = void (*)(REALobject);
using REALUnlockObject = void (*)(REALobject);
using REALLockString = void (*)(REALstring);
using REALUnlockString = void (*)(REALstring);

// Strings.
using PluginGetStringData = bool (*)(REALstring, std::uint32_t encoding, REALstringData* out);
using PluginDisposeStringData = void (*)(REALstringData*);
using StringGetCString = const char* (*)(REALstring); // borrowed, NUL-terminated
using REALGetStringCFString = const void* (*)(REALstring,
                                              std::uint32_t flags); // a CFStringRef the caller owns
using REALBuildString = REALstring (*)(const char* bytes, std::int32_t length); // locked
using REALGetStringEncoding = std::uint32_t (*)(REALstring);
using REALConvertString = REALstring (*)(REALstring, std::uint32_t encoding); // locked
using REALSetStringEncoding = void (*)(REALstring, std::uint32_t encoding);

// Objects and classes. A new instance is locked; null when the class is unknown.
using PluginNewInstance = REALobject (*)(const char* className);
using pluginObjectType = REALclassRef (*)(const char* className);
using RuntimeObjectIsa = bool (*)(REALobject, REALclassRef);
using RuntimeRaiseException = void (*)(REALobject); // the host locks what it keeps

// Properties by name; false when there is no such property of that type. Strings and objects come locked.
using REALGetPropValueInt = bool (*)(REALobject, const char* name, std::int32_t* out);
using REALGetPropValueInt64 = bool (*)(REALobject, const char* name, std::int64_t* out);
using REALGetPropValueSingle = bool (*)(REALobject, const char* name, float* out);
using REALGetPropValueDouble = bool (*)(REALobject, const char* name, double* out);
using REALGetPropValueString = bool (*)(REALobject, const char* name, REALstring* out);
using REALGetPropValueObject = bool (*)(REALobject, const char* name, REALobject* out);
using REALSetPropValueInt = bool (*)(REALobject, const char* name, std::int32_t value);
using REALSetPropValueString = bool (*)(REALobject, const char* name, REALstring value);

// Variants are objects; the makers return them locked. The getters convert as the language does.
using BooleanToVariant = REALobject (*)(bool);
using Int32ToVariant = REALobject (*)(std::int32_t);
using UInt32ToVariant = REALobject (*)(std::uint32_t);
using Int64ToVariant = REALobject (*)(std::int64_t);
using UInt64ToVariant = REALobject (*)(std::uint64_t);
using SingleToVariant = REALobject (*)(float);
using DoubleToVariant = REALobject (*)(double);
using StringToVariant = REALobject (*)(REALstring);
using VariantToInt32 = std::int32_t (*)(REALobject);
using VariantToInt64 = std::int64_t (*)(REALobject);
using VariantToSingle = float (*)(REALobject);
using VariantToDouble = double (*)(REALobject);
using VariantToString = REALstring (*)(REALobject); // locked

// The host's own functions and methods, found by their declaration. A method is called with its object first,
// as a plugin's methods are; results are locked.
using REALLoadGlobalMethod = void* (*)(void* null, const char* declaration);
using REALLoadObjectMethod = void* (*)(REALobject, const char* declaration);

// Arrays. The procs belong to the array given: insert(array, index, value) makes room and locks strings and
// objects; get(array, index, out) locks what it hands out. Values have the element's type.
using RuntimeArrayCreateSingleDimBoundedArray = REALarray (*)(std::int32_t type,
                                                              std::int32_t upperBound); // locked
using RuntimeUBound = std::int32_t (*)(REALarray); // -1 for an empty array
using RuntimeArrayDirectGetInsertProc = void* (*)(REALarray);
using RuntimeArrayDirectGetGetProc = void* (*)(REALarray);
using RuntimeDirectReadStringArray = REALstring (*)(REALstringArray, std::int32_t index); // locked

// Cooperative threads: lets the host's threads, timers and user interface run.
using REALYieldToRB = void (*)();

// Memory blocks.
using newMemoryBlock = REALmemoryBlock (*)(std::int32_t size); // locked
using memoryBlockGetPtr = void* (*)(REALmemoryBlock);
using memoryBlockGetSize = std::int32_t (*)(REALmemoryBlock); // -1 when not known

// Pictures. A description that was locked is unlocked with "unlockPictureDescription".
using newPicture = REALpicture (*)(std::int32_t width, std::int32_t height, std::int32_t depth); // locked
using pluginPictureGraphicsGetter = REALobject (*)(REALpicture);                                 // locked
using lockPictureDescription = bool (*)(REALpicture, REALpictureDescription*); // the kind the host prefers
using REALLockPictureDescription = bool (*)(REALpicture, REALpictureDescription*, std::int32_t kind);
using unlockPictureDescription = void (*)(REALpicture);
using REALPictureClearCache = void (*)(REALpicture);
using REALGetPictureMask = REALpicture (*)(REALpicture, bool create); // locked
using REALCopyPictureCGImage = void* (*)(REALpicture);                // a CGImageRef the caller owns

// Files. A null name asks for the item itself, which must exist; otherwise parent and leaf name are filled.
// A parent record of zeroes stands for the folder above all volumes.
using REALFSRefFromFolderItem = bool (*)(REALfolderItem, FSRef* out, HFSUniStr255* name);
using REALFSSpecFromFolderItem = bool (*)(REALfolderItem, FSSpec* out);
using REALFolderItemFromParentFSRef = REALfolderItem (*)(const FSRef* parent,
                                                         const HFSUniStr255* name); // locked
using FolderItemFromFSSpec = REALfolderItem (*)(const FSSpec*);                     // locked

} // namespace host::service
