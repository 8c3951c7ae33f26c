// Colour spaces: the meaning of the components of a colour or a pixel.
#pragma once

#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGDataProvider.h>

typedef struct CGColorSpace* CGColorSpaceRef;

enum {
    kCGColorSpaceModelUnknown = -1,
    kCGColorSpaceModelMonochrome,
    kCGColorSpaceModelRGB,
    kCGColorSpaceModelCMYK,
    kCGColorSpaceModelLab,
    kCGColorSpaceModelDeviceN,
    kCGColorSpaceModelIndexed,
    kCGColorSpaceModelPattern
};
typedef int32_t CGColorSpaceModel;

enum {
    kCGRenderingIntentDefault,
    kCGRenderingIntentAbsoluteColorimetric,
    kCGRenderingIntentRelativeColorimetric,
    kCGRenderingIntentPerceptual,
    kCGRenderingIntentSaturation
};
typedef int32_t CGColorRenderingIntent;

CG_EXTERN const CFStringRef kCGColorSpaceGenericGray;
CG_EXTERN const CFStringRef kCGColorSpaceGenericGrayGamma2_2;
CG_EXTERN const CFStringRef kCGColorSpaceGenericRGB;
CG_EXTERN const CFStringRef kCGColorSpaceGenericRGBLinear;
CG_EXTERN const CFStringRef kCGColorSpaceGenericCMYK;
CG_EXTERN const CFStringRef kCGColorSpaceAdobeRGB1998;
CG_EXTERN const CFStringRef kCGColorSpaceSRGB;

/** The spaces of the display. Each call returns the same object, retained. */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceGray(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateDeviceCMYK(void);
/** One of the named spaces above, the same object every time; null for an unknown name. */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);

/**
 * A gray space from its white point (XYZ with Y = 1), black point (not used) and gamma.
 * Null when the white point is missing or not normalised.
 */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateCalibratedGray(const CGFloat whitePoint[3],
                                                           const CGFloat blackPoint[3], CGFloat gamma);
/**
 * An RGB space from its white point (XYZ), black point (not used), a gamma for each channel and the
 * matrix whose rows are the XYZ of the red, green and blue primary. Null arrays for gamma and matrix
 * mean gamma 1 and the identity. Null when the white point is missing or the matrix is singular.
 */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateCalibratedRGB(const CGFloat whitePoint[3],
                                                          const CGFloat blackPoint[3], const CGFloat gamma[3],
                                                          const CGFloat matrix[9]);
/** A space from the bytes of an ICC profile; null when they are not one. */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateWithICCProfile(CFDataRef data);
/**
 * The space of the profile if it has that many components, else `alternate`, retained, if that has; null
 * otherwise. `range` is ignored.
 */
CG_EXTERN CGColorSpaceRef CGColorSpaceCreateICCBased(size_t componentCount, const CGFloat* range,
                                                     CGDataProviderRef profile, CGColorSpaceRef alternate);

CG_EXTERN size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space);
CG_EXTERN CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space);
/** The ICC profile of the space as a new data object; null for a space without one (device CMYK). */
CG_EXTERN CFDataRef CGColorSpaceCopyICCProfile(CGColorSpaceRef space);
/** The name of a named space; null for any other. */
CG_EXTERN CFStringRef CGColorSpaceCopyName(CGColorSpaceRef space);
CG_EXTERN CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
CG_EXTERN void CGColorSpaceRelease(CGColorSpaceRef space);
