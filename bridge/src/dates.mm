// Host dates against NSDate.
#include <bridge/dates.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

NSDate* NewNSDate(REALobject date) {
    if (!date) return nil;
    constexpr const char* names[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
    std::int32_t fields[6] = {};
    for (int i = 0; i < 6; ++i)
        if (!REALGetPropValueInt32(date, names[i], &fields[i])) return nil;
    return [NSCalendarDate dateWithYear:fields[0]
                                  month:static_cast<NSUInteger>(fields[1])
                                    day:static_cast<NSUInteger>(fields[2])
                                   hour:static_cast<NSUInteger>(fields[3])
                                 minute:static_cast<NSUInteger>(fields[4])
                                 second:static_cast<NSUInteger>(fields[5])
                               timeZone:[NSTimeZone localTimeZone]];
}

REALobject NSDateRB(NSDate* date) {
    NSCalendarDate* calendar = [[[NSCalendarDate alloc]
        initWithTimeIntervalSinceReferenceDate:[date timeIntervalSinceReferenceDate]] autorelease];
    if (!calendar) return nullptr;
    host::Held result(REALnewInstance("Date"));
    if (!result) return nullptr;
    auto set = [&](const char* name, NSInteger value) {
        REALSetPropValueInt32(result.get(), name, static_cast<std::int32_t>(value));
    };
    set("Year", [calendar yearOfCommonEra]);
    set("Month", [calendar monthOfYear]);
    set("Day", [calendar dayOfMonth]);
    set("Hour", [calendar hourOfDay]);
    set("Minute", [calendar minuteOfHour]);
    set("Second", [calendar secondOfMinute]);
    return result.release();
}
