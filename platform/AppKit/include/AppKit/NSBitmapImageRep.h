// A picture's pixels.
#pragma once

#import <AppKit/NSImageRep.h>

enum { NSTIFFFileType, NSBMPFileType, NSGIFFileType, NSJPEGFileType, NSPNGFileType, NSJPEG2000FileType };
typedef NSUInteger NSBitmapImageFileType;

enum {
    NSAlphaFirstBitmapFormat = 1 << 0,
    NSAlphaNonpremultipliedBitmapFormat = 1 << 1,
    NSFloatingPointSamplesBitmapFormat = 1 << 2
};
typedef NSUInteger NSBitmapFormat;

/** Property of JPEG files: the quality, a number from 0 to 1. */
APPKIT_EXTERN NSString* const NSImageCompressionFactor;

/** A bitmap. */
@interface NSBitmapImageRep : NSImageRep {
  @private
    CGImageRef _image;
    NSMutableData* _pixels;
    NSInteger _bytesPerRow;
    NSInteger _bitsPerPixel;
    NSInteger _samplesPerPixel;
    NSBitmapFormat _format;
}

/** Nil if the data are not an image. The array has a representation for each image in the data. */
+ (id)imageRepWithData:(NSData*)data;
+ (NSArray*)imageRepsWithData:(NSData*)data;
- (id)initWithData:(NSData*)data;
/** Nil for a null image. */
- (id)initWithCGImage:(CGImageRef)image;
/** Cleared pixels of its own in meshed 8-bit samples; `planes` must be null. Nil for any other layout. */
- (id)initWithBitmapDataPlanes:(unsigned char**)planes
                    pixelsWide:(NSInteger)width
                    pixelsHigh:(NSInteger)height
                 bitsPerSample:(NSInteger)bitsPerSample
               samplesPerPixel:(NSInteger)samplesPerPixel
                      hasAlpha:(BOOL)alpha
                      isPlanar:(BOOL)isPlanar
                colorSpaceName:(NSString*)colorSpaceName
                   bytesPerRow:(NSInteger)rowBytes
                  bitsPerPixel:(NSInteger)pixelBits;

/** The pixels, to be read and written, the top row first. */
- (unsigned char*)bitmapData;
- (NSInteger)bytesPerRow;
- (NSInteger)bitsPerPixel;
- (NSInteger)samplesPerPixel;
- (NSBitmapFormat)bitmapFormat;
- (BOOL)isPlanar;
/** Borrowed. */
- (CGImageRef)CGImage;
/** An image file: TIFF, JPEG or PNG; nil for any other type. */
- (NSData*)representationUsingType:(NSBitmapImageFileType)storageType properties:(NSDictionary*)properties;
- (NSData*)TIFFRepresentation;

@end
