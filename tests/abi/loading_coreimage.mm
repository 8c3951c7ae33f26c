// Core Image's loaders, watched and made to fail.
#include "loading_coreimage.h"

#import <QuartzCore/QuartzCore.h>

#include <condition_variable>
#include <mutex>
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

static std::mutex mutex;
static std::condition_variable changed;
static bool mayGo = false;
static id (*imageWithData)(id, SEL, NSData*) = nullptr;

static id imageWithHeldData(id self, SEL selector, NSData* data) {
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [] { return mayGo; });
    }
    return imageWithData(self, selector, data);
}

void holdImageWithData() {
    Method method = class_getClassMethod([CIImage class], @selector(imageWithData:));
    imageWithData = reinterpret_cast<decltype(imageWithData)>(
        method_setImplementation(method, reinterpret_cast<IMP>(imageWithHeldData)));
}

void letImageWithDataGo() {
    std::lock_guard lock(mutex);
    mayGo = true;
    changed.notify_all();
}

AdjustmentOptions adjustmentOptions() {
    return {[kCIImageAutoAdjustEnhance UTF8String],
            [kCIImageAutoAdjustRedEye UTF8String],
            [kCIImageAutoAdjustFeatures UTF8String]};
}
