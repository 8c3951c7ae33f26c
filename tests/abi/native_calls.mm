#include "native_calls.h"

#import <QuartzCore/QuartzCore.h>

#include <objc/runtime.h>

std::vector<std::string> nativeCalls;
const void* lastBitmapBytes = nullptr;

namespace {

std::string text(NSDictionary* options) {
    if (!options) return "nil";
    std::string result = "{";
    NSArray* keys = [[options allKeys] sortedArrayUsingSelector:@selector(compare:)];
    for (NSString* key in keys) {
        if (result.size() > 1) result += " ";
        id value = [options objectForKey:key];
        result += [key UTF8String];
        if ([value isKindOfClass:[NSNumber class]])
            result += std::string("=") + [[value stringValue] UTF8String];
    }
    return result + "}";
}

std::string number(CGFloat value) { return [[NSString stringWithFormat:@"%g", double(value)] UTF8String]; }

std::string text(CGRect r) {
    return "[" + number(r.origin.x) + " " + number(r.origin.y) + " " + number(r.size.width) + " " +
           number(r.size.height) + "]";
}

void note(SEL selector, const std::string& arguments) {
    nativeCalls.push_back(std::string(sel_getName(selector)) + (arguments.empty() ? "" : " " + arguments));
}

// A watched method: notes what `describe` says of its arguments, and passes the call on. The number tells
// methods apart that are described alike.
template <class Result, auto describe, int = 0>
struct Watched;

template <class Result, class... Arguments, std::string (*describe)(Arguments...), int n>
struct Watched<Result, describe, n> {
    static inline Result (*original)(id, SEL, Arguments...) = nullptr;

    static Result call(id self, SEL selector, Arguments... arguments) {
        note(selector, describe(arguments...));
        return original(self, selector, arguments...);
    }

    static void in(Class cls, SEL selector) {
        original = reinterpret_cast<decltype(original)>(
            method_setImplementation(class_getInstanceMethod(cls, selector), reinterpret_cast<IMP>(&call)));
    }
};

std::string options(id, NSDictionary* options) { return text(options); }
std::string pointAndRect(CIImage*, CGPoint point, CGRect source) {
    return number(point.x) + "," + number(point.y) + " " + text(source);
}
std::string twoRects(CIImage*, CGRect destination, CGRect source) {
    return text(destination) + " " + text(source);
}
std::string rect(CIImage*, CGRect source) { return text(source); }
std::string rectAndFormat(CIImage*, CGRect source, CIFormat format, CGColorSpaceRef space) {
    return text(source) + " " + std::to_string(format) + (space ? " space" : " null");
}
std::string nothing() { return {}; }
std::string transform(CGAffineTransform m, BOOL interior) {
    return number(m.a) + " " + number(m.b) + " " + number(m.c) + " " + number(m.d) + " " + number(m.tx) +
           " " + number(m.ty) + (interior ? " interior" : " exterior");
}

id noBitmap(id self, SEL selector, NSData* data, size_t bytesPerRow, CGSize size, CIFormat format,
            CGColorSpaceRef space) {
    lastBitmapBytes = [data bytes];
    note(selector, std::to_string([data length]) + " " + std::to_string(bytesPerRow) + " " +
                       number(size.width) + "x" + number(size.height) + " " + std::to_string(format) +
                       (space ? " space" : " null"));
    if (self != [CIImage class]) [self release]; // an initialiser's
    return nil;
}

id theOther(id, SEL, id other) { return other; }

Class metaclass(Class cls) { return object_getClass(cls); }

} // namespace

void watchNativeCalls() {
    Class image = [CIImage class], context = [CIContext class], shape = [CIFilterShape class];
    Watched<id, options, 0>::in(metaclass(image), @selector(imageWithCGImage:options:));
    Watched<id, options, 1>::in(metaclass(image), @selector(imageWithContentsOfURL:options:));
    Watched<id, options, 2>::in(metaclass(image), @selector(imageWithData:options:));
    method_setImplementation(
        class_getClassMethod(image, @selector(imageWithBitmapData:bytesPerRow:size:format:colorSpace:)),
        reinterpret_cast<IMP>(&noBitmap));
    method_setImplementation(
        class_getInstanceMethod(image, @selector(initWithBitmapData:bytesPerRow:size:format:colorSpace:)),
        reinterpret_cast<IMP>(&noBitmap));
    Watched<id, options, 3>::in(metaclass(context), @selector(contextWithCGContext:options:));
    Watched<void, pointAndRect>::in(context, @selector(drawImage:atPoint:fromRect:));
    Watched<void, twoRects>::in(context, @selector(drawImage:inRect:fromRect:));
    Watched<CGImageRef, rect>::in(context, @selector(createCGImage:fromRect:));
    Watched<CGImageRef, rectAndFormat>::in(context, @selector(createCGImage:fromRect:format:colorSpace:));
    Watched<void, nothing, 0>::in(context, @selector(clearCaches));
    Watched<void, nothing, 1>::in(context, @selector(reclaimResources));
    Watched<id, transform>::in(shape, @selector(transformBy:interior:));
}

void answerUnionsWithTheOther() {
    method_setImplementation(class_getInstanceMethod([CIFilterShape class], @selector(unionWith:)),
                             reinterpret_cast<IMP>(&theOther));
}
