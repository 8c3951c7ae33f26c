// CIFilterKaz: a filter, found by name or category, with its attributes and its values by key.
#include "CIAttributeKaz.h"

#include <bridge/dictionaries.h>
#include <bridge/memoryblocks.h>

namespace coreimage {
namespace {

struct FilterData {
    CIFilter* filter;
    NSDictionary* attributes; // fetched on first use and kept, so that enumerations agree with each other
};
static_assert(sizeof(FilterData) == 8);

FilterData& data(REALobject self) { return instanceData<FilterData>(self); }
CIFilter* filter(REALobject self) { return data(self).filter; }

NSDictionary* cachedAttributes(REALobject self) {
    FilterData& fields = data(self);
    if (fields.filter && !fields.attributes) fields.attributes = [[fields.filter attributes] retain];
    return fields.attributes;
}

void CIFilterConstructor(REALobject self) { constructWrapper(self); }

void CIFilterDestructor(REALobject self) {
    destroyWrapper(self);
    guardedInPool([&] {
        [data(self).attributes release];
        data(self).attributes = nil;
    });
}

REALstringArray newStringArray() { return REALCreateArray(kREALArrayString, -1); }

// Returns a new string array, filled with the NSArray that `make` returns.
template <class Make>
REALstringArray stringArrayResult(Make&& make) {
    REALstringArray array = newStringArray();
    guardedInPool([&] { FillStringArray(array, make()); });
    return array;
}

// --- attributes -------------------------------------------------------------------------------------------

bool describesParameter(id value) { return [value isKindOfClass:[NSDictionary class]]; }

// The key of the index-th entry that describes a parameter, counting from 0; nil when there is none. With
// `count`, counts them all.
NSString* parameterKey(NSDictionary* attributes, std::int32_t index, std::int32_t* count = nullptr) {
    std::int32_t position = 0;
    NSEnumerator* keys = [attributes keyEnumerator];
    while (NSString* key = [keys nextObject]) {
        if (!describesParameter([attributes objectForKey:key])) continue;
        if (!count && position == index) return key;
        ++position;
    }
    if (count) *count = position;
    return nil;
}

REALobject attributesDictionary(REALobject self) {
    return guardedInPool([&] { return NSDictionaryRB([filter(self) attributes]); });
}

REALobject attributesItemAt(REALobject self, std::int32_t index) {
    return guardedInPool([&]() -> REALobject {
        NSDictionary* attributes = cachedAttributes(self);
        NSString* key = parameterKey(attributes, index);
        return key ? newAttribute([attributes objectForKey:key], key) : nullptr;
    });
}

REALobject attributesItemNamed(REALobject self, REALstring name) {
    return guardedInPool([&]() -> REALobject {
        NSString* key = bridge::temporaryString(name);
        NSDictionary* attribute = key ? [cachedAttributes(self) objectForKey:key] : nil;
        return describesParameter(attribute) ? newAttribute(attribute, key) : nullptr;
    });
}

std::int32_t attributesCount(REALobject self) {
    return guardedInPool([&] {
        std::int32_t count = 0;
        parameterKey(cachedAttributes(self), 0, &count);
        return count;
    });
}

REALstring attributesName(REALobject self, std::int32_t index) {
    return stringResult([&] { return parameterKey(cachedAttributes(self), index); });
}

REALstringArray inputKeys(REALobject self) {
    return stringArrayResult([&] { return [filter(self) inputKeys]; });
}

REALstringArray outputKeys(REALobject self) {
    return stringArrayResult([&] { return [filter(self) outputKeys]; });
}

REALstringArray categories(REALobject self) {
    return stringArrayResult(
        [&] { return (NSArray*)[cachedAttributes(self) objectForKey:@"CIAttributeFilterCategories"]; });
}

REALstring displayName(REALobject self) {
    return stringResult(
        [&] { return [cachedAttributes(self) objectForKey:@"CIAttributeFilterDisplayName"]; });
}

REALstring filterName(REALobject self) {
    return stringResult([&] { return [cachedAttributes(self) objectForKey:@"CIAttributeFilterName"]; });
}

void setDefaults(REALobject self) {
    guardedInPool([&] { [filter(self) setDefaults]; });
}

// --- values by key ----------------------------------------------------------------------------------------

// The getters: `convert` gets the filter's value for the key, which may be nil.
template <class Convert>
auto valueForKey(REALobject self, REALstring key, Convert&& convert) -> decltype(convert(id())) {
    using Result = decltype(convert(id()));
    return guardedInPool([&]() -> Result {
        NSString* name = filter(self) ? bridge::temporaryString(key) : nil;
        if (!name) return Result();
        return convert([filter(self) valueForKey:name]);
    });
}

// The setters: `convert` returns the Cocoa value, which is not owned; nil clears the key.
template <class Convert>
void setValueForKey(REALobject self, REALstring key, Convert&& convert) {
    guardedInPool([&] {
        NSString* name = filter(self) ? bridge::temporaryString(key) : nil;
        if (name) [filter(self) setValue:convert() forKey:name];
    });
}

// The key's value, wrapped as the class that the method names; the value's own class is not checked.
template <const WrapperType& Type>
REALobject objectValue(REALobject self, REALstring key) {
    return valueForKey(self, key, [](id value) { return wrapped(Type, value); });
}

void setObjectValue(REALobject self, REALstring key, REALobject value) {
    setValueForKey(self, key, [&] { return nativeHandle(value); });
}

REALobject affineTransformValue(REALobject self, REALstring key) {
    return valueForKey(self, key, [](id value) { return NewNSAffineTransformKaz(value); });
}

REALmemoryBlock dataValue(REALobject self, REALstring key) {
    return valueForKey(self, key, [](id value) { return NSDataRB(value); });
}

void setDataValue(REALobject self, REALstring key, REALmemoryBlock value) {
    setValueForKey(self, key, [&] {
        NSData* data = NewNSData(value);
        return [data length] ? data : nil; // an empty block clears the key
    });
}

double numberValue(REALobject self, REALstring key) {
    return valueForKey(self, key, [](id value) { return [value doubleValue]; });
}

void setNumberValue(REALobject self, REALstring key, double value) {
    setValueForKey(self, key, [&] { return [NSNumber numberWithDouble:value]; });
}

REALstring stringValue(REALobject self, REALstring key) {
    return valueForKey(self, key, [](id value) { return CFString2RBString((CFStringRef)value); });
}

void setStringValue(REALobject self, REALstring key, REALstring value) {
    setValueForKey(self, key, [&] { return bridge::temporaryString(value); });
}

// --- shared methods ---------------------------------------------------------------------------------------

REALobject filterWithHandle(std::int32_t handle) {
    return wrappedResult(kFilter, [&] { return reinterpret_cast<id>(handle); });
}

REALobject filterWithName(REALstring name) {
    if (!name) return nullptr;
    return wrappedResult(kFilter, [&] { return [CIFilter filterWithName:bridge::temporaryString(name)]; });
}

REALstringArray filterNamesInCategory(REALstring category) {
    return stringArrayResult([&]() -> NSArray* {
        NSString* name = bridge::temporaryString(category);
        return name ? [CIFilter filterNamesInCategory:name] : nil;
    });
}

REALstringArray filterNamesInCategories(REALstringArray categoryNames) {
    return stringArrayResult([&]() -> NSArray* {
        if (!categoryNames) return nil;
        std::int32_t upperBound = REALGetArrayUBound(categoryNames);
        NSMutableArray* names = [NSMutableArray arrayWithCapacity:static_cast<NSUInteger>(upperBound + 1)];
        if (!names) return nil;
        for (std::int32_t i = 0; i <= upperBound; ++i) {
            host::Held element(host::stringArrayValue(categoryNames, i));
            // A name that cannot be converted is added, too: Cocoa raises.
            if (element) [names addObject:bridge::temporaryString(element.get())];
        }
        return [CIFilter filterNamesInCategories:names];
    });
}

// The shared methods that return a text for a name; nil gives the empty string.
template <class Make>
REALstring textForName(REALstring name, Make&& make) {
    return stringResult([&]() -> NSString* {
        NSString* text = bridge::temporaryString(name);
        return text ? make(text) : nil;
    });
}

REALstring localizedNameForFilterName(REALstring name) {
    return textForName(name, [](NSString* text) { return [CIFilter localizedNameForFilterName:text]; });
}

REALstring localizedNameForCategory(REALstring name) {
    return textForName(name, [](NSString* text) { return [CIFilter localizedNameForCategory:text]; });
}

REALstring localizedDescriptionForFilterName(REALstring name) {
    return textForName(name,
                       [](NSString* text) { return [CIFilter localizedDescriptionForFilterName:text]; });
}

REALstring localizedReferenceDocumentationForFilterName(REALstring name) {
    return textForName(name, [](NSString* text) {
        return [[CIFilter localizedReferenceDocumentationForFilterName:text] absoluteString];
    });
}

// --- tables -----------------------------------------------------------------------------------------------

REALproperty properties[] = {
    handleProperty(),
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    method("attributesDictionary as dictionary", attributesDictionary),
    constructorWithHandle<kFilter>(),
    method("AttributesItem(index as integer) as CIAttributeKaz", attributesItemAt),
    method("AttributesItem(name as string) as CIAttributeKaz", attributesItemNamed),
    method("AttributesCount as integer", attributesCount),
    method("AttributesName(index as integer) as string", attributesName),
    method("InputKeys as string()", inputKeys),
    method("OutputKeys as string()", outputKeys),
    method("Categories as string()", categories),
    method("DisplayName as string", displayName),
    method("FilterName as string", filterName),
    method("SetDefaults", setDefaults),
    accessor("ValueAsData(key as string) as memoryblock", dataValue, setDataValue),
    accessor("ValueAsNumber(key as string) as double", numberValue, setNumberValue),
    accessor("ValueAsCIImage(key as string) as CIImageKaz", objectValue<kImage>, setObjectValue),
    accessor("ValueAsCIVector(key as string) as CIVectorKaz", objectValue<kVector>, setObjectValue),
    accessor("ValueAsCIColor(key as string) as CIColorKaz", objectValue<kColor>, setObjectValue),
    accessor("ValueAsAffineTransform(key as string) as NSAffineTransformKaz", affineTransformValue,
             setObjectValue),
    accessor("ValueAsString(key as string) as String", stringValue, setStringValue),
};

REALmethodDefinition sharedMethods[] = {
    method("FilterWithHandle(handle as Integer) as CIFilterKaz", filterWithHandle),
    method("FilterWithName(name as String) as CIFilterKaz", filterWithName),
    method("FilterNamesInCategory(category as String) as string()", filterNamesInCategory),
    method("FilterNamesInCategories(categories() as String) as string()", filterNamesInCategories),
    method("LocalizedNameForFilterName(name as String) as String", localizedNameForFilterName),
    method("LocalizedNameForCategory(name as String) as String", localizedNameForCategory),
    method("localizedDescriptionForFilterName(filterName as String) as String",
           localizedDescriptionForFilterName),
    method("localizedReferenceDocumentationForFilterName(filterName as String) as String",
           localizedReferenceDocumentationForFilterName),
};

// Most keys are the name of their constant without the leading k.
#define KEY_CONSTANT(key) constant("k" #key " = \"" #key "\"")

REALconstant constants[] = {
    KEY_CONSTANT(CICategoryDistortionEffect),
    KEY_CONSTANT(CICategoryGeometryAdjustment),
    KEY_CONSTANT(CICategoryCompositeOperation),
    KEY_CONSTANT(CICategoryHalftoneEffect),
    KEY_CONSTANT(CICategoryColorAdjustment),
    KEY_CONSTANT(CICategoryColorEffect),
    KEY_CONSTANT(CICategoryTransition),
    KEY_CONSTANT(CICategoryTileEffect),
    KEY_CONSTANT(CICategoryGenerator),
    KEY_CONSTANT(CICategoryGradient),
    KEY_CONSTANT(CICategoryStylize),
    KEY_CONSTANT(CICategorySharpen),
    KEY_CONSTANT(CICategoryBlur),
    KEY_CONSTANT(CICategoryVideo),
    KEY_CONSTANT(CICategoryStillImage),
    KEY_CONSTANT(CICategoryInterlaced),
    KEY_CONSTANT(CICategoryNonSquarePixels),
    KEY_CONSTANT(CICategoryHighDynamicRange),
    KEY_CONSTANT(CICategoryBuiltIn),
    KEY_CONSTANT(CIAttributeFilterName),
    KEY_CONSTANT(CIAttributeFilterDisplayName),
    KEY_CONSTANT(CIAttributeFilterCategories),
    KEY_CONSTANT(CIAttributeClass),
    KEY_CONSTANT(CIAttributeType),
    KEY_CONSTANT(CIAttributeMin),
    KEY_CONSTANT(CIAttributeMax),
    KEY_CONSTANT(CIAttributeSliderMin),
    KEY_CONSTANT(CIAttributeSliderMax),
    KEY_CONSTANT(CIAttributeDefault),
    KEY_CONSTANT(CIAttributeIdentity),
    KEY_CONSTANT(CIAttributeName),
    KEY_CONSTANT(CIAttributeDisplayName),
    KEY_CONSTANT(CIAttributeTypeTime),
    KEY_CONSTANT(CIAttributeTypeScalar),
    KEY_CONSTANT(CIAttributeTypeDistance),
    KEY_CONSTANT(CIAttributeTypeAngle),
    KEY_CONSTANT(CIAttributeTypeBoolean),
    KEY_CONSTANT(CIAttributeTypePosition),
    KEY_CONSTANT(CIAttributeTypeOffset),
    KEY_CONSTANT(CIAttributeTypePosition3),
    KEY_CONSTANT(CIAttributeTypeOpaqueColor),
    KEY_CONSTANT(CIAttributeTypeRectangle),
    KEY_CONSTANT(CIAttributeTypeGradient),
    constant("kCIApplyOptionExtent = \"extent\""),
    constant("kCIApplyOptionDefinition = \"definition\""),
    constant("kCIApplyOptionUserInfo = \"user_info\""),
};

#undef KEY_CONSTANT

} // namespace

REALclassDefinition CIFilterKazClass = classDefinition({.name = "CIFilterKaz",
                                                        .dataSize = sizeof(FilterData),
                                                        .constructor = CIFilterConstructor,
                                                        .destructor = CIFilterDestructor},
                                                       properties, methods, constants, sharedMethods);

} // namespace coreimage
