// Bitmap images and image masks, immutable. Row 0 is the top of the image.
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

typedef struct CGImage* CGImageRef;

enum {
    kCGImageAlphaNone,               /* RGB */
    kCGImageAlphaPremultipliedLast,  /* premultiplied RGBA */
    kCGImageAlphaPremultipliedFirst, /* premultiplied ARGB */
    kCGImageAlphaLast,               /* straight RGBA */
    kCGImageAlphaFirst,              /* straight ARGB */
    kCGImageAlphaNoneSkipLast,       /* RGBX */
    kCGImageAlphaNoneSkipFirst,      /* XRGB */
    kCGImageAlphaOnly                /* coverage, no colour */
};
typedef uint32_t CGImageAlphaInfo;

typedef uint32_t CGBitmapInfo;

/* Macros, because C++ warns about or-ing constants of two enums, and these are or-ed with the alpha infos. */
#define kCGBitmapAlphaInfoMask ((CGBitmapInfo)0x1F)
#define kCGBitmapFloatComponents ((CGBitmapInfo)(1 << 8))
#define kCGBitmapByteOrderMask ((CGBitmapInfo)0x7000)
#define kCGBitmapByteOrderDefault ((CGBitmapInfo)(0 << 12))
#define kCGBitmapByteOrder16Little ((CGBitmapInfo)(1 << 12))
#define kCGBitmapByteOrder32Little ((CGBitmapInfo)(2 << 12))
#define kCGBitmapByteOrder16Big ((CGBitmapInfo)(3 << 12))
#define kCGBitmapByteOrder32Big ((CGBitmapInfo)(4 << 12))

#ifdef __BIG_ENDIAN__
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Big
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Big
#else
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Little
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Little
#endif

/**
 * An image over the provider's bytes. Components of 1, 2, 4, 8 or 16 bits, or 32-bit floats; gray, RGB or
 * CMYK. `decode` must be null.
 * Null when the layout is not one of these or the provider holds too few bytes.
 */
CG_EXTERN CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                                   size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                   CGDataProviderRef provider, const CGFloat decode[], bool shouldInterpolate,
                                   CGColorRenderingIntent intent);
/** A mask of one component: 0 lets the source through, the maximum hides it. */
CG_EXTERN CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent,
                                       size_t bitsPerPixel, size_t bytesPerRow, CGDataProviderRef provider,
                                       const CGFloat decode[], bool shouldInterpolate);
CG_EXTERN CGImageRef CGImageCreateCopy(CGImageRef image);
/**
 * The image seen through a mask, stretched over it. An image mask hides where it is at its maximum; a gray
 * image without alpha, used as a mask, hides where it is 0. Null for any other mask, and for a masked
 * `image`.
 */
CG_EXTERN CGImageRef CGImageCreateWithMask(CGImageRef image, CGImageRef mask);
/** The part of `image` inside `rect` (origin at the top left, grown to whole pixels); null when there is
 * none. */
CG_EXTERN CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect);
/** The same bytes in another space; null for a mask, or a space with another number of components. */
CG_EXTERN CGImageRef CGImageCreateCopyWithColorSpace(CGImageRef image, CGColorSpaceRef space);

CG_EXTERN bool CGImageIsMask(CGImageRef image);
CG_EXTERN size_t CGImageGetWidth(CGImageRef image);
CG_EXTERN size_t CGImageGetHeight(CGImageRef image);
CG_EXTERN size_t CGImageGetBitsPerComponent(CGImageRef image);
CG_EXTERN size_t CGImageGetBitsPerPixel(CGImageRef image);
CG_EXTERN size_t CGImageGetBytesPerRow(CGImageRef image);
/** Borrowed; null for a mask. */
CG_EXTERN CGColorSpaceRef CGImageGetColorSpace(CGImageRef image);
CG_EXTERN CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image);
CG_EXTERN CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image);
/** Borrowed: the bytes of the image, row after row. */
CG_EXTERN CGDataProviderRef CGImageGetDataProvider(CGImageRef image);
/** Always null: decode arrays are not supported. */
CG_EXTERN const CGFloat* CGImageGetDecode(CGImageRef image);
CG_EXTERN bool CGImageGetShouldInterpolate(CGImageRef image);
CG_EXTERN CGColorRenderingIntent CGImageGetRenderingIntent(CGImageRef image);
CG_EXTERN CGImageRef CGImageRetain(CGImageRef image);
CG_EXTERN void CGImageRelease(CGImageRef image);
