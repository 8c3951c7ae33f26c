// The family's classes of Core Graphics values.
#include <bridge/wrapping.h>
#include <objects/graphics.h>

namespace objects {

CGRect rectangleOf(REALobject rect) {
    if (!rect) return CGRectMake(0, 0, 0, 0);
    const RectangleFields& fields = bridge::instanceData<RectangleFields>(rect);
    return CGRectMake(static_cast<CGFloat>(fields.x), static_cast<CGFloat>(fields.y),
                      static_cast<CGFloat>(fields.width), static_cast<CGFloat>(fields.height));
}

REALobject newRectangle(CGRect rect) {
    return newRectangle(RectangleFields{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height});
}

REALobject newRectangle(const RectangleFields& fields) { return bridge::newObject("CGRectKaz", fields); }

REALobject newPoint(CGPoint point) { return bridge::newObject("CGPointKaz", PointFields{point.x, point.y}); }

REALobject newUnregistered(const char* hostClass, CFTypeRef native) {
    REALobject object = native ? bridge::newWrapper(hostClass, native) : nullptr;
    if (object) CFRetain(native);
    return object;
}

REALobject newColorSpace(CGColorSpaceRef colorSpace) {
    return newUnregistered("CGColorSpaceKaz", colorSpace);
}

REALobject newCGImage(CGImageRef image) { return newUnregistered("CGImageKaz", image); }

} // namespace objects
