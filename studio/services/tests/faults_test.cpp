// Services that fail on request.
#include "service_of.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

TEST(Faults, EveryAllocationCanFailOnce) {
    Host host;
    host.loadPlugin(testPlugin12);
    auto make = SERVICE_OF(host, Int32ToVariant);
    for (int good = 0; good < 3; ++good) {
        host.failAllocation(good);
        for (int i = 0; i < good; ++i) EXPECT_EQ(Value::received(make(i)).integer(), i);
        EXPECT_FALSE(host.allocationFailed());
        EXPECT_TRUE(Value::received(make(9)).isNil());
        EXPECT_TRUE(host.allocationFailed());
        EXPECT_EQ(Value::received(make(9)).integer(), 9);
    }
    host.stopFailing();
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Faults, OneServiceCanFailOnce) {
    Host host;
    host.failService("newPicture", 1);
    auto make = SERVICE_OF(host, newPicture);
    auto made = [&] { return Value::received(reinterpret_cast<REALobject>(make(2, 2, 32))); };
    EXPECT_FALSE(made().isNil());
    EXPECT_TRUE(made().isNil());
    EXPECT_FALSE(made().isNil());
    EXPECT_THROW(host.failService("noSuchService"), UsageError);
}
