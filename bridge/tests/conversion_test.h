// What the tests of the conversions share: values boxed as variants, and services replaced by the test's own.
#pragma once

#include "bridge_test.h"

#include <bridge/dictionaries.h>
#include <bridge/guard.h>
#include <bridge/variants.h>

#include <map>
#include <objc/runtime.h>
#include <optional>

// GNUstep counts objects in every build and declares it in debug builds alone.
extern "C" {
BOOL GSDebugAllocationActive(BOOL active);
Class* GSDebugAllocationClassList();
int GSDebugAllocationCount(Class);
}

// Platform calls that are led to the tests' own functions fail once when they are named here, the first time
// or after some good calls.
inline std::string failingCall;
inline int goodCalls = 0;
inline bool fails(const char* call) {
    if (failingCall != call || goodCalls-- > 0) return false;
    failingCall.clear();
    return true;
}

// The hosts at which something changes for a conversion.
struct HostVersion {
    const char* name;
    std::optional<double> version;
};
inline void PrintTo(const HostVersion& host, std::ostream* out) { *out << host.name; }

inline const HostVersion kHostVersions[] = {
    {"2014_01", 2014.01}, {"2013_0", 2013.0}, {"2012_0", 2012.0}, {"2011", 2011.0}, {"none", std::nullopt},
};

class ConversionTest : public BridgeTest {
  protected:
    using Value = studio::Value;
    enum Family { WithFamily, WithoutFamily };

    explicit ConversionTest(studio::HostOptions options = {}, Family family = WithFamily)
        : BridgeTest(std::move(options)) {
        if (family == WithFamily) host.loadPlugin(KAZ_FAMILY);
        setenv("TZ", "UTC", 1); // the host's clock; the tests set Cocoa's zone where it matters
    }
    ~ConversionTest() { replacements().clear(); }

    // A value as the variant that holds it.
    Value boxed(const Value& value) { return host.array("Variant", {value}).at(0); }

    id cocoa(const Value& value) { return GetVariantAsNSObject(boxed(value).object()); }
    static Value variant(id object) { return Value::received(NewVariantFromNSObject(object)); }

    static std::int32_t typeOf(const Value& value) {
        std::int32_t type = 0;
        if (value.object()) REALGetPropValueInt32(value.object(), "Type", &type);
        return type;
    }

    // From now on the bridge gets `function` where it asks for the service; a null function stands for a
    // service that the host does not have. Only before the bridge uses the service for the first time.
    template <class Function>
    void replace(const std::string& service, Function* function) {
        replacements()[service] = reinterpret_cast<void*>(function);
        gResolver = [](const char* name) {
            auto found = replacements().find(name);
            return found != replacements().end() ? found->second : studio::Host::current().resolver()(name);
        };
    }
    void withhold(const std::string& service) { replace<void()>(service, nullptr); }

    // The host's own function of a service, for replacements that pass calls on.
    template <class Function>
    static Function original(const char* service) {
        return reinterpret_cast<Function>(studio::Host::current().resolver()(service));
    }

    // The name of the Cocoa exception that the call raised; "" for none.
    template <class Call>
    static std::string cocoaExceptionOf(Call&& call) {
        @try {
            call();
        } @catch (NSException* exception) {
            return [[exception name] UTF8String];
        }
        return "";
    }

    // The Cocoa objects that the work leaves alive, by class and number. What is made once and kept, like a
    // table of names, is made in a first run that does not count.
    template <class Work>
    static std::map<std::string, int> objectsLeftBy(Work&& work) {
        auto run = [&] {
            bridge::AutoreleasePool inner;
            work();
        };
        GSDebugAllocationActive(YES);
        run();
        std::map<std::string, int> left = livingObjects();
        run();
        for (const auto& [name, count] : livingObjects())
            if ((left[name] = count - left[name]) == 0) left.erase(name);
        GSDebugAllocationActive(NO);
        return left;
    }

    // Cocoa objects may hold host objects, so they go first.
    void TearDown() override {
        pool.reset();
        EXPECT_TRUE(host.takePendingException().isNil());
        expectClean();
    }

    std::optional<bridge::AutoreleasePool> pool{std::in_place};

  private:
    // Since the count was turned on.
    static std::map<std::string, int> livingObjects() {
        std::map<std::string, int> result;
        Class* classes = GSDebugAllocationClassList(); // ends in Nil; freed with the zone it came from
        for (Class* c = classes; *c; ++c) result[class_getName(*c)] = GSDebugAllocationCount(*c);
        NSZoneFree(NSDefaultMallocZone(), classes);
        return result;
    }
    static std::map<std::string, void*>& replacements() {
        static std::map<std::string, void*> map;
        return map;
    }
};

// The same on every kind of host.
class OnEveryHost : public ConversionTest, public testing::WithParamInterface<HostVersion> {
  protected:
    OnEveryHost() : ConversionTest({.version = GetParam().version}) {}
};

// On a host that lacks some services.
class Without : public ConversionTest {
  protected:
    explicit Without(std::set<std::string> withheld) : ConversionTest({.withheld = std::move(withheld)}) {}
};

inline std::string textOf(NSString* text) { return text ? [text UTF8String] : "(nil)"; }
