// The C library's basic types on i386.
#pragma once

#include <sys/cdefs.h>

typedef long __darwin_time_t;
typedef unsigned long __darwin_size_t;
typedef long ssize_t;
typedef long time_t;
typedef long long off_t;
typedef unsigned long clock_t;
