// Bitmaps: over a CGImage, or over pixels that the program writes.
#import <AppKit/NSBitmapImageRep.h>

#include "drawing.h"

#include <ImageIO/ImageIO.h>
#include <cg/image.h>

#include <algorithm>

NSString* const NSImageCompressionFactor = @"NSImageCompressionFactor";

namespace {

/// The uniform type identifier; nil for types that cannot be written.
NSString* typeIdentifier(NSBitmapImageFileType type) {
    switch (type) {
    case NSTIFFFileType:
        return @"public.tiff";
    case NSJPEGFileType:
        return @"public.jpeg";
    case NSPNGFileType:
        return @"public.png";
    default:
        return nil;
    }
}

CGImageRef imageAt(CGImageSourceRef source, size_t index) {
    return CGImageSourceCreateImageAtIndex(source, index, nullptr);
}

/// The size in points that the file's resolution gives.
NSSize pointSize(CGImageSourceRef source, size_t index, CGImageRef image) {
    NSDictionary* properties =
        [(NSDictionary*)CGImageSourceCopyPropertiesAtIndex(source, index, nullptr) autorelease];
    CGFloat dpiX = [[properties objectForKey:(NSString*)kCGImagePropertyDPIWidth] floatValue];
    CGFloat dpiY = [[properties objectForKey:(NSString*)kCGImagePropertyDPIHeight] floatValue];
    return NSMakeSize(CGImageGetWidth(image) * (dpiX > 0 ? 72 / dpiX : 1),
                      CGImageGetHeight(image) * (dpiY > 0 ? 72 / dpiY : 1));
}

} // namespace

@implementation NSBitmapImageRep

+ (id)imageRepWithData:(NSData*)data {
    return [[[self alloc] initWithData:data] autorelease];
}

+ (NSArray*)imageRepsWithData:(NSData*)data {
    auto source =
        cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithData((CFDataRef)data, nullptr));
    NSMutableArray* reps = [NSMutableArray array];
    size_t count = CGImageSourceGetCount(source.get());
    // The frames of an animation are one representation, which shows the first.
    if ([(NSString*)CGImageSourceGetType(source.get()) isEqualToString:@"com.compuserve.gif"])
        count = std::min<size_t>(count, 1);
    for (size_t i = 0; i < count; ++i) {
        auto image = cg::Retained<CGImageRef>::adopt(imageAt(source.get(), i));
        NSBitmapImageRep* rep = [[[self alloc] initWithCGImage:image.get()] autorelease];
        if (!rep) continue;
        [rep setSize:pointSize(source.get(), i, image.get())];
        [reps addObject:rep];
    }
    return reps;
}

- (id)initWithData:(NSData*)data {
    auto source =
        cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithData((CFDataRef)data, nullptr));
    auto image = cg::Retained<CGImageRef>::adopt(imageAt(source.get(), 0));
    if (!(self = [self initWithCGImage:image.get()])) return nil;
    [self setSize:pointSize(source.get(), 0, image.get())];
    return self;
}

- (id)initWithCGImage:(CGImageRef)image {
    if (!(self = [super init])) return nil;
    if (!image) {
        [self release];
        return nil;
    }
    _image = CGImageRetain(image);
    CGImageAlphaInfo alpha = CGImageGetAlphaInfo(image);
    size_t colors = CGColorSpaceGetNumberOfComponents(CGImageGetColorSpace(image));
    bool hasAlpha = alpha != kCGImageAlphaNone && alpha != kCGImageAlphaNoneSkipFirst &&
                    alpha != kCGImageAlphaNoneSkipLast;
    bool first = alpha == kCGImageAlphaFirst || alpha == kCGImageAlphaPremultipliedFirst;
    bool straight = alpha == kCGImageAlphaFirst || alpha == kCGImageAlphaLast;
    _bytesPerRow = static_cast<NSInteger>(CGImageGetBytesPerRow(image));
    _bitsPerPixel = static_cast<NSInteger>(CGImageGetBitsPerPixel(image));
    _samplesPerPixel = static_cast<NSInteger>(colors) + hasAlpha;
    _format =
        (first ? NSAlphaFirstBitmapFormat : 0u) |
        (hasAlpha && straight ? NSAlphaNonpremultipliedBitmapFormat : 0u) |
        (CGImageGetBitmapInfo(image) & kCGBitmapFloatComponents ? NSFloatingPointSamplesBitmapFormat : 0u);
    [self setPixelsWide:static_cast<NSInteger>(CGImageGetWidth(image))];
    [self setPixelsHigh:static_cast<NSInteger>(CGImageGetHeight(image))];
    [self setSize:NSMakeSize(CGImageGetWidth(image), CGImageGetHeight(image))];
    [self setBitsPerSample:static_cast<NSInteger>(CGImageGetBitsPerComponent(image))];
    [self setAlpha:hasAlpha];
    [self setOpaque:!hasAlpha];
    [self setColorSpaceName:colors == 1   ? NSDeviceWhiteColorSpace
                            : colors == 4 ? NSDeviceCMYKColorSpace
                                          : NSDeviceRGBColorSpace];
    return self;
}

- (id)initWithBitmapDataPlanes:(unsigned char**)planes
                    pixelsWide:(NSInteger)width
                    pixelsHigh:(NSInteger)height
                 bitsPerSample:(NSInteger)bitsPerSample
               samplesPerPixel:(NSInteger)samplesPerPixel
                      hasAlpha:(BOOL)alpha
                      isPlanar:(BOOL)isPlanar
                colorSpaceName:(NSString*)colorSpaceName
                   bytesPerRow:(NSInteger)rowBytes
                  bitsPerPixel:(NSInteger)pixelBits {
    NSInteger colors = samplesPerPixel - (alpha ? 1 : 0);
    bool sound =
        !planes && !isPlanar && bitsPerSample == 8 && width > 0 && height > 0 && (colors == 1 || colors == 3);
    // Opaque colours may have a filler as the fourth byte.
    if (pixelBits == 0) pixelBits = samplesPerPixel * 8;
    bool filler = !alpha && colors == 3 && pixelBits == 32;
    if (!filler && pixelBits != samplesPerPixel * 8) sound = false;
    if (rowBytes == 0) rowBytes = (width * pixelBits + 31) / 32 * 4;
    NSMutableData* pixels = nil;
    if (sound && rowBytes <= NSIntegerMax / height)
        pixels = [NSMutableData dataWithLength:static_cast<NSUInteger>(rowBytes * height)];
    CGImageAlphaInfo info = alpha    ? kCGImageAlphaPremultipliedLast
                            : filler ? kCGImageAlphaNoneSkipLast
                                     : kCGImageAlphaNone;
    auto space = cg::Retained<CGColorSpaceRef>::adopt(colors == 1 ? CGColorSpaceCreateDeviceGray()
                                                                  : CGColorSpaceCreateDeviceRGB());
    // The image reads the very bytes that bitmapData returns.
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData((CFDataRef)pixels));
    auto image = cg::Retained<CGImageRef>::adopt(
        CGImageCreate(static_cast<size_t>(width), static_cast<size_t>(height), 8,
                      static_cast<size_t>(pixelBits), static_cast<size_t>(rowBytes), space.get(), info,
                      provider.get(), nullptr, true, kCGRenderingIntentDefault));
    if (!(self = [self initWithCGImage:image.get()])) return nil;
    _pixels = [pixels retain];
    if (colorSpaceName) [self setColorSpaceName:colorSpaceName];
    return self;
}

- (void)dealloc {
    CGImageRelease(_image);
    [_pixels release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    NSBitmapImageRep* copy = [[[self class] allocWithZone:zone] initWithCGImage:_image];
    // Pixels of its own, so that writing to one does not change the other.
    if (_pixels) [copy bitmapData];
    [copy setSize:[self size]];
    return copy;
}

- (unsigned char*)bitmapData {
    if (!_pixels) {
        NSData* bytes = [(NSData*)CGDataProviderCopyData(CGImageGetDataProvider(_image)) autorelease];
        _pixels = [bytes mutableCopy];
        auto provider =
            cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData((CFDataRef)_pixels));
        CGImageRef image = CGImageCreate(
            CGImageGetWidth(_image), CGImageGetHeight(_image), CGImageGetBitsPerComponent(_image),
            CGImageGetBitsPerPixel(_image), CGImageGetBytesPerRow(_image), CGImageGetColorSpace(_image),
            CGImageGetBitmapInfo(_image), provider.get(), nullptr, true, CGImageGetRenderingIntent(_image));
        CGImageRelease(_image);
        _image = image;
    }
    return static_cast<unsigned char*>([_pixels mutableBytes]);
}

- (NSInteger)bytesPerRow {
    return _bytesPerRow;
}

- (NSInteger)bitsPerPixel {
    return _bitsPerPixel;
}

- (NSInteger)samplesPerPixel {
    return _samplesPerPixel;
}

- (NSBitmapFormat)bitmapFormat {
    return _format;
}

- (BOOL)isPlanar {
    return NO;
}

- (CGImageRef)CGImage {
    return _image;
}

- (BOOL)draw {
    CGContextRef port = appkit::currentPort();
    if (!port) return NO;
    CGContextDrawImage(port, CGRectMake(0, 0, [self size].width, [self size].height), _image);
    return YES;
}

- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedRect
                             context:(NSGraphicsContext*)context
                               hints:(NSDictionary*)hints {
    return _image;
}

- (NSData*)representationUsingType:(NSBitmapImageFileType)storageType properties:(NSDictionary*)properties {
    NSMutableData* file = [NSMutableData data];
    auto destination = cg::Retained<CGImageDestinationRef>::adopt(CGImageDestinationCreateWithData(
        (CFMutableDataRef)file, (CFStringRef)typeIdentifier(storageType), 1, nullptr));
    NSMutableDictionary* written = [NSMutableDictionary dictionary];
    if (id factor = [properties objectForKey:NSImageCompressionFactor])
        [written setObject:factor forKey:(NSString*)kCGImageDestinationLossyCompressionQuality];
    if ([self size].width > 0 && [self size].height > 0) {
        [written setObject:[NSNumber numberWithDouble:72. * [self pixelsWide] / [self size].width]
                    forKey:(NSString*)kCGImagePropertyDPIWidth];
        [written setObject:[NSNumber numberWithDouble:72. * [self pixelsHigh] / [self size].height]
                    forKey:(NSString*)kCGImagePropertyDPIHeight];
    }
    CGImageDestinationAddImage(destination.get(), _image, (CFDictionaryRef)written);
    return CGImageDestinationFinalize(destination.get()) ? file : nil;
}

- (NSData*)TIFFRepresentation {
    return [self representationUsingType:NSTIFFFileType properties:nil];
}

@end
