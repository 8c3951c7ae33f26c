// Autorelease pools for Core Foundation, which leaves nothing in the caller's, so that plain C programs can
// use it: every function that makes temporary Cocoa objects runs in a pool of its own.
#pragma once

#import <Foundation/Foundation.h>

// Runs `body` in a pool. What Cocoa raises outlives the pool that it was made in.
template <class Body>
auto inPool(Body&& body) -> decltype(body()) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    decltype(body()) result;
    @try {
        result = body();
    } @catch (NSException* raised) {
        [raised retain];
        [pool release];
        [raised autorelease];
        @throw;
    }
    [pool release];
    return result;
}
