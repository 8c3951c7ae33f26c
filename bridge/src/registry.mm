// The wrapper registry, as the family publishes it.
#include <bridge/registry.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

@interface NSException (KazFamily)
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz;
+ (void)PrepareNSExceptionKaz;
@end

namespace {

// Native object to wrapper, by address; retains neither.
constinit host::LookedUp<CFMutableDictionaryRef> wrapperRegistry;

bool exceptionsPrepared = false;

} // namespace

namespace bridge {

void ensureFamily() {
    wrapperRegistry.get([]() -> CFMutableDictionaryRef {
        if (![NSException respondsToSelector:@selector(GetInstancesDictionaryKaz)]) return nullptr;
        return [NSException GetInstancesDictionaryKaz];
    });
    if (!exceptionsPrepared && [NSException respondsToSelector:@selector(PrepareNSExceptionKaz)]) {
        [NSException PrepareNSExceptionKaz];
        exceptionsPrepared = true;
    }
}

REALobject lockRegisteredWrapper(const void* native) {
    CFMutableDictionaryRef registry = wrapperRegistry.known();
    if (!registry) return nullptr;
    return host::locked(static_cast<REALobject>(const_cast<void*>(CFDictionaryGetValue(registry, native))));
}

void registerWrapper(const void* native, REALobject wrapper) {
    if (auto registry = wrapperRegistry.known()) CFDictionarySetValue(registry, native, wrapper);
}

void unregisterWrapper(const void* native) {
    if (auto registry = wrapperRegistry.known()) CFDictionaryRemoveValue(registry, native);
}

} // namespace bridge
