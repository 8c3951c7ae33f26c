// The plugin loaded into a host of the test's choice, with its family or without.
#pragma once

#include <hostapi/abi.h>
#include <studio/host.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>

class PluginTest : public testing::Test {
  protected:
    enum Family { WithFamily, WithoutFamily };

    // Services by name that the plugin gets from the test, which stands between it and the host.
    using Services = std::map<std::string, void*>;

    explicit PluginTest(studio::HostOptions options = {}, Family family = WithFamily, Services services = {})
        : host(std::move(options)) {
        if (family == WithFamily) host.loadPlugin(KAZ_FAMILY);
        if (services.empty()) {
            host.loadPlugin(KAZ_PLUGIN);
            return;
        }
        replaced() = std::move(services);
        host.loadPlugin([](REALResolver resolver) {
            hostResolver() = resolver;
            void* plugin = dlopen(KAZ_PLUGIN, RTLD_NOW | RTLD_GLOBAL); // as the host loads it
            ASSERT_NE(plugin, nullptr) << dlerror();
            reinterpret_cast<studio::PluginEntry>(dlsym(plugin, "REALPluginMain"))([](const char* name) {
                auto found = replaced().find(name);
                return found == replaced().end() ? hostResolver()(name) : found->second;
            });
        });
    }

    // The host's own service, for the functions that replace it.
    template <class Function>
    static Function hostService(const char* name) {
        return reinterpret_cast<Function>(hostResolver()(name));
    }

    void expectClean() const {
        studio::Report report = host.report();
        EXPECT_TRUE(report.clean()) << report.text();
        for (const auto& [name, count] : report.platformObjects) EXPECT_EQ(count, 0) << "living " << name;
    }

    // How many native objects of the class are alive.
    int living(std::string_view className) const {
        for (const auto& [name, count] : host.report().platformObjects)
            if (name == className) return count;
        return 0; // a class with none alive is not listed
    }

    // The exception that `call` raised, as "Class: message"; "(none)" for none.
    template <class Call>
    static std::string raisedBy(Call&& call) {
        try {
            call();
        } catch (const studio::HostException& exception) {
            return exception.className + ": " + exception.message;
        }
        return "(none)";
    }

    studio::Host host;

  private:
    static Services& replaced() {
        static Services services;
        return services;
    }
    static REALResolver& hostResolver() {
        static REALResolver resolver = nullptr;
        return resolver;
    }
};
