// NSColor: a CGColor and the name of its space.
#import <AppKit/NSColor.h>

#include "drawing.h"

#include <cg/color.h>

#include <initializer_list>

namespace {

/// The named space; null for an unknown name.
cg::Retained<CGColorSpaceRef> spaceNamed(NSString* name) {
    struct {
        NSString* name;
        CGColorSpaceRef (*create)();
    } const all[] = {
        {NSCalibratedWhiteColorSpace,
         [] { return CGColorSpaceCreateWithName(kCGColorSpaceGenericGrayGamma2_2); }},
        {NSCalibratedRGBColorSpace, [] { return CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB); }},
        {NSDeviceWhiteColorSpace, CGColorSpaceCreateDeviceGray},
        {NSDeviceRGBColorSpace, CGColorSpaceCreateDeviceRGB},
        {NSDeviceCMYKColorSpace, CGColorSpaceCreateDeviceCMYK},
    };
    for (const auto& known : all)
        if ([known.name isEqualToString:name]) return cg::Retained<CGColorSpaceRef>::adopt(known.create());
    return {};
}

} // namespace

@implementation NSColor

- (id)initWithComponents:(const CGFloat*)components spaceName:(NSString*)name {
    if (!(self = [super init])) return nil;
    _color = CGColorCreate(spaceNamed(name).get(), components);
    _spaceName = [name copy];
    return self;
}

static NSColor* make(NSString* spaceName, std::initializer_list<CGFloat> components) {
    return [[[NSColor alloc] initWithComponents:components.begin() spaceName:spaceName] autorelease];
}

+ (NSColor*)colorWithCalibratedRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
    return make(NSCalibratedRGBColorSpace, {red, green, blue, alpha});
}

+ (NSColor*)colorWithDeviceRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
    return make(NSDeviceRGBColorSpace, {red, green, blue, alpha});
}

+ (NSColor*)colorWithCalibratedWhite:(CGFloat)white alpha:(CGFloat)alpha {
    return make(NSCalibratedWhiteColorSpace, {white, alpha});
}

+ (NSColor*)colorWithDeviceWhite:(CGFloat)white alpha:(CGFloat)alpha {
    return make(NSDeviceWhiteColorSpace, {white, alpha});
}

+ (NSColor*)blackColor {
    return make(NSDeviceRGBColorSpace, {0, 0, 0, 1});
}

+ (NSColor*)whiteColor {
    return make(NSDeviceRGBColorSpace, {1, 1, 1, 1});
}

+ (NSColor*)clearColor {
    return make(NSDeviceRGBColorSpace, {0, 0, 0, 0});
}

+ (NSColor*)redColor {
    return make(NSDeviceRGBColorSpace, {1, 0, 0, 1});
}

+ (NSColor*)greenColor {
    return make(NSDeviceRGBColorSpace, {0, 1, 0, 1});
}

+ (NSColor*)blueColor {
    return make(NSDeviceRGBColorSpace, {0, 0, 1, 1});
}

- (void)dealloc {
    CGColorRelease(_color);
    [_spaceName release];
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (NSString*)colorSpaceName {
    return _spaceName;
}

- (NSColor*)colorUsingColorSpaceName:(NSString*)name {
    if ([name isEqualToString:_spaceName]) return self;
    auto space = spaceNamed(name);
    if (!space) return nil;
    auto converted = cg::convertColor(_color, space.get());
    if (converted.empty()) return nil;
    return [[[NSColor alloc] initWithComponents:converted.data() spaceName:name] autorelease];
}

- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha {
    NSColor* copy = [[[NSColor alloc] initWithComponents:CGColorGetComponents(_color)
                                               spaceName:_spaceName] autorelease];
    CGColorRelease(copy->_color);
    copy->_color = CGColorCreateCopyWithAlpha(_color, alpha);
    return copy;
}

/// Component `index`. Raises unless the colour has `count` components, alpha included.
- (CGFloat)component:(size_t)index of:(size_t)count selector:(SEL)selector {
    if (CGColorGetNumberOfComponents(_color) != count)
        [NSException
             raise:NSInvalidArgumentException
            format:@"-%@ is not defined for a colour in %@", NSStringFromSelector(selector), _spaceName];
    return CGColorGetComponents(_color)[index];
}

- (CGFloat)redComponent {
    return [self component:0 of:4 selector:_cmd];
}

- (CGFloat)greenComponent {
    return [self component:1 of:4 selector:_cmd];
}

- (CGFloat)blueComponent {
    return [self component:2 of:4 selector:_cmd];
}

- (CGFloat)whiteComponent {
    return [self component:0 of:2 selector:_cmd];
}

- (void)getRed:(CGFloat*)red green:(CGFloat*)green blue:(CGFloat*)blue alpha:(CGFloat*)alpha {
    if (red) *red = [self redComponent];
    if (green) *green = [self greenComponent];
    if (blue) *blue = [self blueComponent];
    if (alpha) *alpha = [self alphaComponent];
}

- (CGFloat)alphaComponent {
    return CGColorGetAlpha(_color);
}

- (NSInteger)numberOfComponents {
    return static_cast<NSInteger>(CGColorGetNumberOfComponents(_color));
}

- (void)getComponents:(CGFloat*)components {
    const CGFloat* all = CGColorGetComponents(_color);
    for (NSInteger i = 0; i < [self numberOfComponents]; ++i) components[i] = all[i];
}

- (CGColorRef)CGColor {
    return _color;
}

- (void)setFill {
    CGContextSetFillColorWithColor(appkit::currentPort(), _color);
}

- (void)setStroke {
    CGContextSetStrokeColorWithColor(appkit::currentPort(), _color);
}

- (void)set {
    [self setFill];
    [self setStroke];
}

- (BOOL)isEqual:(id)other {
    if (self == other) return YES;
    return [other isKindOfClass:[NSColor class]] && CGColorEqualToColor(_color, [(NSColor*)other CGColor]);
}

- (NSUInteger)hash {
    return CFHash(_color);
}

- (NSString*)description {
    NSMutableString* text = [NSMutableString stringWithString:_spaceName];
    for (NSInteger i = 0; i < [self numberOfComponents]; ++i)
        [text appendFormat:@" %g", CGColorGetComponents(_color)[i]];
    return text;
}

@end
