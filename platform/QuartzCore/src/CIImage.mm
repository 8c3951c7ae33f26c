// CIImage: a recipe of the engine, and the properties of its source.
#import <QuartzCore/CIImage.h>

#include "Internal.h"
#include "Raise.h"

#include <ImageIO/ImageIO.h>

#include <stdexcept>

static cg::LiveCount live("CIImage");

struct CIImageState {
    engine::Image recipe;
    cg::Retained<CGColorSpaceRef> space;
    cg::Retained<CFDictionaryRef> properties;
    NSURL* url = nil;
};

namespace {

/// How the options say to read the pixels.
ci::SpaceChoice spaceChoice(NSDictionary* options) {
    id space = [options objectForKey:kCIImageColorSpace];
    if (space == [NSNull null]) return {ci::SpaceChoice::Kind::none, {}};
    if (CGColorSpaceGetNumberOfComponents((CGColorSpaceRef)space) == 0) return {};
    return {ci::SpaceChoice::Kind::given, (CGColorSpaceRef)space};
}

/// The rows that a provider is asked for at once.
int stripRowsOf(NSDictionary* options) {
    id size = [options objectForKey:kCIImageProviderTileSize];
    if ([size isKindOfClass:[NSArray class]]) size = [size lastObject];
    int rows = [size respondsToSelector:@selector(intValue)] ? [size intValue] : 0;
    return rows > 0 ? rows : 64;
}

/// The rows of a provider, whose exception becomes one of C++.
ci::RowProvider rowsOf(id provider, size_t width, id info) {
    auto owner = std::make_shared<cg::Retained<CFTypeRef>>((CFTypeRef)provider);
    auto details = std::make_shared<cg::Retained<CFTypeRef>>((CFTypeRef)info);
    return [=](int firstRow, int rows, std::size_t rowBytes, void* pixels) {
        std::string reason;
        @autoreleasepool {
            @try {
                [(id)owner->get() provideImageData:pixels
                                       bytesPerRow:rowBytes
                                            origin:0:static_cast<size_t>(firstRow)
                                              size:width:static_cast<size_t>(rows)
                                          userInfo:(id)details->get()];
            } @catch (NSException* e) {
                reason = "the image provider raised " + std::string([[e name] UTF8String]) + ": " +
                         ([e reason] ? [[e reason] UTF8String] : "");
            }
        }
        if (!reason.empty()) throw std::runtime_error(reason);
    };
}

} // namespace

@implementation CIImage

+ (CIImage*)imageWithCGImage:(CGImageRef)image {
    return [[[self alloc] initWithCGImage:image] autorelease];
}

+ (CIImage*)imageWithCGImage:(CGImageRef)image options:(NSDictionary*)options {
    return [[[self alloc] initWithCGImage:image options:options] autorelease];
}

+ (CIImage*)imageWithBitmapData:(NSData*)data
                    bytesPerRow:(size_t)bytesPerRow
                           size:(CGSize)size
                         format:(CIFormat)format
                     colorSpace:(CGColorSpaceRef)colorSpace {
    return [[[self alloc] initWithBitmapData:data
                                 bytesPerRow:bytesPerRow
                                        size:size
                                      format:format
                                  colorSpace:colorSpace] autorelease];
}

+ (CIImage*)imageWithImageProvider:(id)p
                              size:(size_t)width
                                  :(size_t)height
                            format:(CIFormat)f
                        colorSpace:(CGColorSpaceRef)cs
                           options:(NSDictionary*)options {
    return [[[self alloc] initWithImageProvider:p size:width:height format:f colorSpace:cs
                                        options:options] autorelease];
}

+ (CIImage*)imageWithContentsOfURL:(NSURL*)url {
    return [[[self alloc] initWithContentsOfURL:url] autorelease];
}

+ (CIImage*)imageWithContentsOfURL:(NSURL*)url options:(NSDictionary*)options {
    return [[[self alloc] initWithContentsOfURL:url options:options] autorelease];
}

+ (CIImage*)imageWithData:(NSData*)data {
    return [[[self alloc] initWithData:data] autorelease];
}

+ (CIImage*)imageWithData:(NSData*)data options:(NSDictionary*)options {
    return [[[self alloc] initWithData:data options:options] autorelease];
}

+ (CIImage*)imageWithColor:(CIColor*)color {
    return [[[self alloc] initWithColor:color] autorelease];
}

+ (CIImage*)emptyImage {
    return [self imageWithRecipe:ci::empty()];
}

+ (CIImage*)imageWithRecipe:(const engine::Image&)recipe {
    CIImage* image = [[[self alloc] init] autorelease];
    return [image finishWithRecipe:recipe];
}

/// Every initialiser begins here; the image is empty.
- (id)init {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIImageState)) {
        [self release];
        return nil;
    }
    live.born();
    _state->recipe = ci::empty();
    return self;
}

/// Every initialiser ends here. Takes the recipe; nil if there is none.
- (id)finishWithRecipe:(const engine::Image&)recipe {
    _state->recipe = recipe;
    return recipe ? self : nil;
}

/// The same for an initialiser that owns the receiver.
- (id)initFinishedWithRecipe:(const engine::Image&)recipe {
    if ([self finishWithRecipe:recipe]) return self;
    [self release];
    return nil;
}

- (id)initWithCGImage:(CGImageRef)image {
    return [self initWithCGImage:image options:nil];
}

- (id)initWithCGImage:(CGImageRef)image options:(NSDictionary*)options {
    if (!(self = [self init])) return nil;
    ci::SpaceChoice choice = spaceChoice(options);
    _state->space =
        choice.kind == ci::SpaceChoice::Kind::own ? CGImageGetColorSpace(image) : choice.space.get();
    _state->properties = (CFDictionaryRef)[options objectForKey:kCIImageProperties];
    return [self initFinishedWithRecipe:ci::imageOf(image, choice)];
}

- (id)initWithBitmapData:(NSData*)data
             bytesPerRow:(size_t)bytesPerRow
                    size:(CGSize)size
                  format:(CIFormat)format
              colorSpace:(CGColorSpaceRef)colorSpace {
    if (!(self = [self init])) return nil;
    _state->space = colorSpace;
    return [self
        initFinishedWithRecipe:ci::imageOfBitmap((CFDataRef)data, bytesPerRow, size, format, colorSpace)];
}

- (id)initWithImageProvider:(id)p
                       size:(size_t)width
                           :(size_t)height
                     format:(CIFormat)f
                 colorSpace:(CGColorSpaceRef)cs
                    options:(NSDictionary*)options {
    self = [self init];
    _state->space = cs;
    if (!p) return [self initFinishedWithRecipe:nullptr];
    CGSize size = CGSizeMake(static_cast<CGFloat>(width), static_cast<CGFloat>(height));
    id info = [options objectForKey:kCIImageProviderUserInfo];
    return [self initFinishedWithRecipe:ci::imageOfProvider(rowsOf(p, width, info), size, f, cs,
                                                            stripRowsOf(options))];
}

- (id)initWithSource:(CGImageSourceRef)source url:(NSURL*)url options:(NSDictionary*)options {
    // Read before the pixels, so that no format needs memory for both at once.
    auto properties =
        cg::Retained<CFDictionaryRef>::adopt(CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr));
    // Decoded at once, so that a damaged file is not taken for an image.
    auto image = cg::Retained<CGImageRef>::adopt(CGImageSourceCreateImageAtIndex(source, 0, nullptr));
    if (!(self = [self initWithCGImage:image.get() options:options])) return nil;
    if (!_state->properties) _state->properties = properties;
    _state->url = [url retain];
    return self;
}

- (id)initWithContentsOfURL:(NSURL*)url {
    return [self initWithContentsOfURL:url options:nil];
}

- (id)initWithContentsOfURL:(NSURL*)url options:(NSDictionary*)options {
    auto source = cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithURL((CFURLRef)url, nullptr));
    return [self initWithSource:source.get() url:url options:options];
}

- (id)initWithData:(NSData*)data {
    return [self initWithData:data options:nil];
}

- (id)initWithData:(NSData*)data options:(NSDictionary*)options {
    auto source =
        cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithData((CFDataRef)data, nullptr));
    return [self initWithSource:source.get() url:nil options:options];
}

- (id)initWithColor:(CIColor*)color {
    if (!(self = [self init])) return nil;
    return [self initFinishedWithRecipe:color ? ci::constant(ci::fromCG([color CGColor])) : nullptr];
}

- (void)dealloc {
    if (_state) {
        live.gone();
        [_state->url release];
        delete _state;
    }
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (const engine::Image&)recipe {
    return _state->recipe;
}

- (CIImage*)imageByApplyingTransform:(CGAffineTransform)matrix {
    ci::Failure failure;
    engine::Image result = ci::transform(_state->recipe, matrix, failure);
    ci::raise(failure, @"imageByApplyingTransform:");
    return [CIImage imageWithRecipe:result];
}

- (CIImage*)imageByCroppingToRect:(CGRect)r {
    ci::Failure failure;
    engine::Image result = ci::crop(_state->recipe, r, failure);
    ci::raise(failure, @"imageByCroppingToRect:");
    return [CIImage imageWithRecipe:result];
}

- (CGRect)extent {
    return ci::toCG(_state->recipe->extent());
}

- (CIFilterShape*)definition {
    return [CIFilterShape shapeWithRect:[self extent]];
}

- (NSDictionary*)properties {
    return _state->properties ? (NSDictionary*)_state->properties.get() : [NSDictionary dictionary];
}

- (NSURL*)url {
    return _state->url;
}

- (CGColorSpaceRef)colorSpace {
    return _state->space.get();
}

- (NSString*)debugDescription {
    ci::Failure failure;
    std::string plan = ci::planOf(_state->recipe, failure);
    ci::raise(failure, @"debugDescription");
    return [NSString stringWithUTF8String:plan.c_str()];
}

- (NSString*)description {
    CGRect r = [self extent];
    NSString* extent = CGRectIsInfinite(r)
                           ? @"infinite"
                           : [NSString stringWithFormat:@"[%g %g %g %g]", r.origin.x, r.origin.y,
                                                        r.size.width, r.size.height];
    return [NSString stringWithFormat:@"<CIImage: %p extent %@>", self, extent];
}

@end
