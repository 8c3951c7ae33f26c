// Wrappers of the Cocoa classes that other parts of the family wrap.
#include <bridge/wrapping.h>

REALobject NewNSImageKaz(NSImage* image) { return bridge::wrapperOf("NSImageKaz", (id)image); }

REALobject NewNSAffineTransformKaz(NSAffineTransform* transform) {
    return bridge::wrapperOf("NSAffineTransformKaz", transform);
}
