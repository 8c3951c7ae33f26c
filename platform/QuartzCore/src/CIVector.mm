// CIVector: an array of numbers.
#import <QuartzCore/CIVector.h>

#include "Numbers.h"

#include <cg/object.h>

#include <algorithm>
#include <functional>

static cg::LiveCount live("CIVector");

@implementation CIVector

+ (CIVector*)vectorWithValues:(const CGFloat*)values count:(size_t)count {
    return [[[self alloc] initWithValues:values count:count] autorelease];
}

+ (CIVector*)vectorWithX:(CGFloat)x {
    return [[[self alloc] initWithX:x] autorelease];
}

+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y {
    return [[[self alloc] initWithX:x Y:y] autorelease];
}

+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z {
    return [[[self alloc] initWithX:x Y:y Z:z] autorelease];
}

+ (CIVector*)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w {
    return [[[self alloc] initWithX:x Y:y Z:z W:w] autorelease];
}

+ (CIVector*)vectorWithCGPoint:(CGPoint)p {
    return [[[self alloc] initWithCGPoint:p] autorelease];
}

+ (CIVector*)vectorWithCGRect:(CGRect)r {
    return [[[self alloc] initWithCGRect:r] autorelease];
}

+ (CIVector*)vectorWithCGAffineTransform:(CGAffineTransform)t {
    return [[[self alloc] initWithCGAffineTransform:t] autorelease];
}

+ (CIVector*)vectorWithString:(NSString*)representation {
    return [[[self alloc] initWithString:representation] autorelease];
}

- (id)initWithValues:(const CGFloat*)values count:(size_t)count {
    if (!(self = [super init])) return nil;
    _count = values ? count : 0;
    if (!(_values = new (std::nothrow) CGFloat[_count])) {
        [self release];
        return nil;
    }
    live.born();
    std::copy_n(values, _count, _values);
    return self;
}

- (id)init {
    return [self initWithValues:nullptr count:0];
}

- (id)initWithX:(CGFloat)x {
    return [self initWithValues:&x count:1];
}

- (id)initWithX:(CGFloat)x Y:(CGFloat)y {
    const CGFloat values[] = {x, y};
    return [self initWithValues:values count:2];
}

- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z {
    const CGFloat values[] = {x, y, z};
    return [self initWithValues:values count:3];
}

- (id)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w {
    const CGFloat values[] = {x, y, z, w};
    return [self initWithValues:values count:4];
}

- (id)initWithCGPoint:(CGPoint)p {
    return [self initWithX:p.x Y:p.y];
}

- (id)initWithCGRect:(CGRect)r {
    return [self initWithX:r.origin.x Y:r.origin.y Z:r.size.width W:r.size.height];
}

- (id)initWithCGAffineTransform:(CGAffineTransform)t {
    const CGFloat values[] = {t.a, t.b, t.c, t.d, t.tx, t.ty};
    return [self initWithValues:values count:6];
}

- (id)initWithString:(NSString*)representation {
    auto values = ci::parseNumbers([representation UTF8String]);
    self = [self initWithValues:values ? values->data() : nullptr count:values ? values->size() : 0];
    if (!values) {
        [self release];
        return nil;
    }
    return self;
}

- (void)dealloc {
    if (_values) live.gone();
    delete[] _values;
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (CGFloat)valueAtIndex:(size_t)index {
    return index < _count ? _values[index] : 0;
}

- (size_t)count {
    return _count;
}

- (CGFloat)X {
    return [self valueAtIndex:0];
}

- (CGFloat)Y {
    return [self valueAtIndex:1];
}

- (CGFloat)Z {
    return [self valueAtIndex:2];
}

- (CGFloat)W {
    return [self valueAtIndex:3];
}

- (CGPoint)CGPointValue {
    return CGPointMake([self X], [self Y]);
}

- (CGRect)CGRectValue {
    return CGRectMake([self X], [self Y], [self Z], [self W]);
}

- (CGAffineTransform)CGAffineTransformValue {
    if (_count != 6) return CGAffineTransformIdentity;
    return CGAffineTransformMake(_values[0], _values[1], _values[2], _values[3], _values[4], _values[5]);
}

- (NSString*)stringRepresentation {
    return [NSString stringWithFormat:@"[%s]", ci::joinNumbers(_values, _count).c_str()];
}

- (NSString*)description {
    return [self stringRepresentation];
}

- (BOOL)isEqual:(id)other {
    if (self == other) return YES;
    if (![other isKindOfClass:[CIVector class]]) return NO;
    CIVector* vector = other;
    return _count == vector->_count && std::equal(_values, _values + _count, vector->_values);
}

- (NSUInteger)hash {
    size_t hash = _count;
    for (size_t i = 0; i < _count; ++i) hash = hash * 31 + std::hash<CGFloat>()(_values[i]);
    return hash;
}

@end
