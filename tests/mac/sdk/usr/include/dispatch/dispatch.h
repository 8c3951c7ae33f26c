// Work on other threads, since 10.6.
#pragma once

#include <Availability.h>
#include <stdint.h>
#include <sys/cdefs.h>

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef void (*dispatch_function_t)(void*);
#ifdef __BLOCKS__
typedef void (^dispatch_block_t)(void);
#endif

#define DISPATCH_QUEUE_PRIORITY_HIGH 2
#define DISPATCH_QUEUE_PRIORITY_DEFAULT 0
#define DISPATCH_QUEUE_PRIORITY_LOW (-2)

__BEGIN_DECLS
dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags) __KAZ_MAC_SINCE(10.6);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) __KAZ_MAC_SINCE(10.6);
#ifdef __BLOCKS__
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) __KAZ_MAC_SINCE(10.6);
#endif
__END_DECLS
