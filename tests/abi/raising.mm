// Native objects and classes that raise whatever they are sent.
#include "raising.h"

#import <Foundation/Foundation.h>

#include <cstdlib>
#include <objc/runtime.h>
#include <utility>
#include <vector>

namespace {

[[noreturn]] void raise() {
    [NSException raise:@"Raised" format:@"%s", kRaisedReason];
    std::abort();
}

id raiseAtMessage(id, SEL) { raise(); }

std::vector<std::pair<Method, IMP>> replaced;

// The class's own methods only: an inherited one would be replaced for every class.
void replace(Class cls, const char* selector) {
    Method method = class_getInstanceMethod(cls, sel_registerName(selector));
    if (!method) std::abort();
    replaced.emplace_back(method, method_setImplementation(method, reinterpret_cast<IMP>(&raiseAtMessage)));
}

struct Messages {
    const char* className;
    std::vector<const char*> toClass, toInstances;
};

// What the plugin sends to make objects, and to classes.
const Messages kMessages[] = {
    {"CIColor",
     {"colorWithRed:green:blue:", "colorWithRed:green:blue:alpha:", "colorWithString:", "colorWithCGColor:"},
     {"initWithCGColor:"}},
    {"CIContext", {"contextWithCGContext:options:"}, {}},
    {"CIDetector", {"detectorOfType:context:options:"}, {}},
    {"CIFilter",
     {"filterWithName:", "filterNamesInCategory:", "filterNamesInCategories:", "localizedNameForFilterName:",
      "localizedNameForCategory:", "localizedDescriptionForFilterName:",
      "localizedReferenceDocumentationForFilterName:"},
     {}},
    {"CIFilterShape", {}, {"initWithRect:"}},
    {"CIImage",
     {"emptyImage", "imageWithColor:", "imageWithCGImage:", "imageWithCGImage:options:", "imageWithData:",
      "imageWithData:options:", "imageWithContentsOfURL:", "imageWithContentsOfURL:options:",
      "imageWithBitmapData:bytesPerRow:size:format:colorSpace:"},
     {"initWithCGImage:", "initWithCGImage:options:", "initWithData:", "initWithData:options:",
      "initWithContentsOfURL:", "initWithContentsOfURL:options:",
      "initWithBitmapData:bytesPerRow:size:format:colorSpace:"}},
    {"CISampler",
     {"samplerWithImage:", "samplerWithImage:options:"},
     {"initWithImage:", "initWithImage:options:"}},
    {"CIVector",
     {"vectorWithX:", "vectorWithX:Y:", "vectorWithX:Y:Z:", "vectorWithX:Y:Z:W:", "vectorWithString:"},
     {"initWithX:", "initWithX:Y:", "initWithX:Y:Z:", "initWithX:Y:Z:W:", "initWithString:",
      "initWithValues:count:"}},
};

} // namespace

@interface KazRaising : NSObject
@end

@implementation KazRaising
- (NSString*)description {
    raise();
}
- (BOOL)isKindOfClass:(Class)kind {
    raise();
}
- (void)setValue:(id)value forKey:(NSString*)key {
    raise();
}
- (id)valueForKey:(NSString*)key {
    raise();
}
- (id)copyWithZone:(NSZone*)zone {
    raise();
}
- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    raise();
}
@end

const void* raisingObject() {
    static id object = [[KazRaising alloc] init];
    return object;
}

RaisingClasses::RaisingClasses() {
    for (const Messages& messages : kMessages) {
        Class cls = static_cast<Class>(objc_getClass(messages.className));
        if (![cls self]) continue; // the first message makes a class ready
        for (const char* selector : messages.toClass) replace(object_getClass(cls), selector);
        for (const char* selector : messages.toInstances) replace(cls, selector);
    }
}

RaisingClasses::~RaisingClasses() {
    for (auto [method, implementation] : replaced) method_setImplementation(method, implementation);
    replaced.clear();
}
