// A representation that renders its CIImage when it is drawn.
#import <AppKit/NSCIImageRep.h>

#import <QuartzCore/QuartzCore.h>

#include "drawing.h"

@implementation NSCIImageRep

+ (id)imageRepWithCIImage:(CIImage*)image {
    return [[[self alloc] initWithCIImage:image] autorelease];
}

- (id)initWithCIImage:(CIImage*)image {
    if (!(self = [super init])) return nil;
    if (!image) {
        [self release];
        return nil;
    }
    _image = [image retain];
    CGRect extent = [image extent];
    // An infinite picture has no size of its own.
    if (!CGRectIsInfinite(extent)) {
        [self setSize:NSSizeFromCGSize(extent.size)];
        [self setPixelsWide:static_cast<NSInteger>(extent.size.width)];
        [self setPixelsHigh:static_cast<NSInteger>(extent.size.height)];
    }
    [self setBitsPerSample:8];
    [self setAlpha:YES];
    [self setColorSpaceName:NSDeviceRGBColorSpace];
    return self;
}

- (void)dealloc {
    [_image release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    NSCIImageRep* copy = [[[self class] allocWithZone:zone] initWithCIImage:_image];
    [copy setSize:[self size]];
    return copy;
}

- (CIImage*)CIImage {
    return _image;
}

- (BOOL)draw {
    CIContext* context = [[NSGraphicsContext currentContext] CIContext];
    CGRect size = CGRectMake(0, 0, [self size].width, [self size].height);
    [context drawImage:_image inRect:size fromRect:[_image extent]];
    return context != nil;
}

@end

@implementation NSBitmapImageRep (NSCoreImageAdditions)

- (id)initWithCIImage:(CIImage*)ciImage {
    CIContext* context = [CIContext contextWithOptions:nil];
    auto pixels = cg::Retained<CGImageRef>::adopt([context createCGImage:ciImage fromRect:[ciImage extent]]);
    return [self initWithCGImage:pixels.get()];
}

@end

@implementation CIImage (NSAppKitAdditions)

- (id)initWithBitmapImageRep:(NSBitmapImageRep*)bitmapImageRep {
    return [self initWithCGImage:[bitmapImageRep CGImage]];
}

- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)delta {
    CGContextRef port = appkit::currentPort();
    if (!port) return;
    CGContextSaveGState(port);
    CGContextSetBlendMode(port, appkit::blendMode(op));
    CGContextSetAlpha(port, delta);
    [[[NSGraphicsContext currentContext] CIContext] drawImage:self
                                                       inRect:NSRectToCGRect(rect)
                                                     fromRect:NSRectToCGRect(fromRect)];
    CGContextRestoreGState(port);
}

- (void)drawAtPoint:(NSPoint)point
           fromRect:(NSRect)fromRect
          operation:(NSCompositingOperation)op
           fraction:(CGFloat)delta {
    [self drawInRect:NSMakeRect(point.x, point.y, fromRect.size.width, fromRect.size.height)
            fromRect:fromRect
           operation:op
            fraction:delta];
}

@end
