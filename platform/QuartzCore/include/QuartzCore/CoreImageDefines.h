// Included by every Core Image header: the frameworks below and the linkage of constants.
#pragma once

#import <Foundation/Foundation.h>

#import <CoreGraphics/CoreGraphics.h>

#ifdef __cplusplus
#define CORE_IMAGE_EXPORT extern "C"
#else
#define CORE_IMAGE_EXPORT extern
#endif
