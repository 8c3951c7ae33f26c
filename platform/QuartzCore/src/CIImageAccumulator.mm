// CIImageAccumulator: a bitmap, and the images that are rendered into it.
#import <QuartzCore/CIImageAccumulator.h>

#include "Accumulator.h"
#include "Internal.h"
#include "Raise.h"

static cg::LiveCount live("CIImageAccumulator");

struct CIImageAccumulatorState {
    std::unique_ptr<ci::Accumulator> bitmap;
};

@implementation CIImageAccumulator

+ (CIImageAccumulator*)imageAccumulatorWithExtent:(CGRect)r format:(CIFormat)f {
    return [self imageAccumulatorWithExtent:r format:f colorSpace:nullptr];
}

+ (CIImageAccumulator*)imageAccumulatorWithExtent:(CGRect)r
                                           format:(CIFormat)f
                                       colorSpace:(CGColorSpaceRef)colorSpace {
    return [[[self alloc] initWithExtent:r format:f colorSpace:colorSpace] autorelease];
}

- (id)initWithExtent:(CGRect)r format:(CIFormat)f {
    return [self initWithExtent:r format:f colorSpace:nullptr];
}

- (id)initWithExtent:(CGRect)r format:(CIFormat)f colorSpace:(CGColorSpaceRef)colorSpace {
    if (!(self = [super init])) return nil;
    if (!(_state = new (std::nothrow) CIImageAccumulatorState)) {
        [self release];
        return nil;
    }
    live.born();
    ci::Failure failure;
    _state->bitmap = ci::Accumulator::make(r, f, colorSpace, failure);
    if (_state->bitmap) return self;
    [self release];
    ci::raise(failure, @"CIImageAccumulator");
    return nil;
}

/// Every accumulator has an extent.
- (id)init {
    [self release];
    return nil;
}

- (void)dealloc {
    if (_state) live.gone();
    delete _state;
    [super dealloc];
}

- (CGRect)extent {
    return _state->bitmap->extent();
}

- (CIFormat)format {
    return _state->bitmap->format();
}

- (CIImage*)image {
    return [CIImage imageWithRecipe:_state->bitmap->image()];
}

- (void)setImage:(CIImage*)im {
    [self setImage:im dirtyRect:[self extent]];
}

- (void)setImage:(CIImage*)im dirtyRect:(CGRect)r {
    if (!im) return;
    ci::Failure failure;
    _state->bitmap->set([im recipe], r, failure);
    ci::raise(failure, @"setImage:dirtyRect:");
}

- (void)clear {
    ci::Failure failure;
    _state->bitmap->clear(failure);
    ci::raise(failure, @"clear");
}

@end
