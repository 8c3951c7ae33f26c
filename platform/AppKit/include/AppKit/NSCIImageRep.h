// A Core Image recipe as a picture's representation.
#pragma once

#import <AppKit/NSBitmapImageRep.h>

@class CIImage;

/** A representation that renders its Core Image recipe when it is drawn. */
@interface NSCIImageRep : NSImageRep {
  @private
    CIImage* _image;
}

/** Its size is the image's extent. Nil for nil. */
+ (id)imageRepWithCIImage:(CIImage*)image;
- (id)initWithCIImage:(CIImage*)image;
- (CIImage*)CIImage;

@end

@interface NSBitmapImageRep (NSCoreImageAdditions)
/** The rendered pixels of the extent. Nil for nil, and for an empty, infinite or huge extent. */
- (id)initWithCIImage:(CIImage*)ciImage;
@end

// For who can see Core Image's headers.
#if __has_include(<QuartzCore/CIImage.h>)
#import <QuartzCore/CIImage.h>

@interface CIImage (NSAppKitAdditions)
/** Nil for nil. */
- (id)initWithBitmapImageRep:(NSBitmapImageRep*)bitmapImageRep;
/** Draws a part of the image, scaled, into the current context. */
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)delta;
- (void)drawAtPoint:(NSPoint)point
           fromRect:(NSRect)fromRect
          operation:(NSCompositingOperation)op
           fraction:(CGFloat)delta;
@end
#endif
