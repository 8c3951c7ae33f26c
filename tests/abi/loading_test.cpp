// The loaders of CIImageKaz that leave decoding to a worker, from the host's side. Built twice: with the
// dispatch library (KAZ_DISPATCH is 1) and without.
#include "loading_coreimage.h"
#include "plugin_test.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <pthread.h>

namespace {

std::atomic<bool> threadsFail{false};

} // namespace

// Replaces the system's own in every library of the process.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                              void* argument) {
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return threadsFail ? EAGAIN : real(thread, attributes, entry, argument);
}

namespace {

using studio::Value;

std::string photoPath(const char* name) {
    const char* folder = std::getenv("KAZ_PHOTOS");
    return std::string(folder ? folder : ".") + "/" + name;
}

class WorkerLoading : public PluginTest {
  protected:
    WorkerLoading() {
        host.onYield([this] { ++yields; });
    }

    Value file(const char* name) { return host.function("GetFolderItem", {photoPath(name)}); }

    Value block(const char* name) {
        std::ifstream stream(photoPath(name), std::ios::binary);
        return host.memoryBlock(std::string(std::istreambuf_iterator<char>(stream), {}));
    }

    template <class... Arguments>
    Value load(const char* method, Arguments... arguments) {
        return host.shared("CIImageKaz", method, {std::move(arguments)...});
    }

    // Every 16th pixel of the image, for comparing.
    std::vector<std::string> pixels(const Value& image) {
        Value surface = host.get(host.call(image, "RenderPicture"), "RGBSurface");
        std::vector<std::string> result;
        for (int y = 0; y < host.call(image, "Height").integer(); y += 16)
            for (int x = 0; x < host.call(image, "Width").integer(); x += 16)
                result.push_back(host.call(surface, "Pixel", {x, y}).text());
        return result;
    }

    int yields = 0;
};

TEST_F(WorkerLoading, GivesTheImageThatThePlainLoaderGives) {
    {
        std::vector<std::string> expected = pixels(load("imageWithContentsOfFile", file("rocket.jpg")));
        EXPECT_EQ(yields, 0);
        EXPECT_GT(expected.size(), 1000u);
        Value space = host.shared("CGColorSpaceKaz", "AdobeRGB1998");
        EXPECT_EQ(pixels(load("imageWithDataMT", block("rocket.jpg"))), expected);
        EXPECT_EQ(pixels(load("imageWithContentsOfFileMT", file("rocket.jpg"))), expected);
        EXPECT_GE(yields, 4);
        EXPECT_EQ(pixels(load("imageWithContentsOfFileMT", file("rocket.jpg"), space)),
                  pixels(load("imageWithContentsOfFile", file("rocket.jpg"), space)));
    }
    expectClean();
}

TEST_F(WorkerLoading, ANilBlockGivesNilAndRaisesNothing) {
    Value none;
    EXPECT_TRUE(load("imageWithDataMT", none).isNil());
    EXPECT_EQ(yields, 0);
    EXPECT_EQ(raisedBy([&] { load("imageWithData", none); }), "NilObjectException: Memoryblock is nil");
    expectClean();
}

TEST_F(WorkerLoading, ANilFileGivesNilAndRaisesNothing) {
    Value none;
    EXPECT_TRUE(load("imageWithContentsOfFileMT", none).isNil());
    EXPECT_TRUE(load("imageWithContentsOfFileMT", none, none).isNil());
    EXPECT_EQ(raisedBy([&] { load("imageWithContentsOfFile", none, none); }),
              "NilObjectException: file is nil");
    expectClean();
}

TEST_F(WorkerLoading, WhatIsNoPictureGivesNil) {
    EXPECT_TRUE(load("imageWithDataMT", host.memoryBlock("no picture")).isNil());
    EXPECT_TRUE(load("imageWithContentsOfFileMT", file("no-such-file.png")).isNil());
    EXPECT_TRUE(load("imageWithContentsOfFileMT", file("truncated.jpg")).isNil());
    EXPECT_GE(yields, 6);
    expectClean();
}

TEST_F(WorkerLoading, TheBlockMayChangeDuringTheCall) {
    {
        std::vector<std::string> expected = pixels(load("imageWithData", block("astronaut.png")));
        Value bytes = block("astronaut.png");
        auto* handle = reinterpret_cast<REALmemoryBlock>(bytes.object());
        auto address =
            reinterpret_cast<host::service::memoryBlockGetPtr>(host.resolver()("memoryBlockGetPtr"));
        auto size =
            reinterpret_cast<host::service::memoryBlockGetSize>(host.resolver()("memoryBlockGetSize"));
        // The worker reads only after the host has overwritten the block.
        holdImageWithData();
        host.onYield([&] {
            std::memset(address(handle), 0, static_cast<std::size_t>(size(handle)));
            letImageWithDataGo();
        });
        EXPECT_EQ(pixels(load("imageWithDataMT", bytes)), expected);
        host.onYield({});
    }
    expectClean();
}

TEST_F(WorkerLoading, ALoadDuringALoadRunsToItsEnd) {
    {
        // What is made once and shared (classes, colour spaces, tables) is made here, before the two meet: a
        // race detector that knows mutexes alone would not see how the language orders that.
        for (const char* name : {"astronaut.png", "rocket.jpg"})
            load("imageWithContentsOfFileMT", file(name));
        Value inner;
        host.onYield([&] {
            if (inner.isNil()) inner = load("imageWithContentsOfFileMT", file("astronaut.png"));
        });
        Value outer = load("imageWithContentsOfFileMT", file("rocket.jpg"));
        EXPECT_EQ(host.call(inner, "Width").integer(), 512);
        EXPECT_EQ(host.call(outer, "Width").integer(), 640);
        host.onYield({});
    }
    expectClean();
}

TEST_F(WorkerLoading, AnExceptionOfCoreImageIsLoggedAndGivesNil) {
    breakImageWithData("Broken", "out of order");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(load("imageWithDataMT", host.memoryBlock("bytes")).isNil());
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("out of order"), std::string::npos) << log;
    EXPECT_EQ(log.find("out of order"), log.rfind("out of order")) << "logged twice:\n" << log;
    EXPECT_EQ(log.find("A Broken: "), std::string::npos) << "logged as the host's exceptions are:\n" << log;

    // The plain loader raises it.
    testing::internal::CaptureStderr();
    EXPECT_NE(raisedBy([&] { load("imageWithData", host.memoryBlock("bytes")); }).find("out of order"),
              std::string::npos);
    testing::internal::GetCapturedStderr();
    expectClean();
}

#if !KAZ_DISPATCH

TEST_F(WorkerLoading, WithoutAThreadTheResultIsNilAndNothingIsRaised) {
    threadsFail = true;
    Value image = load("imageWithContentsOfFileMT", file("block.png"));
    threadsFail = false;
    EXPECT_TRUE(image.isNil());
    EXPECT_EQ(yields, 0);
    expectClean();
}

#endif

TEST_F(WorkerLoading, TheOptionsForAdjustmentAreCoreImages) {
    AdjustmentOptions expected = adjustmentOptions();
    auto text = [&](const char* method) { return host.shared("CIImageKaz", method).text(); };
    EXPECT_EQ(text("kCIImageAutoAdjustEnhance"), expected.enhance);
    EXPECT_EQ(text("kCIImageAutoAdjustRedEye"), expected.redEye);
    EXPECT_EQ(text("kCIImageAutoAdjustFeatures"), expected.features);
    expectClean();
}

TEST_F(WorkerLoading, TheSharedMethodsComeInTheirOrder) {
    std::vector<std::string> declared;
    for (const auto& method : host.findClass("CIImageKaz")->sharedMethods)
        declared.push_back(method->declaration);
    EXPECT_EQ(
        declared,
        (std::vector<std::string>{
            "kCIImageAutoAdjustEnhance as string",
            "kCIImageAutoAdjustRedEye as string",
            "kCIImageAutoAdjustFeatures as string",
            "emptyImage as CIImageKaz",
            "imageWithColor(color as CIColorKaz) as CIImageKaz",
            "imageWithPicture(Pic as Picture) as CIImageKaz",
            "imageWithCGImage(CGImage as CGImageKaz) as CIImageKaz",
            "imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
            "imageWithContentsOfURL(URL as String) as CIImageKaz",
            "imageWithContentsOfURL(URL as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
            "imageWithData(data as memoryblock) as CIImageKaz",
            "imageWithDataMT(data as memoryblock) as CIImageKaz",
            "imageWithContentsOfFile(file as folderitem) as CIImageKaz",
            "imageWithContentsOfFile(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
            "imageWithContentsOfFileMT(file as folderitem) as CIImageKaz",
            "imageWithContentsOfFileMT(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
            "imageWithContentsOfPath(Path as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
        }));
}

} // namespace
