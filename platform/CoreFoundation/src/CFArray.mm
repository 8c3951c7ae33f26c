// CFArray over NSArray.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CFArray.h>

CFIndex CFArrayGetCount(CFArrayRef array) { return static_cast<CFIndex>([(NSArray*)array count]); }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return [(NSArray*)array objectAtIndex:static_cast<NSUInteger>(index)];
}
