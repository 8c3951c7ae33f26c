// Times.
#pragma once

#include <sys/types.h>

struct timespec {
    time_t tv_sec;
    long tv_nsec;
};
struct tm {
    int tm_sec, tm_min, tm_hour, tm_mday, tm_mon, tm_year, tm_wday, tm_yday, tm_isdst;
    long tm_gmtoff;
    char* tm_zone;
};

__BEGIN_DECLS
int nanosleep(const struct timespec*, struct timespec*) __DARWIN_ALIAS(nanosleep);
__END_DECLS
