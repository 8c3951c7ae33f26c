// Watches what the plugin sends to Core Image.
#pragma once

#include <string>
#include <vector>

// Each call as its selector and its arguments, in order, e.g. "contextWithCGContext:options:
// {software_renderer=0}".
extern std::vector<std::string> nativeCalls;

// From here on calls are noted. Bitmaps are not made, since their length may be a lie; everything else is.
void watchNativeCalls();

// Makes `unionWith:` answer the shape that it was given.
void answerUnionsWithTheOther();

// Where a memory block's data would begin, as noted for the last bitmap.
extern const void* lastBitmapBytes;
