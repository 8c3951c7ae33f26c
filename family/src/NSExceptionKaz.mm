// What the family shares through class methods of NSException, and the Cocoa object that carries a host
// object through Cocoa collections.
#include "support.h"

#include <hostapi/handles.h>

@interface NSException (KazFamily)
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz;
+ (void)PrepareNSExceptionKaz;
+ (REALobject)NewNSExceptionKaz:(NSException*)exception;
@end

@implementation NSException (KazFamily)

// The wrapper registry of all parts: native object to wrapper, by address, retaining neither.
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz {
    static CFMutableDictionaryRef instances =
        CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr);
    return instances;
}

// Other parts send this before the first exception can occur; the maker below needs no preparation here.
+ (void)PrepareNSExceptionKaz {
}

// A host exception with the reason, or else the name, as its message; one reference for the caller.
+ (REALobject)NewNSExceptionKaz:(NSException*)exception {
    return bridge::newRuntimeException([[exception reason] length] ? [exception reason] : [exception name]);
}

@end

// Keeps a host object alive while Cocoa holds it.
@interface KazREALobjectWrapper : NSObject {
    REALobject object;
}
+ (id)wrap:(REALobject)object;
- (REALobject)unwrap;
@end

@implementation KazREALobjectWrapper

// Autoreleased; locks the object until the carrier goes. Nil for null.
+ (id)wrap:(REALobject)object {
    if (!object) return nil;
    KazREALobjectWrapper* carrier = [[[self alloc] init] autorelease];
    carrier->object = host::locked(object);
    return carrier;
}

// The object, locked once more for the caller.
- (REALobject)unwrap {
    return host::locked(object);
}

// Two carriers of one host object are the same key in a Cocoa dictionary.
- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[KazREALobjectWrapper class]] &&
           static_cast<KazREALobjectWrapper*>(other)->object == object;
}

- (NSUInteger)hash {
    return reinterpret_cast<NSUInteger>(object);
}

- (id)copyWithZone:(NSZone*)zone {
    return [self retain];
}

- (void)dealloc {
    host::unlock(object);
    [super dealloc];
}

@end
