// Arrays of objects: a CFArray is an NSArray.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;

CFIndex CFArrayGetCount(CFArrayRef array);
// Borrowed. Raises NSRangeException for an index outside the array.
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CF_EXTERN_C_END
