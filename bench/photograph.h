// Sample photographs, enlarged to the size of a camera's.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

namespace bench {

/// A cleared bitmap in device RGB.
CGContextRef newBitmap(size_t width, size_t height);
/// A sample photograph, enlarged. Ends the program if it cannot be read.
CGImageRef newPhotograph(const char* name, size_t width, size_t height);

} // namespace bench
