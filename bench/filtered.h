// Filters in a line each.
#pragma once

#import <QuartzCore/QuartzCore.h>

namespace bench {

/// The image through a filter with its defaults, but for these values.
CIImage* filtered(NSString* name, CIImage* image, NSDictionary* values = nil);
/// The same with one number.
CIImage* filtered(NSString* name, CIImage* image, NSString* key, double number);

} // namespace bench
