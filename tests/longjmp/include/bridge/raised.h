// The product's one handler of Cocoa exceptions as it is on 32-bit Mac OS X: reached by longjmp. Stands in
// front of the product's own header of this name.
#pragma once

#include "../../handlers.h"

#include <hostapi/ledger.h>

#import <Foundation/Foundation.h>

#include <csetjmp>
#include <cstdlib>
#include <type_traits>

namespace bridge {

inline void settle(host::LedgerMark& mark, id thrown) {
    [thrown retain];
    mark.settle();
    [thrown autorelease];
}

template <class Thrown = NSException*, class Body>
Thrown raisedBy(Body&& body) {
    host::LedgerMark mark;
    longjmps::Handler handler;
    @try {
        if (_setjmp(handler.place) == 0) {
            handler.enter();
            body();
            handler.leave();
            return nil;
        }
    } @catch (id) {
        std::abort(); // the unwinder looks for this handler, and longjmp comes first
    }
    id thrown = static_cast<id>(handler.thrown);
    settle(mark, thrown);
    if (std::is_same_v<Thrown, id> || [thrown isKindOfClass:[NSException class]])
        return static_cast<Thrown>(thrown);
    @throw thrown;
}

} // namespace bridge
