// Numbers in variants against NSNumber.
#pragma once

#include <hostapi/services.h>

@class NSNumber;

namespace bridge {

// A new variant of the number's own type, locked for the caller.
REALobject newVariantOfNumber(NSNumber* number);

// The value in a variant: by the host's getter or, where that is missing, by the property of the variant
// object. 0 without either.
template <class Getter, class Property>
auto variantValue(Getter& getter, Property& property, const char* propertyName, REALobject variant) {
    if (getter.resolve()) return getter(variant);
    return host::propertyValue(property, variant, propertyName);
}

std::int32_t int32InVariant(REALobject variant);
std::int64_t int64InVariant(REALobject variant);
float singleInVariant(REALobject variant);
double doubleInVariant(REALobject variant);

} // namespace bridge
