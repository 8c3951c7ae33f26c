// Services, strings, arrays, variants and calls between host and plugin.
#include "TestPlugin.h"

#include <QD/QDOffscreen.h>
#include <studio/host.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace studio;

TEST(Services, DependOnTheVersion) {
    {
        Host host({.version = 2009.0});
        EXPECT_FALSE(host.resolver()("PluginGetStringData"));
        EXPECT_FALSE(host.resolver()("REALGetStringCFString"));
        EXPECT_TRUE(host.resolver()("StringGetCString"));
    }
    {
        Host host({.version = 2012.0});
        EXPECT_FALSE(host.resolver()("PluginGetStringData"));
        EXPECT_TRUE(host.resolver()("REALGetStringCFString"));
    }
    {
        Host host({.version = 2013.0});
        EXPECT_TRUE(host.resolver()("PluginGetStringData"));
    }
    Host host({.version = std::nullopt});
    EXPECT_FALSE(host.resolver()("REALGetRBVersion"));
    EXPECT_FALSE(host.resolver()("NoSuchService"));
    EXPECT_EQ(host.requestedServices(), (std::vector<std::string>{"REALGetRBVersion", "NoSuchService"}));
}

TEST(Services, CanBeWithheld) {
    Host host({.withheld = {"newPicture"}});
    EXPECT_FALSE(host.resolver()("newPicture"));
    EXPECT_TRUE(host.resolver()("newMemoryBlock"));
}

TEST(Strings, LieOpenBefore2013) {
    Host host({.version = 2012.0});
    Value text("grün");
    REALstring handle = text.stringHandle();
    EXPECT_EQ(handle->length, 5u);
    EXPECT_EQ(handle->encoding, std::uint32_t(kREALTextEncodingUTF8));
    EXPECT_STREQ(handle->buffer + 1, "grün");
}

TEST(Strings, HideLater) {
    Host host({.version = 2013.0});
    Value text("hidden text");
    // Where the open layout has the buffer there is no address, so who looks faults.
    EXPECT_EQ(text.stringHandle()->buffer, nullptr);
    EXPECT_NE(text.stringHandle()->encoding, std::uint32_t(kREALTextEncodingUTF8));
}

TEST(Strings, ConvertBetweenEncodings) {
    Host host;
    namespace service = host::service;
    auto convert = reinterpret_cast<service::REALConvertString>(host.resolver()("REALConvertString"));
    auto encoding =
        reinterpret_cast<service::REALGetStringEncoding>(host.resolver()("REALGetStringEncoding"));
    auto getData = reinterpret_cast<service::PluginGetStringData>(host.resolver()("PluginGetStringData"));
    auto dispose =
        reinterpret_cast<service::PluginDisposeStringData>(host.resolver()("PluginDisposeStringData"));
    auto unlock = reinterpret_cast<service::REALUnlockString>(host.resolver()("REALUnlockString"));
    {
        Value text("é𝄞");
        REALstring wide = convert(text.stringHandle(), kREALTextEncodingUTF16);
        ASSERT_TRUE(wide);
        EXPECT_EQ(encoding(wide), std::uint32_t(kREALTextEncodingUTF16));
        REALstringData bytes;
        ASSERT_TRUE(getData(wide, kREALTextEncodingUnknown, &bytes));
        EXPECT_EQ(bytes.length, 6u);
        const std::uint16_t units[] = {0xE9, 0xD834, 0xDD1E, 0};
        EXPECT_EQ(std::memcmp(bytes.data, units, 8), 0);
        dispose(&bytes);
        ASSERT_TRUE(getData(wide, kREALTextEncodingUTF8, &bytes));
        EXPECT_STREQ(static_cast<char*>(bytes.data), "é𝄞");
        dispose(&bytes);
        EXPECT_FALSE(convert(text.stringHandle(), kREALTextEncodingASCII));
        unlock(wide);
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Arrays, ShowTheirStorageUpTo2013_9) {
    for (double version : {2012.0, 2013.9, 2014.01}) {
        Host host({.version = version});
        Value array = host.array("Single", {1.5, 2.5});
        auto* face = reinterpret_cast<REALarray>(array.object());
        if (version <= 2013.9) {
            ASSERT_TRUE(face->storage);
            EXPECT_EQ(static_cast<float*>(face->storage)[1], 2.5f);
        } else {
            EXPECT_FALSE(face->storage);
        }
    }
}

TEST(Variants, HaveTheTypeCodesOfTheInterface) {
    Host host;
    auto code = [&](Value value) { return host.function("VarType", {std::move(value)}).integer(); };
    EXPECT_EQ(code(nullptr), 0);
    EXPECT_EQ(code(1), 2);
    EXPECT_EQ(code(1LL), 3);
    EXPECT_EQ(code(1.0f), 4);
    EXPECT_EQ(code(1.0), 5);
    EXPECT_EQ(code(host.create("Date")), 7);
    EXPECT_EQ(code("text"), 8);
    EXPECT_EQ(code(host.create("Dictionary")), 9);
    EXPECT_EQ(code(true), 11);
    EXPECT_EQ(code(Value::color(0xFF112233)), 16);
    EXPECT_EQ(code(host.array("Integer")), 0x1002);
    EXPECT_EQ(code(host.array("String")), 0x1008);
    EXPECT_EQ(code(host.array("Variant")), 0x1009);
    EXPECT_EQ(code(host.array("Date")), 0x1007);
    EXPECT_EQ(code(host.array("Boolean")), 0x100B);
    // A code promises the size of the elements.
    for (const char* type : {"Int8", "UInt8", "Int16", "UInt16", "UInt32"})
        EXPECT_EQ(code(host.array(type)), 0x1011) << type;
    EXPECT_EQ(code(host.array("UInt64")), 0x1003);
}

TEST(HostMethods, AreFoundByTheirDeclaration) {
    Host host;
    namespace service = host::service;
    auto global = reinterpret_cast<service::REALLoadGlobalMethod>(host.resolver()("REALLoadGlobalMethod"));
    auto lenB =
        reinterpret_cast<std::int32_t (*)(REALstring)>(global(nullptr, "LenB( s as string ) as integer"));
    ASSERT_TRUE(lenB);
    Value text("grün");
    EXPECT_EQ(lenB(text.stringHandle()), 5);
    EXPECT_TRUE(global(nullptr, "VarType(value As Variant) As Int32"));
    EXPECT_FALSE(global(nullptr, "LenB(s As String) As Double"));
    EXPECT_FALSE(global(nullptr, "LenB(s As"));
    auto method = reinterpret_cast<service::REALLoadObjectMethod>(host.resolver()("REALLoadObjectMethod"));
    Value picture = host.create("Picture", {2, 2, 32});
    Value graphics = host.get(picture, "Graphics");
    EXPECT_TRUE(
        method(graphics.object(),
               "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, sx as "
               "Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)"));
    Value file = host.function("GetFolderItem", {"."});
    EXPECT_TRUE(method(file.object(), "TrueItem(Index as integer) as Folderitem"));
    EXPECT_FALSE(method(picture.object(), "TrueItem(Index as integer) as Folderitem"));
}

TEST(HostMethods, WorkFromAPlugin) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        Value dictionary = host.function("NewTestDictionary");
        EXPECT_EQ(host.get(dictionary, "Count").integer(), 1);
        EXPECT_EQ(host.call(dictionary, "Value", {5}).number(), 2.5);
        EXPECT_EQ(host.function("LookupTest", {dictionary, 0}).number(), 2.5);
        // What the host's method raises reaches whoever called the plugin.
        EXPECT_THROW(host.function("LookupTest", {dictionary, 3}), HostException);
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Exceptions, ArriveWhenThePluginReturns) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        Value counter = host.create("CounterTest");
        try {
            host.call(counter, "Fail");
            FAIL() << "nothing was thrown";
        } catch (const HostException& exception) {
            EXPECT_EQ(exception.className, "NilObjectException");
            EXPECT_EQ(exception.message, "image is nil");
        }
        EXPECT_THROW(host.call(counter, "RaiseUnknown"), HostException);
        EXPECT_EQ(host.call(counter, "Describe", {"so"}).text(), "so!");
        EXPECT_EQ(host.call(counter, "Describe").text(), "none!");
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Yielding, RunsTheHandler) {
    Host host;
    host.loadPlugin(testPlugin12);
    int times = 0;
    host.onYield([&] { ++times; });
    EXPECT_EQ(host.function("WaitTest", {3}).integer(), 3);
    EXPECT_EQ(times, 3);
}

TEST(Pictures, HaveDescriptionsThatMustBeUnlocked) {
    namespace service = host::service;
    for (double version : {2009.0, 2014.01}) {
        Host host({.version = version});
        auto lock = reinterpret_cast<service::REALLockPictureDescription>(
            host.resolver()("REALLockPictureDescription"));
        auto unlock =
            reinterpret_cast<service::unlockPictureDescription>(host.resolver()("unlockPictureDescription"));
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
    namespace service = host::service;
    for (double version : {2009.05, 2009.99, 2010.0, 2014.01}) {
        Host host({.version = version});
        auto lock =
            reinterpret_cast<service::lockPictureDescription>(host.resolver()("lockPictureDescription"));
        auto unlock =
            reinterpret_cast<service::unlockPictureDescription>(host.resolver()("unlockPictureDescription"));
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
    namespace service = host::service;
    Host host;
    auto lock =
        reinterpret_cast<service::REALLockPictureDescription>(host.resolver()("REALLockPictureDescription"));
    auto unlock =
        reinterpret_cast<service::unlockPictureDescription>(host.resolver()("unlockPictureDescription"));
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
