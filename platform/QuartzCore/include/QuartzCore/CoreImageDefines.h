#pragma once

#import <Foundation/Foundation.h>

#import <CoreGraphics/CoreGraphics.h>

#ifdef __cplusplus
#define CORE_IMAGE_EXTERN extern "C"
#else
#define CORE_IMAGE_EXTERN extern
#endif
