// Sample photographs in the size of a camera's.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

namespace bench {

/// Cleared, in device RGB.
CGContextRef newBitmap(size_t width, size_t height);
/// A sample photograph enlarged; the program ends when it cannot be read.
CGImageRef newPhotograph(const char* name, size_t width, size_t height);

} // namespace bench
