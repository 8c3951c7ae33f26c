// Loading an image on a worker thread.
#include "CIImageLoading.h"

#include <bridge/guard.h>
#include <bridge/threads.h>

#import <QuartzCore/QuartzCore.h>

void coreimage::DoWork(void* argument) {
    auto& request = *static_cast<ImageLoadRequest*>(argument);
    bridge::nameCurrentThread("CIImageLoad");
    @try {
        bridge::AutoreleasePool pool;
        if (request.data) request.result = [[CIImage imageWithData:request.data] retain];
        if (request.url)
            request.result = [(request.options ? [CIImage imageWithContentsOfURL:request.url
                                                                         options:request.options]
                                               : [CIImage imageWithContentsOfURL:request.url]) retain];
        pool.drain();
    } @catch (NSException* exception) {
        NSLog(@"%@\n", exception);
    }
}
