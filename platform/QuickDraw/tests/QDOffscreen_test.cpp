// Off-screen worlds: pixels, locks and invalid arguments.
#include <QD/QDOffscreen.h>

#include <gtest/gtest.h>

namespace {

constexpr Rect kBounds = {0, 0, 3, 5}; // 5 wide, 3 high
char pixels[64];

GWorldPtr world(UInt32 format, SInt32 rowBytes) {
    GWorldPtr result = nullptr;
    EXPECT_EQ(NewGWorldFromPtr(&result, format, &kBounds, nullptr, nullptr, 0, pixels, rowBytes), 0);
    return result;
}

TEST(Worlds, DescribeTheirPixels) {
    GWorldPtr made = world(k32ARGBPixelFormat, 20);
    PixMapHandle map = GetGWorldPixMap(made);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(GetPixDepth(map), 32);
    EXPECT_EQ(GetPixRowBytes(map), 20);
    DisposeGWorld(made);
}

TEST(Worlds, ShowTheirPixelsWhileLocked) {
    GWorldPtr made = world(k32ARGBPixelFormat, 20);
    PixMapHandle map = GetGWorldPixMap(made);
    EXPECT_EQ(GetPixBaseAddr(map), nullptr);
    EXPECT_TRUE(LockPixels(map));
    EXPECT_TRUE(LockPixels(map));
    UnlockPixels(map);
    EXPECT_EQ(GetPixBaseAddr(map), pixels);
    UnlockPixels(map);
    EXPECT_EQ(GetPixBaseAddr(map), nullptr);
    UnlockPixels(map); // once too often does no harm
    EXPECT_TRUE(LockPixels(map));
    EXPECT_EQ(GetPixBaseAddr(map), pixels);
    DisposeGWorld(made);
}

TEST(Worlds, ComeInThreeDepths) {
    GWorldPtr thousands = world(k16BE555PixelFormat, 10), packed = world(k24RGBPixelFormat, 16);
    EXPECT_EQ(GetPixDepth(GetGWorldPixMap(thousands)), 16);
    EXPECT_EQ(GetPixDepth(GetGWorldPixMap(packed)), 24);
    DisposeGWorld(thousands);
    DisposeGWorld(packed);
}

TEST(Worlds, NeedPixelsAndRoom) {
    constexpr QDErr kParameterError = -50;
    constexpr Rect kEmpty = {0, 5, 3, 5};
    GWorldPtr made = nullptr;
    auto error = [&](UInt32 format, const Rect* bounds, char* base, SInt32 rowBytes) {
        return NewGWorldFromPtr(&made, format, bounds, nullptr, nullptr, 0, base, rowBytes);
    };
    EXPECT_EQ(error(k32ARGBPixelFormat, &kBounds, nullptr, 20), kParameterError);
    EXPECT_EQ(error(k32ARGBPixelFormat, &kBounds, pixels, 19), kParameterError);
    EXPECT_EQ(error(k32ARGBPixelFormat, &kEmpty, pixels, 20), kParameterError);
    EXPECT_EQ(error(8, &kBounds, pixels, 20), kParameterError);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(GetGWorldPixMap(nullptr), nullptr);
    DisposeGWorld(nullptr);
}

} // namespace
