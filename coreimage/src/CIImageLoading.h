// Loading an image on a worker thread.
#pragma once

#include <cstddef>

@class CIImage, NSData, NSDictionary, NSURL;

namespace coreimage {

// An image to load from data or from a URL.
struct ImageLoadRequest {
    NSData* data = nullptr;
    NSURL* url = nullptr;
    CIImage* result = nullptr;       // retained; nil when nothing could be loaded
    NSDictionary* options = nullptr; // for the URL
};
static_assert(sizeof(ImageLoadRequest) == 4 * 4);

// The work of loading: takes the ImageLoadRequest and fills in its result. A Cocoa exception is logged.
void DoWork(void* request);

} // namespace coreimage
