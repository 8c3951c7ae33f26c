// The bridge inside a host of the test's choice: the test program itself is the plugin.
#pragma once

#include <hostapi/services.h>
#include <studio/host.h>

#include <gtest/gtest.h>

class BridgeTest : public testing::Test {
  protected:
    explicit BridgeTest(studio::HostOptions options = {}) : host(std::move(options)) {
        gResolver = host.resolver();
        rbversion_rbversion = host.version();
    }

    // Every test ends with nothing alive but what it holds itself, and no misuse of a service.
    void expectClean() const { EXPECT_TRUE(host.report().clean()) << host.report().text(); }

    studio::Host host;
};
