// Cocoa's side of the tests of filters: a filter with attributes of the test's own, and a conversion that
// raises. A unit of its own, because no C++ catch works in Objective-C++.
#pragma once

#include <hostapi/abi.h>

// A CIFilter, alive for good, with these attributes:
//     "inputNumbers"   numbers under every key that takes one, a minimum of 0, a "CIAttributeName" of its own
//     "inputVectors"   a vector under each of those keys, no class
//     "inputTexts"     a text under each, and a number for its class
//     "inputNothing"   an empty dictionary
//     "inputText", "inputList"   no dictionaries
int craftedFilter();

// Registers "OurBrightest" in the category "OurEffects": a filter written in Objective-C whose output is its
// inputImage, brightened by its inputStops, 2 by default.
void registerFilter();

// The handle of the class NSObject, which is an object, too.
int classOfObjects();

// How many references there are to the key of its entry with that name, and to the entry's dictionary.
struct CraftedReferences {
    int key, dictionary;
    bool operator==(const CraftedReferences&) const = default;
};
CraftedReferences referencesTo(const char* key);

// Stands for the host's service of that kind: raises the Cocoa exception "no text".
const void* raiseInsteadOfCFString(REALstring, std::uint32_t);
