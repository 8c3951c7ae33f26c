// Not Apple's: counts of live objects, for tests and leak checks.
#pragma once

#include <CoreGraphics/CGBase.h>

/**
 * Fills in the name of each counted class, such as "CGImage" or "CIFilter", and the number of its live
 * instances, at most `capacity` of them. Returns how many it filled in.
 */
CG_EXTERN int PlatformLiveObjects(const char** names, int* counts, int capacity);
