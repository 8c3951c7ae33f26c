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
    CGContextRef port = appkit::currentPort();
    CIContext* context = port ? [CIContext contextWithCGContext:port options:nil] : nil;
    CGRect size = CGRectMake(0, 0, [self size].width, [self size].height);
    [context drawImage:_image inRect:size fromRect:[_image extent]];
    return context != nil;
}

@end
