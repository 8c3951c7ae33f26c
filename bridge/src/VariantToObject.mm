// Host variants to Cocoa objects.
#include <bridge/containers.h>
#include <bridge/strings.h>
#include <bridge/variants.h>
#include <bridge/wrapping.h>

#include <objc/runtime.h>

#include <cstring>

@interface NSValue (KazTimes)
+ (NSValue*)valueWithQTTimeKaz:(REALobject)time;
+ (NSValue*)valueWithQTTimeRangeKaz:(REALobject)range;
+ (NSValue*)valueWithCMTimeMappingKaz:(REALobject)mapping;
+ (NSValue*)valueWithCMTimeRangeKaz:(REALobject)range;
+ (NSValue*)valueWithCMTimeKaz:(REALobject)time;
@end

@interface NSObject (KazObjectWrapper)
+ (id)wrap:(REALobject)object;
@end

namespace {

// An element or a value that came locked; given back at the end of a scope, also when a conversion raises.
// Numbers are left alone.
template <class T>
struct Received {
    T value;
    explicit Received(T value) : value(value) {}
    ~Received() {
        if constexpr (std::is_same_v<T, REALstring>) {
            if (value) REALUnlockString(value);
        } else if constexpr (std::is_same_v<T, REALobject>) {
            if (value) REALUnlockObject(value);
        }
    }
    Received(const Received&) = delete;
    Received& operator=(const Received&) = delete;
};

// --- scalars ----------------------------------------------------------------------------------------------

std::int32_t typeCode(REALobject variant) {
    using VarType = std::int32_t (*)(REALobject);
    static VarType varType = nullptr;
    if (!varType)
        varType = reinterpret_cast<VarType>(REALLoadFrameworkMethod("VarType(value As Variant) As Int32"));
    if (varType) return varType(variant);
    std::int32_t type = 0;
    REALGetPropValueInt32(variant, "Type", &type);
    return type;
}

// A variant's value by the host's getter or, where that is missing, by the variant object's property.
template <class Getter, class Property>
auto scalar(Getter& getter, Property& property, const char* propertyName, REALobject variant) {
    if (getter.resolve()) return getter(variant);
    decltype(getter(variant)) value = {};
    property(variant, propertyName, &value);
    return value;
}

std::int32_t int32Of(REALobject variant) {
    return scalar(REALVariantToInt32, REALGetPropValueInt32, "Int32Value", variant);
}

NSString* stringOf(REALobject variant) {
    Received string(scalar(REALVariantToString, REALGetPropValueString, "StringValue", variant));
    return string.value ? (NSString*)bridge::temporaryString(string.value) : @"";
}

NSDate* dateOf(REALobject variant) {
    REALobject date = nullptr;
    if (!REALGetPropValueObject(variant, "DateValue", &date)) return nil;
    return NewNSDate(Received(date).value);
}

// --- arrays -----------------------------------------------------------------------------------------------

// An element that converts to nil makes addObject: raise, which is the caller's to see.
template <class Element, class Convert>
NSMutableArray* arrayOf(REALobject variant, Convert&& convert) {
    REALarray array = reinterpret_cast<REALarray>(variant);
    NSMutableArray* result = [NSMutableArray array];
    std::int32_t upperBound = REALGetArrayUBound(array);
    for (std::int32_t i = 0; i <= upperBound; ++i) {
        Received element(host::arrayValue<Element>(array, i));
        [result addObject:convert(element.value)];
    }
    return result;
}

// --- objects ----------------------------------------------------------------------------------------------

// A host class by name; it may come to be known later than the bridge first asks.
struct HostClass {
    const char* name;
    REALclassRef found = nullptr;

    bool hasMember(REALobject object) {
        if (!found) found = REALGetClassRef(name);
        return found && REALObjectIsA(object, found);
    }
};

constinit HostClass memoryBlockClass = {"MemoryBlock"};
constinit HostClass dictionaryClass = {"Dictionary"};

// Siblings whose wrappers give up their handle, tested before the structures. One name stands three times:
// the order is as the family's parts were added, and kept.
constinit HostClass wrapperClasses[] = {
    {"QuartzFilterKaz"},
    {"NSImageKaz"},
    {"NSImageRepKaz"},
    {"NSFontKaz"},
    {"NSResponderKaz"},
    {"NSAttributedStringKaz"},
    {"NSIndexSetKaz"},
    {"NSColorKaz"},
    {"NSAttributedStringKaz"},
    {"NSToolbarItemKaz"},
    {"NSToolbarKaz"},
    {"NSURLRequestKaz"},
    {"NSCharacterSetKaz"},
    {"NSAttributedStringKaz"},
    {"NSParagraphStyleKaz"},
    {"NSTextContainerKaz"},
    {"WebUIDelegateKaz"},
    {"WebResourceLoadDelegateKaz"},
    {"WebFrameLoadDelegateKaz"},
    {"WebDownloadDelegateKaz"},
    {"DRBurnKaz"},
    {"PDFAnnotationKaz"},
    {"PDFActionKaz"},
};

// And those tested after them.
constinit HostClass laterWrapperClasses[] = {
    {"WebPolicyDelegateKaz"}, {"CFStringKaz"},     {"CFNumberKaz"}, {"CFBinaryDataKaz"}, {"CFURLKaz"},
    {"CFArrayKaz"},           {"CFDictionaryKaz"}, {"CFDateKaz"},
};

struct StructureClass {
    HostClass hostClass;
    NSValue* (*convert)(REALobject object);
};

constinit StructureClass structureClasses[] = {
    {{"NSSizeKaz"}, [](REALobject o) { return [NSValue valueWithSize:bridge::instanceData<NSSize>(o)]; }},
    {{"NSRectKaz"}, [](REALobject o) { return [NSValue valueWithRect:bridge::instanceData<NSRect>(o)]; }},
    {{"NSRangeKaz"}, [](REALobject o) { return [NSValue valueWithRange:bridge::instanceData<NSRange>(o)]; }},
    {{"NSPointKaz"}, [](REALobject o) { return [NSValue valueWithPoint:bridge::instanceData<NSPoint>(o)]; }},
    {{"QTKitTimeKaz"}, [](REALobject o) { return [NSValue valueWithQTTimeKaz:o]; }},
    {{"QTKitTimeRangeKaz"}, [](REALobject o) { return [NSValue valueWithQTTimeRangeKaz:o]; }},
    {{"CMTimeMappingKaz"}, [](REALobject o) { return [NSValue valueWithCMTimeMappingKaz:o]; }},
    {{"CMTimeRangeKaz"}, [](REALobject o) { return [NSValue valueWithCMTimeRangeKaz:o]; }},
    {{"CMTimeKaz"}, [](REALobject o) { return [NSValue valueWithCMTimeKaz:o]; }},
};

// The instance data of a sibling's wrapper, when the object is a member of one of the classes.
template <std::size_t N>
bool takeHandle(REALobject object, HostClass (&classes)[N], id& handle) {
    for (HostClass& hostClass : classes) {
        if (!hostClass.hasMember(object)) continue;
        handle = bridge::nativeHandle(object);
        return true;
    }
    return false;
}

id objectOf(REALobject object) {
    if (memoryBlockClass.hasMember(object)) {
        rbData bytes(reinterpret_cast<REALmemoryBlock>(object));
        return [NSData dataWithBytes:bytes.data() length:bytes.length()];
    }
    if (REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem"))
        return NewNSURLfile(reinterpret_cast<REALfolderItem>(object));
    if (dictionaryClass.hasMember(object)) return NewNSDictionary(object);

    id handle = nil;
    if (takeHandle(object, wrapperClasses, handle)) return handle;
    for (StructureClass& structure : structureClasses)
        if (structure.hostClass.hasMember(object)) return structure.convert(object);
    if (takeHandle(object, laterWrapperClasses, handle)) return handle;

    Class wrapper = static_cast<Class>(objc_getClass("KazREALobjectWrapper"));
    return [wrapper wrap:object];
}

} // namespace

id GetVariantAsNSObject(REALobject variant) {
    if (!variant) return nil;
    constexpr std::int32_t array = kREALVariantArray;
    switch (typeCode(variant)) {
    case kREALVariantInt32:
    case kREALVariantColor:
        return [NSNumber numberWithLong:int32Of(variant)];
    case kREALVariantInt64:
        return [NSNumber
            numberWithLongLong:scalar(REALVariantToInt64, REALGetPropValueInt64, "LongValue", variant)];
    case kREALVariantSingle:
        return [NSNumber
            numberWithFloat:scalar(REALVariantToSingle, REALGetPropValueSingle, "SingleValue", variant)];
    case kREALVariantDouble:
    case kREALVariantCurrency:
        return [NSNumber
            numberWithDouble:scalar(REALVariantToDouble, REALGetPropValueDouble, "DoubleValue", variant)];
    case kREALVariantDate:
        return dateOf(variant);
    case kREALVariantString:
    case 18:
    case 19:
    case 20:
    case 21:
    case 23:
        return stringOf(variant);
    case kREALVariantObject:
        return objectOf(variant);
    case kREALVariantBoolean:
        return [NSNumber numberWithBool:static_cast<BOOL>(int32Of(variant))]; // a byte, as ever
    case array + kREALVariantInt32:
        return arrayOf<std::int32_t>(variant,
                                     [](std::int32_t value) { return [NSNumber numberWithLong:value]; });
    case array + kREALVariantInt64:
        return arrayOf<std::int64_t>(variant,
                                     [](std::int64_t value) { return [NSNumber numberWithLongLong:value]; });
    case array + kREALVariantSingle:
        return arrayOf<float>(variant, [](float value) { return [NSNumber numberWithFloat:value]; });
    case array + kREALVariantDouble:
        return arrayOf<double>(variant, [](double value) { return [NSNumber numberWithDouble:value]; });
    case array + kREALVariantDate:
        return arrayOf<REALobject>(variant, NewNSDate);
    case array + kREALVariantString:
        return arrayOf<REALstring>(
            variant, [](REALstring value) { return (NSString*)bridge::temporaryString(value); });
    case array + kREALVariantObject:
        return arrayOf<REALobject>(variant, GetVariantAsNSObject);
    case array + kREALVariantBoolean:
        return arrayOf<std::uint8_t>(variant,
                                     [](std::uint8_t value) { return [NSNumber numberWithBool:value]; });
    default:
        return nil;
    }
}

NSDictionary* NewNSDictionary(REALobject dictionary) {
    if (!dictionary) return nil;
    std::int32_t count = 0;
    REALGetPropValueInt32(dictionary, "Count", &count);
    if (count < 1) return [NSDictionary dictionary];
    NSMutableDictionary* result = [NSMutableDictionary dictionaryWithCapacity:static_cast<NSUInteger>(count)];
    for (std::int32_t i = 0; result && i < count; ++i) {
        // Refreshed each time: converting an entry may have converted another dictionary.
        bridge::refreshDictionaryMethods(dictionary);
        Received key(LastDictionaryKeyGetter ? LastDictionaryKeyGetter(dictionary, i) : nullptr);
        bridge::refreshDictionaryMethods(dictionary);
        Received value(LastDictionaryGetter ? LastDictionaryGetter(dictionary, key.value) : nullptr);
        if (!key.value) continue;
        id cocoaKey = GetVariantAsNSObject(key.value);
        id cocoaValue = GetVariantAsNSObject(value.value);
        [result setObject:cocoaValue ? cocoaValue : [NSNull null] forKey:cocoaKey ? cocoaKey : [NSNull null]];
    }
    return result;
}
