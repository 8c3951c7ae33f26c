#pragma once

#import <Foundation/Foundation.h>

#include "Shim.h"

namespace ci {

/// Raises the failure, if it is one, as NSMallocException or NSInvalidArgumentException; `who` comes first in
/// the reason.
inline void raise(const Failure& failure, NSString* who) {
    if (!failure) return;
    [NSException raise:failure.memory ? NSMallocException : NSInvalidArgumentException
                format:@"%@: %s", who, failure.reason.c_str()];
}

} // namespace ci
