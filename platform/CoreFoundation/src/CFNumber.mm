// CFNumber over NSNumber.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CFNumber.h>

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    NSNumber* number = [NSNumber alloc];
    switch (type) {
    case kCFNumberSInt32Type:
    case kCFNumberIntType:
        return (CFNumberRef)[number initWithInt:*static_cast<const int*>(value)];
    case kCFNumberSInt64Type:
        return (CFNumberRef)[number initWithLongLong:*static_cast<const SInt64*>(value)];
    case kCFNumberFloat32Type:
    case kCFNumberFloatType:
        return (CFNumberRef)[number initWithFloat:*static_cast<const float*>(value)];
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType:
        return (CFNumberRef)[number initWithDouble:*static_cast<const double*>(value)];
    }
    [number release];
    return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    NSNumber* object = (NSNumber*)number;
    switch (type) {
    case kCFNumberSInt32Type:
    case kCFNumberIntType:
        *static_cast<int*>(value) = [object intValue];
        return true;
    case kCFNumberSInt64Type:
        *static_cast<SInt64*>(value) = [object longLongValue];
        return true;
    case kCFNumberFloat32Type:
    case kCFNumberFloatType:
        *static_cast<float*>(value) = [object floatValue];
        return true;
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType:
        *static_cast<double*>(value) = [object doubleValue];
        return true;
    }
    return false;
}
