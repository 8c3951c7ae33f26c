#import <AppKit/NSGraphicsContext.h>

NSString* const NSCalibratedWhiteColorSpace = @"NSCalibratedWhiteColorSpace";
NSString* const NSCalibratedRGBColorSpace = @"NSCalibratedRGBColorSpace";
NSString* const NSDeviceWhiteColorSpace = @"NSDeviceWhiteColorSpace";
NSString* const NSDeviceRGBColorSpace = @"NSDeviceRGBColorSpace";
NSString* const NSDeviceCMYKColorSpace = @"NSDeviceCMYKColorSpace";

void NSRectFill(NSRect rect) {
    auto port = static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort]);
    CGContextFillRect(port, NSRectToCGRect(rect));
}
