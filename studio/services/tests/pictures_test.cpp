// A Picture as plugins see it.
#include "service_of.h"

#include <QD/QDOffscreen.h>
#include <studio/host.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace studio;

TEST(Pictures, HaveDescriptionsThatMustBeUnlocked) {
    for (double version : {2009.0, 2014.01}) {
        Host host({.version = version});
        auto lock = SERVICE_OF(host, REALLockPictureDescription);
        auto unlock = SERVICE_OF(host, unlockPictureDescription);
        Value picture = host.create("Picture", {3, 2, 32});
        auto* handle = reinterpret_cast<REALpicture>(picture.object());
        REALpictureDescription description;
        ASSERT_TRUE(lock(handle, &description, kREALPicturePixelBuffer));
        auto* buffer = static_cast<REALpixelBuffer*>(description.handle);
        EXPECT_EQ(description.kind, kREALPicturePixelBuffer);
        EXPECT_EQ(buffer->width, 3);
        EXPECT_EQ(buffer->height, 2);
        const unsigned char white[12] = {255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
        EXPECT_EQ(std::memcmp(buffer->rows[1], white, 12), 0);
        unlock(handle);
        EXPECT_TRUE(host.report().violations.empty());
        // A lock that fails is undone only on hosts before 2012.0.
        EXPECT_FALSE(lock(handle, &description, 3));
        unlock(handle);
        EXPECT_EQ(host.report().violations.empty(), version < 2012.0) << host.report().text();
    }
}

TEST(Pictures, AreQuickDrawWorldsUnlessTheHostIsNewer) {
    for (double version : {2009.05, 2009.99, 2010.0, 2014.01}) {
        Host host({.version = version});
        auto lock = SERVICE_OF(host, lockPictureDescription);
        auto unlock = SERVICE_OF(host, unlockPictureDescription);
        Value picture = host.create("Picture", {3, 2, 32});
        auto* handle = reinterpret_cast<REALpicture>(picture.object());
        REALpictureDescription description;
        ASSERT_TRUE(lock(handle, &description));
        EXPECT_EQ(description.kind, version < 2010.0 ? kREALPictureGWorld : kREALPictureCGContext) << version;
        EXPECT_NE(description.handle, nullptr);
        unlock(handle);
        EXPECT_TRUE(host.report().violations.empty()) << host.report().text();
    }
}

TEST(Pictures, AreWorldsUponTheirOwnPixels) {
    Host host;
    auto lock = SERVICE_OF(host, REALLockPictureDescription);
    auto unlock = SERVICE_OF(host, unlockPictureDescription);
    Value picture = host.create("Picture", {3, 2, 32});
    auto* handle = reinterpret_cast<REALpicture>(picture.object());
    REALpictureDescription description;
    ASSERT_TRUE(lock(handle, &description, kREALPictureGWorld));
    PixMapHandle map = GetGWorldPixMap(static_cast<GWorldPtr>(description.handle));
    EXPECT_EQ(GetPixDepth(map), 32);
    ASSERT_TRUE(LockPixels(map));
    const unsigned char green[4] = {255, 0, 255, 0};
    std::memcpy(GetPixBaseAddr(map) + GetPixRowBytes(map) + 4, green, 4);
    UnlockPixels(map);
    unlock(handle);
    Value surface = host.get(picture, "RGBSurface");
    EXPECT_EQ(host.call(surface, "Pixel", {1, 1}).text(), "&c00FF00");
    EXPECT_NE(host.call(surface, "Pixel", {1, 0}).text(), "&c00FF00");
}
