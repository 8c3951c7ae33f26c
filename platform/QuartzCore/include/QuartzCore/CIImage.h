// Images, and their automatic adjustment.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIColor;
@class CIFilterShape;

/** Layouts of bitmaps; pixels are premultiplied, components in the machine's byte order. */
typedef int CIFormat;
CORE_IMAGE_EXPORT CIFormat kCIFormatBGRA8;  /* 20: bytes B G R A */
CORE_IMAGE_EXPORT CIFormat kCIFormatARGB8;  /* 23: bytes A R G B */
CORE_IMAGE_EXPORT CIFormat kCIFormatRGBA8;  /* 24: bytes R G B A */
CORE_IMAGE_EXPORT CIFormat kCIFormatRGBA16; /* 27: 16 bits each */
CORE_IMAGE_EXPORT CIFormat kCIFormatRGBAh;  /* 31: floats of 16 bits */
CORE_IMAGE_EXPORT CIFormat kCIFormatRGBAf;  /* 34: floats */

/** Option: the CGColorSpace in which to read the data instead of their own, or NSNull for no colour matching.
 */
CORE_IMAGE_EXPORT NSString* const kCIImageColorSpace;
/** Option: the dictionary that `properties` returns. */
CORE_IMAGE_EXPORT NSString* const kCIImageProperties;

/** Options of an image provider: an NSNumber, the rows that it is asked for at once, or an NSArray whose
 * second number says that; and an object that every call gets. */
CORE_IMAGE_EXPORT NSString* const kCIImageProviderTileSize;
CORE_IMAGE_EXPORT NSString* const kCIImageProviderUserInfo;

/** Options of the automatic adjustment: NSNumbers, NO to leave out the enhancement or the correction of red
 * eyes; and an NSArray of features to use instead of detecting faces. */
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustEnhance;
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustRedEye;
CORE_IMAGE_EXPORT NSString* const kCIImageAutoAdjustFeatures;

/**
 * A recipe for an image: nothing is computed until it is drawn. Immutable; a copy is the receiver, retained.
 * The origin is the lower left corner.
 */
@interface CIImage : NSObject <NSCopying> {
  @private
    struct CIImageState* _state;
}

+ (CIImage*)imageWithCGImage:(CGImageRef)image;
+ (CIImage*)imageWithCGImage:(CGImageRef)image options:(NSDictionary*)options;
+ (CIImage*)imageWithBitmapData:(NSData*)data
                    bytesPerRow:(size_t)bytesPerRow
                           size:(CGSize)size
                         format:(CIFormat)format
                     colorSpace:(CGColorSpaceRef)colorSpace;
+ (CIImage*)imageWithContentsOfURL:(NSURL*)url;
+ (CIImage*)imageWithContentsOfURL:(NSURL*)url options:(NSDictionary*)options;
+ (CIImage*)imageWithData:(NSData*)data;
+ (CIImage*)imageWithData:(NSData*)data options:(NSDictionary*)options;
+ (CIImage*)imageWithImageProvider:(id)p
                              size:(size_t)width
                                  :(size_t)height
                            format:(CIFormat)f
                        colorSpace:(CGColorSpaceRef)cs
                           options:(NSDictionary*)options;
/** One colour everywhere. Nil for a nil colour. */
+ (CIImage*)imageWithColor:(CIColor*)color;
/** Transparent everywhere. */
+ (CIImage*)emptyImage;

/** Nil for a null image. */
- (id)initWithCGImage:(CGImageRef)image;
- (id)initWithCGImage:(CGImageRef)image options:(NSDictionary*)options;
/** Nil if the format is unknown, the size is not positive, there are too few data or the space is not RGB. */
- (id)initWithBitmapData:(NSData*)data
             bytesPerRow:(size_t)bytesPerRow
                    size:(CGSize)size
                  format:(CIFormat)format
              colorSpace:(CGColorSpaceRef)colorSpace;
/**
 * Pixels that the provider is asked for when they are rendered; it is retained. Nil for a nil provider, an
 * unknown format, an impossible size or a space that is not RGB.
 */
- (id)initWithImageProvider:(id)p
                       size:(size_t)width
                           :(size_t)height
                     format:(CIFormat)f
                 colorSpace:(CGColorSpaceRef)cs
                    options:(NSDictionary*)options;
/** Nil if there is no readable image file. */
- (id)initWithContentsOfURL:(NSURL*)url;
- (id)initWithContentsOfURL:(NSURL*)url options:(NSDictionary*)options;
/** Nil unless the bytes are an undamaged image file. */
- (id)initWithData:(NSData*)data;
- (id)initWithData:(NSData*)data options:(NSDictionary*)options;
- (id)initWithColor:(CIColor*)color;

/** A matrix that is not finite raises NSInvalidArgumentException; a singular one gives an empty image. */
- (CIImage*)imageByApplyingTransform:(CGAffineTransform)matrix;
- (CIImage*)imageByCroppingToRect:(CGRect)r;

/** The rectangle outside of which the image is transparent; CGRectInfinite if unbounded, CGRectZero if empty.
 */
- (CGRect)extent;
- (CIFilterShape*)definition;
/** The properties of the file, or the dictionary given as kCIImageProperties; empty for other images. */
- (NSDictionary*)properties;
/** The file that the image was read from, or nil. */
- (NSURL*)url;
/** The space of the pixels that the image was made from; null for a computed image. Borrowed. */
- (CGColorSpaceRef)colorSpace;
/** The recipe: how many passes and steps it takes, and the steps, each above those that it reads. */
- (NSString*)debugDescription;

@end

/** What an image provider implements. */
@interface NSObject (CIImageProvider)
/**
 * Writes a part of the picture to `data`. `x` and `y` are counted from the picture's upper left corner.
 * Called from any thread, but for one image never from two at once; an exception ends the rendering with its
 * reason.
 */
- (void)provideImageData:(void*)data
             bytesPerRow:(size_t)rowbytes
                  origin:(size_t)x
                        :(size_t)y
                    size:(size_t)width
                        :(size_t)height
                userInfo:(id)info;
@end

@interface CIImage (AutoAdjustment)
/**
 * The filters that would improve the picture, with every input set but the image; chain them in their order.
 * First CIRedEyeCorrections and CIFaceBalance, if a face needs them, then CIVibrance, CIToneCurve and
 * CIHighlightShadowAdjust. Empty if the extent is empty or infinite. Analyses the picture immediately.
 */
- (NSArray*)autoAdjustmentFilters;
/**
 * The same with the kCIImageAutoAdjust options and, under kCGImagePropertyOrientation, the picture's
 * orientation for the detection of faces; it defaults to that in the picture's own properties. The options
 * may be nil.
 */
- (NSArray*)autoAdjustmentFiltersWithOptions:(NSDictionary*)options;
@end
