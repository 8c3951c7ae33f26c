// NSImage: a list of representations, the best of which is drawn.
#import <AppKit/NSImage.h>

#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSErrors.h>

#include "drawing.h"

NSString* const NSImageCacheException = @"NSImageCacheException";

@implementation NSImage

- (id)init {
    return [self initWithSize:NSMakeSize(0, 0)];
}

- (id)initWithSize:(NSSize)size {
    if (!(self = [super init])) return nil;
    _size = size;
    _representations = [[NSMutableArray alloc] init];
    return self;
}

- (id)initWithData:(NSData*)data {
    self = [self init];
    for (NSImageRep* rep in [NSBitmapImageRep imageRepsWithData:data]) [self addRepresentation:rep];
    if ([_representations count]) return self;
    [self release];
    return nil;
}

- (id)initWithContentsOfFile:(NSString*)path {
    return [self initWithData:path ? appkit::contents([NSURL fileURLWithPath:path]) : nil];
}

- (id)initWithContentsOfURL:(NSURL*)url {
    return [self initWithData:appkit::contents(url)];
}

- (id)initWithCGImage:(CGImageRef)image size:(NSSize)size {
    NSBitmapImageRep* rep = [[[NSBitmapImageRep alloc] initWithCGImage:image] autorelease];
    self = [self initWithSize:size];
    if (!rep) {
        [self release];
        return nil;
    }
    if (size.width > 0 && size.height > 0) [rep setSize:size];
    [self addRepresentation:rep];
    return self;
}

- (void)dealloc {
    [_representations release];
    [_focus release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    NSImage* copy = [[[self class] allocWithZone:zone] initWithSize:_size];
    for (NSImageRep* rep in _representations) [copy addRepresentation:[[rep copy] autorelease]];
    return copy;
}

/// The size that was set, or that of the first representation.
- (NSSize)size {
    if (_size.width > 0 || _size.height > 0 || ![_representations count]) return _size;
    return [(NSImageRep*)[_representations objectAtIndex:0] size];
}

- (void)setSize:(NSSize)size {
    _size = size;
}

- (BOOL)isValid {
    return [_representations count] > 0;
}

- (NSArray*)representations {
    return [[_representations copy] autorelease];
}

- (void)addRepresentation:(NSImageRep*)representation {
    if (representation) [_representations addObject:representation];
}

- (void)removeRepresentation:(NSImageRep*)representation {
    [_representations removeObjectIdenticalTo:representation];
}

/// The representation with the most pixels.
- (NSImageRep*)bestRepresentation {
    NSImageRep* best = nil;
    for (NSImageRep* rep in _representations)
        if (!best || [rep pixelsWide] > [best pixelsWide]) best = rep;
    return best;
}

- (void)lockFocus {
    NSSize size = [self size];
    auto bitmap = appkit::makeBitmap(size);
    if (!bitmap)
        [NSException raise:NSImageCacheException
                    format:@"Can't lock focus on an image of size %g x %g", size.width, size.height];
    [_focus release];
    _focus = [[NSGraphicsContext graphicsContextWithGraphicsPort:bitmap.get() flipped:NO] retain];
    [NSGraphicsContext saveGraphicsState];
    [NSGraphicsContext setCurrentContext:_focus];
    [[self bestRepresentation] drawInRect:NSMakeRect(0, 0, size.width, size.height)];
}

- (void)unlockFocus {
    if (!_focus) return;
    auto image = cg::Retained<CGImageRef>::adopt(
        CGBitmapContextCreateImage(static_cast<CGContextRef>([_focus graphicsPort])));
    [NSGraphicsContext restoreGraphicsState];
    [_focus release];
    _focus = nil;
    NSBitmapImageRep* rep = [[[NSBitmapImageRep alloc] initWithCGImage:image.get()] autorelease];
    NSSize size = [self size];
    [_representations removeAllObjects];
    [rep setSize:size];
    [self addRepresentation:rep];
}

- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)from
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)delta {
    CGContextRef port = appkit::currentPort();
    NSImageRep* rep = [self bestRepresentation];
    NSSize size = [self size];
    if (!port || !rep || size.width <= 0 || size.height <= 0) return;
    if (NSIsEmptyRect(from)) from = NSMakeRect(0, 0, size.width, size.height);
    // Places the whole picture so that the part falls on the rectangle, and clips the rest away.
    CGFloat sx = rect.size.width / from.size.width, sy = rect.size.height / from.size.height;
    CGContextSaveGState(port);
    CGContextClipToRect(port, NSRectToCGRect(rect));
    CGContextSetBlendMode(port, appkit::blendMode(operation));
    CGContextSetAlpha(port, delta);
    [rep drawInRect:NSMakeRect(rect.origin.x - from.origin.x * sx, rect.origin.y - from.origin.y * sy,
                               size.width * sx, size.height * sy)];
    CGContextRestoreGState(port);
}

- (void)drawAtPoint:(NSPoint)point
           fromRect:(NSRect)from
          operation:(NSCompositingOperation)operation
           fraction:(CGFloat)delta {
    NSSize size = NSIsEmptyRect(from) ? [self size] : from.size;
    [self drawInRect:NSMakeRect(point.x, point.y, size.width, size.height)
            fromRect:from
           operation:operation
            fraction:delta];
}

- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedRect
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints {
    return [[self bestRepresentation] CGImageForProposedRect:proposedRect context:context hints:hints];
}

- (NSData*)TIFFRepresentation {
    CGImageRef image = [self CGImageForProposedRect:nullptr context:nil hints:nil];
    NSBitmapImageRep* rep = [[[NSBitmapImageRep alloc] initWithCGImage:image] autorelease];
    [rep setSize:[self size]];
    return [rep TIFFRepresentation];
}

@end
