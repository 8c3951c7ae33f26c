// The plugin loaded into a host of the test's choice, with its family or without.
#pragma once

#include <studio/host.h>

#include <gtest/gtest.h>

class PluginTest : public testing::Test {
  protected:
    enum Family { WithFamily, WithoutFamily };

    explicit PluginTest(studio::HostOptions options = {}, Family family = WithFamily)
        : host(std::move(options)) {
        if (family == WithFamily) host.loadPlugin(KAZ_FAMILY);
        host.loadPlugin(KAZ_PLUGIN);
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
        return 0; // those without any are not listed
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
};
