// Values between the host and Cocoa, against the same work done by Foundation or Core Graphics alone: making
// objects from C values on the way in, and reading C values from them on the way out.
#include "bench.h"

#include <studio/host.h>

#include <Carbon/Carbon.h>
#include <Carbon/CarbonTesting.h>
#include <bridge/dictionaries.h>
#include <bridge/pictures.h>
#include <bridge/text.h>
#include <bridge/variants.h>
#include <string>
#include <vector>

namespace {

using studio::Value;

// Written to, so that the compiler does not drop work whose result nobody reads.
volatile double sink;

struct BridgedHost : studio::Host {
    BridgedHost() {
        gResolver = resolver();
        rbversion_rbversion = version();
    }
};

template <class Work>
double microseconds(int runs, Work&& work) {
    return bench::bestOf(runs,
                         [&] {
                             NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
                             work();
                             [pool release];
                         }) *
           1e6;
}

void reportBoth(const std::string& name, double bridged, double bare) {
    bench::report(name, bridged, "us", bridged / bare, "Foundation alone");
}

void give(REALobject variant) { REALUnlockObject(variant); }

// --- dictionaries -----------------------------------------------------------------------------------------

void measureDictionary() {
    BridgedHost host;
    constexpr int count = 1000;
    std::vector<std::string> keys;
    std::vector<std::pair<Value, Value>> entries;
    for (int i = 0; i < count; ++i) {
        keys.push_back("key number " + std::to_string(i));
        entries.emplace_back(keys.back(), i * 0.5);
    }
    Value source = host.dictionary(entries);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];

    auto make = [&] {
        NSMutableDictionary* made = [NSMutableDictionary dictionaryWithCapacity:count];
        for (int i = 0; i < count; ++i)
            [made setObject:[NSNumber numberWithDouble:i * 0.5]
                     forKey:[NSString stringWithUTF8String:keys[static_cast<std::size_t>(i)].c_str()]];
        return made;
    };
    double bare = microseconds(20, [&] { sink = [make() count]; });
    reportBoth("1,000 entries to Cocoa",
               microseconds(20, [&] { sink = [GetVariantAsNSObject(source.object()) count]; }), bare);
    NSDictionary* dictionary = make();
    reportBoth("1,000 entries to the host",
               microseconds(20, [&] { give(NewVariantFromNSObject(dictionary)); }), bare);
    [pool release];
}

// --- arrays -----------------------------------------------------------------------------------------------

constexpr int kElements = 100000;

// An array of a type of the host, to Cocoa and back, against an array of objects that `make` returns.
template <class Make>
void measureArray(studio::Host& host, const char* type, const Value& element, Make&& make) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Value source = host.array(type, std::vector<Value>(kElements, element));
    auto makeAll = [&] {
        NSMutableArray* made = [NSMutableArray array];
        for (int i = 0; i < kElements; ++i) [made addObject:make()];
        return made;
    };
    double bare = microseconds(5, [&] { sink = [makeAll() count]; });
    reportBoth(std::string(type) + "s to Cocoa",
               microseconds(5, [&] { sink = [GetVariantAsNSObject(source.object()) count]; }), bare);
    NSArray* array = makeAll();
    reportBoth(std::string(type) + "s to the host",
               microseconds(5, [&] { give(NewVariantFromNSObject(array)); }), bare);
    [pool release];
}

void measureArrays() {
    BridgedHost host;
    measureArray(host, "Integer", 7, [] { return [NSNumber numberWithLong:7]; });
    measureArray(host, "Int64", 7LL, [] { return [NSNumber numberWithLongLong:7]; });
    measureArray(host, "Single", 7.5f, [] { return [NSNumber numberWithFloat:7.5f]; });
    measureArray(host, "Double", 7.5, [] { return [NSNumber numberWithDouble:7.5]; });
    measureArray(host, "Boolean", true, [] { return [NSNumber numberWithBool:YES]; });
    measureArray(host, "String", "twenty characters...",
                 [] { return [NSString stringWithUTF8String:"twenty characters..."]; });
    measureArray(host, "Variant", 7.5, [] { return [NSNumber numberWithDouble:7.5]; });
    measureArray(host, "Date", host.create("Date", {2012, 7, 31, 12, 30, 15}), [] {
        return [NSCalendarDate dateWithYear:2012
                                      month:7
                                        day:31
                                       hour:12
                                     minute:30
                                     second:15
                                   timeZone:[NSTimeZone localTimeZone]];
    });
}

// --- strings and pictures ---------------------------------------------------------------------------------

void measureString() {
    BridgedHost host;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    std::string bytes;
    while (bytes.size() < (1 << 20)) bytes += "a line of text, and \u00fcml\u00e4uts \u2603\n";
    Value text(bytes);
    NSString* string = [NSString stringWithUTF8String:bytes.c_str()];
    reportBoth(
        "1 MB to Cocoa",
        microseconds(20, [&] { sink = [(NSString*)bridge::temporaryString(text.stringHandle()) length]; }),
        microseconds(20, [&] { sink = [[NSString stringWithUTF8String:bytes.c_str()] length]; }));
    reportBoth("1 MB to the host",
               microseconds(20, [&] { REALUnlockString(CFString2RBString((CFStringRef)string)); }),
               microseconds(20, [&] { sink = [string UTF8String][0]; }));
    [pool release];
}

void measurePicture() {
    BridgedHost host;
    constexpr int width = 4000, height = 3000;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef bitmap =
        CGBitmapContextCreate(nullptr, width, height, 8, 0, space, kCGImageAlphaPremultipliedFirst);
    double bare = microseconds(5, [&] { CGImageRelease(CGBitmapContextCreateImage(bitmap)); });
    CGContextRelease(bitmap);
    CGColorSpaceRelease(space);

    Value picture = host.create("Picture", {width, height, 32}),
          mask = host.create("Picture", {width, height, 32});
    auto handle = [](const Value& v) { return reinterpret_cast<REALpicture>(v.object()); };
    auto measure = [&](const char* name, REALpicture maskHandle) {
        double taken =
            microseconds(5, [&] { CGImageRelease(CreateCGImageInternal(handle(picture), maskHandle)); });
        bench::report(name, taken, "us", taken / bare, "an image of a bitmap context");
    };
    measure("by the host's copy", nullptr);
    measure("by the host's copy, with a mask", handle(mask));
    GestaltSetSystemVersion(10, 6, 8);
    measure("by its description", nullptr);
    measure("by its description, with a mask", handle(mask));
    [pool release];
}

} // namespace

const bench::Benchmark bench::dictionaries = {"conversions: a dictionary", measureDictionary};
const bench::Benchmark bench::arrays = {"conversions: arrays of 100,000", measureArrays};
const bench::Benchmark bench::strings = {"conversions: a string", measureString};
const bench::Benchmark bench::pictures = {"conversions: a picture of 4000 x 3000 to a CGImage",
                                          measurePicture};
