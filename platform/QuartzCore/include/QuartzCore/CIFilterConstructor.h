// What makes filters that a program registered.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIFilter;

/** An object or a class that makes the filters of the names under which it was registered. */
@protocol CIFilterConstructor
/** An autoreleased filter. */
- (CIFilter*)filterWithName:(NSString*)name;
@end
