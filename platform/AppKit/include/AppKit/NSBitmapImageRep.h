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

/** Property: a number from 0 to 1, the quality of JPEG. */
APPKIT_EXTERN NSString* const NSImageCompressionFactor;

/** A picture of pixels. */
@interface NSBitmapImageRep : NSImageRep {
  @private
    CGImageRef _image;
    NSMutableData* _pixels;
    NSInteger _bytesPerRow;
    NSInteger _bitsPerPixel;
    NSInteger _samplesPerPixel;
    NSBitmapFormat _format;
}

/** Nil when the data are no image. The array has one for each image in the data. */
+ (id)imageRepWithData:(NSData*)data;
+ (NSArray*)imageRepsWithData:(NSData*)data;
- (id)initWithData:(NSData*)data;
/** Nil for a null image. */
- (id)initWithCGImage:(CGImageRef)image;
/** Pixels of its own, cleared, in 8-bit samples, meshed; `planes` must be null. Nil for a layout it cannot
 * hold. */
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

/** The pixels for reading and writing, the top row first; what is written shows in later pictures. */
- (unsigned char*)bitmapData;
- (NSInteger)bytesPerRow;
- (NSInteger)bitsPerPixel;
- (NSInteger)samplesPerPixel;
- (NSBitmapFormat)bitmapFormat;
- (BOOL)isPlanar;
/** Borrowed. */
- (CGImageRef)CGImage;
/** An image file; nil for a type that cannot be written: TIFF, JPEG and PNG can. */
- (NSData*)representationUsingType:(NSBitmapImageFileType)storageType properties:(NSDictionary*)properties;
- (NSData*)TIFFRepresentation;

@end
