// The local time zone is the C library's.
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <ctime>

namespace {

// Run once more for each of some zones in TZ.
TEST(LocalTimeZone, IsThatOfTheClock) {
    const char* name = std::getenv("TZ");
    for (std::time_t time : {1330516800, 1341144000}) { // a winter's and a summer's noon of 2012
        std::tm fields = {};
        localtime_r(&time, &fields);
        NSDate* date = [NSDate dateWithTimeIntervalSince1970:static_cast<NSTimeInterval>(time)];
        EXPECT_EQ([[NSTimeZone localTimeZone] secondsFromGMTForDate:date], fields.tm_gmtoff)
            << (name ? name : "no TZ") << " at " << time;
    }
}

} // namespace
