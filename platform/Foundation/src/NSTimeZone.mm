// The system's time zone is the one that TZ names, as it is for the C library and on a Mac; GNUstep knows a
// variable of its own and files.
#import <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <cstdlib>
#include <ctime>

namespace {

NSTimeZone* (*systemTimeZone)(id, SEL) = nullptr; // GNUstep's

// The clock decides: a rule such as "CET-1" names no zone, and "GMT+5" another one than GNUstep's. Then the
// clock's offset of today stands for the zone.
NSTimeZone* zoneOfEnvironment(id self, SEL selector) {
    const char* name = std::getenv("TZ");
    if (!name || !*name) return systemTimeZone(self, selector);
    if (*name == ':') ++name;
    std::time_t now = std::time(nullptr);
    std::tm fields = {};
    localtime_r(&now, &fields);
    NSTimeZone* zone = [NSTimeZone timeZoneWithName:[NSString stringWithUTF8String:name]];
    if (zone && [zone secondsFromGMT] == fields.tm_gmtoff) return zone;
    return [NSTimeZone timeZoneForSecondsFromGMT:static_cast<NSInteger>(fields.tm_gmtoff)];
}

} // namespace

@interface NSTimeZone (Environment)
@end

@implementation NSTimeZone (Environment)

+ (void)load {
    Method method = class_getClassMethod([NSTimeZone class], @selector(systemTimeZone));
    systemTimeZone = reinterpret_cast<decltype(systemTimeZone)>(
        method_setImplementation(method, reinterpret_cast<IMP>(zoneOfEnvironment)));
}

@end
