// The services that plugins resolve by name: which ones this host has, and which are to fail.
#pragma once

#include "runtime/service_call.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace studio {

// One per process at a time, beside the Runtime whose version decides what there is.
class Services {
  public:
    explicit Services(std::set<std::string> withheld);
    ~Services();
    Services(const Services&) = delete;

    static Services& current();              // UsageError when there is none
    static std::vector<std::string> names(); // of all services, in any version

    // The resolver that plugins get: finds a service and keeps a note of the request.
    static void* resolve(const char* entryName);
    void* find(std::string_view entryName) const; // null when this host lacks it
    const std::vector<std::string>& requested() const { return requested_; }

    // Every call of a service from startLog() on, in order; off by default.
    void startLog() { log_.emplace(); }
    std::vector<ServiceCall> takeLog() {
        return std::exchange(log_, std::nullopt).value_or(std::vector<ServiceCall>());
    }
    bool logs() const { return log_.has_value(); }
    void note(void* function, ServiceCall call); // by every service when it is called

    // Faults, for tests. A service that fails returns its empty result once, after so many good calls.
    void fail(std::string_view service, int afterGoodCalls); // UsageError when there is no such service
    void failAllocation(int afterGoodCalls);                 // of all services that make something, together
    bool allocationFailed() const { return faults_.struck; }
    void stopFailing() { faults_ = {}; }
    bool strikes(void* function); // asked by every service when it is called

  private:
    // Each countdown runs over good calls and is negative when it is off.
    struct Faults {
        std::map<std::string, int, std::less<>> byService;
        int allocation = -1;
        bool struck = false; // an allocation failed
    };

    std::set<std::string> withheld_;
    std::vector<std::string> requested_;
    Faults faults_;
    std::optional<std::vector<ServiceCall>> log_;
};

} // namespace studio
