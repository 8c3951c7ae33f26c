// The names of colour spaces, whose values are the names of the constants.
#import <Foundation/Foundation.h>

#include <CoreGraphics/CGColorSpace.h>

#define NAME(symbol) const CFStringRef symbol = (CFStringRef) @ #symbol

NAME(kCGColorSpaceGenericGray);
NAME(kCGColorSpaceGenericGrayGamma2_2);
NAME(kCGColorSpaceGenericRGB);
NAME(kCGColorSpaceGenericRGBLinear);
NAME(kCGColorSpaceGenericCMYK);
NAME(kCGColorSpaceAdobeRGB1998);
NAME(kCGColorSpaceSRGB);
