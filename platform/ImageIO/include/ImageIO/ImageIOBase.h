// Included by every Image I/O header: Core Graphics and the linkage of C functions.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#ifdef __cplusplus
#define IMAGEIO_EXTERN extern "C"
#else
#define IMAGEIO_EXTERN extern
#endif
