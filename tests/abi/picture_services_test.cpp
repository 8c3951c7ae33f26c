// The objects that a CIContextKaz keeps alive, and the services that RenderPicture calls. The test stands
// between the plugin and the services for pictures, and before some functions of Core Graphics.
#include "plugin_test.h"

#include <CoreGraphics/CoreGraphics.h>

#include <dlfcn.h>
#include <vector>

namespace {

using studio::Value;

struct PictureServices {
    bool lockFails = false;
    std::int32_t deliveredKind = 0; // 0: as the host delivers it
    bool nullContext = false;
    int locks = 0, unlocks = 0, clearedCaches = 0;
    std::int32_t askedKind = 0;
    std::vector<std::string> newPictures; // width, height and depth of each
    std::vector<CGContextRef> flushed;
    std::vector<std::string> order;   // of flushing contexts and clearing caches
    std::vector<std::string> bitmaps; // data, size, bits, bytes per row, components and info of each
    bool bitmapsFail = false;
};
PictureServices services;

template <class Function>
Function next(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These replace the platform's own in every library of the process.

void CGContextFlush(CGContextRef context) {
    services.flushed.push_back(context);
    services.order.push_back("flush");
    next(&CGContextFlush, "CGContextFlush")(context);
}

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bits, size_t bytesPerRow,
                                   CGColorSpaceRef space, CGBitmapInfo info) {
    services.bitmaps.push_back(
        (data ? "data " : "null ") + std::to_string(width) + "x" + std::to_string(height) + " " +
        std::to_string(bits) + " " + std::to_string(bytesPerRow) + " " +
        std::to_string(CGColorSpaceGetNumberOfComponents(space)) + " " + std::to_string(info));
    if (services.bitmapsFail) return nullptr;
    return next(&CGBitmapContextCreate, "CGBitmapContextCreate")(data, width, height, bits, bytesPerRow,
                                                                 space, info);
}

namespace {

class Contexts : public PluginTest {
  protected:
    explicit Contexts(studio::HostOptions options = {}, Family family = WithFamily)
        : PluginTest(std::move(options), family,
                     {{"REALLockPictureDescription", reinterpret_cast<void*>(&lock)},
                      {"lockPictureDescription", reinterpret_cast<void*>(&lockPreferred)},
                      {"newPicture", reinterpret_cast<void*>(&newPicture)},
                      {"unlockPictureDescription", reinterpret_cast<void*>(&unlock)},
                      {"REALPictureClearCache", reinterpret_cast<void*>(&clearCache)}}) {
        services = {};
    }

    static bool lock(REALpicture picture, REALpictureDescription* description, std::int32_t kind) {
        services.askedKind = kind;
        if (services.lockFails) return false;
        using Lock = host::service::REALLockPictureDescription;
        bool locked = hostService<Lock>("REALLockPictureDescription")(picture, description, kind);
        services.locks += locked;
        if (services.deliveredKind) description->kind = services.deliveredKind;
        if (services.nullContext) description->handle = nullptr;
        return locked;
    }
    static bool lockPreferred(REALpicture picture, REALpictureDescription* description) {
        if (services.lockFails) return false;
        using Lock = host::service::lockPictureDescription;
        bool locked = hostService<Lock>("lockPictureDescription")(picture, description);
        services.locks += locked;
        return locked;
    }
    static REALpicture newPicture(std::int32_t width, std::int32_t height, std::int32_t depth) {
        services.newPictures.push_back(std::to_string(width) + " " + std::to_string(height) + " " +
                                       std::to_string(depth));
        return hostService<host::service::newPicture>("newPicture")(width, height, depth);
    }
    static void unlock(REALpicture picture) {
        ++services.unlocks;
        if (services.lockFails) return; // the host never saw the lock
        hostService<host::service::unlockPictureDescription>("unlockPictureDescription")(picture);
    }
    static void clearCache(REALpicture picture) {
        ++services.clearedCaches;
        services.order.push_back("clear");
        hostService<host::service::REALPictureClearCache>("REALPictureClearCache")(picture);
    }

    Value picture() { return host.create("Picture", {8, 8, 32}); }
    Value image() {
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.0, 0.0})});
        return host.call(endless, "imageByCroppingToRect", {host.create("CGRectKaz", {1.0, 2.0, 8.5, 4.5})});
    }
    Value canvas() { return host.create("CGContextKaz", {8, 8}); }

    // Nothing but the description of a picture that a context drew into may be left over.
    void expectCleanButForOneLock() {
        studio::Report report = host.report();
        EXPECT_TRUE(report.sound()) << report.text();
        EXPECT_EQ(report.remarks.size(), 1u) << report.text();
        for (const auto& [name, count] : report.platformObjects) EXPECT_EQ(count, 0) << "living " << name;
    }
};

TEST_F(Contexts, OnAPictureLeaveItsDescriptionLocked) {
    {
        Value context = host.create("CIContextKaz", {picture()});
        EXPECT_EQ(services.askedKind, kREALPictureCGContext);
        EXPECT_EQ(services.locks, 1);
        EXPECT_EQ(host.report().alive("Picture"), 1); // the context keeps it
        host.call(context, "Flush");
    }
    EXPECT_EQ(services.unlocks, 0);
    expectCleanButForOneLock();
}

TEST_F(Contexts, FlushedClearThePicturesCache) {
    Value context = host.create("CIContextKaz", {picture()});
    EXPECT_EQ(services.clearedCaches, 0);
    services.order.clear();
    host.call(context, "Flush");
    EXPECT_EQ(services.order,
              (std::vector<std::string>{"flush", "clear", "flush"})); // the host's own comes last
    // One without a picture has no cache to clear.
    services.flushed.clear();
    Value bitmap = canvas();
    host.call(host.create("CIContextKaz", {bitmap}), "Flush");
    EXPECT_EQ(services.clearedCaches, 1);
    EXPECT_EQ(services.flushed, std::vector<CGContextRef>{reinterpret_cast<CGContextRef>(bitmap.word())});
    // One that a function made keeps no context to flush.
    services.flushed.clear();
    host.call(host.function("NewCIContextKaz", {bitmap}), "Flush");
    EXPECT_TRUE(services.flushed.empty());
    context = bitmap = {};
    expectCleanButForOneLock();
}

TEST_F(Contexts, HoldTheirContextUntilTheyGo) {
    Value context = host.create("CIContextKaz", {canvas()});
    EXPECT_EQ(host.report().alive("CGContextKaz"), 1);
    EXPECT_EQ(living("CIContext"), 1);
    EXPECT_EQ(living("CGContext"), 1);
    context = {};
    EXPECT_EQ(living("CGContext"), 0);
    expectClean();
}

TEST_F(Contexts, ReleasedByTheirDestructorTwiceReleaseOnce) {
    Value context = host.create("CIContextKaz", {canvas()});
    host.call(context, "Destructor");
    EXPECT_TRUE(host.get(context, "CGContext").isNil());
    EXPECT_NE(host.get(context, "Handle").integer(), 0) << "the context itself goes with the object";
    host.call(context, "Destructor");
    context = {};
    expectClean();
}

TEST_F(Contexts, ThatCannotBeMadeOfAPictureLeaveNothing) {
    const std::string refused = "UnsupportedOperationException: Only supported on Mac OS X in Cocoa target.";
    services.lockFails = true;
    EXPECT_EQ(raisedBy([&] { host.create("CIContextKaz", {picture()}); }), refused);
    EXPECT_EQ(services.unlocks, 0) << "not from 2012.0 on";
    expectClean();
}

TEST_F(Contexts, OnAPictureOfAnotherKindAreRefused) {
    const std::string refused = "UnsupportedOperationException: Only supported on Mac OS X in Cocoa target.";
    services.deliveredKind = kREALPictureGWorld;
    EXPECT_EQ(raisedBy([&] { host.create("CIContextKaz", {picture()}); }), refused);
    services.deliveredKind = 0;
    services.nullContext = true;
    EXPECT_EQ(raisedBy([&] { host.create("CIContextKaz", {picture()}); }), refused);
    EXPECT_EQ(services.locks, 2);
    EXPECT_EQ(services.unlocks, 0);
    EXPECT_TRUE(host.report().sound()) << host.report().text();
}

class EarlierHost : public Contexts, public testing::WithParamInterface<double> {
  protected:
    EarlierHost() : Contexts({.version = GetParam()}) {}
};

TEST_P(EarlierHost, WantsAnUnlockAfterALockThatFailed) {
    services.lockFails = true;
    EXPECT_EQ(raisedBy([&] { host.create("CIContextKaz", {picture()}); }),
              "UnsupportedOperationException: Only supported on Mac OS X in Cocoa target.");
    EXPECT_EQ(services.unlocks, GetParam() < 2012.0 ? 1 : 0);
    expectClean();
}

TEST_P(EarlierHost, WantsItAfterRenderPictureToo) {
    Value it = image();
    services.lockFails = true;
    EXPECT_TRUE(host.call(it, "RenderPicture").isNil());
    EXPECT_EQ(services.unlocks, GetParam() < 2012.0 ? 1 : 0);
    EXPECT_EQ(services.clearedCaches, 0);
    EXPECT_EQ(host.report().alive("Picture"), 0);
    it = {};
    expectClean();
}

TEST_P(EarlierHost, GetsAPictureOfDepth32WhoseCacheIsCleared) {
    Value it = image();
    EXPECT_FALSE(host.call(it, "RenderPicture", {0, 7}).isNil());
    EXPECT_EQ(services.newPictures, std::vector<std::string>{"8 7 32"});
    EXPECT_EQ(services.locks, 1);
    EXPECT_EQ(services.unlocks, 1);
    EXPECT_EQ(services.clearedCaches, 1);
    it = {};
    expectClean();
}

TEST_P(EarlierHost, GetsNoPictureWithoutPixels) {
    Value endless =
        host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.0, 0.0})});
    Value thin =
        host.call(endless, "imageByCroppingToRect", {host.create("CGRectKaz", {0.0, 0.0, 8.0, 0.9})});
    EXPECT_TRUE(host.call(thin, "RenderPicture", {5, 0}).isNil());
    EXPECT_TRUE(services.newPictures.empty());
    endless = thin = {};
    expectClean();
}

INSTANTIATE_TEST_SUITE_P(Hosts, EarlierHost, testing::Values(2009.05, 2011.99, 2012.0, 2014.01));

TEST_F(Contexts, OnASecondPictureReplaceTheFirstUntested) {
    Value context = host.create("CIContextKaz", {picture()});
    Value second = picture();
    int before = host.get(context, "Handle").integer();
    EXPECT_EQ(raisedBy([&] { host.call(context, "Constructor(Pic as Picture)", {second}); }), "(none)");
    EXPECT_EQ(host.get(context, "Picture").object(), second.object());
    EXPECT_NE(host.get(context, "Handle").integer(), before);
    context = second = {};
    // Nobody owns what the first call stored.
    EXPECT_EQ(host.report().alive("Picture"), 1);
    EXPECT_EQ(host.report().alive("CGContextKaz"), 1);
    EXPECT_EQ(living("CIContext"), 1);
}

TEST_F(Contexts, HavePropertiesThatStorePlainly) {
    Value context = host.instantiate("CIContextKaz");
    Value pic = picture(), other = canvas();
    host.set(context, "Picture", pic);
    host.set(context, "CGContext", other);
    EXPECT_EQ(host.get(context, "Picture").object(), pic.object());
    EXPECT_EQ(host.get(context, "CGContext").object(), other.object());
    EXPECT_EQ(services.locks, 0);
    EXPECT_EQ(host.get(context, "Handle").integer(), 0);
    host.call(context, "Flush");
    EXPECT_EQ(services.clearedCaches, 1) << "the picture that was stored";
    // Nothing was locked: the objects go with their last other holder.
    host.set(context, "Picture", Value());
    host.set(context, "CGContext", Value());
    pic = other = {};
    EXPECT_EQ(host.report().alive("Picture"), 0);
    EXPECT_EQ(host.report().alive("CGContextKaz"), 0);
    context = {};
    expectClean();
}

// --- scratch bitmaps --------------------------------------------------------------------------------------

TEST_F(Contexts, OfCreateCGImageDrawIntoABitmapOfTheSourcesSize) {
    Value it = image();
    host.call(it, "CreateCGImage");
    EXPECT_EQ(services.bitmaps, std::vector<std::string>{"null 8x4 8 32 3 1"});
    services.bitmaps.clear();
    Value gray = host.shared("CGColorSpaceKaz", "DeviceGray");
    host.call(it, "CreateCGImage", {host.create("CGRectKaz", {0.0, 0.0, 3.9, 2.0}), gray});
    EXPECT_EQ(services.bitmaps, std::vector<std::string>{"null 3x2 8 12 1 1"});
    it = gray = {};
    expectClean();
}

TEST_F(Contexts, ThatHaveNoBitmapMakeNoCGImage) {
    Value it = image();
    services.bitmapsFail = true;
    EXPECT_TRUE(host.call(it, "CreateCGImage").isNil());
    EXPECT_TRUE(host.call(it, "CreateCGImage", {Value(), Value()}).isNil());
    services.bitmapsFail = false;
    it = {};
    expectClean();
}

class ContextsAlone : public Contexts {
  protected:
    ContextsAlone() : Contexts({}, WithoutFamily) {}
};

TEST_F(ContextsAlone, OnAPictureHaveNoCGContextToShow) {
    {
        Value context = host.create("CIContextKaz", {picture()});
        EXPECT_EQ(living("CIContext"), 1);
        EXPECT_NE(host.get(context, "Handle").integer(), 0);
        EXPECT_EQ(context.word(3), 0u); // the field of the sibling's object
        host.call(context, "Flush");
        EXPECT_EQ(services.clearedCaches, 1);
    }
    expectCleanButForOneLock();
}

TEST_F(ContextsAlone, MakeNoCGImageThatNobodyCouldHold) {
    {
        Value context = host.create("CIContextKaz", {picture()});
        Value shown = host.shared("CIImageKaz", "imageWithPicture", {picture()});
        EXPECT_EQ(host.call(shown, "Width").integer(), 8);
        EXPECT_EQ(living("CIImage"), 1);
        EXPECT_TRUE(host.call(context, "CreateCGImage", {shown}).isNil());
        EXPECT_TRUE(host.call(shown, "CreateCGImage").isNil());
    }
    expectCleanButForOneLock();
}

} // namespace
