// The family's classes of Core Graphics values, as the other classes read and make them: CGRectKaz and
// CGPointKaz, which hold their fields, and the wrappers CGColorSpaceKaz and CGImageKaz.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <hostapi/services.h>

namespace objects {

struct RectangleFields {
    double x, y, width, height;
};
struct PointFields {
    double x, y;
};

// The rectangle of a CGRectKaz, narrowed to single precision; all zero for null.
CGRect rectangleOf(REALobject rect);

// New objects with a reference for the caller; null when the family lacks the class.
REALobject newRectangle(CGRect rect);
REALobject newRectangle(const RectangleFields& fields);
REALobject newPoint(CGPoint point);
REALobject newColorSpace(CGColorSpaceRef colorSpace); // null for null; retains the colour space
REALobject newCGImage(CGImageRef image);              // null for null; retains the image

// A new wrapper of `native`, which it retains and does not register; null for null.
REALobject newUnregistered(const char* hostClass, CFTypeRef native);

} // namespace objects
