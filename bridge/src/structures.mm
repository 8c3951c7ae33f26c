// The family's structure classes against NSValue.
#include <bridge/structures.h>
#include <bridge/wrapping.h>

#include <cstring>

@interface NSValue (KazTimes)
+ (NSValue*)valueWithQTTimeKaz:(REALobject)time;
+ (NSValue*)valueWithQTTimeRangeKaz:(REALobject)range;
+ (NSValue*)valueWithCMTimeMappingKaz:(REALobject)mapping;
+ (NSValue*)valueWithCMTimeRangeKaz:(REALobject)range;
+ (NSValue*)valueWithCMTimeKaz:(REALobject)time;
- (REALobject)QTTimeValueKaz;
- (REALobject)QTTimeRangeValueKaz;
- (REALobject)CMTimeValueKaz;
- (REALobject)CMTimeRangeValueKaz;
- (REALobject)CMTimeMappingValueKaz;
@end

namespace {

// --- to Cocoa ---------------------------------------------------------------------------------------------

struct StructureClass {
    host::NamedClass hostClass;
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

// --- to the host ------------------------------------------------------------------------------------------

// Other parts of the family make the times, in a category of NSValue; null without them.
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
     [](NSValue* v) { return bridge::newObject("NSRectKaz", [v rectValue]); }},
    {"{_NSSize=ff}", [](NSValue* v) { return bridge::newObject("NSSizeKaz", [v sizeValue]); }},
    {"{_NSRange=II}", [](NSValue* v) { return bridge::newObject("NSRangeKaz", [v rangeValue]); }},
    {"{_NSPoint=ff}", [](NSValue* v) { return bridge::newObject("NSPointKaz", [v pointValue]); }},
    {"{?=qll}", QTTimeValueKaz},
    {"{?={?=qll}{?=qll}}", QTTimeRangeValueKaz},
    {"{?=qiIq}", CMTimeValueKaz},
    {"{?={?=qiIq}{?=qiIq}}", CMTimeRangeValueKaz},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", CMTimeMappingValueKaz},
};

} // namespace

bool bridge::takeStructure(REALobject object, NSValue*& value) {
    for (StructureClass& structure : structureClasses) {
        if (!structure.hostClass.hasMember(object)) continue;
        value = structure.convert(object);
        return true;
    }
    return false;
}

REALobject bridge::newStructure(NSValue* value) {
    const char* type = [value objCType];
    for (const ValueRule& rule : kValueRules)
        if (std::strcmp(type, rule.type) == 0) return rule.convert(value);
    return nullptr;
}
