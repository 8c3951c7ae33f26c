// Image files of Mac OS X 10.5, as far as the product uses them.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

typedef struct CGImageSource* CGImageSourceRef;
typedef struct CGImageDestination* CGImageDestinationRef;

CG_EXTERN CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);
CG_EXTERN CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef isrc, size_t index,
                                                     CFDictionaryRef options);
CG_EXTERN CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type, size_t count,
                                                                CFDictionaryRef options);
CG_EXTERN void CGImageDestinationAddImage(CGImageDestinationRef idst, CGImageRef image,
                                          CFDictionaryRef properties);
CG_EXTERN bool CGImageDestinationFinalize(CGImageDestinationRef idst);
