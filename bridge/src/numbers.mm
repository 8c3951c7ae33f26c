// Numbers in variants against NSNumber.
#include <bridge/numbers.h>

#import <Foundation/Foundation.h>

#include <cstring>

namespace {

struct NumberRule {
    const char* type;
    REALobject (*convert)(NSNumber* number);
};

// A char becomes a Boolean, and an unsigned 64-bit number keeps its low 32 bits. Both are long-standing
// behaviour.
constexpr NumberRule kNumberRules[] = {
    {"c", [](NSNumber* n) { return REALNewVariantBoolean([n boolValue]); }},
    {"C", [](NSNumber* n) { return REALNewVariantInteger([n unsignedCharValue]); }},
    {"s", [](NSNumber* n) { return REALNewVariantInteger([n shortValue]); }},
    {"S", [](NSNumber* n) { return REALNewVariantInteger([n unsignedShortValue]); }},
    {"i", [](NSNumber* n) { return REALNewVariantInteger([n intValue]); }},
    {"I", [](NSNumber* n) { return REALNewVariantUInt32([n unsignedIntValue]); }},
    {"l", [](NSNumber* n) { return REALNewVariantInteger(static_cast<std::int32_t>([n longValue])); }},
    {"L", [](NSNumber* n) { return REALNewVariantUInt32([n unsignedLongValue]); }},
    {"q", [](NSNumber* n) { return REALNewVariantInt64([n longLongValue]); }},
    {"Q", [](NSNumber* n) { return REALNewVariantUInt64([n unsignedLongValue]); }},
    {"f", [](NSNumber* n) { return REALNewVariantSingle([n floatValue]); }},
};

} // namespace

REALobject bridge::newVariantOfNumber(NSNumber* number) {
    const char* type = [number objCType];
    for (const NumberRule& rule : kNumberRules)
        if (std::strcmp(type, rule.type) == 0) return rule.convert(number);
    return REALNewVariantDouble([number doubleValue]);
}

std::int32_t bridge::int32InVariant(REALobject variant) {
    return variantValue(REALVariantToInt32, REALGetPropValueInt32, "Int32Value", variant);
}

std::int64_t bridge::int64InVariant(REALobject variant) {
    return variantValue(REALVariantToInt64, REALGetPropValueInt64, "LongValue", variant);
}

float bridge::singleInVariant(REALobject variant) {
    return variantValue(REALVariantToSingle, REALGetPropValueSingle, "SingleValue", variant);
}

double bridge::doubleInVariant(REALobject variant) {
    return variantValue(REALVariantToDouble, REALGetPropValueDouble, "DoubleValue", variant);
}
