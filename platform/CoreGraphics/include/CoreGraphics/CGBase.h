// Included by every Core Graphics header: the scalar type and the linkage of C functions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CG_EXTERN extern "C"
#else
#define CG_EXTERN extern
#endif
#define CG_INLINE static inline

/** A coordinate, size or component. A float, as everywhere on 32-bit systems. */
typedef float CGFloat;
#define CGFLOAT_TYPE float
#define CGFLOAT_IS_DOUBLE 0
/* Foundation declares the same type unless it finds this. */
#ifndef CGFLOAT_DEFINED
#define CGFLOAT_DEFINED 1
#endif
#ifndef CGFLOAT_MIN
#define CGFLOAT_MIN 1.17549435e-38F
#define CGFLOAT_MAX 3.40282347e+38F
#endif
