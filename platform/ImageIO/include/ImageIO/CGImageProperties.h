// The keys of an image's properties.
#pragma once

#include <ImageIO/ImageIOBase.h>

/** Numbers: size in pixels, bits per component, dots per inch. */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyPixelWidth;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyPixelHeight;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyDepth;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyDPIWidth;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyDPIHeight;
/** A number from 1 to 8, as in TIFF and EXIF: 1 is upright, 6 needs a quarter turn to the right. */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyOrientation;
/** Booleans. */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyHasAlpha;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyIsFloat;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyIsIndexed;
/** One of the four model names below. */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyColorModel;
/** The description text of the embedded profile. */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyProfileName;

IMAGEIO_EXTERN const CFStringRef kCGImagePropertyColorModelRGB;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyColorModelGray;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyColorModelCMYK;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyColorModelLab;

/**
 * The dictionaries of metadata, present if the file has such metadata. They hold numbers, strings and arrays
 * of them under the names of the fields without their prefixes: "ExposureTime" and "ISOSpeedRatings" in
 * Exif, "Make" in TIFF, "Latitude" (in degrees, north or south by "LatitudeRef") in GPS, "Keywords" and
 * "Caption/Abstract" in IPTC. What a file says in XMP alone is under the keys of IPTC, Exif and TIFF.
 */
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyTIFFDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyExifDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyGPSDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyIPTCDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyPNGDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyGIFDictionary;
IMAGEIO_EXTERN const CFStringRef kCGImagePropertyJFIFDictionary;
