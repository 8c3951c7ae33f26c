// Host arrays against NSArray.
#pragma once

#include <bridge/nesting.h>
#include <hostapi/arrays.h>

#import <Foundation/Foundation.h>

// Fills a host string array from element 0 on. The array is neither cleared nor resized first.
void FillStringArray(REALstringArray array, NSArray* strings);

// The same for an object array. `convert` makes a host object of each element, or null; the reference that it
// returns is given back once the array holds its own.
void FillObjectArray(REALarray array, NSArray* elements, REALobject (*convert)(id element));

namespace bridge {

// An autoreleased array of what `convert` makes of each element. An element that converts to nil raises
// Cocoa's invalid-argument exception.
template <class Element, class Convert>
NSMutableArray* arrayOf(REALarray array, Convert&& convert) {
    Nesting nesting(host::asObject(array));
    NSMutableArray* result = [NSMutableArray array];
    std::int32_t upperBound = REALGetArrayUBound(array);
    for (std::int32_t i = 0; i <= upperBound; ++i) {
        host::Held element(host::arrayValue<Element>(array, i));
        [result addObject:convert(element.get())];
    }
    return result;
}

} // namespace bridge
