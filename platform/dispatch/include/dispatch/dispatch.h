// Work on other threads: the global queues.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef void (*dispatch_function_t)(void* context);
#ifdef __BLOCKS__
typedef void (^dispatch_block_t)(void);
#endif

#define DISPATCH_QUEUE_PRIORITY_HIGH 2
#define DISPATCH_QUEUE_PRIORITY_DEFAULT 0
#define DISPATCH_QUEUE_PRIORITY_LOW (-2)
#define DISPATCH_QUEUE_PRIORITY_BACKGROUND INT16_MIN

// The queue of that priority, which lives as long as the process; null for another priority or any flag.
dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags);

// Runs work(context) on another thread and returns at once. Tasks start in order and run side by side.
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

#ifdef __BLOCKS__
// The same for a block, of which the queue keeps a copy until it has run.
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
#endif

#ifdef __cplusplus
}
#endif
