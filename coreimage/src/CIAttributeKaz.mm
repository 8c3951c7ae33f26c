// CIAttributeKaz: a read-only view of the description of one filter parameter.
#include "CIAttributeKaz.h"

namespace coreimage {
namespace {

struct AttributeData {
    NSDictionary* attribute;
    NSString* name;
};
static_assert(sizeof(AttributeData) == 8);

AttributeData& data(REALobject self) { return instanceData<AttributeData>(self); }

void CIAttributeDestructor(REALobject self) {
    destroyWrapper(self);
    guarded([&] {
        [data(self).name release];
        data(self).name = nil;
    });
}

// A key of the attribute dictionary, as a template argument.
template <std::size_t N>
struct Key {
    char text[N];
    constexpr Key(const char (&literal)[N]) {
        for (std::size_t i = 0; i < N; ++i) text[i] = literal[i];
    }
};

template <Key K>
id valueOf(REALobject self) {
    static NSString* key = [[NSString alloc] initWithUTF8String:K.text];
    return [data(self).attribute objectForKey:key];
}

// --- the rules by which a value is read -------------------------------------------------------------------

template <Key K>
double number(REALobject self, std::uint32_t) {
    return guardedInPool([&] {
        id value = valueOf<K>(self);
        return [value isKindOfClass:[NSNumber class]] ? [value doubleValue] : 0.0;
    });
}

template <Key K>
bool hasNumber(REALobject self, std::uint32_t) {
    return guardedInPool([&] { return bool([valueOf<K>(self) isKindOfClass:[NSNumber class]]); });
}

template <Key K>
REALstring text(REALobject self, std::uint32_t) {
    return stringResult([&] { return valueOf<K>(self); });
}

template <Key K, const WrapperType& Type>
REALobject object(REALobject self, std::uint32_t) {
    return guardedInPool([&]() -> REALobject {
        id value = valueOf<K>(self);
        Class wanted = NSClassFromString([NSString stringWithUTF8String:Type.nativeClass]);
        return [value isKindOfClass:wanted] ? wrapped(Type, value) : nullptr;
    });
}

template <Key K>
REALobject transform(REALobject self, std::uint32_t) {
    return guardedInPool([&]() -> REALobject {
        id value = valueOf<K>(self);
        return [value isKindOfClass:[NSAffineTransform class]] ? NewNSAffineTransformKaz(value) : nullptr;
    });
}

REALstring name(REALobject self, std::uint32_t) {
    return stringResult([&] { return data(self).attribute ? data(self).name : nil; });
}

REALproperty properties[] = {
    /// The attribute's dictionary as Cocoa describes it, for debugging.
    ///     Print self.description
    property("description", "string", description),
    /// The greatest value that a slider should offer, in the input's own units; 0 if HasSliderMaxNumber is
    /// False.
    ///     Print Str(self.SliderMaxNumber)
    property("SliderMaxNumber", "double", number<"CIAttributeSliderMax">),
    /// The least value that a slider should offer, in the input's own units; 0 if HasSliderMinNumber is
    /// False.
    ///     Print Str(self.SliderMinNumber)
    property("SliderMinNumber", "double", number<"CIAttributeSliderMin">),
    /// The least value that means anything, in the input's own units; 0 if HasMinNumber is False.
    ///     Print Str(self.MinNumber)
    property("MinNumber", "double", number<"CIAttributeMin">),
    /// The greatest value that means anything, in the input's own units; 0 if HasMaxNumber is False.
    ///     Print Str(self.MaxNumber)
    property("MaxNumber", "double", number<"CIAttributeMax">),
    /// The value that SetDefaults sets, in the input's own units; 0 if the input is not a number.
    ///     Print Str(self.DefaultNumber)
    property("DefaultNumber", "double", number<"CIAttributeDefault">),
    /// The value with which the input has no effect; 0 if there is none.
    ///     Print Str(self.IdentityNumber)
    property("IdentityNumber", "double", number<"CIAttributeIdentity">),
    /// The input's name for people; empty if the filter gives none.
    ///     Print self.DisplayName
    property("DisplayName", "string", text<"CIAttributeDisplayName">),
    /// The input's key, such as inputRadius.
    ///     Print self.Name
    property("Name", "string", name),
    /// The Cocoa class of the input's values, such as NSNumber or CIVector.
    ///     Print self.ClassName
    property("ClassName", "string", text<"CIAttributeClass">),
    /// What the values mean: one of the constants kCIAttributeType... of CIFilterKaz, or empty.
    ///     Print self.Type
    property("Type", "string", text<"CIAttributeType">),
    /// The default of an input that takes a vector, or Nil.
    ///     Print place.DefaultVector.stringRepresentation
    property("DefaultVector", "CIVectorKaz", object<"CIAttributeDefault", kVector>),
    /// The vector with which the input has no effect, or Nil.
    ///     Print matrix.IdentityVector.stringRepresentation
    property("IdentityVector", "CIVectorKaz", object<"CIAttributeIdentity", kVector>),
    /// The default of an input that takes a colour, or Nil.
    ///     Print tint.DefaultColor.StringRepresentation
    property("DefaultColor", "CIColorKaz", object<"CIAttributeDefault", kColor>),
    /// The default of an input that takes a transform, or Nil.
    ///     Print Str(affine.DefaultAffineTransform.M11)
    property("DefaultAffineTransform", "NSAffineTransformKaz", transform<"CIAttributeDefault">),
    /// The transform with which the input has no effect, or Nil.
    ///     Print Str(affine.IdentityAffineTransform.M11)
    property("IdentityAffineTransform", "NSAffineTransformKaz", transform<"CIAttributeIdentity">),
    /// Whether there is a SliderMaxNumber.
    ///     Print Str(self.HasSliderMaxNumber)
    property("HasSliderMaxNumber", "Boolean", hasNumber<"CIAttributeSliderMax">),
    /// Whether there is a SliderMinNumber.
    ///     Print Str(self.HasSliderMinNumber)
    property("HasSliderMinNumber", "Boolean", hasNumber<"CIAttributeSliderMin">),
    /// Whether there is a MinNumber.
    ///     Print Str(self.HasMinNumber)
    property("HasMinNumber", "Boolean", hasNumber<"CIAttributeMin">),
    /// Whether there is a MaxNumber.
    ///     Print Str(self.HasMaxNumber)
    property("HasMaxNumber", "Boolean", hasNumber<"CIAttributeMax">),
};

} // namespace

/// What a filter says about one of its inputs or outputs: class, type, range, default. Reads as 0, empty or
/// Nil what the filter does not say.
///     Dim filter As CIFilterKaz = CIFilterKaz.FilterWithName("CIVignetteEffect")
///     Dim place As CIAttributeKaz = filter.AttributesItem("inputCenter")
///     Dim affine As CIAttributeKaz = _
///       CIFilterKaz.FilterWithName("CIAffineTransform").AttributesItem("inputTransform")
///     Dim matrix As CIAttributeKaz = _
///       CIFilterKaz.FilterWithName("CIColorMatrix").AttributesItem("inputRVector")
///     Dim tint As CIAttributeKaz = _
///       CIFilterKaz.FilterWithName("CIColorMonochrome").AttributesItem("inputColor")
///     Dim attribute As CIAttributeKaz = filter.AttributesItem("inputRadius")
REALclassDefinition CIAttributeKazClass = classDefinition(
    {.name = "CIAttributeKaz", .dataSize = sizeof(AttributeData), .destructor = CIAttributeDestructor},
    properties);

REALobject newAttribute(NSDictionary* attribute, NSString* key) {
    REALobject object = REALnewInstance("CIAttributeKaz");
    if (object) data(object) = {[attribute retain], [key retain]};
    return object;
}

} // namespace coreimage
