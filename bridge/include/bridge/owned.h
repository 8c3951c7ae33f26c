// Core Foundation and Cocoa objects that are released at the end of a scope.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <hostapi/ledger.h>

#import <Foundation/NSObject.h>

namespace bridge {

// Releases a Core Foundation object; the way of an Owned one.
template <class Ref>
void releaseOwned(Ref object) {
    CFRelease(object);
}

// A Core Foundation object that is released at the end of its scope, even when Cocoa raises.
template <class Ref>
class Owned : public host::Entry<Ref, releaseOwned<Ref>> {
  public:
    using host::Entry<Ref, releaseOwned<Ref>>::Entry;
};

inline void releaseRetained(id object) { [object release]; }

// A Cocoa object that was received with a reference, released at the end of its scope.
class Retained : public host::Entry<id, releaseRetained> {
  public:
    using host::Entry<id, releaseRetained>::Entry;
};

} // namespace bridge
