#import <QuartzCore/CISampler.h>

#include "Internal.h"

#include <cstdarg>

static cg::LiveCount live("CISampler");

/// Keys and values that end with nil.
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

- (CIFilterShape*)definition {
    id matrix = [_options objectForKey:kCISamplerAffineMatrix];
    CIFilterShape* shape = [_image definition];
    if (![matrix isKindOfClass:[NSAffineTransform class]]) return shape;
    NSAffineTransformStruct m = [matrix transformStruct];
    return [shape transformBy:CGAffineTransformMake(m.m11, m.m12, m.m21, m.m22, m.tX, m.tY) interior:NO];
}

- (CGRect)extent {
    return [[self definition] extent];
}

- (NSString*)description {
    return [NSString stringWithFormat:@"<CISampler: %p image %@ options %@>", self, _image, _options];
}

@end
