// Reading image files: JPEG, PNG, TIFF, GIF, BMP and WebP, recognised by their bytes.
#pragma once

#include <ImageIO/CGImageProperties.h>

typedef struct CGImageSource* CGImageSourceRef;

/** A source over the bytes or the file; null when there are none or the format is unknown. */
IMAGEIO_EXTERN CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options);
IMAGEIO_EXTERN CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);
/** The uniform type identifier, such as "public.jpeg"; borrowed. */
IMAGEIO_EXTERN CFStringRef CGImageSourceGetType(CGImageSourceRef source);
/** The number of images: frames of a GIF or WebP, pages of a TIFF, 1 otherwise; 0 if the structure is
 * damaged. */
IMAGEIO_EXTERN size_t CGImageSourceGetCount(CGImageSourceRef source);
/** Decodes one image, in the colour space that the file names; null if it is damaged or too large. */
IMAGEIO_EXTERN CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index,
                                                          CFDictionaryRef options);
/** The properties of one image, under the keys of CGImageProperties.h; null for a damaged image. */
IMAGEIO_EXTERN CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index,
                                                                  CFDictionaryRef options);
