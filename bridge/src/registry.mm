#include <bridge/registry.h>
#include <bridge/strings.h>

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

@interface NSException (KazFamily)
+ (CFMutableDictionaryRef)GetInstancesDictionaryKaz;
+ (void)PrepareNSExceptionKaz;
@end

namespace {

CFMutableDictionaryRef instances = nullptr;
bool exceptionsPrepared = false;

REALobject makeRuntimeException(Class, SEL, NSException* exception) {
    REALobject made = REALnewInstance("RuntimeException");
    if (!made) return nullptr;
    REALstring reason = CFString2RBString((CFStringRef)[exception reason]);
    REALSetPropValueString(made, "Message", reason);
    if (reason) REALUnlockString(reason);
    return made;
}

} // namespace

namespace bridge {

void ensureFamily() {
    if (!instances && [NSException respondsToSelector:@selector(GetInstancesDictionaryKaz)])
        instances = [NSException GetInstancesDictionaryKaz];
    if (!exceptionsPrepared && [NSException respondsToSelector:@selector(PrepareNSExceptionKaz)]) {
        [NSException PrepareNSExceptionKaz];
        exceptionsPrepared = true;
    }
}

REALobject lockRegisteredWrapper(const void* native) {
    if (!instances) return nullptr;
    REALobject wrapper = static_cast<REALobject>(const_cast<void*>(CFDictionaryGetValue(instances, native)));
    if (wrapper) REALLockObject(wrapper);
    return wrapper;
}

void registerWrapper(const void* native, REALobject wrapper) {
    if (instances) CFDictionarySetValue(instances, native, wrapper);
}

void unregisterWrapper(const void* native) {
    if (instances) CFDictionaryRemoveValue(instances, native);
}

void provideExceptionMaker() {
    SEL selector = @selector(NewNSExceptionKaz:);
    if (![NSException respondsToSelector:selector])
        class_addMethod(object_getClass([NSException class]), selector,
                        reinterpret_cast<IMP>(makeRuntimeException), "^v12@0:4@8");
}

} // namespace bridge
