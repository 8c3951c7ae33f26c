// The properties of every representation, and drawing one in a rectangle.
#import <AppKit/NSImageRep.h>

#import <AppKit/NSBitmapImageRep.h>

#include "drawing.h"

@implementation NSImageRep

+ (id)imageRepWithContentsOfFile:(NSString*)filename {
    NSData* data = filename ? appkit::contents([NSURL fileURLWithPath:filename]) : nil;
    return data ? [NSBitmapImageRep imageRepWithData:data] : nil;
}

- (void)dealloc {
    [_colorSpaceName release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    NSImageRep* copy = [[[self class] allocWithZone:zone] init];
    [copy setSize:_size];
    [copy setPixelsWide:_pixelsWide];
    [copy setPixelsHigh:_pixelsHigh];
    [copy setBitsPerSample:_bitsPerSample];
    [copy setAlpha:_alpha];
    [copy setOpaque:_opaque];
    [copy setColorSpaceName:_colorSpaceName];
    return copy;
}

- (NSSize)size {
    return _size;
}

- (void)setSize:(NSSize)size {
    _size = size;
}

- (NSInteger)pixelsWide {
    return _pixelsWide;
}

- (void)setPixelsWide:(NSInteger)pixels {
    _pixelsWide = pixels;
}

- (NSInteger)pixelsHigh {
    return _pixelsHigh;
}

- (void)setPixelsHigh:(NSInteger)pixels {
    _pixelsHigh = pixels;
}

- (NSInteger)bitsPerSample {
    return _bitsPerSample;
}

- (void)setBitsPerSample:(NSInteger)bits {
    _bitsPerSample = bits;
}

- (BOOL)hasAlpha {
    return _alpha;
}

- (void)setAlpha:(BOOL)alpha {
    _alpha = alpha;
}

- (BOOL)isOpaque {
    return _opaque;
}

- (void)setOpaque:(BOOL)opaque {
    _opaque = opaque;
}

- (NSString*)colorSpaceName {
    return _colorSpaceName;
}

- (void)setColorSpaceName:(NSString*)name {
    NSString* old = _colorSpaceName;
    _colorSpaceName = [name copy];
    [old release];
}

- (BOOL)draw {
    return NO;
}

- (BOOL)drawAtPoint:(NSPoint)point {
    return [self drawInRect:NSMakeRect(point.x, point.y, _size.width, _size.height)];
}

- (BOOL)drawInRect:(NSRect)rect {
    CGContextRef port = appkit::currentPort();
    if (!port || _size.width <= 0 || _size.height <= 0) return NO;
    CGContextSaveGState(port);
    CGContextTranslateCTM(port, rect.origin.x, rect.origin.y);
    CGContextScaleCTM(port, rect.size.width / _size.width, rect.size.height / _size.height);
    BOOL drawn = [self draw];
    CGContextRestoreGState(port);
    return drawn;
}

- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedRect
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints {
    NSSize size = proposedRect ? proposedRect->size : _size;
    auto bitmap = appkit::makeBitmap(size);
    if (!bitmap) return nullptr;
    [NSGraphicsContext saveGraphicsState];
    [NSGraphicsContext setCurrentContext:[NSGraphicsContext graphicsContextWithGraphicsPort:bitmap.get()
                                                                                    flipped:NO]];
    BOOL drawn = [self drawInRect:NSMakeRect(0, 0, size.width, size.height)];
    [NSGraphicsContext restoreGraphicsState];
    if (!drawn) return nullptr;
    return static_cast<CGImageRef>((void*)[(id)CGBitmapContextCreateImage(bitmap.get()) autorelease]);
}

@end
