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
    /// The filter with its values as Core Image describes it.
    ///     Print self.description
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    /// Everything that the filter says about itself and its inputs, as Core Image's dictionary.
    ///     Print Str(self.attributesDictionary.Count)
    method("attributesDictionary as dictionary", attributesDictionary),
    constructorWithHandle<kFilter>(),
    /// The description of an input or output at an index from 0, or Nil beyond the last one.
    ///     Print self.AttributesItem(0).Name
    method("AttributesItem(index as integer) as CIAttributeKaz", attributesItemAt),
    /// The description of the input or output with a key, or Nil if there is none.
    ///     Print Str(self.AttributesItem("inputIntensity").DefaultNumber)
    method("AttributesItem(name as string) as CIAttributeKaz", attributesItemNamed),
    /// How many inputs and outputs the filter describes.
    ///     Print Str(self.AttributesCount)
    method("AttributesCount as integer", attributesCount),
    /// The key of an input or output at an index from 0, or empty beyond the last one.
    ///     Print self.AttributesName(0)
    method("AttributesName(index as integer) as string", attributesName),
    /// The keys of the inputs, in the filter's order.
    ///     Print Join(self.InputKeys, ", ")
    method("InputKeys as string()", inputKeys),
    /// The keys of the results, usually outputImage alone.
    ///     Print Join(self.OutputKeys, ", ")
    method("OutputKeys as string()", outputKeys),
    /// The categories that the filter is in, as this class's constants name them.
    ///     Print Join(self.Categories, ", ")
    method("Categories as string()", categories),
    /// The filter's name for people, such as Sepia Tone.
    ///     Print self.DisplayName
    method("DisplayName as string", displayName),
    /// The filter's name, as FilterWithName takes it.
    ///     Print self.FilterName
    method("FilterName as string", filterName),
    /// Sets every input that has a default to it.
    ///     self.SetDefaults
    method("SetDefaults", setDefaults),
    /// The value of a key as bytes; Nil if it has none. An empty block clears the key.
    ///     CIFilterKaz.FilterWithName("CIColorCube").ValueAsData("inputCubeData") = New MemoryBlock(128)
    accessor("ValueAsData(key as string) as memoryblock", dataValue, setDataValue),
    /// The value of a key as a number in the input's own units; 0 if it has none. Raises for a key that the
    /// filter lacks.
    ///     self.ValueAsNumber("inputIntensity") = 0.8
    accessor("ValueAsNumber(key as string) as double", numberValue, setNumberValue),
    /// The value of a key as an image; Nil clears it. The key outputImage renders nothing yet: it is a
    /// recipe.
    ///     Dim result As CIImageKaz = self.ValueAsCIImage("outputImage")
    accessor("ValueAsCIImage(key as string) as CIImageKaz", objectValue<kImage>, setObjectValue),
    /// The value of a key as a vector, such as a position in pixels; Nil clears it.
    ///     CIFilterKaz.FilterWithName("CICrop").ValueAsCIVector("inputRectangle") = _
    ///       New CIVectorKaz(0, 0, 100, 100)
    accessor("ValueAsCIVector(key as string) as CIVectorKaz", objectValue<kVector>, setObjectValue),
    /// The value of a key as a colour; Nil clears it.
    ///     CIFilterKaz.FilterWithName("CIColorMonochrome").ValueAsCIColor("inputColor") = _
    ///       New CIColorKaz(1, 0, 0)
    accessor("ValueAsCIColor(key as string) as CIColorKaz", objectValue<kColor>, setObjectValue),
    /// The value of a key as a transform; Nil clears it.
    ///     CIFilterKaz.FilterWithName("CIAffineTransform").ValueAsAffineTransform("inputTransform") = _
    ///       New NSAffineTransformKaz
    accessor("ValueAsAffineTransform(key as string) as NSAffineTransformKaz", affineTransformValue,
             setObjectValue),
    /// The value of a key as text; empty text clears it.
    ///     CIFilterKaz.FilterWithName("CIQRCodeGenerator").ValueAsString("inputCorrectionLevel") = "H"
    accessor("ValueAsString(key as string) as String", stringValue, setStringValue),
};

REALmethodDefinition sharedMethods[] = {
    /// Returns the object of a native filter by its address, which is not checked; Nil for 0.
    ///     Print CIFilterKaz.FilterWithHandle(self.Handle).FilterName
    method("FilterWithHandle(handle as Integer) as CIFilterKaz", filterWithHandle),
    /// Returns a new filter, whose inputs SetDefaults fills, or Nil if no filter has the name.
    ///     Print CIFilterKaz.FilterWithName("CIGaussianBlur").DisplayName
    method("FilterWithName(name as String) as CIFilterKaz", filterWithName),
    /// The names of the filters in a category.
    ///     Print Join(CIFilterKaz.FilterNamesInCategory(CIFilterKaz.kCICategoryBlur), ", ")
    method("FilterNamesInCategory(category as String) as string()", filterNamesInCategory),
    /// The names of the filters that are in all of the categories.
    ///     Print Str(CIFilterKaz.FilterNamesInCategories(Array(CIFilterKaz.kCICategoryBuiltIn)).Ubound + 1)
    method("FilterNamesInCategories(categories() as String) as string()", filterNamesInCategories),
    /// A filter's name for people, or empty for empty text.
    ///     Print CIFilterKaz.LocalizedNameForFilterName("CIGaussianBlur")
    method("LocalizedNameForFilterName(name as String) as String", localizedNameForFilterName),
    /// A category's name for people, or empty for empty text.
    ///     Print CIFilterKaz.LocalizedNameForCategory(CIFilterKaz.kCICategoryBlur)
    method("LocalizedNameForCategory(name as String) as String", localizedNameForCategory),
    /// What a filter does, in a sentence; empty if it is not known.
    ///     Print CIFilterKaz.localizedDescriptionForFilterName("CIGaussianBlur")
    method("localizedDescriptionForFilterName(filterName as String) as String",
           localizedDescriptionForFilterName),
    /// The address of a filter's documentation; empty if there is none.
    ///     Print CIFilterKaz.localizedReferenceDocumentationForFilterName("CIGaussianBlur")
    method("localizedReferenceDocumentationForFilterName(filterName as String) as String",
           localizedReferenceDocumentationForFilterName),
};

// Most keys are the name of their constant without the leading k.
#define KEY_CONSTANT(key) constant("k" #key " = \"" #key "\"")

REALconstant constants[] = {
    /// Category: filters that move pixels, such as a bump or a twirl.
    KEY_CONSTANT(CICategoryDistortionEffect),
    /// Category: filters that crop, scale or turn an image.
    KEY_CONSTANT(CICategoryGeometryAdjustment),
    /// Category: filters that combine two images.
    KEY_CONSTANT(CICategoryCompositeOperation),
    /// Category: filters that turn an image into dots or lines of a print.
    KEY_CONSTANT(CICategoryHalftoneEffect),
    /// Category: filters that correct colours, such as exposure.
    KEY_CONSTANT(CICategoryColorAdjustment),
    /// Category: filters that change colours for effect, such as sepia.
    KEY_CONSTANT(CICategoryColorEffect),
    /// Category: filters that lead from one image to another over time.
    KEY_CONSTANT(CICategoryTransition),
    /// Category: filters that repeat a part of an image.
    KEY_CONSTANT(CICategoryTileEffect),
    /// Category: filters that make an image from nothing, such as stripes.
    KEY_CONSTANT(CICategoryGenerator),
    /// Category: filters that make a gradient from nothing.
    KEY_CONSTANT(CICategoryGradient),
    /// Category: filters that make a photograph look drawn or painted.
    KEY_CONSTANT(CICategoryStylize),
    /// Category: filters that sharpen.
    KEY_CONSTANT(CICategorySharpen),
    /// Category: filters that blur.
    KEY_CONSTANT(CICategoryBlur),
    /// Category: filters that suit video.
    KEY_CONSTANT(CICategoryVideo),
    /// Category: filters that suit still images.
    KEY_CONSTANT(CICategoryStillImage),
    /// Category: filters that suit interlaced video.
    KEY_CONSTANT(CICategoryInterlaced),
    /// Category: filters that suit pixels that are not square.
    KEY_CONSTANT(CICategoryNonSquarePixels),
    /// Category: filters that suit components beyond 1.
    KEY_CONSTANT(CICategoryHighDynamicRange),
    /// Category: filters that come with the system.
    KEY_CONSTANT(CICategoryBuiltIn),
    /// Key of attributesDictionary: the filter's name.
    KEY_CONSTANT(CIAttributeFilterName),
    /// Key of attributesDictionary: the filter's name for people.
    KEY_CONSTANT(CIAttributeFilterDisplayName),
    /// Key of attributesDictionary: the filter's categories.
    KEY_CONSTANT(CIAttributeFilterCategories),
    /// Key of an input's dictionary: the class of its values.
    KEY_CONSTANT(CIAttributeClass),
    /// Key of an input's dictionary: what its values mean.
    KEY_CONSTANT(CIAttributeType),
    /// Key of an input's dictionary: the least value.
    KEY_CONSTANT(CIAttributeMin),
    /// Key of an input's dictionary: the greatest value.
    KEY_CONSTANT(CIAttributeMax),
    /// Key of an input's dictionary: a slider's least value.
    KEY_CONSTANT(CIAttributeSliderMin),
    /// Key of an input's dictionary: a slider's greatest value.
    KEY_CONSTANT(CIAttributeSliderMax),
    /// Key of an input's dictionary: the default.
    KEY_CONSTANT(CIAttributeDefault),
    /// Key of an input's dictionary: the value without effect.
    KEY_CONSTANT(CIAttributeIdentity),
    /// Key of an input's dictionary: its name.
    KEY_CONSTANT(CIAttributeName),
    /// Key of an input's dictionary: its name for people.
    KEY_CONSTANT(CIAttributeDisplayName),
    /// Type: a time from 0 to 1, in a transition.
    KEY_CONSTANT(CIAttributeTypeTime),
    /// Type: a plain number.
    KEY_CONSTANT(CIAttributeTypeScalar),
    /// Type: a distance in pixels.
    KEY_CONSTANT(CIAttributeTypeDistance),
    /// Type: an angle in radians.
    KEY_CONSTANT(CIAttributeTypeAngle),
    /// Type: 0 or 1.
    KEY_CONSTANT(CIAttributeTypeBoolean),
    /// Type: a position, x and y in pixels.
    KEY_CONSTANT(CIAttributeTypePosition),
    /// Type: an offset, x and y in pixels.
    KEY_CONSTANT(CIAttributeTypeOffset),
    /// Type: a position in space, x, y and z in pixels.
    KEY_CONSTANT(CIAttributeTypePosition3),
    /// Type: a colour whose alpha is ignored.
    KEY_CONSTANT(CIAttributeTypeOpaqueColor),
    /// Type: a rectangle as x, y, width and height in pixels.
    KEY_CONSTANT(CIAttributeTypeRectangle),
    /// Type: a gradient, as an image one pixel high.
    KEY_CONSTANT(CIAttributeTypeGradient),
    /// Option of a kernel's call: the extent of the result.
    constant("kCIApplyOptionExtent = \"extent\""),
    /// Option of a kernel's call: the shape in which the result is defined.
    constant("kCIApplyOptionDefinition = \"definition\""),
    /// Option of a kernel's call: an object that is handed on to the caller's functions.
    constant("kCIApplyOptionUserInfo = \"user_info\""),
};

#undef KEY_CONSTANT

} // namespace

/// A filter, found by its name, with its inputs and its result by key.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("coffee.png"))
///     Dim filter As CIFilterKaz = CIFilterKaz.FilterWithName("CISepiaTone")
///     filter.ValueAsCIImage("inputImage") = photo
REALclassDefinition CIFilterKazClass = classDefinition({.name = "CIFilterKaz",
                                                        .dataSize = sizeof(FilterData),
                                                        .constructor = CIFilterConstructor,
                                                        .destructor = CIFilterDestructor},
                                                       properties, methods, constants, sharedMethods);

} // namespace coreimage
