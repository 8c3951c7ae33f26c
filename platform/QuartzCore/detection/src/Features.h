// How the detector makes features. Not Apple's API.
#pragma once

#import <QuartzCore/CIDetector.h>

#include <optional>

namespace ci {

/// Which face of an earlier image a face is.
struct Track {
    int number = 0;
    /// The number of images that it was seen in.
    int frames = 0;
};

} // namespace ci

/// In the image's coordinates.
struct CIFaceState {
    CGRect bounds;
    std::optional<CGPoint> leftEye, rightEye, mouth;
    std::optional<ci::Track> track;
};

@interface CIFeature (Internal)
- (id)initWithBounds:(CGRect)bounds;
@end

@interface CIFaceFeature (Internal)
- (id)initWithState:(const CIFaceState&)state;
@end
