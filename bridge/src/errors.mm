// Errors and Cocoa exceptions, raised as host exceptions.
#include <bridge/errors.h>
#include <bridge/raised.h>
#include <bridge/text.h>
#include <hostapi/handles.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

@interface NSException (KazFamily)
+ (REALobject)NewNSExceptionKaz:(NSException*)exception;
@end

namespace {

// The host exception that the family makes of a Cocoa exception, with a reference for the caller; where no
// part of the family makes any, this plugin's own, so that a Cocoa exception never unwinds into the host. The
// family is sent the message untested each time, because a part that loads later may add its method at run
// time.
REALobject newExceptionOf(NSException* exception) {
    REALobject made = nullptr;
    NSException* raised = bridge::raisedBy([&] { made = [NSException NewNSExceptionKaz:exception]; });
    if (!raised) return made;
    if ([NSException respondsToSelector:@selector(NewNSExceptionKaz:)]) @throw raised;
    return bridge::newRuntimeException([exception reason]);
}

} // namespace

// Called outside of every guard of this plugin, so it leaves nothing in the ledger when the text's own code
// raises.
REALobject bridge::newRuntimeException(NSString* message) {
    REALobject result = nullptr;
    NSException* raised = raisedBy([&] {
        host::Held made(REALnewInstance("RuntimeException"));
        if (!made) return;
        host::Held text(CFString2RBString((CFStringRef)message));
        REALSetPropValueString(made.get(), "Message", text.get());
        result = made.release();
    });
    if (raised) @throw raised;
    return result;
}

void RaiseException(const char* exceptionClassName, const char* message, unsigned long) {
    std::size_t length = message ? std::strlen(message) : 0;
    bool fits = length >= 1 && length <= 0x7FFFFFFE;
    host::Held text(fits ? bridge::newString(message, length, kREALTextEncodingASCII) : nullptr);

    REALobject made = REALnewInstance(exceptionClassName);
    host::Held exception(made ? made : REALnewInstance("RuntimeException"));
    if (!exception) return;
    REALSetPropValueString(exception.get(), "Message", text.get());
    REALRaiseException(exception.get());
}

void RaiseOutOfBoundsException(std::int64_t value, std::int64_t, std::int64_t count,
                               const char* parameterName, const char* methodName) {
    if (!parameterName) parameterName = "?";
    if (!methodName) methodName = "?";
    std::size_t size = std::strlen(parameterName) + std::strlen(methodName) + 200;
    char* message = size < 0x7FFFFFFF ? static_cast<char*>(std::calloc(1, size)) : nullptr;
    if (!message) {
        RaiseException(bridge::kOutOfBounds, "Out of Bounds");
        return;
    }
    const char* format =
        value < 0 ? "Parameter %s to method %s is too small. Range is %lld to %lld, but value is %lld."
                  : "Parameter %s to method %s is too big. Range is %lld to %lld, but value is %lld.";
    std::snprintf(message, size, format, parameterName, methodName, 0LL, static_cast<long long>(count - 1),
                  static_cast<long long>(value));
    RaiseException(bridge::kOutOfBounds, message);
    std::free(message);
}

void RaiseNSExceptionKaz(NSException* exception) {
    NSLog(@"A %@: %@, Info: %@\n", [exception name], [exception reason], [exception userInfo]);
    host::Held raised(newExceptionOf(exception));
    if (raised) REALRaiseException(raised.get());
}
