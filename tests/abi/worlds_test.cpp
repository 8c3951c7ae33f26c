// RenderPicture into every kind of description that a host may deliver, above all into QuickDraw worlds. The
// test stands between the plugin and three things: the host's "lockPictureDescription", the system's
// frameworks folder and the functions of the bundle.
#include "plugin_test.h"

#include <Carbon/Carbon.h>
#include <CoreGraphics/CoreGraphics.h>
#include <QD/QDOffscreen.h>

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using studio::Value;

struct Interference {
    std::int32_t kind = kREALPictureGWorld; // to ask the host for
    std::function<void(REALpictureDescription&)> change;

    std::string framework;             // the frameworks folder to name; empty: the system's
    bool folderMissing = false;        // name none
    std::vector<std::string> folders;  // that were asked for: domain, type, create
    std::string withheld;              // a function that the bundle does not have
    std::vector<std::string> lookedUp; // functions, in order
    bool noDeviceSpace = false;        // the system makes no device RGB space
    bool lockFails = false;
    int locks = 0, unlocks = 0;
};
Interference test;

template <class Function>
Function next(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

Boolean countedLock(PixMapHandle map) {
    if (test.lockFails) return false;
    ++test.locks;
    return LockPixels(map);
}

void countedUnlock(PixMapHandle map) {
    ++test.unlocks;
    UnlockPixels(map);
}

} // namespace

// These replace the platform's own in every library of the process.

OSErr FSFindFolder(SInt16 domain, OSType type, Boolean create, FSRef* ref) {
    test.folders.push_back(std::to_string(domain) + " " + std::to_string(type) + " " +
                           std::to_string(create));
    if (test.folderMissing) return -43;
    if (test.framework.empty()) return next(&FSFindFolder, "FSFindFolder")(domain, type, create, ref);
    return static_cast<OSErr>(
        FSPathMakeRef(reinterpret_cast<const UInt8*>(test.framework.c_str()), ref, nullptr));
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() {
    return test.noDeviceSpace ? nullptr : next(&CGColorSpaceCreateDeviceRGB, "CGColorSpaceCreateDeviceRGB")();
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
    char text[64] = "";
    CFStringGetCString(name, text, sizeof text, kCFStringEncodingASCII);
    test.lookedUp.push_back(text);
    if (test.withheld == text) return nullptr;
    void* function =
        next(&CFBundleGetFunctionPointerForName, "CFBundleGetFunctionPointerForName")(bundle, name);
    if (!function) return nullptr;
    if (std::strcmp(text, "LockPixels") == 0) return reinterpret_cast<void*>(&countedLock);
    if (std::strcmp(text, "UnlockPixels") == 0) return reinterpret_cast<void*>(&countedUnlock);
    return function;
}

namespace {

class Worlds : public PluginTest {
  protected:
    Worlds()
        : PluginTest({}, WithFamily,
                     {{"lockPictureDescription", reinterpret_cast<void*>(&lockDescription)}}) {}

    static bool lockDescription(REALpicture picture, REALpictureDescription* description) {
        using Lock = host::service::REALLockPictureDescription;
        if (!hostService<Lock>("REALLockPictureDescription")(picture, description, test.kind)) return false;
        if (test.change) test.change(*description);
        return true;
    }

    Value photo() {
        const char* folder = std::getenv("KAZ_PHOTOS");
        return host.function(
            "NewCIImagewithFileKaz",
            {host.function("GetFolderItem", {std::string(folder ? folder : ".") + "/astronaut.png"})});
    }

    Value render(const Value& image, int width, int height, bool software = false) {
        return host.call(image, "RenderPicture", {width, height, software});
    }

    Value render() { return render(photo(), 40, 30); }

    // The picture's bytes.
    static std::vector<std::uint8_t> bytes(const Value& picture) {
        namespace service = host::service;
        auto* handle = reinterpret_cast<REALpicture>(picture.object());
        REALpictureDescription description = {};
        std::vector<std::uint8_t> result;
        if (!hostService<service::REALLockPictureDescription>("REALLockPictureDescription")(
                handle, &description, kREALPicturePixelBuffer))
            return result;
        auto* buffer = static_cast<REALpixelBuffer*>(description.handle);
        for (int y = 0; y < buffer->height; ++y) {
            auto* row = static_cast<std::uint8_t*>(buffer->rows[y]);
            result.insert(result.end(), row, row + buffer->width * 4);
        }
        hostService<service::unlockPictureDescription>("unlockPictureDescription")(handle);
        return result;
    }

    // A world and a bitmap of the same size get the same bytes, and not only one colour.
    void expectSame(const Value& image, int width, int height, bool software = false) {
        test.kind = kREALPictureGWorld;
        Value world = render(image, width, height, software);
        test.kind = kREALPictureCGContext;
        Value bitmap = render(image, width, height, software);
        test.kind = kREALPictureGWorld;
        ASSERT_FALSE(world.isNil());
        ASSERT_FALSE(bitmap.isNil());
        std::vector<std::uint8_t> drawn = bytes(world);
        EXPECT_EQ(drawn.size(), std::size_t(width) * std::size_t(height) * 4);
        EXPECT_TRUE(drawn == bytes(bitmap));
        EXPECT_NE(std::memcmp(drawn.data(), drawn.data() + drawn.size() / 2, 64), 0) << "nothing was drawn";
    }

    void expectClean() {
        PluginTest::expectClean();
        EXPECT_EQ(test.locks, test.unlocks);
    }
};

TEST_F(Worlds, GetThePixelsThatBitmapsGet) {
    expectSame(photo(), 512, 512);
    EXPECT_EQ(test.locks, 1);
    expectClean();
}

TEST_F(Worlds, AreFilledWhateverTheirShape) {
    expectSame(photo(), 101, 33);
    expectSame(photo(), 33, 101, true);
    expectClean();
}

TEST_F(Worlds, TakeTheExtentsSizeByDefault) {
    Value picture = render(photo(), 0, 100);
    EXPECT_EQ(host.get(picture, "Width").integer(), 512);
    EXPECT_EQ(host.get(picture, "Height").integer(), 100);
    picture = {};
    expectClean();
}

TEST_F(Worlds, TheFunctionsAreLookedUpOnce) {
    render();
    EXPECT_EQ(test.lookedUp, (std::vector<std::string>{"GetGWorldPixMap", "GetPixDepth", "LockPixels",
                                                       "GetPixBaseAddr", "GetPixRowBytes", "UnlockPixels"}));
    render();
    EXPECT_EQ(test.lookedUp.size(), 6u);
    // The folder of frameworks ('fram') on the system disk, to be made if it is missing.
    EXPECT_EQ(test.folders, (std::vector<std::string>{"-32767 1718772077 1"}));
    expectClean();
}

TEST_F(Worlds, AMissingFunctionGivesNilAndIsLookedForAgain) {
    for (const char* name : {"GetGWorldPixMap", "GetPixDepth", "LockPixels", "GetPixBaseAddr"}) {
        test.withheld = name;
        EXPECT_TRUE(render().isNil()) << name;
    }
    test.withheld.clear();
    EXPECT_FALSE(render().isNil());
    expectClean();
}

TEST_F(Worlds, AMissingFolderGivesNilAndIsLookedForAgain) {
    test.folderMissing = true;
    EXPECT_TRUE(render().isNil());
    EXPECT_TRUE(test.lookedUp.empty());
    test.folderMissing = false;
    EXPECT_FALSE(render().isNil());
    expectClean();
}

TEST_F(Worlds, ABundleThatCannotBeLoadedGivesNil) {
    namespace fs = std::filesystem;
    fs::path folder = fs::temp_directory_path() / ("kaz-frameworks-" + std::to_string(getpid()));
    fs::create_directories(folder);
    test.framework = folder.string();
    EXPECT_TRUE(render().isNil()) << "without a bundle";
    fs::create_directories(folder / "ApplicationServices.framework");
    EXPECT_TRUE(render().isNil()) << "with an empty bundle";
    EXPECT_TRUE(test.lookedUp.empty());
    fs::remove_all(folder);
    test.framework.clear();
    EXPECT_FALSE(render().isNil());
    expectClean();
}

TEST_F(Worlds, OfAnotherDepthGiveNil) {
    static char pixels[40 * 30 * 2];
    Rect bounds = {0, 0, 30, 40};
    GWorldPtr thousands = nullptr;
    ASSERT_EQ(NewGWorldFromPtr(&thousands, k16BE555PixelFormat, &bounds, nullptr, nullptr, 0, pixels, 80), 0);
    test.change = [&](REALpictureDescription& description) { description.handle = thousands; };
    EXPECT_TRUE(render().isNil());
    EXPECT_EQ(test.locks, 0);
    DisposeGWorld(thousands);
    expectClean();
}

TEST_F(Worlds, WhosePixelsCannotBeLockedGiveNil) {
    test.lockFails = true;
    EXPECT_TRUE(render().isNil());
    EXPECT_EQ(test.unlocks, 0);
    expectClean();
}

TEST_F(Worlds, ThatAreNullGiveNil) {
    test.change = [](REALpictureDescription& description) { description.handle = nullptr; };
    EXPECT_TRUE(render().isNil());
    test.kind = kREALPictureCGContext;
    EXPECT_TRUE(render().isNil());
    expectClean();
}

TEST_F(Worlds, OtherKindsGiveNil) {
    test.kind = kREALPicturePixelBuffer;
    EXPECT_TRUE(render().isNil());
    test.change = [](REALpictureDescription& description) { description.kind = 3; };
    EXPECT_TRUE(render().isNil());
    expectClean();
}

TEST_F(Worlds, ThatHaveRowsTooShortForTheBitmapGiveNilAndAreUnlocked) {
    static char pixels[20 * 30 * 4];
    Rect bounds = {0, 0, 30, 20};
    GWorldPtr narrow = nullptr;
    ASSERT_EQ(NewGWorldFromPtr(&narrow, k32ARGBPixelFormat, &bounds, nullptr, nullptr, 0, pixels, 80), 0);
    test.change = [&](REALpictureDescription& description) { description.handle = narrow; };
    EXPECT_TRUE(render().isNil());
    EXPECT_EQ(test.locks, 1);
    DisposeGWorld(narrow);
    expectClean();
}

TEST_F(Worlds, AreNotMadeWithoutADeviceSpace) {
    Value image = photo();
    test.noDeviceSpace = true;
    EXPECT_TRUE(render(image, 40, 30).isNil());
    EXPECT_TRUE(host.call(image, "CreateCGImage").isNil());
    EXPECT_TRUE(host.call(image, "CreateCGImage", {Value(), Value()}).isNil());
    test.noDeviceSpace = false;
    EXPECT_FALSE(host.call(image, "CreateCGImage").isNil());
    image = {};
    expectClean();
}

TEST_F(Worlds, WithoutANewPictureOrItsDescriptionGiveNilAndLeaveNothing) {
    host.failService("newPicture");
    EXPECT_TRUE(render().isNil());
    host.failService("REALLockPictureDescription");
    EXPECT_TRUE(render().isNil());
    EXPECT_EQ(host.report().alive("Picture"), 0);
    EXPECT_FALSE(render().isNil());
    expectClean();
}

} // namespace
