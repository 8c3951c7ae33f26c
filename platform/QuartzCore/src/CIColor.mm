// CIColor: a CGColor.
#import <QuartzCore/CIColor.h>

#include "Numbers.h"
#include "Shim.h"

static cg::LiveCount live("CIColor");

@implementation CIColor

+ (CIColor*)colorWithCGColor:(CGColorRef)color {
    return [[[self alloc] initWithCGColor:color] autorelease];
}

+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b {
    return [self colorWithRed:r green:g blue:b alpha:1];
}

+ (CIColor*)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a {
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const CGFloat components[] = {r, g, b, a};
    auto color = cg::Retained<CGColorRef>::adopt(CGColorCreate(space.get(), components));
    return [self colorWithCGColor:color.get()];
}

+ (CIColor*)colorWithString:(NSString*)representation {
    if (!representation) return nil;
    auto values = ci::parseNumbers([representation UTF8String]);
    if (!values || values->size() < 3 || values->size() > 4) return [self colorWithRed:0 green:0 blue:0];
    const auto& v = *values;
    return [self colorWithRed:v[0] green:v[1] blue:v[2] alpha:v.size() > 3 ? v[3] : 1];
}

- (id)initWithCGColor:(CGColorRef)color {
    self = [super init];
    live.born();
    _color = CGColorRetain(color);
    if (CGColorGetNumberOfComponents(color)) return self;
    [self release];
    return nil;
}

- (id)init {
    return [self initWithCGColor:nullptr];
}

- (void)dealloc {
    if (_color) live.gone();
    CGColorRelease(_color);
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (size_t)numberOfComponents {
    return CGColorGetNumberOfComponents(_color);
}

- (const CGFloat*)components {
    return CGColorGetComponents(_color);
}

- (CGFloat)alpha {
    return CGColorGetAlpha(_color);
}

- (CGColorSpaceRef)colorSpace {
    return CGColorGetColorSpace(_color);
}

- (CGColorRef)CGColor {
    return _color;
}

/// Red, green or blue of an RGB colour, or of any other colour converted to sRGB.
static CGFloat component(CGColorRef color, size_t index) {
    if (CGColorSpaceGetModel(CGColorGetColorSpace(color)) == kCGColorSpaceModelRGB)
        return CGColorGetComponents(color)[index];
    engine::Color converted = ci::fromCG(color);
    return static_cast<CGFloat>(index == 0 ? converted.r : index == 1 ? converted.g : converted.b);
}

- (CGFloat)red {
    return component(_color, 0);
}

- (CGFloat)green {
    return component(_color, 1);
}

- (CGFloat)blue {
    return component(_color, 2);
}

- (NSString*)stringRepresentation {
    return
        [NSString stringWithUTF8String:ci::joinNumbers([self components], [self numberOfComponents]).c_str()];
}

- (NSString*)description {
    return [NSString stringWithFormat:@"(%@)", [self stringRepresentation]];
}

- (BOOL)isEqual:(id)other {
    if (self == other) return YES;
    return [other isKindOfClass:[CIColor class]] && CGColorEqualToColor(_color, ((CIColor*)other)->_color);
}

- (NSUInteger)hash {
    return CFHash(_color);
}

@end
