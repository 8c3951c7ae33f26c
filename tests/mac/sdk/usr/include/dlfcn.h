// Functions looked up at run time.
#pragma once

#include <sys/cdefs.h>

#define RTLD_LAZY 0x1
#define RTLD_NOW 0x2
#define RTLD_DEFAULT ((void*)-2)

__BEGIN_DECLS
void* dlopen(const char*, int);
void* dlsym(void*, const char*);
__END_DECLS
