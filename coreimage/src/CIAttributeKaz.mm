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
    property("description", "string", description),
    property("SliderMaxNumber", "double", number<"CIAttributeSliderMax">),
    property("SliderMinNumber", "double", number<"CIAttributeSliderMin">),
    property("MinNumber", "double", number<"CIAttributeMin">),
    property("MaxNumber", "double", number<"CIAttributeMax">),
    property("DefaultNumber", "double", number<"CIAttributeDefault">),
    property("IdentityNumber", "double", number<"CIAttributeIdentity">),
    property("DisplayName", "string", text<"CIAttributeDisplayName">),
    property("Name", "string", name),
    property("ClassName", "string", text<"CIAttributeClass">),
    property("Type", "string", text<"CIAttributeType">),
    property("DefaultVector", "CIVectorKaz", object<"CIAttributeDefault", kVector>),
    property("IdentityVector", "CIVectorKaz", object<"CIAttributeIdentity", kVector>),
    property("DefaultColor", "CIColorKaz", object<"CIAttributeDefault", kColor>),
    property("DefaultAffineTransform", "NSAffineTransformKaz", transform<"CIAttributeDefault">),
    property("IdentityAffineTransform", "NSAffineTransformKaz", transform<"CIAttributeIdentity">),
    property("HasSliderMaxNumber", "Boolean", hasNumber<"CIAttributeSliderMax">),
    property("HasSliderMinNumber", "Boolean", hasNumber<"CIAttributeSliderMin">),
    property("HasMinNumber", "Boolean", hasNumber<"CIAttributeMin">),
    property("HasMaxNumber", "Boolean", hasNumber<"CIAttributeMax">),
};

} // namespace

REALclassDefinition CIAttributeKazClass = classDefinition(
    {.name = "CIAttributeKaz", .dataSize = sizeof(AttributeData), .destructor = CIAttributeDestructor},
    properties);

REALobject newAttribute(NSDictionary* attribute, NSString* key) {
    REALobject object = REALnewInstance("CIAttributeKaz");
    if (object) data(object) = {[attribute retain], [key retain]};
    return object;
}

} // namespace coreimage
