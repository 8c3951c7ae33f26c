// Copies of blocks. Apple's system library has these functions; compilers call the ones that begin with an
// underscore.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/** A copy that outlives the scope the block was written in, or one more reference to it. Null for null and
 * when memory is short. */
void* _Block_copy(const void* block);
/** Gives a copy back; anything else stays as it is. */
void _Block_release(const void* block);

/** What the helpers of a block copy and dispose of call, for each thing that it captures. */
void _Block_object_assign(void* destination, const void* object, const int kind);
void _Block_object_dispose(const void* object, const int kind);

#ifdef __cplusplus
}
#endif

#define Block_copy(...) ((__typeof(__VA_ARGS__))_Block_copy((const void*)(__VA_ARGS__)))
#define Block_release(...) _Block_release((const void*)(__VA_ARGS__))
