// The product's one handler of Cocoa exceptions.
#pragma once

#include <hostapi/ledger.h>

#import <Foundation/Foundation.h>

#include <type_traits>

namespace bridge {

// Gives back what skipped scopes owned. The object that was thrown outlives an autorelease pool among it.
inline void settle(host::LedgerMark& mark, id thrown) {
    [thrown retain];
    mark.settle();
    [thrown autorelease];
}

// Runs `body` and returns the Cocoa exception that ended it, or nil when it ran to its end. What the scopes
// inside it owned has been given back by then. Other objects that are thrown pass, unless `Thrown` is id.
//
// On 32-bit Mac OS X an exception arrives by longjmp, so after one, the caller's variables that `body`
// changes have no certain value.
template <class Thrown = NSException*, class Body>
Thrown raisedBy(Body&& body) {
    host::LedgerMark mark;
    @try {
        body();
    } @catch (NSException* exception) {
        settle(mark, exception);
        return exception;
    } @catch (id other) {
        settle(mark, other);
        if constexpr (std::is_same_v<Thrown, id>) return other;
        @throw;
    }
    return nil;
}

} // namespace bridge
