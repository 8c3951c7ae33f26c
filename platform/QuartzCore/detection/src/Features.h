// How the detector makes features.
#pragma once

#import <QuartzCore/CIDetector.h>

#include <optional>

namespace ci {

/// The identity of a face across images.
struct Track {
    int number = 0;
    /// The number of images it has been seen in.
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
