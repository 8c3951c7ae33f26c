// Writing image files: "public.png", "public.jpeg", "public.tiff", "com.compuserve.gif", "com.microsoft.bmp"
// and "org.webmproject.webp".
#pragma once

#include <ImageIO/CGImageProperties.h>
#include <ImageIO/CGImageSource.h>

typedef struct CGImageDestination* CGImageDestinationRef;

/** For JPEG and WebP: a number from 0 (smallest) to 1 (best; WebP then loses nothing). */
IMAGEIO_EXTERN const CFStringRef kCGImageDestinationLossyCompressionQuality;

/** A destination for `count` images (only TIFF takes more than one); null for an unknown type. */
IMAGEIO_EXTERN CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type,
                                                                     size_t count, CFDictionaryRef options);
IMAGEIO_EXTERN CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                                      size_t count, CFDictionaryRef options);
/**
 * Adds an image. Of the properties are written kCGImagePropertyOrientation, DPIWidth, DPIHeight, the quality
 * and the metadata in the dictionaries: TIFF, Exif and GPS into JPEG, PNG and WebP, the texts of TIFF into
 * TIFF; IPTC into JPEG and TIFF, and what XMP has a name for also into PNG and WebP. Without properties, a
 * file has no metadata.
 */
IMAGEIO_EXTERN void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                               CFDictionaryRef properties);
/**
 * The same with an image of a file and its properties, of which `properties` replace some and NSNull takes
 * some away, such as all of a kind: {"{GPS}": NSNull}.
 */
IMAGEIO_EXTERN void CGImageDestinationAddImageFromSource(CGImageDestinationRef destination,
                                                         CGImageSourceRef source, size_t index,
                                                         CFDictionaryRef properties);
/** Writes the file; false if the number of images is wrong, one cannot be encoded or the file cannot be
 * written. */
IMAGEIO_EXTERN bool CGImageDestinationFinalize(CGImageDestinationRef destination);
