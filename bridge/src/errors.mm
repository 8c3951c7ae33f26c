#include <bridge/errors.h>
#include <bridge/registry.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

@interface NSException (KazFamily)
+ (REALobject)NewNSExceptionKaz:(NSException*)exception;
@end

void RaiseException(const char* exceptionClassName, const char* message, unsigned long) {
    REALstring text = nullptr;
    std::size_t length = message ? std::strlen(message) : 0;
    if (length >= 1 && length <= 0x7FFFFFFE) {
        text = REALBuildString(message, static_cast<std::int32_t>(length));
        if (text) REALSetStringEncoding(text, kREALTextEncodingASCII);
    }

    REALobject exception = REALnewInstance(exceptionClassName);
    if (!exception) exception = REALnewInstance("RuntimeException");
    if (exception) {
        REALSetPropValueString(exception, "Message", text);
        REALRaiseException(exception);
        REALUnlockObject(exception);
    }
    if (text) REALUnlockString(text);
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
    bridge::provideExceptionMaker();
    REALobject raised = [NSException NewNSExceptionKaz:exception];
    if (!raised) return;
    REALRaiseException(raised);
    REALUnlockObject(raised);
}
