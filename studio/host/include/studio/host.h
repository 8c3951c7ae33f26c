// The host: loads plugins, offers them its services, keeps its objects and checks every use of them.
//
//     studio::Host host({.version = 2012.0, .withheld = {"newPicture"}});
//     host.loadPlugin(REALPluginMain);
//     studio::Value image = host.shared("CIImageKaz", "emptyImage");
//     int width = host.call(image, "Width").integer();
//     image = {};
//     EXPECT_TRUE(host.report().clean()) << host.report().text();
#pragma once

#include "runtime/model.h"
#include "runtime/report.h"
#include "runtime/service_call.h"
#include "runtime/value.h"

#include <hostapi/abi.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace studio {

using PluginEntry = void (*)(REALResolver);

struct HostOptions {
    std::optional<double> version = 2014.01; // none: the host keeps it secret
    std::set<std::string> withheld = {};     // services that plugins cannot resolve
};

// A host exception that reached C++. The object's own reference is held.
class HostException : public std::runtime_error {
  public:
    HostException(Value object, std::string className, std::string message)
        : std::runtime_error(className + ": " + message), object(std::move(object)),
          className(std::move(className)), message(std::move(message)) {}

    Value object;
    std::string className;
    std::string message;
};

class Host {
  public:
    explicit Host(HostOptions options = {});
    ~Host(); // plugins stay loaded; objects still alive are abandoned
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    static Host& current(); // one per process at a time
    const HostOptions& options() const;
    // 0 when the host keeps its version secret.
    double version() const;

    // Plugins.
    void loadPlugin(PluginEntry entry);
    void loadPlugin(const std::string& path); // UsageError when it cannot be loaded
    REALResolver resolver() const;
    std::optional<std::int32_t> recordVersion() const;  // as passed to "RegisterPluginVersion"
    static std::vector<std::string> serviceNames();     // all services of any version
    std::vector<std::string> requestedServices() const; // every name the resolver was asked for, in order

    // What is registered.
    const Class* findClass(std::string_view name) const; // null when it is not defined
    std::vector<const Class*> pluginClasses() const;     // in registration order
    std::vector<const Method*> pluginFunctions() const;  // global functions, in registration order

    // Programs in C++. A name selects by argument count and types as the language does; a full declaration,
    // as registered, selects exactly. Exceptions that were raised arrive as HostException.
    Value create(std::string_view className, std::vector<Value> arguments = {}); // New
    Value instantiate(std::string_view className); // without any Constructor(...)
    Value call(const Value& object, std::string_view method, std::vector<Value> arguments = {});
    void assign(const Value& object, std::string_view method, std::vector<Value> arguments, Value value);
    Value shared(std::string_view className, std::string_view method, std::vector<Value> arguments = {});
    Value function(std::string_view name, std::vector<Value> arguments = {});
    Value constant(std::string_view className, std::string_view name);
    Value get(const Value& object, std::string_view property);
    void set(const Value& object, std::string_view property, Value value);
    Value array(std::string_view elementType, std::vector<Value> elements = {});
    Value dictionary(std::vector<std::pair<Value, Value>> entries = {});
    Value memoryBlock(std::string_view bytes);

    // The exception that a direct call of a service or record pointer left pending; nil when there is none.
    Value takePendingException();

    // Runs whenever a plugin yields; returns what was set before.
    std::function<void()> onYield(std::function<void()> handler);
    void yield(); // timers that are due, then the handler

    // Fault injection. After so many good calls, a service that fails returns null, false or 0 once.
    void failService(std::string_view service, int afterGoodCalls = 0);
    // The same for the services that make something, counted together. Fail 0, then 1, then 2 ... until
    // allocationFailed() stays false: then every one of them has failed once.
    void failAllocation(int afterGoodCalls);
    bool allocationFailed() const;
    void stopFailing();

    // The services that plugins call while `work` runs, in order.
    std::vector<ServiceCall> callsDuring(const std::function<void()>& work);

    Report report() const;
    void clearRecords(); // of violations and remarks

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace studio
