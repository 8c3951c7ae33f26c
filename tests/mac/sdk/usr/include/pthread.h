// POSIX threads.
#pragma once

#include <stddef.h>
#include <sys/types.h>
#include <time.h>

struct _opaque_pthread_attr_t {
    long __sig;
    char __opaque[36];
};
struct _opaque_pthread_mutex_t {
    long __sig;
    char __opaque[40];
};
struct _opaque_pthread_mutexattr_t {
    long __sig;
    char __opaque[8];
};
struct _opaque_pthread_cond_t {
    long __sig;
    char __opaque[24];
};
struct _opaque_pthread_once_t {
    long __sig;
    char __opaque[4];
};
struct _opaque_pthread_t;
typedef struct _opaque_pthread_attr_t pthread_attr_t;
typedef struct _opaque_pthread_mutex_t pthread_mutex_t;
typedef struct _opaque_pthread_mutexattr_t pthread_mutexattr_t;
typedef struct _opaque_pthread_cond_t pthread_cond_t;
typedef struct _opaque_pthread_once_t pthread_once_t;
typedef struct _opaque_pthread_t* pthread_t;
typedef unsigned long pthread_key_t;

#define PTHREAD_MUTEX_RECURSIVE 2
#define PTHREAD_MUTEX_INITIALIZER                                                                            \
    {                                                                                                        \
        0x32AAABA7, { 0 }                                                                                    \
    }
#define PTHREAD_COND_INITIALIZER                                                                             \
    {                                                                                                        \
        0x3CB0B1BB, { 0 }                                                                                    \
    }
#define PTHREAD_ONCE_INIT                                                                                    \
    {                                                                                                        \
        0x30B1BCBA, { 0 }                                                                                    \
    }

__BEGIN_DECLS
int pthread_attr_init(pthread_attr_t*);
int pthread_attr_destroy(pthread_attr_t*);
int pthread_attr_setstacksize(pthread_attr_t*, size_t);
int pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int pthread_detach(pthread_t);
int pthread_join(pthread_t, void**) __DARWIN_ALIAS(pthread_join);
pthread_t pthread_self(void);
int pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int pthread_mutex_destroy(pthread_mutex_t*);
int pthread_mutex_lock(pthread_mutex_t*);
int pthread_mutex_trylock(pthread_mutex_t*);
int pthread_mutex_unlock(pthread_mutex_t*);
int pthread_mutexattr_init(pthread_mutexattr_t*);
int pthread_mutexattr_destroy(pthread_mutexattr_t*);
int pthread_mutexattr_settype(pthread_mutexattr_t*, int);
int pthread_cond_broadcast(pthread_cond_t*);
int pthread_cond_destroy(pthread_cond_t*);
int pthread_cond_signal(pthread_cond_t*);
int pthread_cond_timedwait(pthread_cond_t*, pthread_mutex_t*, const struct timespec*)
    __DARWIN_ALIAS(pthread_cond_timedwait);
int pthread_cond_wait(pthread_cond_t*, pthread_mutex_t*) __DARWIN_ALIAS(pthread_cond_wait);
int pthread_equal(pthread_t, pthread_t);
int pthread_once(pthread_once_t*, void (*)(void));
int pthread_key_create(pthread_key_t*, void (*)(void*));
void* pthread_getspecific(pthread_key_t);
int pthread_setspecific(pthread_key_t, const void*);
__END_DECLS
