// How figures are told.
#include "bench.h"

#include <cstdio>
#include <sys/resource.h>

void bench::report(const std::string& name, double value, const char* unit, double ratio,
                   const char* baseline) {
    std::printf("  %-44s %10.2f %s  %8.2f x %s\n", name.c_str(), value, unit, ratio, baseline);
}

void bench::report(const std::string& name, double value, const char* unit) {
    std::printf("  %-44s %10.2f %s\n", name.c_str(), value, unit);
}

double bench::peakMemory() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}
