// What Core Foundation raises through Cocoa.
#include "raise.h"

#import <Foundation/Foundation.h>

#include <cstdlib>

void raiseOutOfMemory() {
    [NSException raise:NSMallocException format:@"There is not enough memory."];
    std::abort(); // not reached
}
