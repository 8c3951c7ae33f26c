// Formatted text.
#pragma once

#include <stdarg.h>
#include <stddef.h>
#include <sys/types.h>

typedef struct __sFILE FILE;
typedef long long fpos_t;

#define BUFSIZ 1024
#define EOF (-1)
#define SEEK_SET 0
#define SEEK_CUR 1
#define SEEK_END 2

__BEGIN_DECLS
int remove(const char*);
int rename(const char*, const char*);
int snprintf(char*, size_t, const char*, ...) __attribute__((format(printf, 3, 4)));
int vsnprintf(char*, size_t, const char*, va_list) __attribute__((format(printf, 3, 0)));
int sprintf(char*, const char*, ...) __attribute__((format(printf, 2, 3)));
int vsprintf(char*, const char*, va_list) __attribute__((format(printf, 2, 0)));
int sscanf(const char*, const char*, ...);
int vsscanf(const char*, const char*, va_list);
__END_DECLS
