// Host variants to Cocoa objects.
#include <bridge/arrays.h>
#include <bridge/dates.h>
#include <bridge/dictionaries.h>
#include <bridge/files.h>
#include <bridge/memoryblocks.h>
#include <bridge/numbers.h>
#include <bridge/structures.h>
#include <bridge/text.h>
#include <bridge/variants.h>
#include <bridge/wrapping.h>

#include <objc/runtime.h>

@interface NSObject (KazObjectWrapper)
+ (id)wrap:(REALobject)object;
@end

namespace {

// --- scalars ----------------------------------------------------------------------------------------------

constinit host::FrameworkMethod<std::int32_t (*)(REALobject)> varType{"VarType(value As Variant) As Int32"};

std::int32_t typeCode(REALobject variant) {
    if (varType.resolve()) return varType(variant);
    return host::propertyValue(REALGetPropValueInt32, variant, "Type");
}

NSString* stringOf(REALobject variant) {
    host::Held string(
        bridge::variantValue(REALVariantToString, REALGetPropValueString, "StringValue", variant));
    return string ? bridge::temporaryString(string.get()) : @"";
}

NSDate* dateOf(REALobject variant) {
    REALobject date = nullptr;
    if (!REALGetPropValueObject(variant, "DateValue", &date)) return nil;
    return NewNSDate(host::Held(date).get());
}

// --- objects ----------------------------------------------------------------------------------------------

constinit host::NamedClass memoryBlockClass = {"MemoryBlock"};
constinit host::NamedClass dictionaryClass = {"Dictionary"};

// Classes of the family whose wrappers stand for their native object, tested before the structures. One name
// occurs three times: the table has the order in which the parts of the family were added.
constinit host::NamedClass wrapperClasses[] = {
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

// The ones that are tested after the structures.
constinit host::NamedClass laterWrapperClasses[] = {
    {"WebPolicyDelegateKaz"}, {"CFStringKaz"},     {"CFNumberKaz"}, {"CFBinaryDataKaz"}, {"CFURLKaz"},
    {"CFArrayKaz"},           {"CFDictionaryKaz"}, {"CFDateKaz"},
};

// True, and the native object in `handle`, when the object is a member of one of the classes.
template <std::size_t N>
bool takeHandle(REALobject object, host::NamedClass (&classes)[N], id& handle) {
    for (host::NamedClass& hostClass : classes) {
        if (!hostClass.hasMember(object)) continue;
        handle = bridge::nativeHandle(object);
        return true;
    }
    return false;
}

id objectOf(REALobject object) {
    if (memoryBlockClass.hasMember(object)) {
        return NewNSData(reinterpret_cast<REALmemoryBlock>(object));
    }
    if (REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem"))
        return NewNSURLfile(reinterpret_cast<REALfolderItem>(object));
    if (dictionaryClass.hasMember(object)) return NewNSDictionary(object);

    id handle = nil;
    if (takeHandle(object, wrapperClasses, handle)) return handle;
    NSValue* value = nil;
    if (bridge::takeStructure(object, value)) return value;
    if (takeHandle(object, laterWrapperClasses, handle)) return handle;

    Class carrier = static_cast<Class>(objc_getClass("KazREALobjectWrapper"));
    return [carrier wrap:object];
}

} // namespace

id GetVariantAsNSObject(REALobject variant) {
    if (!variant) return nil;
    constexpr std::int32_t array = kREALVariantArray;
    REALarray values = reinterpret_cast<REALarray>(variant); // read only for the array types
    switch (typeCode(variant)) {
    case kREALVariantInt32:
    case kREALVariantColor:
        return [NSNumber numberWithLong:bridge::int32InVariant(variant)];
    case kREALVariantInt64:
        return [NSNumber numberWithLongLong:bridge::int64InVariant(variant)];
    case kREALVariantSingle:
        return [NSNumber numberWithFloat:bridge::singleInVariant(variant)];
    case kREALVariantDouble:
    case kREALVariantCurrency:
        return [NSNumber numberWithDouble:bridge::doubleInVariant(variant)];
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
        return [NSNumber
            numberWithBool:static_cast<BOOL>(bridge::int32InVariant(variant))]; // Cocoa keeps one byte
    case array + kREALVariantInt32:
        return bridge::arrayOf<std::int32_t>(
            values, [](std::int32_t value) { return [NSNumber numberWithLong:value]; });
    case array + kREALVariantInt64:
        return bridge::arrayOf<std::int64_t>(
            values, [](std::int64_t value) { return [NSNumber numberWithLongLong:value]; });
    case array + kREALVariantSingle:
        return bridge::arrayOf<float>(values, [](float value) { return [NSNumber numberWithFloat:value]; });
    case array + kREALVariantDouble:
        return bridge::arrayOf<double>(values,
                                       [](double value) { return [NSNumber numberWithDouble:value]; });
    case array + kREALVariantDate:
        return bridge::arrayOf<REALobject>(values, NewNSDate);
    case array + kREALVariantString:
        return bridge::arrayOf<REALstring>(values, bridge::temporaryString);
    case array + kREALVariantObject:
        return bridge::arrayOf<REALobject>(values, GetVariantAsNSObject);
    case array + kREALVariantBoolean:
        return bridge::arrayOf<std::uint8_t>(
            values, [](std::uint8_t value) { return [NSNumber numberWithBool:value]; });
    default:
        return nil;
    }
}
