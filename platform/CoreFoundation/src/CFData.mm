// CFData over NSData.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CFData.h>

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    return (CFDataRef)[[NSData alloc] initWithBytes:bytes length:static_cast<NSUInteger>(length)];
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex capacity) {
    return (CFMutableDataRef)[[NSMutableData alloc] initWithCapacity:static_cast<NSUInteger>(capacity)];
}

CFIndex CFDataGetLength(CFDataRef data) { return static_cast<CFIndex>([(NSData*)data length]); }

const UInt8* CFDataGetBytePtr(CFDataRef data) { return static_cast<const UInt8*>([(NSData*)data bytes]); }

UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data) {
    return static_cast<UInt8*>([(NSMutableData*)data mutableBytes]);
}

void CFDataSetLength(CFMutableDataRef data, CFIndex length) {
    [(NSMutableData*)data setLength:static_cast<NSUInteger>(length)];
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length) {
    [(NSMutableData*)data appendBytes:bytes length:static_cast<NSUInteger>(length)];
}
