// How the C library's functions are declared.
#pragma once

#ifdef __cplusplus
#define __BEGIN_DECLS extern "C" {
#define __END_DECLS }
#else
#define __BEGIN_DECLS
#define __END_DECLS
#endif

// 32-bit programs since 10.5 use the UNIX conforming variant of some functions, which has a name of its own.
#define __DARWIN_ALIAS(symbol) __asm("_" #symbol "$UNIX2003")
