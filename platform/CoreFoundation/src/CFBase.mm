// The functions for every Core Foundation object, over NSObject's methods.
#include "autorelease.h"

#include <CoreFoundation/CFBase.h>

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) { return [(id)object retain]; }

void CFRelease(CFTypeRef object) { [(id)object release]; }

CFIndex CFGetRetainCount(CFTypeRef object) { return static_cast<CFIndex>([(id)object retainCount]); }

Boolean CFEqual(CFTypeRef a, CFTypeRef b) { return a == b || [(id)a isEqual:(id)b]; }

CFHashCode CFHash(CFTypeRef object) { return [(id)object hash]; }

CFStringRef CFCopyDescription(CFTypeRef object) {
    return inPool(
        [&]() -> CFStringRef { return reinterpret_cast<CFStringRef>([[(id)object description] copy]); });
}
