// Loading an image on a worker thread.
#include "CIImageLoading.h"

#include <bridge/guard.h>
#include <bridge/threads.h>

#import <QuartzCore/QuartzCore.h>

namespace {

// A Cocoa exception is logged and goes no further.
template <class Body>
void logged(Body&& body) {
    if (NSException* exception = bridge::raisedBy(body)) NSLog(@"%@\n", exception);
}

void load(coreimage::ImageLoadRequest& request) {
    if (request.data) request.result = [[CIImage imageWithData:request.data] retain];
    if (request.url)
        request.result = [(request.options ? [CIImage imageWithContentsOfURL:request.url
                                                                     options:request.options]
                                           : [CIImage imageWithContentsOfURL:request.url]) retain];
}

} // namespace

void coreimage::DoWork(void* argument) {
    auto& request = *static_cast<ImageLoadRequest*>(argument);
    bridge::nameCurrentThread("CIImageLoad");
    logged([&] {
        bridge::AutoreleasePool pool;
        logged([&] { load(request); }); // inside: the exception lives in the pool
        pool.drain();
    });
}
