// Watches the messages that the plugin sends to Core Image, and answers some of them instead.
#include "native_calls.h"

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <objc/runtime.h>

// GNUstep counts objects in every build and declares it in debug builds alone.
extern "C" {
BOOL GSDebugAllocationActive(BOOL active);
Class* GSDebugAllocationClassList();
int GSDebugAllocationCount(Class);
}

std::vector<std::string> nativeCalls;
std::map<std::string, const void*> lastOptions;
const void* lastBitmapBytes = nullptr;
const void* lastDataBytes = nullptr;

namespace {

// --- arguments as text ------------------------------------------------------------------------------------

std::string text(NSDictionary* options) {
    lastOptions.clear();
    if (!options) return "nil";
    std::string result = "{";
    NSArray* keys = [[options allKeys] sortedArrayUsingSelector:@selector(compare:)];
    for (NSString* key in keys) {
        if (result.size() > 1) result += " ";
        id value = [options objectForKey:key];
        result += [key UTF8String];
        lastOptions[[key UTF8String]] = value;
        if ([value isKindOfClass:[NSNumber class]])
            result += std::string("=") + [[value stringValue] UTF8String];
    }
    return result + "}";
}

std::string number(CGFloat value) {
    return [[NSString stringWithFormat:@"%.9g", static_cast<double>(value)] UTF8String];
}

std::string text(CGRect r) {
    return "[" + number(r.origin.x) + " " + number(r.origin.y) + " " + number(r.size.width) + " " +
           number(r.size.height) + "]";
}

// --- watching ---------------------------------------------------------------------------------------------

int depth = 0; // of watched methods that are running

void note(SEL selector, const std::string& arguments) {
    if (depth == 0)
        nativeCalls.push_back(std::string(sel_getName(selector)) +
                              (arguments.empty() ? "" : " " + arguments));
}

Method instanceMethod(Class cls, SEL selector) { return class_getInstanceMethod(cls, selector); }
Class metaclass(Class cls) { return object_getClass(cls); }

struct Running {
    Running() { ++depth; }
    ~Running() { --depth; }
};

// A watched method: notes what `describe` says of its arguments, and passes the call on. The number tells
// methods apart that are described alike.
template <class Result, auto describe, int = 0>
struct Watched;

template <class Result, class... Arguments, std::string (*describe)(Arguments...), int n>
struct Watched<Result, describe, n> {
    static inline Result (*original)(id, SEL, Arguments...) = nullptr;

    static Result call(id self, SEL selector, Arguments... arguments) {
        note(selector, describe(arguments...));
        Running running;
        return original(self, selector, arguments...);
    }

    static void in(Class cls, SEL selector) {
        original = reinterpret_cast<decltype(original)>(
            method_setImplementation(instanceMethod(cls, selector), reinterpret_cast<IMP>(&call)));
    }
};

std::string object(id) { return {}; }
std::string objectAndOptions(id, NSDictionary* options) { return text(options); }
std::string data(NSData* given) {
    lastDataBytes = [given bytes];
    return {};
}
std::string dataAndOptions(NSData* given, NSDictionary* options) {
    lastDataBytes = [given bytes];
    return text(options);
}
std::string pathAndFlag(NSString*, BOOL isDirectory) { return isDirectory ? "directory" : "file"; }
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

// --- other answers ----------------------------------------------------------------------------------------

id givenShape = nil, givenContext = nil;
const char* givenReason = nullptr;

id theOther(id, SEL, id other) { return other; }
id definition(id, SEL) { return givenShape; }
id context(id, SEL, CGContextRef, NSDictionary*) { return givenContext; }
void* noPort(id, SEL) { return nullptr; }

void raise() { [NSException raise:NSInternalInconsistencyException format:@"%s", givenReason]; }
void drawRaising(id, SEL, CIImage*, CGRect, CGRect) { raise(); }
void drawAtPointRaising(id, SEL, CIImage*, CGPoint, CGRect) { raise(); }
id adjustRaising(id, SEL) {
    raise();
    return nil;
}
id adjustWithOptionsRaising(id, SEL, NSDictionary*) {
    raise();
    return nil;
}
id insetRaising(id, SEL, int, int) {
    raise();
    return nil;
}

template <class Function>
void replace(Class cls, SEL selector, Function function) {
    method_setImplementation(instanceMethod(cls, selector), reinterpret_cast<IMP>(function));
}

} // namespace

void watchNativeCalls() {
    Class image = [CIImage class], context = [CIContext class], shape = [CIFilterShape class];
    Watched<id, object, 0>::in(metaclass(image), @selector(imageWithCGImage:));
    Watched<id, object, 1>::in(metaclass(image), @selector(imageWithContentsOfURL:));
    Watched<id, data, 0>::in(metaclass(image), @selector(imageWithData:));
    Watched<id, object, 3>::in(metaclass(image), @selector(imageWithColor:));
    Watched<id, nothing, 0>::in(metaclass(image), @selector(emptyImage));
    Watched<id, object, 4>::in(image, @selector(initWithCGImage:));
    Watched<id, object, 5>::in(image, @selector(initWithContentsOfURL:));
    Watched<id, data, 1>::in(image, @selector(initWithData:));
    Watched<id, objectAndOptions, 0>::in(metaclass(image), @selector(imageWithCGImage:options:));
    Watched<id, objectAndOptions, 1>::in(metaclass(image), @selector(imageWithContentsOfURL:options:));
    Watched<id, dataAndOptions, 0>::in(metaclass(image), @selector(imageWithData:options:));
    Watched<id, objectAndOptions, 3>::in(image, @selector(initWithCGImage:options:));
    Watched<id, objectAndOptions, 4>::in(image, @selector(initWithContentsOfURL:options:));
    Watched<id, dataAndOptions, 1>::in(image, @selector(initWithData:options:));
    replace(metaclass(image), @selector(imageWithBitmapData:bytesPerRow:size:format:colorSpace:), noBitmap);
    replace(image, @selector(initWithBitmapData:bytesPerRow:size:format:colorSpace:), noBitmap);
    Watched<id, pathAndFlag>::in(metaclass([NSURL class]), @selector(fileURLWithPath:isDirectory:));
    Watched<id, objectAndOptions, 6>::in(metaclass(context), @selector(contextWithCGContext:options:));
    Watched<void, pointAndRect>::in(context, @selector(drawImage:atPoint:fromRect:));
    Watched<void, twoRects>::in(context, @selector(drawImage:inRect:fromRect:));
    Watched<CGImageRef, rect>::in(context, @selector(createCGImage:fromRect:));
    Watched<CGImageRef, rectAndFormat>::in(context, @selector(createCGImage:fromRect:format:colorSpace:));
    Watched<void, nothing, 1>::in(context, @selector(clearCaches));
    Watched<void, nothing, 2>::in(context, @selector(reclaimResources));
    Watched<id, transform>::in(shape, @selector(transformBy:interior:));
}

void answerUnionsWithTheOther() { replace([CIFilterShape class], @selector(unionWith:), theOther); }

void answerDefinitionsWith(int shape) {
    givenShape = reinterpret_cast<id>(shape);
    replace([CIImage class], @selector(definition), definition);
}

void answerContextsWith(int native) {
    givenContext = reinterpret_cast<id>(native);
    replace(metaclass([CIContext class]), @selector(contextWithCGContext:options:), context);
}

void answerGraphicsPortsWithNull() {
    @autoreleasepool {
        NSImage* image = [[[NSImage alloc] initWithSize:NSMakeSize(1, 1)] autorelease];
        [image lockFocus];
        replace(object_getClass([NSGraphicsContext currentContext]), @selector(graphicsPort), noPort);
        [image unlockFocus];
    }
}

void raiseWhenDrawing(const char* reason) {
    givenReason = reason;
    replace([CIContext class], @selector(drawImage:inRect:fromRect:), drawRaising);
    replace([CIContext class], @selector(drawImage:atPoint:fromRect:), drawAtPointRaising);
}

void raiseWhenAdjusting(const char* reason) {
    givenReason = reason;
    replace([CIImage class], @selector(autoAdjustmentFilters), adjustRaising);
    replace([CIImage class], @selector(autoAdjustmentFiltersWithOptions:), adjustWithOptionsRaising);
}

bool somethingHasTheFocus() {
    @autoreleasepool {
        return [NSGraphicsContext currentContext] != nil;
    }
}

namespace {

std::map<std::string, int> livingCocoaObjects() {
    std::map<std::string, int> result;
    Class* classes = GSDebugAllocationClassList(); // ends in Nil; freed with the zone it came from
    for (Class* c = classes; *c; ++c) result[class_getName(*c)] = GSDebugAllocationCount(*c);
    NSZoneFree(NSDefaultMallocZone(), classes);
    return result;
}

id urlWithABase(id, SEL) {
    return [NSURL URLWithString:@"name.png" relativeToURL:[NSURL URLWithString:@"http://localhost/folder/"]];
}

} // namespace

std::map<std::string, int> cocoaObjectsLeftBy(const std::function<void()>& work) {
    auto run = [&] {
        @autoreleasepool {
            work();
        }
    };
    GSDebugAllocationActive(YES);
    run();
    std::map<std::string, int> left = livingCocoaObjects();
    run();
    for (const auto& [name, count] : livingCocoaObjects())
        if ((left[name] = count - left[name]) == 0) left.erase(name);
    GSDebugAllocationActive(NO);
    return left;
}

void answerURLsWithABase() { replace([CIImage class], @selector(url), urlWithABase); }

void raiseWhenInsetting(const char* reason) {
    givenReason = reason;
    replace([CIFilterShape class], @selector(insetByX:Y:), insetRaising);
}
