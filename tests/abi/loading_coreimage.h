// What the tests of loading do to Core Image itself; a unit of its own, because a C++ catch matches nothing
// in Objective-C++.
#pragma once

#include <string>

// From now on [CIImage imageWithData:] raises an exception of that name and reason.
void breakImageWithData(const char* name, const char* reason);

struct AdjustmentOptions {
    std::string enhance, redEye, features;
};
AdjustmentOptions adjustmentOptions();
