// Data providers: the bytes behind an image.
#pragma once

#include <CoreGraphics/CGBase.h>

typedef struct CGDataProvider* CGDataProviderRef;

/** Called once when the provider no longer needs `data`. */
typedef void (*CGDataProviderReleaseDataCallback)(void* info, const void* data, size_t size);

/** Wraps `size` bytes without copying them; they must stay valid until `releaseData` is called. */
CG_EXTERN CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                                         CGDataProviderReleaseDataCallback releaseData);
/** Retains `data`; null gives null. */
CG_EXTERN CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data);
/** The contents of a file; null if it cannot be read or the URL is not a file's. */
CG_EXTERN CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url);
/** All bytes of the provider as a new data object. */
CG_EXTERN CFDataRef CGDataProviderCopyData(CGDataProviderRef provider);
CG_EXTERN CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider);
CG_EXTERN void CGDataProviderRelease(CGDataProviderRef provider);
