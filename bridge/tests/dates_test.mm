// Host dates read as NSDate.
#include "conversion_test.h"

#include <bridge/dates.h>

namespace {

using studio::Value;

class HostDates : public OnEveryHost {};

std::string fieldsOf(NSDate* date) {
    return textOf([static_cast<NSCalendarDate*>(date) descriptionWithCalendarFormat:@"%Y-%m-%d %H:%M:%S"]);
}

TEST_P(HostDates, ADateIsLocalWallClockTime) {
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:-5 * 3600]];
    Value date = host.create("Date", {2001, 1, 1, 0, 0, 0});
    NSDate* result = NewNSDate(date.object());
    ASSERT_TRUE([result isKindOfClass:[NSCalendarDate class]]);
    EXPECT_EQ(fieldsOf(result), "2001-01-01 00:00:00");
    EXPECT_EQ([result timeIntervalSinceReferenceDate], 5 * 3600);
}

TEST_P(HostDates, ADatesOwnOffsetIsIgnored) {
    Value date = host.create("Date", {2012, 7, 31, 23, 59, 58});
    NSTimeInterval before = [NewNSDate(date.object()) timeIntervalSinceReferenceDate];
    for (double offset : {-11.0, 0.0, 5.5, 13.0}) {
        host.set(date, "GMTOffset", offset);
        EXPECT_EQ([NewNSDate(date.object()) timeIntervalSinceReferenceDate], before) << offset;
    }
}

TEST_P(HostDates, ADateThatCannotBeReadWholeGivesNil) {
    Value date = host.create("Date");
    for (int field = 0; field < 6; ++field) {
        host.failService("REALGetPropValueInt", field);
        EXPECT_EQ(NewNSDate(date.object()), nil) << field;
        host.stopFailing();
    }
    EXPECT_NE(NewNSDate(date.object()), nil);
    EXPECT_EQ(NewNSDate(nullptr), nil);
    EXPECT_EQ(NewNSDate(host.memoryBlock("no date").object()), nil);
}

TEST_P(HostDates, ADatesFieldsAreReadFromTheYearToTheSecond) {
    static std::vector<std::string> names;
    replace(
        "REALGetPropValueInt", +[](REALobject object, const char* name, std::int32_t* out) {
            names.push_back(name);
            return original<host::service::REALGetPropValueInt>("REALGetPropValueInt")(object, name, out);
        });
    NewNSDate(host.create("Date").object());
    EXPECT_EQ(names, (std::vector<std::string>{"Year", "Month", "Day", "Hour", "Minute", "Second"}));
}

INSTANTIATE_TEST_SUITE_P(Hosts, HostDates, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

} // namespace
