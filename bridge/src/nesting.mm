// Containers within containers, on their way from the host to Cocoa.
#include <bridge/nesting.h>

#import <Foundation/Foundation.h>

bridge::Nesting::Level bridge::Nesting::innermost = {};

bridge::Nesting::Level bridge::Nesting::enter(REALobject container) {
    constexpr int deepest = 16384; // of 8 MB of stack, that takes half
    Level outer = innermost;
    if (container == outer.mark)
        [NSException raise:NSInvalidArgumentException format:@"a dictionary or array contains itself"];
    if (outer.depth == deepest)
        [NSException raise:NSInvalidArgumentException format:@"dictionaries or arrays are nested too deeply"];
    int depth = outer.depth + 1;
    innermost = {depth, (depth & (depth - 1)) == 0 ? container : outer.mark, false};
    outer.left = true;
    return outer;
}
