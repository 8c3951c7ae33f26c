// What a CIContextKaz keeps alive and gives back. The test stands between the plugin and the services for
// pictures.
#include "plugin_test.h"

namespace {

using studio::Value;

struct PictureServices {
    bool lockFails = false;
    std::int32_t deliveredKind = 0; // 0: as the host delivers it
    bool nullContext = false;
    int locks = 0, unlocks = 0, clearedCaches = 0;
    std::int32_t askedKind = 0;
};
PictureServices services;

class Contexts : public PluginTest {
  protected:
    explicit Contexts(studio::HostOptions options = {}, Family family = WithFamily)
        : PluginTest(std::move(options), family,
                     {{"REALLockPictureDescription", reinterpret_cast<void*>(&lock)},
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
    static void unlock(REALpicture picture) {
        ++services.unlocks;
        if (services.lockFails) return; // the host never saw the lock
        hostService<host::service::unlockPictureDescription>("unlockPictureDescription")(picture);
    }
    static void clearCache(REALpicture picture) {
        ++services.clearedCaches;
        hostService<host::service::REALPictureClearCache>("REALPictureClearCache")(picture);
    }

    Value picture() { return host.create("Picture", {8, 8, 32}); }
    Value canvas() { return host.create("CGContextKaz", {8, 8}); }
    static int count(const studio::Report& report, const char* nativeClass) {
        for (const auto& [name, count] : report.platformObjects)
            if (name == nativeClass) return count;
        return 0;
    }

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
    host.call(context, "Flush");
    EXPECT_EQ(services.clearedCaches, 1);
    // One without a picture has no cache to clear.
    host.call(host.create("CIContextKaz", {canvas()}), "Flush");
    EXPECT_EQ(services.clearedCaches, 1);
    context = {};
    expectCleanButForOneLock();
}

TEST_F(Contexts, HoldTheirContextUntilTheyGo) {
    Value context = host.create("CIContextKaz", {canvas()});
    EXPECT_EQ(host.report().alive("CGContextKaz"), 1);
    EXPECT_EQ(count(host.report(), "CIContext"), 1);
    EXPECT_EQ(count(host.report(), "CGContext"), 1);
    context = {};
    EXPECT_EQ(count(host.report(), "CGContext"), 0);
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

INSTANTIATE_TEST_SUITE_P(Hosts, EarlierHost, testing::Values(2009.05, 2011.99, 2012.0, 2014.01));

TEST_F(Contexts, OnASecondPictureReplaceTheFirstUntested) {
    Value context = host.create("CIContextKaz", {picture()});
    Value second = picture();
    int before = host.get(context, "Handle").integer();
    EXPECT_EQ(raisedBy([&] { host.call(context, "Constructor(Pic as Picture)", {second}); }), "(none)");
    EXPECT_EQ(host.get(context, "Picture").object(), second.object());
    EXPECT_NE(host.get(context, "Handle").integer(), before);
    context = second = {};
    // What the first call stored is nobody's any more.
    EXPECT_EQ(host.report().alive("Picture"), 1);
    EXPECT_EQ(host.report().alive("CGContextKaz"), 1);
    EXPECT_EQ(count(host.report(), "CIContext"), 1);
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

class ContextsAlone : public Contexts {
  protected:
    ContextsAlone() : Contexts({}, WithoutFamily) {}
};

TEST_F(ContextsAlone, OnAPictureHaveNoCGContextToShow) {
    {
        Value context = host.create("CIContextKaz", {picture()});
        EXPECT_NE(host.get(context, "Handle").integer(), 0);
        EXPECT_EQ(context.word(3), 0u); // the field of the sibling's object
        host.call(context, "Flush");
        EXPECT_EQ(services.clearedCaches, 1);
    }
    expectCleanButForOneLock();
}

} // namespace
