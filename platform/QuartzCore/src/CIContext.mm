// CIContext: options for the engine and a CGContext to draw to.
#import <QuartzCore/CIContext.h>

#include "Internal.h"
#include "Raise.h"

#include <cg/colorspace.h>

static cg::LiveCount live("CIContext");

struct CIContextState {
    cg::Retained<CGContextRef> context;
    /// For images that are made without naming a space.
    cg::Retained<CGColorSpaceRef> output;
    /// Null without colour matching.
    cg::Retained<CGColorSpaceRef> working;
    engine::Options options;
};

@implementation CIContext

+ (CIContext*)contextWithCGContext:(CGContextRef)context options:(NSDictionary*)options {
    return [[[self alloc] initWithCGContext:context options:options] autorelease];
}

+ (CIContext*)contextWithOptions:(NSDictionary*)options {
    return [self contextWithCGContext:nullptr options:options];
}

- (id)initWithCGContext:(CGContextRef)context options:(NSDictionary*)options {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIContextState)) {
        [self release];
        return nil;
    }
    live.born();
    _state->context = context;
    auto isRGB = [](id space) {
        return CGColorSpaceGetModel((CGColorSpaceRef)space) == kCGColorSpaceModelRGB;
    };

    id output = [options objectForKey:kCIContextOutputColorSpace];
    id working = [options objectForKey:kCIContextWorkingColorSpace];
    id software = [options objectForKey:kCIContextUseSoftwareRenderer];
    if (isRGB(output)) _state->output = (CGColorSpaceRef)output;
    if (!_state->output) _state->output = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    if (isRGB(working)) _state->options.working = cg::spaceOf((CGColorSpaceRef)working);
    if (output == [NSNull null] || working == [NSNull null]) _state->options.colorManaged = false;
    if (_state->options.colorManaged)
        _state->working = isRGB(working) ? cg::Retained<CGColorSpaceRef>((CGColorSpaceRef)working)
                                         : cg::Retained<CGColorSpaceRef>::adopt(
                                               CGColorSpaceCreateWithName(kCGColorSpaceGenericRGBLinear));
    if ([software respondsToSelector:@selector(boolValue)]) _state->options.software = [software boolValue];
    return self;
}

- (id)init {
    return [self initWithCGContext:nullptr options:nil];
}

- (void)dealloc {
    if (_state) live.gone();
    delete _state;
    [super dealloc];
}

- (CGColorSpaceRef)workingColorSpace {
    return _state->working.get();
}

- (void)drawImage:(CIImage*)image atPoint:(CGPoint)p fromRect:(CGRect)src {
    CGRect r = CGRectStandardize(src);
    CGRect dest = CGRectIsInfinite(r) ? r : CGRectMake(p.x, p.y, r.size.width, r.size.height);
    [self drawImage:image inRect:dest fromRect:r];
}

- (void)drawImage:(CIImage*)image inRect:(CGRect)dest fromRect:(CGRect)src {
    if (!image) return;
    ci::Failure failure;
    ci::draw([image recipe], _state -> context.get(), dest, src, _state->options, failure);
    ci::raise(failure, @"drawImage:inRect:fromRect:");
}

- (CGImageRef)createCGImage:(CIImage*)image fromRect:(CGRect)r {
    return [self createCGImage:image fromRect:r format:kCIFormatARGB8 colorSpace:nullptr];
}

- (CGImageRef)createCGImage:(CIImage*)image
                   fromRect:(CGRect)r
                     format:(CIFormat)format
                 colorSpace:(CGColorSpaceRef)colorSpace {
    if (!image) return nullptr;
    ci::Failure failure;
    CGImageRef result =
        ci::makeCGImage([image recipe], CGRectIntegral(r), format,
                        colorSpace ? colorSpace : _state->output.get(), _state->options, failure);
    ci::raise(failure, @"createCGImage:fromRect:");
    return result;
}

- (void)render:(CIImage*)image
      toBitmap:(void*)data
      rowBytes:(ptrdiff_t)rowBytes
        bounds:(CGRect)r
        format:(CIFormat)format
    colorSpace:(CGColorSpaceRef)colorSpace {
    if (!image) return;
    ci::Failure failure;
    ci::renderBitmap([image recipe], CGRectIntegral(r), format, colorSpace, data,
                     static_cast<size_t>(rowBytes), _state->options, failure);
    ci::raise(failure, @"render:toBitmap:");
}

- (void)clearCaches {
}

- (void)reclaimResources {
}

@end
