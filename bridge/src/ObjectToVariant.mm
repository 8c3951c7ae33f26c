// Cocoa objects to host variants.
#include <bridge/containers.h>
#include <bridge/strings.h>
#include <bridge/variants.h>
#include <bridge/wrapping.h>

#include <objc/runtime.h>

#include <cstdio>
#include <cstring>

@interface NSValue (KazTimes)
- (REALobject)QTTimeValueKaz;
- (REALobject)QTTimeRangeValueKaz;
- (REALobject)CMTimeValueKaz;
- (REALobject)CMTimeRangeValueKaz;
- (REALobject)CMTimeMappingValueKaz;
@end

@interface NSObject (KazObjectWrapper)
- (REALobject)unwrap;
@end

namespace {

REALobject variantOfString(NSString* text) {
    REALstring string = CFString2RBString((CFStringRef)text);
    REALobject variant = REALNewVariantString(string);
    if (string) REALUnlockString(string);
    return variant;
}

REALobject arrayOf(NSArray* elements) {
    REALarray array = REALCreateArray(kREALArrayObject, -1);
    if (!array) return nullptr;
    FillObjectArray(array, elements, NewVariantFromNSObject);
    return &array->object;
}

struct NumberRule {
    const char* type;
    REALobject (*convert)(NSNumber* number);
};

// A char is a Boolean, and a 64-bit unsigned number keeps its low 32 bits: both are how it has always been.
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

REALobject numberOf(NSNumber* number) {
    const char* type = [number objCType];
    for (const NumberRule& rule : kNumberRules)
        if (std::strcmp(type, rule.type) == 0) return rule.convert(number);
    return REALNewVariantDouble([number doubleValue]);
}

REALobject dateOf(NSDate* date) {
    NSCalendarDate* calendar = [[[NSCalendarDate alloc]
        initWithTimeIntervalSinceReferenceDate:[date timeIntervalSinceReferenceDate]] autorelease];
    if (!calendar) return nullptr;
    REALobject result = REALnewInstance("Date");
    if (!result) return nullptr;
    auto set = [&](const char* name, NSInteger value) {
        REALSetPropValueInt32(result, name, static_cast<std::int32_t>(value));
    };
    set("Year", [calendar yearOfCommonEra]);
    set("Month", [calendar monthOfYear]);
    set("Day", [calendar dayOfMonth]);
    set("Hour", [calendar hourOfDay]);
    set("Minute", [calendar minuteOfHour]);
    set("Second", [calendar secondOfMinute]);
    return result;
}

REALobject fileOrTextOf(NSURL* url) {
    if (REALfolderItem item = NSURLRBFile(url)) return reinterpret_cast<REALobject>(item);
    return variantOfString([url absoluteString]);
}

template <class Fields>
REALobject newStructure(const char* className, Fields fields) {
    REALobject object = REALnewInstance(className);
    if (object) bridge::instanceData<Fields>(object) = fields;
    return object;
}

// Times are built by categories of sibling parts; null without them.
#define TIME_RULE(getter)                                                                                    \
    REALobject getter(NSValue* value) {                                                                      \
        return [value respondsToSelector:@selector(getter)] ? [value getter] : nullptr;                      \
    }
TIME_RULE(QTTimeValueKaz)
TIME_RULE(QTTimeRangeValueKaz)
TIME_RULE(CMTimeValueKaz)
TIME_RULE(CMTimeRangeValueKaz)
TIME_RULE(CMTimeMappingValueKaz)
#undef TIME_RULE

struct ValueRule {
    const char* type;
    REALobject (*convert)(NSValue* value);
};

constexpr ValueRule kValueRules[] = {
    {"{_NSRect={_NSPoint=ff}{_NSSize=ff}}",
     [](NSValue* v) { return newStructure("NSRectKaz", [v rectValue]); }},
    {"{_NSSize=ff}", [](NSValue* v) { return newStructure("NSSizeKaz", [v sizeValue]); }},
    {"{_NSRange=II}", [](NSValue* v) { return newStructure("NSRangeKaz", [v rangeValue]); }},
    {"{_NSPoint=ff}", [](NSValue* v) { return newStructure("NSPointKaz", [v pointValue]); }},
    {"{?=qll}", QTTimeValueKaz},
    {"{?={?=qll}{?=qll}}", QTTimeRangeValueKaz},
    {"{?=qiIq}", CMTimeValueKaz},
    {"{?={?=qiIq}{?=qiIq}}", CMTimeRangeValueKaz},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", CMTimeMappingValueKaz},
};

REALobject valueOf(NSValue* value) {
    const char* type = [value objCType];
    for (const ValueRule& rule : kValueRules)
        if (std::strcmp(type, rule.type) == 0) return rule.convert(value);
    return nullptr;
}

// An object of the host class named after the object's class, or after the nearest superclass that has one.
// Not looked up in the registry, nor entered there.
REALobject wrappedByClassName(id object) {
    constexpr std::size_t longestName = 199;
    for (Class c = [object class]; c; c = class_getSuperclass(c)) {
        const char* name = class_getName(c);
        if (!name || std::strlen(name) > longestName) continue;
        char hostClass[longestName + 1]; // whose end is cut off where it does not fit
        std::snprintf(hostClass, sizeof hostClass, "%sKaz", name);
        if (REALobject wrapper = bridge::newWrapper(hostClass, object)) {
            [object retain];
            return wrapper;
        }
    }
    return nullptr;
}

} // namespace

REALobject NewVariantFromNSObject(id object) {
    // A class is looked up by its name wherever it is named, so each is named once.
    struct ObjectRule {
        Class kind;
        REALobject (*convert)(id object);
    };
    static const ObjectRule rules[] = {
        {[NSArray class], [](id o) { return arrayOf(o); }},
        {[NSString class], [](id o) { return variantOfString(o); }},
        {[NSData class], [](id o) { return reinterpret_cast<REALobject>(NSDataRB(o)); }},
        {[NSNumber class], [](id o) { return numberOf(o); }},
        {[NSDate class], [](id o) { return dateOf(o); }},
        {[NSDictionary class], [](id o) { return NSDictionaryRB(o); }},
        {[NSURL class], [](id o) { return fileOrTextOf(o); }},
        {[NSValue class], [](id o) { return valueOf(o); }},
    };
    static const id null = [NSNull null];

    if (!object || object == null) return nullptr;
    for (const ObjectRule& rule : rules)
        if ([object isKindOfClass:rule.kind]) return rule.convert(object);
    Class wrapper = static_cast<Class>(objc_getClass("KazREALobjectWrapper"));
    if (wrapper && [object isKindOfClass:wrapper]) return [object unwrap];
    return wrappedByClassName(object);
}

REALobject NSDictionaryRB(NSDictionary* dictionary) {
    if (!dictionary) return nullptr;
    REALobject result = REALnewInstance("Dictionary");
    if (!result) return nullptr;
    NSArray* keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        id cocoaKey = [keys objectAtIndex:i];
        REALobject key = NewVariantFromNSObject(cocoaKey);
        REALobject value = NewVariantFromNSObject([dictionary objectForKey:cocoaKey]);
        bridge::refreshDictionaryMethods(result);
        if (LastDictionarySetter) LastDictionarySetter(result, key, value);
        if (key) REALUnlockObject(key);
        if (value) REALUnlockObject(value);
    }
    return result;
}
