// Wide characters, as far as the C++ library's headers name them.
#pragma once

#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <time.h>

typedef int wint_t;
typedef struct {
    char state[128];
} mbstate_t;

#define WEOF ((wint_t)-1)

__BEGIN_DECLS
wchar_t* wcschr(const wchar_t*, wchar_t);
wchar_t* wcspbrk(const wchar_t*, const wchar_t*);
wchar_t* wcsrchr(const wchar_t*, wchar_t);
wchar_t* wcsstr(const wchar_t*, const wchar_t*);
wchar_t* wmemchr(const wchar_t*, wchar_t, size_t);
size_t wcslen(const wchar_t*);
int wmemcmp(const wchar_t*, const wchar_t*, size_t);
wchar_t* wmemcpy(wchar_t*, const wchar_t*, size_t);
wchar_t* wmemmove(wchar_t*, const wchar_t*, size_t);
wchar_t* wmemset(wchar_t*, wchar_t, size_t);
__END_DECLS
