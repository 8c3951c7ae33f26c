// Containers within containers, on their way from the host to Cocoa.
#include <bridge/nesting.h>

#import <Foundation/Foundation.h>

bridge::Nesting::Level bridge::Nesting::innermost = {};

bridge::Nesting::Nesting(REALobject container) : outer(innermost) {
    constexpr int deepest = 16384; // of 8 MB of stack, that takes half
    if (container == outer.mark)
        [NSException raise:NSInvalidArgumentException format:@"a dictionary or array contains itself"];
    if (outer.depth == deepest)
        [NSException raise:NSInvalidArgumentException format:@"dictionaries or arrays are nested too deeply"];
    int depth = outer.depth + 1;
    innermost = {depth, (depth & (depth - 1)) == 0 ? container : outer.mark};
}
