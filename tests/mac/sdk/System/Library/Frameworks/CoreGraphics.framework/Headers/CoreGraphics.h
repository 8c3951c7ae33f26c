// Core Graphics of Mac OS X 10.5, as far as the product uses it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stddef.h>

#define CG_EXTERN CF_EXPORT

typedef float CGFloat; // on i386

struct CGPoint {
    CGFloat x, y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
    CGFloat width, height;
};
typedef struct CGSize CGSize;
struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;
static inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
    CGPoint point;
    point.x = x;
    point.y = y;
    return point;
}
static inline CGSize CGSizeMake(CGFloat width, CGFloat height) {
    CGSize size;
    size.width = width;
    size.height = height;
    return size;
}
static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect rect;
    rect.origin = CGPointMake(x, y);
    rect.size = CGSizeMake(width, height);
    return rect;
}

struct CGAffineTransform {
    CGFloat a, b, c, d, tx, ty;
};
typedef struct CGAffineTransform CGAffineTransform;
CG_EXTERN const CGAffineTransform CGAffineTransformIdentity;
CG_EXTERN CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx,
                                                  CGFloat ty);

typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGColor* CGColorRef;
typedef struct CGImage* CGImageRef;
typedef struct CGContext* CGContextRef;

enum {
    kCGColorSpaceModelUnknown = -1,
    kCGColorSpaceModelMonochrome,
    kCGColorSpaceModelRGB,
    kCGColorSpaceModelCMYK,
    kCGColorSpaceModelLab,
    kCGColorSpaceModelDeviceN
};
typedef int32_t CGColorSpaceModel;
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceGray(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceCMYK(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateWithICCProfile(CFDataRef data) __KAZ_MAC_SINCE(10.5);
CG_EXTERN CFStringRef CGColorSpaceCopyName(CGColorSpaceRef space) __KAZ_MAC_SINCE(10.6);
CG_EXTERN CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space) __KAZ_MAC_SINCE(10.5);
CG_EXTERN size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space);
CG_EXTERN CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
CG_EXTERN const CFStringRef kCGColorSpaceGenericGray;
CG_EXTERN const CFStringRef kCGColorSpaceGenericRGB;
CG_EXTERN const CFStringRef kCGColorSpaceGenericCMYK;
CG_EXTERN const CFStringRef kCGColorSpaceGenericRGBLinear __KAZ_MAC_SINCE(10.5);
CG_EXTERN const CFStringRef kCGColorSpaceAdobeRGB1998 __KAZ_MAC_SINCE(10.5);
CG_EXTERN const CFStringRef kCGColorSpaceSRGB __KAZ_MAC_SINCE(10.5);
CG_EXTERN const CFStringRef kCGColorSpaceGenericGrayGamma2_2 __KAZ_MAC_SINCE(10.6);

CG_EXTERN CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat components[]);
CG_EXTERN CGFloat CGColorGetAlpha(CGColorRef color);
CG_EXTERN CGColorSpaceRef CGColorGetColorSpace(CGColorRef color);
CG_EXTERN const CGFloat* CGColorGetComponents(CGColorRef color);
CG_EXTERN size_t CGColorGetNumberOfComponents(CGColorRef color);

enum CGImageAlphaInfo {
    kCGImageAlphaNone,
    kCGImageAlphaPremultipliedLast,
    kCGImageAlphaPremultipliedFirst,
    kCGImageAlphaLast,
    kCGImageAlphaFirst,
    kCGImageAlphaNoneSkipLast,
    kCGImageAlphaNoneSkipFirst,
    kCGImageAlphaOnly
};
typedef enum CGImageAlphaInfo CGImageAlphaInfo;
typedef uint32_t CGBitmapInfo;
CG_EXTERN CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect);
CG_EXTERN CGImageRef CGImageCreateWithMask(CGImageRef image, CGImageRef mask);
CG_EXTERN size_t CGImageGetBitsPerComponent(CGImageRef image);
CG_EXTERN size_t CGImageGetBitsPerPixel(CGImageRef image);
CG_EXTERN size_t CGImageGetBytesPerRow(CGImageRef image);
CG_EXTERN CGColorSpaceRef CGImageGetColorSpace(CGImageRef image);
CG_EXTERN size_t CGImageGetHeight(CGImageRef image);
CG_EXTERN size_t CGImageGetWidth(CGImageRef image);

CG_EXTERN CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                             size_t bytesPerRow, CGColorSpaceRef space,
                                             CGBitmapInfo bitmapInfo);
CG_EXTERN CGImageRef CGBitmapContextCreateImage(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
CG_EXTERN void* CGBitmapContextGetData(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetHeight(CGContextRef context);
CG_EXTERN size_t CGBitmapContextGetWidth(CGContextRef context);
CG_EXTERN CGContextRef CGContextRetain(CGContextRef context);
CG_EXTERN void CGContextRelease(CGContextRef context);
CG_EXTERN void CGContextClearRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);
CG_EXTERN void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextFillRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextFlush(CGContextRef context);
CG_EXTERN void CGContextRestoreGState(CGContextRef context);
CG_EXTERN void CGContextSaveGState(CGContextRef context);
CG_EXTERN void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
CG_EXTERN void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
CG_EXTERN void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty);
