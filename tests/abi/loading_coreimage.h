// Replaces parts of Core Image for the tests of loading; a unit of its own, because no C++ catch works in
// Objective-C++.
#pragma once

#include <string>

// From now on [CIImage imageWithData:] raises an exception of that name and reason.
void breakImageWithData(const char* name, const char* reason);

// From now on [CIImage imageWithData:] waits until it is let go.
void holdImageWithData();
void letImageWithDataGo();

struct AdjustmentOptions {
    std::string enhance, redEye, features;
};
AdjustmentOptions adjustmentOptions();
