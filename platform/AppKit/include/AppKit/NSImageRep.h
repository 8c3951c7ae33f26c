// The representations of pictures.
#pragma once

#import <AppKit/NSGraphicsContext.h>

/** One representation of an image. Subclasses implement -draw. */
@interface NSImageRep : NSObject <NSCopying> {
  @private
    NSSize _size;
    NSInteger _pixelsWide;
    NSInteger _pixelsHigh;
    NSInteger _bitsPerSample;
    BOOL _alpha;
    BOOL _opaque;
    NSString* _colorSpaceName;
}

/** The representation of the file, or nil. */
+ (id)imageRepWithContentsOfFile:(NSString*)filename;

/** In points. */
- (NSSize)size;
- (void)setSize:(NSSize)size;
- (NSInteger)pixelsWide;
- (void)setPixelsWide:(NSInteger)pixels;
- (NSInteger)pixelsHigh;
- (void)setPixelsHigh:(NSInteger)pixels;
- (NSInteger)bitsPerSample;
- (void)setBitsPerSample:(NSInteger)bits;
- (BOOL)hasAlpha;
- (void)setAlpha:(BOOL)alpha;
- (BOOL)isOpaque;
- (void)setOpaque:(BOOL)opaque;
- (NSString*)colorSpaceName;
- (void)setColorSpaceName:(NSString*)name;

/** Draws at the origin of the current context, in its own size. NO without a context or anything to draw. */
- (BOOL)draw;
- (BOOL)drawAtPoint:(NSPoint)point;
- (BOOL)drawInRect:(NSRect)rect;
/** An image of the representation, autoreleased, in the size of `proposedRect` or, if that is null, its own.
 */
- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedRect
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints;

@end
