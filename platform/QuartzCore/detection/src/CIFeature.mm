// CIFeature and CIFaceFeature.
#include "Features.h"

#include <cg/object.h>

NSString* const CIFeatureTypeFace = @"Face";

static cg::LiveCount live("CIFeature");

@implementation CIFeature

- (id)init {
    return [self initWithBounds:CGRectZero];
}

- (id)initWithBounds:(CGRect)bounds {
    if (!(self = [super init])) return nil;
    live.born();
    _bounds = bounds;
    return self;
}

- (void)dealloc {
    live.gone();
    [super dealloc];
}

- (NSString*)type {
    return nil;
}

- (CGRect)bounds {
    return _bounds;
}

@end

@implementation CIFaceFeature

- (id)initWithBounds:(CGRect)bounds {
    return [self initWithState:{bounds, {}, {}, {}, {}}];
}

- (id)initWithState:(const CIFaceState&)state {
    if (!(self = [super initWithBounds:state.bounds])) return nil;
    if ((_state = new (std::nothrow) CIFaceState(state))) return self;
    [self release];
    return nil;
}

- (void)dealloc {
    delete _state;
    [super dealloc];
}

- (NSString*)type {
    return CIFeatureTypeFace;
}

- (BOOL)hasLeftEyePosition {
    return _state->leftEye.has_value();
}
- (CGPoint)leftEyePosition {
    return _state->leftEye.value_or(CGPointZero);
}
- (BOOL)hasRightEyePosition {
    return _state->rightEye.has_value();
}
- (CGPoint)rightEyePosition {
    return _state->rightEye.value_or(CGPointZero);
}
- (BOOL)hasMouthPosition {
    return _state->mouth.has_value();
}
- (CGPoint)mouthPosition {
    return _state->mouth.value_or(CGPointZero);
}

- (BOOL)hasTrackingID {
    return _state->track.has_value();
}
- (int)trackingID {
    return _state->track.value_or(ci::Track()).number;
}
- (BOOL)hasTrackingFrameCount {
    return _state->track.has_value();
}
- (int)trackingFrameCount {
    return _state->track.value_or(ci::Track()).frames;
}

@end
