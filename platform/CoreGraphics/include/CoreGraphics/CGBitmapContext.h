// Drawing contexts whose destination is memory. The first row in memory is the top of the picture.
#pragma once

#include <CoreGraphics/CGContext.h>

/** Called once, when the context is destroyed, with the info and data pointers given at its creation. */
typedef void (*CGBitmapContextReleaseDataCallback)(void* releaseInfo, void* data);

/**
 * A context on `data`, or on cleared memory of its own if `data` is null; then a bytesPerRow of 0 lets the
 * context choose. Supported: RGB with 8 bits (32 bits per pixel, premultiplied or skipped alpha, either byte
 * order), with 16 bits or float components (premultiplied or skipped alpha last, or premultiplied first);
 * gray with 8 or 16 bits or floats without alpha; 8-bit alpha only (space null). Anything else, a bytesPerRow
 * too small, or a lack of memory gives null.
 */
CG_EXTERN CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                             size_t bytesPerRow, CGColorSpaceRef space,
                                             CGBitmapInfo bitmapInfo);
CG_EXTERN CGContextRef CGBitmapContextCreateWithData(void* data, size_t width, size_t height,
                                                     size_t bitsPerComponent, size_t bytesPerRow,
                                                     CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                                     CGBitmapContextReleaseDataCallback releaseCallback,
                                                     void* releaseInfo);

CG_EXTERN void* CGBitmapContextGetData(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetWidth(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetHeight(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetBitsPerComponent(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetBitsPerPixel(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
/** Borrowed; null for an alpha-only context. */
CG_EXTERN CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef context);
CG_EXTERN CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef context);
CG_EXTERN CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef context);
/** A copy of the pixels as they are now; null if memory is short. */
CG_EXTERN CGImageRef CGBitmapContextCreateImage(CGContextRef context);
