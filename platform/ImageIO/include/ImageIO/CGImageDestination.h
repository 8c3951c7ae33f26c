// Writing image files: "public.png", "public.jpeg" and "public.tiff".
#pragma once

#include <ImageIO/CGImageProperties.h>

typedef struct CGImageDestination* CGImageDestinationRef;

/** For JPEG: a number from 0 (smallest) to 1 (best). */
IMAGEIO_EXTERN const CFStringRef kCGImageDestinationLossyCompressionQuality;

/** A destination for `count` images (only TIFF takes more than one); null for an unknown type. */
IMAGEIO_EXTERN CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type,
                                                                     size_t count, CFDictionaryRef options);
IMAGEIO_EXTERN CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                                      size_t count, CFDictionaryRef options);
/** Adds an image; kCGImagePropertyOrientation, DPIWidth, DPIHeight and the quality are read from
 * `properties`, and the TIFF, Exif and GPS dictionaries, of which a TIFF file takes only the texts. */
IMAGEIO_EXTERN void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                               CFDictionaryRef properties);
/** Writes the file; false if the number of images is wrong, one cannot be encoded or the file cannot be
 * written. */
IMAGEIO_EXTERN bool CGImageDestinationFinalize(CGImageDestinationRef destination);
