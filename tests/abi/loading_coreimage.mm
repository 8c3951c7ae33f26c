// Core Image's loaders, watched and made to fail.
#include "loading_coreimage.h"

#import <QuartzCore/QuartzCore.h>

#include <objc/runtime.h>

static const char *thrownName, *thrownReason;

static id imageWithBrokenData(id, SEL, NSData*) {
    @throw [NSException exceptionWithName:[NSString stringWithUTF8String:thrownName]
                                   reason:[NSString stringWithUTF8String:thrownReason]
                                 userInfo:nil];
}

void breakImageWithData(const char* name, const char* reason) {
    thrownName = name;
    thrownReason = reason;
    class_replaceMethod(object_getClass([CIImage class]), @selector(imageWithData:),
                        reinterpret_cast<IMP>(imageWithBrokenData), "@@:@");
}

AdjustmentOptions adjustmentOptions() {
    return {[kCIImageAutoAdjustEnhance UTF8String],
            [kCIImageAutoAdjustRedEye UTF8String],
            [kCIImageAutoAdjustFeatures UTF8String]};
}
