// Pictures.
#pragma once

#import <AppKit/NSImageRep.h>

/** A picture with one or more representations. */
@interface NSImage : NSObject <NSCopying> {
  @private
    NSSize _size;
    NSMutableArray* _representations;
    NSGraphicsContext* _focus;
}

/** An empty picture of a size in points. */
- (id)initWithSize:(NSSize)size;
/** Nil if there is no readable image. */
- (id)initWithData:(NSData*)data;
- (id)initWithContentsOfFile:(NSString*)path;
- (id)initWithContentsOfURL:(NSURL*)url;
/** A size of zero means one point for each pixel. */
- (id)initWithCGImage:(CGImageRef)image size:(NSSize)size;

- (NSSize)size;
- (void)setSize:(NSSize)size;
- (BOOL)isValid;
- (NSArray*)representations;
- (void)addRepresentation:(NSImageRep*)representation;
- (void)removeRepresentation:(NSImageRep*)representation;

/**
 * Between the two, drawing goes into the picture, on top of its contents. The result is one bitmap that
 * replaces the representations. An empty size raises NSImageCacheException.
 */
- (void)lockFocus;
- (void)unlockFocus;

/** Draws `from` (everything when empty) of the picture into the current context. */
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)from
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)delta;
- (void)drawAtPoint:(NSPoint)point
           fromRect:(NSRect)from
          operation:(NSCompositingOperation)operation
           fraction:(CGFloat)delta;

/** The picture as TIFF; nil without a representation. */
- (NSData*)TIFFRepresentation;
/** Autoreleased; null without a representation. */
- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedRect
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints;

@end
