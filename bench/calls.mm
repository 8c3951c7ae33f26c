// Calls of the plugin as the host makes them, against bare message sends.
#include "bench.h"

#include <studio/host.h>

#import <QuartzCore/QuartzCore.h>

namespace {

using studio::Value;

// Written to, so that the compiler does not drop work whose result nobody reads.
volatile double sink;

void measurePluginMain() {
    studio::Host host;
    host.loadPlugin(KAZ_FAMILY);
    bench::report("REALPluginMain, loading included",
                  bench::bestOf(1, [&] { host.loadPlugin(KAZ_PLUGIN); }) * 1e3, "ms");
}

void measureCalls() {
    studio::Host host;
    host.loadPlugin(KAZ_FAMILY);
    host.loadPlugin(KAZ_PLUGIN);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];

    Value color = host.function("NewCIColorKaz", {0.25, 0.5, 0.75});
    CIColor* native = reinterpret_cast<CIColor*>(color.word());
    const studio::Class* colors = host.findClass("CIColorKaz");
    REALobject object = color.object();

    auto red = reinterpret_cast<double (*)(REALobject, std::uint32_t)>(colors->property("Red")->getter);
    double send = bench::nanosecondsOf([&] { sink = [native red]; });
    double property = bench::nanosecondsOf([&] { sink = red(object, 0); });
    bench::report("bare message send ([color red])", send, "ns");
    bench::report("property read (Red)", property, "ns", property / send, "the send");

    auto text = reinterpret_cast<REALstring (*)(REALobject, std::uint32_t)>(
        colors->property("StringRepresentation")->getter);
    auto unlock = reinterpret_cast<host::service::REALUnlockString>(host.resolver()("REALUnlockString"));
    double textSend = bench::nanosecondsOf([&] {
        NSAutoreleasePool* inner = [[NSAutoreleasePool alloc] init];
        sink = static_cast<double>([[native stringRepresentation] length]);
        [inner release];
    });
    double textProperty = bench::nanosecondsOf([&] { unlock(text(object, 0)); });
    bench::report("bare message send ([color stringRepresentation])", textSend, "ns");
    bench::report("string property (StringRepresentation)", textProperty, "ns", textProperty / textSend,
                  "the send");

    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"});
    Value image = host.shared("CIImageKaz", "imageWithColor", {color});
    host.assign(filter, "ValueAsCIImage", {"inputImage"}, image);
    const studio::Method* getter = host.findClass("CIFilterKaz")->methodsNamed("ValueAsCIImage").front();
    auto find = reinterpret_cast<REALobject (*)(REALobject, REALstring)>(getter->function);
    auto unlockObject =
        reinterpret_cast<host::service::REALUnlockObject>(host.resolver()("REALUnlockObject"));
    Value key = "inputImage";
    CIFilter* nativeFilter = reinterpret_cast<CIFilter*>(filter.word());
    double factorySend =
        bench::nanosecondsOf([&] { sink = [nativeFilter valueForKey:@"inputImage"] != nil; });
    double factory = bench::nanosecondsOf([&] { unlockObject(find(filter.object(), key.stringHandle())); });
    bench::report("bare message send ([filter valueForKey:])", factorySend, "ns");
    bench::report("factory call that finds its wrapper", factory, "ns", factory / factorySend, "the send");
    [pool release];
}

} // namespace

const bench::Benchmark bench::pluginMain = {"start: REALPluginMain", measurePluginMain};
const bench::Benchmark bench::calls = {"calls: a property, a string and a factory", measureCalls};
