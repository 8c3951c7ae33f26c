// Included by every Core Image header: the frameworks below and the linkage of constants.
#pragma once

#import <Foundation/Foundation.h>

#import <CoreGraphics/CoreGraphics.h>

#ifdef __cplusplus
#define CORE_IMAGE_EXTERN extern "C"
#else
#define CORE_IMAGE_EXTERN extern
#endif
/* Not Apple's: for what a process may lack. */
#define CORE_IMAGE_WEAK_EXTERN CORE_IMAGE_EXTERN __attribute__((weak, visibility("default")))
