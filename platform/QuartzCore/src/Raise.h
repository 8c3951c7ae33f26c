// From the engine's failures to NSExceptions.
#pragma once

#import <Foundation/Foundation.h>

#include "Shim.h"

namespace ci {

/// Raises NSMallocException or NSInvalidArgumentException for a failure, with a reason that begins with
/// `who`.
inline void raise(const Failure& failure, NSString* who) {
    if (!failure) return;
    [NSException raise:failure.memory ? NSMallocException : NSInvalidArgumentException
                format:@"%@: %s", who, failure.reason.c_str()];
}

} // namespace ci
