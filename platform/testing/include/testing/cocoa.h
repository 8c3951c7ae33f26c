// Cocoa's strings and exceptions, for the tests of every framework.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

inline std::string str(NSString* s) { return s ? [s UTF8String] : "(nil)"; }

/// The exception that `body` raises, or nil.
template <class Body>
NSException* raised(Body body) {
    @try {
        body();
    } @catch (NSException* e) {
        return [[e retain] autorelease];
    }
    return nil;
}
