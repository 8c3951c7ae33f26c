// Drawing. User space has its origin at the lower left, y upwards.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>

typedef struct CGContext* CGContextRef;

enum {
    kCGBlendModeNormal,
    kCGBlendModeMultiply,
    kCGBlendModeScreen,
    kCGBlendModeOverlay,
    kCGBlendModeDarken,
    kCGBlendModeLighten,
    kCGBlendModeColorDodge,
    kCGBlendModeColorBurn,
    kCGBlendModeSoftLight,
    kCGBlendModeHardLight,
    kCGBlendModeDifference,
    kCGBlendModeExclusion,
    kCGBlendModeHue,
    kCGBlendModeSaturation,
    kCGBlendModeColor,
    kCGBlendModeLuminosity,
    kCGBlendModeClear,
    kCGBlendModeCopy,
    kCGBlendModeSourceIn,
    kCGBlendModeSourceOut,
    kCGBlendModeSourceAtop,
    kCGBlendModeDestinationOver,
    kCGBlendModeDestinationIn,
    kCGBlendModeDestinationOut,
    kCGBlendModeDestinationAtop,
    kCGBlendModeXOR,
    kCGBlendModePlusDarker,
    kCGBlendModePlusLighter
};
typedef int32_t CGBlendMode;

enum {
    kCGInterpolationDefault,
    kCGInterpolationNone,
    kCGInterpolationLow,
    kCGInterpolationHigh,
    kCGInterpolationMedium
};
typedef int32_t CGInterpolationQuality;

CG_EXTERN CGContextRef CGContextRetain(CGContextRef context);
CG_EXTERN void CGContextRelease(CGContextRef context);
/** Bitmap contexts draw immediately, so these do nothing. */
CG_EXTERN void CGContextFlush(CGContextRef context);
CG_EXTERN void CGContextSynchronize(CGContextRef context);

/** The state: CTM, clip, colours, alpha, blend mode, line width, interpolation. A lone restore does nothing.
 */
CG_EXTERN void CGContextSaveGState(CGContextRef context);
CG_EXTERN void CGContextRestoreGState(CGContextRef context);

CG_EXTERN void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
CG_EXTERN void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty);
CG_EXTERN void CGContextRotateCTM(CGContextRef context, CGFloat angle);
CG_EXTERN void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform);
CG_EXTERN CGAffineTransform CGContextGetCTM(CGContextRef context);
/** From user space to device space: pixels with the origin at the lower left. */
CG_EXTERN CGAffineTransform CGContextGetUserSpaceToDeviceSpaceTransform(CGContextRef context);
CG_EXTERN CGPoint CGContextConvertPointToDeviceSpace(CGContextRef context, CGPoint point);
CG_EXTERN CGPoint CGContextConvertPointToUserSpace(CGContextRef context, CGPoint point);
CG_EXTERN CGSize CGContextConvertSizeToDeviceSpace(CGContextRef context, CGSize size);
CG_EXTERN CGSize CGContextConvertSizeToUserSpace(CGContextRef context, CGSize size);
CG_EXTERN CGRect CGContextConvertRectToDeviceSpace(CGContextRef context, CGRect rect);
CG_EXTERN CGRect CGContextConvertRectToUserSpace(CGContextRef context, CGRect rect);

CG_EXTERN void CGContextSetAlpha(CGContextRef context, CGFloat alpha);
CG_EXTERN void CGContextSetBlendMode(CGContextRef context, CGBlendMode mode);
CG_EXTERN void CGContextSetInterpolationQuality(CGContextRef context, CGInterpolationQuality quality);
CG_EXTERN CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef context);
CG_EXTERN void CGContextSetShouldAntialias(CGContextRef context, bool shouldAntialias);
CG_EXTERN void CGContextSetLineWidth(CGContextRef context, CGFloat width);

CG_EXTERN void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
CG_EXTERN void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color);
/** Sets the space and its default colour: black, opaque. */
CG_EXTERN void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space);
CG_EXTERN void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space);
/** The components belong to the current fill (stroke) space, alpha last. */
CG_EXTERN void CGContextSetFillColor(CGContextRef context, const CGFloat components[]);
CG_EXTERN void CGContextSetStrokeColor(CGContextRef context, const CGFloat components[]);
CG_EXTERN void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha);
CG_EXTERN void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha);
CG_EXTERN void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                        CGFloat alpha);
CG_EXTERN void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                          CGFloat alpha);
CG_EXTERN void CGContextSetCMYKFillColor(CGContextRef context, CGFloat cyan, CGFloat magenta, CGFloat yellow,
                                         CGFloat black, CGFloat alpha);

/** The current path. Painting and clipping consume it. */
CG_EXTERN void CGContextBeginPath(CGContextRef context);
CG_EXTERN void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddCurveToPoint(CGContextRef context, CGFloat cp1x, CGFloat cp1y, CGFloat cp2x,
                                        CGFloat cp2y, CGFloat x, CGFloat y);
CG_EXTERN void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat cpx, CGFloat cpy, CGFloat x,
                                            CGFloat y);
CG_EXTERN void CGContextAddRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextAddEllipseInRect(CGContextRef context, CGRect rect);
/** Angles in radians; `clockwise` is seen in user space. */
CG_EXTERN void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat startAngle,
                               CGFloat endAngle, int clockwise);
CG_EXTERN void CGContextClosePath(CGContextRef context);
CG_EXTERN bool CGContextIsPathEmpty(CGContextRef context);
CG_EXTERN void CGContextFillPath(CGContextRef context);
CG_EXTERN void CGContextEOFillPath(CGContextRef context);
CG_EXTERN void CGContextStrokePath(CGContextRef context);
CG_EXTERN void CGContextClip(CGContextRef context);
CG_EXTERN void CGContextEOClip(CGContextRef context);

CG_EXTERN void CGContextClipToRect(CGContextRef context, CGRect rect);
/** Clips to the image stretched over `rect`, read as CGImageCreateWithMask reads its mask. */
CG_EXTERN void CGContextClipToMask(CGContextRef context, CGRect rect, CGImageRef mask);
/** In user space; CGRectNull when everything is clipped away. */
CG_EXTERN CGRect CGContextGetClipBoundingBox(CGContextRef context);

CG_EXTERN void CGContextFillRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextFillRects(CGContextRef context, const CGRect rects[], size_t count);
CG_EXTERN void CGContextStrokeRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width);
CG_EXTERN void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect);
CG_EXTERN void CGContextStrokeLineSegments(CGContextRef context, const CGPoint points[], size_t count);
/** Makes the area transparent: every byte 0. */
CG_EXTERN void CGContextClearRect(CGContextRef context, CGRect rect);
/**
 * Draws the image upright into `rect`, converted to the context's colour space. A mask image paints the fill
 * colour through itself. Enlarging interpolates bilinearly, reducing averages, kCGInterpolationNone picks
 * the nearest pixel.
 */
CG_EXTERN void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);
