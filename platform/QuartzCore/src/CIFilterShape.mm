// CIFilterShape: a Region.
#import <QuartzCore/CIFilterShape.h>

#include "Region.h"
#include "Shim.h"

#include <cf/memory.h>

static cg::LiveCount live("CIFilterShape");

struct CIRegion {
    ci::Region region;
};

@implementation CIFilterShape

+ (id)shapeWithRect:(CGRect)r {
    return [[[self alloc] initWithRect:r] autorelease];
}

- (id)initWithRegion:(const ci::Region&)region {
    if (!(self = [super init])) return nil;
    if (!(_region = new (std::nothrow) CIRegion{region})) {
        [self release];
        return nil;
    }
    live.born();
    return self;
}

- (id)initWithRect:(CGRect)r {
    return cf::inMemory([&] { return [self initWithRegion:ci::Region(ci::fromCG(r))]; });
}

- (id)init {
    return [self initWithRegion:ci::Region()];
}

- (void)dealloc {
    if (_region) live.gone();
    delete _region;
    [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

// The shape of the region that `make` returns.
template <class Make>
static CIFilterShape* shape(Make&& make) {
    return cf::inMemory([&] { return [[[CIFilterShape alloc] initWithRegion:make()] autorelease]; });
}

- (CIFilterShape*)transformBy:(CGAffineTransform)m interior:(bool)flag {
    return shape([&] { return _region->region.transform(ci::fromCG(m), flag); });
}

- (CIFilterShape*)insetByX:(int)dx Y:(int)dy {
    return shape([&] { return _region->region.inset(dx, dy); });
}

- (CIFilterShape*)unionWith:(CIFilterShape*)s2 {
    return s2 ? shape([&] { return _region->region.unite(s2->_region->region); }) : self;
}

- (CIFilterShape*)unionWithRect:(CGRect)r {
    return shape([&] { return _region->region.unite(ci::Region(ci::fromCG(r))); });
}

- (CIFilterShape*)intersectWith:(CIFilterShape*)s2 {
    return shape([&] { return s2 ? _region->region.intersect(s2->_region->region) : ci::Region(); });
}

- (CIFilterShape*)intersectWithRect:(CGRect)r {
    return shape([&] { return _region->region.intersect(ci::Region(ci::fromCG(r))); });
}

- (CGRect)extent {
    return ci::toCG(_region->region.extent());
}

- (BOOL)isEqual:(id)other {
    if (self == other) return YES;
    return [other isKindOfClass:[CIFilterShape class]] &&
           _region->region == ((CIFilterShape*)other)->_region->region;
}

- (NSUInteger)hash {
    CGRect r = [self extent];
    return static_cast<NSUInteger>(static_cast<long>(r.origin.x) * 31 + static_cast<long>(r.origin.y));
}

- (NSString*)description {
    NSMutableString* text = [NSMutableString stringWithFormat:@"<CIFilterShape: %p", self];
    for (const ci::Rect& rect : _region->region.rects()) {
        CGRect r = ci::toCG(rect);
        [text appendFormat:@" [%g %g %g %g]", r.origin.x, r.origin.y, r.size.width, r.size.height];
    }
    [text appendString:@">"];
    return text;
}

@end
