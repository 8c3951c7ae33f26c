// CISampler: an image and its options.
#import <QuartzCore/CISampler.h>

#include "Internal.h"
#include "Raise.h"

#include <cstdarg>

static cg::LiveCount live("CISampler");

/// A dictionary of keys and values that end with nil.
static NSDictionary* pairs(id first, va_list rest) {
    NSMutableDictionary* options = [NSMutableDictionary dictionary];
    for (id key = first; key; key = va_arg(rest, id)) {
        id value = va_arg(rest, id);
        if (!value) break;
        [options setObject:value forKey:key];
    }
    return options;
}

@implementation CISampler

+ (CISampler*)samplerWithImage:(CIImage*)image {
    return [[[self alloc] initWithImage:image] autorelease];
}

+ (CISampler*)samplerWithImage:(CIImage*)image keysAndValues:(id)key, ... {
    va_list rest;
    va_start(rest, key);
    NSDictionary* options = pairs(key, rest);
    va_end(rest);
    return [self samplerWithImage:image options:options];
}

+ (CISampler*)samplerWithImage:(CIImage*)image options:(NSDictionary*)options {
    return [[[self alloc] initWithImage:image options:options] autorelease];
}

- (id)initWithImage:(CIImage*)image {
    return [self initWithImage:image options:nil];
}

- (id)initWithImage:(CIImage*)image keysAndValues:(id)key, ... {
    va_list rest;
    va_start(rest, key);
    NSDictionary* options = pairs(key, rest);
    va_end(rest);
    return [self initWithImage:image options:options];
}

- (id)initWithImage:(CIImage*)image options:(NSDictionary*)options {
    self = [super init];
    live.born();
    _image = [image retain];
    _options = [options copy];
    if (image) return self;
    [self release];
    return nil;
}

- (id)init {
    return [self initWithImage:nil];
}

- (void)dealloc {
    live.gone();
    [_image release];
    [_options release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (CGAffineTransform)matrix {
    id matrix = [_options objectForKey:kCISamplerAffineMatrix];
    if (![matrix isKindOfClass:[NSAffineTransform class]]) return CGAffineTransformIdentity;
    NSAffineTransformStruct m = [matrix transformStruct];
    return CGAffineTransformMake(m.m11, m.m12, m.m21, m.m22, m.tX, m.tY);
}

- (BOOL)hasMode:(NSString*)mode forKey:(NSString*)key {
    return [[_options objectForKey:key] isEqual:mode];
}

- (engine::kernels::Sampler)reader {
    bool clamps = [self hasMode:kCISamplerWrapClamp forKey:kCISamplerWrapMode];
    bool nearest = [self hasMode:kCISamplerFilterNearest forKey:kCISamplerFilterMode];
    return {[_image recipe],
            ci::fromCG([self matrix]),
            clamps ? engine::Wrap::clamp : engine::Wrap::black,
            nearest ? engine::Interpolation::nearest : engine::Interpolation::linear};
}

- (engine::Image)recipe {
    engine::kernels::Sampler reader = [self reader];
    ci::Failure failure;
    engine::Image image = ci::sampled(reader, failure);
    ci::raise(failure, @"CISampler");
    return image;
}

- (CIFilterShape*)definition {
    return [CIFilterShape shapeWithRect:ci::toCG([self recipe]->extent())];
}

- (CGRect)extent {
    return ci::toCG(ci::fromCG([self matrix]).apply([_image recipe]->extent()));
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<CISampler: %p image %@ options %@>", self, _image, _options];
}

@end
