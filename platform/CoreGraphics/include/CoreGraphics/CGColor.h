// Colours: the components of a colour space and an alpha, immutable.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

typedef struct CGColor* CGColorRef;

/** A colour from the components of its space followed by alpha; null without space or components. */
CG_EXTERN CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat components[]);
CG_EXTERN CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha);
CG_EXTERN CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
CG_EXTERN CGColorRef CGColorCreateGenericCMYK(CGFloat cyan, CGFloat magenta, CGFloat yellow, CGFloat black,
                                              CGFloat alpha);
CG_EXTERN CGColorRef CGColorCreateCopy(CGColorRef color);
CG_EXTERN CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha);
/** Same space, same components, same alpha; two null colours are equal. */
CG_EXTERN bool CGColorEqualToColor(CGColorRef a, CGColorRef b);
/** The number of components, alpha included. */
CG_EXTERN size_t CGColorGetNumberOfComponents(CGColorRef color);
/** The components with alpha last; they live as long as the colour. */
CG_EXTERN const CGFloat* CGColorGetComponents(CGColorRef color);
CG_EXTERN CGFloat CGColorGetAlpha(CGColorRef color);
/** Borrowed from the colour. */
CG_EXTERN CGColorSpaceRef CGColorGetColorSpace(CGColorRef color);
CG_EXTERN CGColorRef CGColorRetain(CGColorRef color);
CG_EXTERN void CGColorRelease(CGColorRef color);
