// The names of colour spaces, and drawing without an object.
#include "drawing.h"

NSString* const NSCalibratedWhiteColorSpace = @"NSCalibratedWhiteColorSpace";
NSString* const NSCalibratedRGBColorSpace = @"NSCalibratedRGBColorSpace";
NSString* const NSDeviceWhiteColorSpace = @"NSDeviceWhiteColorSpace";
NSString* const NSDeviceRGBColorSpace = @"NSDeviceRGBColorSpace";
NSString* const NSDeviceCMYKColorSpace = @"NSDeviceCMYKColorSpace";

void NSRectFill(NSRect rect) { CGContextFillRect(appkit::currentPort(), NSRectToCGRect(rect)); }
