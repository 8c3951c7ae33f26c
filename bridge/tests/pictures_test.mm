// Images of host pictures, by every way there is, and drawing pictures into pictures.
#include "conversion_test.h"

#include <bridge/pictures.h>
#include <bridge/worlds.h>

#include <Carbon/Carbon.h>
#include <Carbon/CarbonTesting.h>

#include <algorithm>
#include <array>
#include <cstring>

using Log = std::vector<std::string>;

// Some platform calls of the bridge are led here, to let them fail once and to see the mask that is used.
static std::vector<std::uint8_t> maskBytes;
static std::size_t maskBytesPerRow = 0;
static std::vector<std::string> contexts;    // that were made, with their arguments
static std::vector<std::string> bundleParts; // what was called to find the framework

extern "C" {
CGContextRef __real_CGBitmapContextCreate(void*, size_t, size_t, size_t, size_t, CGColorSpaceRef,
                                          CGBitmapInfo);
CGContextRef __wrap_CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bits, size_t bytes,
                                          CGColorSpaceRef space, CGBitmapInfo info) {
    contexts.push_back(
        testing::PrintToString(std::tuple(data != nullptr, width, height, bits, bytes, info,
                                          CGColorSpaceGetModel(space) == kCGColorSpaceModelMonochrome)));
    return fails("context") ? nullptr
                            : __real_CGBitmapContextCreate(data, width, height, bits, bytes, space, info);
}
CGImageRef __real_CGBitmapContextCreateImage(CGContextRef);
CGImageRef __wrap_CGBitmapContextCreateImage(CGContextRef context) {
    return fails("image") ? nullptr : __real_CGBitmapContextCreateImage(context);
}
CGColorSpaceRef __real_CGColorSpaceCreateDeviceGray();
CGColorSpaceRef __wrap_CGColorSpaceCreateDeviceGray() {
    return fails("gray") ? nullptr : __real_CGColorSpaceCreateDeviceGray();
}
CGImageRef __real_CGImageCreateWithMask(CGImageRef, CGImageRef);
CGImageRef __wrap_CGImageCreateWithMask(CGImageRef image, CGImageRef mask) {
    CFDataRef data = CGDataProviderCopyData(CGImageGetDataProvider(mask));
    maskBytes.assign(CFDataGetBytePtr(data), CFDataGetBytePtr(data) + CFDataGetLength(data));
    maskBytesPerRow = CGImageGetBytesPerRow(mask);
    CFRelease(data);
    return fails("masked image") ? nullptr : __real_CGImageCreateWithMask(image, mask);
}
OSErr __real_FSFindFolder(SInt16, OSType, Boolean, FSRef*);
OSErr __wrap_FSFindFolder(SInt16 domain, OSType type, Boolean create, FSRef* ref) {
    bundleParts.push_back("folder " + testing::PrintToString(std::tuple(domain, type, int(create))));
    return fails("folder") ? fnfErr : __real_FSFindFolder(domain, type, create, ref);
}
CFURLRef __real_CFURLCreateFromFSRef(CFAllocatorRef, const FSRef*);
CFURLRef __wrap_CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref) {
    return fails("URL of reference") ? nullptr : __real_CFURLCreateFromFSRef(allocator, ref);
}
CFURLRef __real_CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef, CFStringRef, Boolean);
CFURLRef __wrap_CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                      CFStringRef component, Boolean isDirectory) {
    bundleParts.push_back(std::string([(NSString*)component UTF8String]) + (isDirectory ? "/" : ""));
    return fails("URL")
               ? nullptr
               : __real_CFURLCreateCopyAppendingPathComponent(allocator, url, component, isDirectory);
}
CFBundleRef __real_CFBundleCreate(CFAllocatorRef, CFURLRef);
CFBundleRef __wrap_CFBundleCreate(CFAllocatorRef allocator, CFURLRef url) {
    return fails("bundle") ? nullptr : __real_CFBundleCreate(allocator, url);
}
Boolean __real_CFBundleLoadExecutable(CFBundleRef);
Boolean __wrap_CFBundleLoadExecutable(CFBundleRef bundle) {
    return fails("executable") ? false : __real_CFBundleLoadExecutable(bundle);
}
}

namespace {

using bridge::Owned;
using studio::Value;

struct Pixel {
    std::uint8_t alpha, red, green, blue;
    bool operator==(const Pixel&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Pixel& p) {
        return out << "(" << int(p.alpha) << " " << int(p.red) << " " << int(p.green) << " " << int(p.blue)
                   << ")";
    }
};
using Pixels = std::vector<Pixel>;

REALpicture handle(const Value& picture) { return reinterpret_cast<REALpicture>(picture.object()); }

class Pictures : public ConversionTest {
  protected:
    explicit Pictures(std::optional<double> version = 2014.01, std::set<std::string> withheld = {})
        : ConversionTest({.version = version, .withheld = std::move(withheld)}) {}

    static constexpr int kWidth = 5, kHeight = 3;

    void SetUp() override {
        log.clear();
        names.clear();
        modes.clear();
        failingCall.clear();
        goodCalls = 0;
        contexts.clear();
        bundleParts.clear();
        onSystem(6);
        watchDescriptions();
    }
    void TearDown() override {
        ConversionTest::TearDown();
        for (const auto& [name, count] : host.report().platformObjects)
            EXPECT_EQ(count, 0) << "living " << name;
    }

    static void onSystem(int minor, int major = 10) { GestaltSetSystemVersion(major, minor, 0); }

    // --- pictures and their pixels ---

    Value newPicture(int width, int height, const Pixels& pixels) {
        Value picture = host.create("Picture", {width, height, 32});
        write(picture, pixels);
        return picture;
    }
    // Opaque colours, different everywhere.
    static Pixels colors(int count = kWidth * kHeight) {
        Pixels result;
        for (int i = 0; i < count; ++i)
            result.push_back(
                {255, std::uint8_t(i * 17), std::uint8_t(255 - i * 11), std::uint8_t(i * 5 + 3)});
        return result;
    }
    // Grays from 0 to 255.
    static Pixels grays(int count = kWidth * kHeight) {
        Pixels result;
        for (int i = 0; i < count; ++i) {
            auto gray = std::uint8_t(i * 255 / (count - 1));
            result.push_back({255, gray, gray, gray});
        }
        return result;
    }
    // The colours as they show through a mask, where black lets everything through.
    static Pixels maskedBy(const Pixels& mask, Pixels pixels) {
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            unsigned alpha = 255u - mask[i].red;
            auto times = [&](std::uint8_t c) { return std::uint8_t((c * alpha + 127) / 255); };
            pixels[i] = {std::uint8_t(alpha), times(pixels[i].red), times(pixels[i].green),
                         times(pixels[i].blue)};
        }
        return pixels;
    }

    // The picture's rows, by the host's own description service.
    template <class Visit>
    static void visitRows(const Value& picture, Visit&& visit) {
        auto lock = original<host::service::REALLockPictureDescription>("REALLockPictureDescription");
        REALpictureDescription description;
        ASSERT_TRUE(lock(handle(picture), &description, kREALPicturePixelBuffer));
        auto* buffer = static_cast<REALpixelBuffer*>(description.handle);
        for (int y = 0; y < buffer->height; ++y) visit(static_cast<Pixel*>(buffer->rows[y]), buffer->width);
        original<host::service::unlockPictureDescription>("unlockPictureDescription")(handle(picture));
    }
    static void write(const Value& picture, const Pixels& pixels) {
        const Pixel* next = pixels.data();
        visitRows(picture, [&](Pixel* row, int width) {
            std::copy(next, next + width, row);
            next += width;
        });
    }
    static Pixels read(const Value& picture) {
        Pixels result;
        visitRows(picture, [&](Pixel* row, int width) { result.insert(result.end(), row, row + width); });
        return result;
    }
    // The image's pixels, premultiplied; none for null. The image is released.
    static Pixels read(CGImageRef image) {
        if (!image) return {};
        Owned<CGImageRef> owner(image);
        std::size_t width = CGImageGetWidth(image), height = CGImageGetHeight(image);
        Pixels result(width * height);
        Owned<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
        Owned<CGContextRef> context(__real_CGBitmapContextCreate(
            result.data(), width, height, 8, width * 4, space.get(), kCGImageAlphaPremultipliedFirst));
        CGContextSetBlendMode(context.get(), kCGBlendModeCopy);
        CGContextDrawImage(context.get(),
                           CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height)),
                           image);
        return result;
    }

    // Instead of being drawn, pictures enter `drawn` from now on, with the sides that were asked for.
    void recordDrawing() {
        drawn.clear();
        replace(
            "REALLoadObjectMethod", +[](REALobject, const char*) {
                using I = std::int32_t;
                return reinterpret_cast<void*>(
                    +[](REALobject, REALpicture image, I x, I y, I w, I h, I sx, I sy, I sw, I sh) {
                        drawn.emplace_back(image, Sides{x, y, w, h, sx, sy, sw, sh});
                    });
            });
    }
    using Sides = std::array<std::int32_t, 8>;
    static constexpr Sides kWhole = {0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight};
    static inline std::vector<std::pair<REALpicture, Sides>> drawn;

    static Pixels image(const Value& picture, const Value& mask = {}) {
        return read(CreateCGImageInternal(handle(picture), handle(mask)));
    }

    // --- what happens to descriptions ---

    enum Mode { Fails, OtherKind, OtherFormat, NoRows, NoHeight };

    // Locks and unlocks are logged under the picture's name, and succeed or fail as the test says.
    void watchDescriptions() {
        replace(
            "REALLockPictureDescription",
            +[](REALpicture picture, REALpictureDescription* out, std::int32_t kind) {
                auto mode = modes.find(picture);
                std::string entry = nameOf(picture) + std::to_string(kind);
                if (mode != modes.end() && mode->second == Fails) {
                    log.push_back("fail " + entry);
                    return false;
                }
                log.push_back("lock " + entry);
                bool locked = original<host::service::REALLockPictureDescription>(
                    "REALLockPictureDescription")(picture, out, kind);
                if (locked && mode != modes.end()) alter(*out, mode->second);
                return locked;
            });
        replace(
            "unlockPictureDescription", +[](REALpicture picture) {
                log.push_back("unlock " + nameOf(picture));
                auto mode = modes.find(picture);
                if (mode == modes.end() || mode->second != Fails)
                    original<host::service::unlockPictureDescription>("unlockPictureDescription")(picture);
            });
        replace(
            "REALPictureClearCache", +[](REALpicture picture) {
                log.push_back("clear " + nameOf(picture));
                original<host::service::REALPictureClearCache>("REALPictureClearCache")(picture);
            });
    }

    static void alter(REALpictureDescription& description, Mode mode) {
        if (mode == OtherKind) description.kind = 1;
        if (description.kind != kREALPicturePixelBuffer) return;
        static REALpixelBuffer altered;
        altered = *static_cast<REALpixelBuffer*>(description.handle);
        if (mode == OtherFormat) altered.format = 1;
        if (mode == NoRows) altered.rows = nullptr;
        if (mode == NoHeight) altered.height = 0;
        description.handle = &altered;
    }

    static std::string nameOf(REALpicture picture) {
        auto found = names.find(picture);
        return found == names.end() ? "other" : found->second;
    }
    void name(const Value& picture, const char* text) { names[handle(picture)] = text; }

    // Unlocks that follow failed locks belong to older hosts only.
    Log expected(Log entries) const {
        if (host.version() >= 2012.0) return entries;
        Log result;
        for (const std::string& entry : entries) {
            result.push_back(entry);
            if (entry.starts_with("fail ")) result.push_back("unlock " + entry.substr(5, 1));
        }
        return result;
    }

    static inline Log log;
    static inline std::map<REALpicture, std::string> names;
    static inline std::map<REALpicture, Mode> modes;
};

// --- images by the picture's description, on systems before 10.7 ------------------------------------------

class ImagesByDescription : public Pictures, public testing::WithParamInterface<HostVersion> {
  protected:
    ImagesByDescription() : Pictures(GetParam().version) {}

    void SetUp() override {
        Pictures::SetUp();
        picture = newPicture(kWidth, kHeight, colors());
        mask = newPicture(kWidth, kHeight, grays());
        name(picture, "P");
        name(mask, "M");
    }
    void TearDown() override {
        picture = mask = {};
        Pictures::TearDown();
    }

    Value picture, mask;
};

TEST_P(ImagesByDescription, ShowThePixels) {
    EXPECT_EQ(image(picture), colors());
    EXPECT_EQ(log, (Log{"lock P8", "unlock P"}));
}

TEST_P(ImagesByDescription, HaveTheMaskApplied) {
    EXPECT_EQ(image(picture, mask), maskedBy(grays(), colors()));
    EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByDescription, TakeTheMasksGraysInverted) {
    Owned<CGImageRef> made(CreateCGImageInternal(handle(picture), handle(mask)));
    ASSERT_GE(maskBytesPerRow, std::size_t{kWidth});
    Pixels gray = grays();
    for (int y = 0; y < kHeight; ++y)
        for (std::size_t x = 0; x < maskBytesPerRow && y * maskBytesPerRow + x < maskBytes.size(); ++x) {
            std::size_t at = static_cast<std::size_t>(y) * maskBytesPerRow + x;
            // Beyond the width nothing was drawn, and nothing is inverted.
            int wanted = x < kWidth ? 255 - gray[static_cast<std::size_t>(y) * kWidth + x].red : 0;
            EXPECT_EQ(int(maskBytes[at]), wanted) << x << ", " << y;
        }
}

TEST_P(ImagesByDescription, StretchAMaskOfAnotherSize) {
    Value half = newPicture(1, 3, {{255, 0, 0, 0}, {255, 255, 255, 255}, {255, 0, 0, 0}});
    Pixels wanted = colors();
    for (int x = 0; x < kWidth; ++x) wanted[static_cast<std::size_t>(kWidth + x)] = {0, 0, 0, 0};
    EXPECT_EQ(image(picture, half), wanted);
}

TEST_P(ImagesByDescription, AreNullForANullPicture) {
    EXPECT_EQ(CreateCGImageInternal(nullptr, nullptr), nullptr);
    EXPECT_EQ(CreateCGImageInternal(nullptr, handle(mask)), nullptr);
    EXPECT_EQ(log, Log{});
}

TEST_P(ImagesByDescription, AreNullWhenThePictureCannotBeLocked) {
    modes[handle(picture)] = Fails;
    EXPECT_EQ(CreateCGImageInternal(handle(picture), handle(mask)), nullptr);
    EXPECT_EQ(log, expected({"fail P8"}));
}

TEST_P(ImagesByDescription, AreNullWhenAnotherKindIsDelivered) {
    modes[handle(picture)] = OtherKind;
    EXPECT_EQ(CreateCGImageInternal(handle(picture), handle(mask)), nullptr);
    EXPECT_EQ(log, (Log{"lock P8", "unlock P"}));
}

TEST_P(ImagesByDescription, AreNullWhenTheContextGivesNoImage) {
    failingCall = "image";
    EXPECT_EQ(CreateCGImageInternal(handle(picture), handle(mask)), nullptr);
    EXPECT_EQ(log, (Log{"lock P8", "unlock P"}));
}

TEST_P(ImagesByDescription, AreUnmaskedWhenTheMaskCannotBeLocked) {
    modes[handle(mask)] = Fails;
    EXPECT_EQ(image(picture, mask), colors());
    EXPECT_EQ(log, expected({"lock P8", "fail M8", "unlock P"}));
}

TEST_P(ImagesByDescription, AreUnmaskedWhenTheMaskDeliversAnotherKind) {
    modes[handle(mask)] = OtherKind;
    EXPECT_EQ(image(picture, mask), colors());
    EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByDescription, AreUnmaskedWhenAStepOfTheMaskFails) {
    struct Step {
        const char* call;
        int goodCalls;
    };
    // The mask's image, the gray space, the gray context (after those of the two pictures), its image.
    for (Step step : {Step{"image", 1}, Step{"gray", 0}, Step{"context", 0}, Step{"image", 2}}) {
        log.clear();
        failingCall = step.call;
        goodCalls = step.goodCalls;
        EXPECT_EQ(image(picture, mask), colors()) << step.call;
        EXPECT_EQ(failingCall, "") << step.call << " was not called";
        EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
    }
}

TEST_P(ImagesByDescription, AreNullWhenTheMaskCannotBeApplied) {
    failingCall = "masked image";
    EXPECT_EQ(CreateCGImageInternal(handle(picture), handle(mask)), nullptr);
    EXPECT_EQ(failingCall, "") << "was not called";
    EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByDescription, LetCoreGraphicsLayOutTheMasksGraysInBytes) {
    Value half = newPicture(2, 4, grays(8));
    image(picture, half);
    // No buffer, 2 x 4, 8 bits, rows as Core Graphics likes them, no alpha, gray. The host made its own
    // before.
    ASSERT_FALSE(contexts.empty());
    EXPECT_EQ(contexts.back(), testing::PrintToString(std::tuple(false, 2, 4, 8, 0, 0, true)));
}

INSTANTIATE_TEST_SUITE_P(Hosts, ImagesByDescription, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- images by a copy that the host makes, from 10.7 on ---------------------------------------------------

class ImagesByCopy : public ImagesByDescription {
  protected:
    void SetUp() override {
        ImagesByDescription::SetUp();
        onSystem(7);
        steps.clear();
        replace(
            "newPicture", +[](std::int32_t width, std::int32_t height, std::int32_t depth) {
                steps.push_back("new " + std::to_string(width) + " " + std::to_string(height) + " " +
                                std::to_string(depth));
                return original<host::service::newPicture>("newPicture")(width, height, depth);
            });
        replace(
            "REALGetPictureMask", +[](REALpicture picture, bool create) {
                steps.push_back(std::string(create ? "make mask of " : "mask of ") + nameOf(picture));
                return original<host::service::REALGetPictureMask>("REALGetPictureMask")(picture, create);
            });
    }

    bool hostCopies() const { return host.version() >= 2012.0; }
    // Only where the host copies no images is a description needed.
    Log unlessCopied(Log entries) const { return hostCopies() ? Log{} : entries; }

    static inline Log steps;
};

TEST_P(ImagesByCopy, ComeFromACopyThatGetsAMask) {
    EXPECT_EQ(image(picture), colors());
    EXPECT_EQ(steps, (Log{"new 5 3 32", "make mask of other"}));
    EXPECT_EQ(log, unlessCopied({"lock P8", "unlock P"}));
}

TEST_P(ImagesByCopy, HaveTheMaskDrawnIntoTheCopys) {
    EXPECT_EQ(image(picture, mask), maskedBy(grays(), colors()));
    EXPECT_EQ(steps, (Log{"new 5 3 32", "make mask of other"}));
    EXPECT_EQ(log, unlessCopied({"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByCopy, TakeOfAMaskOfAnotherSizeThePartThatCoversThePicture) {
    recordDrawing();
    Value large = newPicture(7, 9, grays(7 * 9));
    image(picture, large);
    EXPECT_EQ(drawn, (std::vector{std::pair(handle(picture), kWhole), std::pair(handle(large), kWhole)}));
}

TEST_P(ImagesByCopy, AreTakenAfterThePictureAndThenTheMaskAreDrawn) {
    std::vector<studio::ServiceCall> calls = host.callsDuring([&] { image(picture, mask); });
    std::erase_if(calls, [](const studio::ServiceCall& call) {
        return call.service != "newPicture" && call.service != "REALGetPictureMask" &&
               call.service != "pluginPictureGraphicsGetter" && call.service != "REALLoadObjectMethod" &&
               call.service != "REALCopyPictureCGImage" && call.service != "REALUnlockObject";
    });
    Log sequence;
    for (const studio::ServiceCall& call : calls) sequence.push_back(call.service);
    Log wanted = {"newPicture",
                  "pluginPictureGraphicsGetter",
                  "REALLoadObjectMethod",
                  "REALUnlockObject", // the copy's graphics
                  "REALGetPictureMask",
                  "pluginPictureGraphicsGetter",
                  "REALLoadObjectMethod",
                  "REALUnlockObject", // the mask's graphics
                  "REALUnlockObject", // the mask
                  "REALCopyPictureCGImage",
                  "REALUnlockObject"}; // the copy
    if (!hostCopies()) wanted.erase(wanted.end() - 2);
    ASSERT_EQ(sequence, wanted);
    const void* copy = calls[1].subject;
    const void* copyMask = calls[5].subject;
    EXPECT_EQ(calls[4].subject, copy);
    EXPECT_NE(copyMask, copy);
    EXPECT_EQ(calls[3].subject, calls[2].subject);
    EXPECT_EQ(calls[7].subject, calls[6].subject);
    EXPECT_EQ(calls[8].subject, copyMask);
    EXPECT_EQ(calls.back().subject, copy);
}

TEST_P(ImagesByCopy, LeaveTheOriginalsAlone) {
    image(picture, mask);
    EXPECT_EQ(read(picture), colors());
    EXPECT_EQ(read(mask), grays());
}

TEST_P(ImagesByCopy, AreMadeFrom10_7OnAndNotBefore) {
    struct System {
        int major, minor;
        bool copies;
    };
    // Both parts are compared by themselves; 0 stands for a system that does not tell its version.
    for (System system :
         {System{10, 6, false}, System{10, 7, true}, System{10, 15, true}, System{9, 9, false},
          System{11, 0, false}, System{11, 7, true}, System{0, 0, false}}) {
        steps.clear();
        onSystem(system.minor, system.major);
        EXPECT_EQ(image(picture), colors());
        EXPECT_EQ(!steps.empty(), system.copies) << system.major << "." << system.minor;
    }
}

TEST_P(ImagesByCopy, FallBackToTheDescriptionWithoutANewPicture) {
    host.failService("newPicture");
    EXPECT_EQ(image(picture, mask), maskedBy(grays(), colors()));
    EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByCopy, FallBackToTheDescriptionWithoutTheHostsImage) {
    if (hostCopies()) host.failService("REALCopyPictureCGImage");
    EXPECT_EQ(image(picture, mask), maskedBy(grays(), colors()));
    EXPECT_EQ(log, (Log{"lock P8", "lock M8", "unlock M", "unlock P"}));
}

TEST_P(ImagesByCopy, FallBackToTheDescriptionWhenTheSizeCannotBeRead) {
    host.failService("REALGetPropValueInt");
    EXPECT_EQ(image(picture), colors());
    EXPECT_EQ(steps, Log{"new 0 3 32"});
    EXPECT_EQ(log, (Log{"lock P8", "unlock P"}));
}

TEST_P(ImagesByCopy, TakeASideThatCannotBeReadFor0WhateverTheHostWrote) {
    replace(
        "REALGetPropValueInt", +[](REALobject, const char*, std::int32_t* out) {
            *out = 9;
            return false;
        });
    EXPECT_EQ(image(picture), colors());
    EXPECT_EQ(steps, Log{"new 0 0 32"});
}

TEST_P(ImagesByCopy, AreNullForANullPicture) {
    EXPECT_EQ(CreateCGImageInternal(nullptr, handle(mask)), nullptr);
    EXPECT_EQ(log, Log{});
}

INSTANTIATE_TEST_SUITE_P(Hosts, ImagesByCopy, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- images by every way there is -------------------------------------------------------------------------

// The services that the host is asked for are logged among the locks: P is the picture, PM its mask, C the
// copy, CM the copy's mask. The host's own images are 1 pixel wide.
class ImagesOfPictures : public Pictures, public testing::WithParamInterface<HostVersion> {
  protected:
    ImagesOfPictures() : Pictures(GetParam().version) {}

    void SetUp() override {
        Pictures::SetUp();
        copied.clear();
        hasMask = true;
        copyMode.reset();
        picture = newPicture(kWidth, kHeight, colors());
        name(picture, "P");
        Value mask = Value::received(reinterpret_cast<REALobject>(
            original<host::service::REALGetPictureMask>("REALGetPictureMask")(handle(picture), true)));
        write(mask, blackAndWhite());

        replace(
            "REALCopyPictureCGImage", +[](REALpicture picture) -> void* {
                log.push_back("copy " + nameOf(picture));
                if (copied != nameOf(picture)) return nullptr;
                Owned<CGColorSpaceRef> gray(CGColorSpaceCreateDeviceGray());
                Owned<CGContextRef> pixel(
                    __real_CGBitmapContextCreate(nullptr, 1, 1, 8, 0, gray.get(), kCGImageAlphaNone));
                return __real_CGBitmapContextCreateImage(pixel.get());
            });
        replace(
            "REALGetPictureMask", +[](REALpicture picture, bool create) {
                log.push_back((create ? "make mask of " : "mask of ") + nameOf(picture));
                if (!hasMask) return REALpicture();
                REALpicture mask =
                    original<host::service::REALGetPictureMask>("REALGetPictureMask")(picture, create);
                names[mask] = nameOf(picture) + "M";
                return mask;
            });
        replace(
            "newPicture", +[](std::int32_t width, std::int32_t height, std::int32_t depth) {
                log.push_back("new " + testing::PrintToString(std::tuple(width, height, depth)));
                REALpicture copy = original<host::service::newPicture>("newPicture")(width, height, depth);
                names[copy] = "C";
                if (copyMode) modes[copy] = *copyMode;
                return copy;
            });
    }
    void TearDown() override {
        picture = {};
        Pictures::TearDown();
    }

    void withoutMask() {
        picture = newPicture(kWidth, kHeight, colors());
        names = {{handle(picture), "P"}};
        hasMask = false;
    }

    Pixels image() { return read(bridge::copyCGImage(handle(picture))); }
    std::size_t width() {
        Owned<CGImageRef> image(bridge::copyCGImage(handle(picture)));
        return image ? CGImageGetWidth(image.get()) : 0;
    }
    // A mask without intermediate grays: a masked picture looks the same when it is drawn and masked again.
    static Pixels blackAndWhite() {
        Pixels result = grays();
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = i % 2 ? Pixel{255, 255, 255, 255} : Pixel{255, 0, 0, 0};
        return result;
    }
    // The calls that always come before the copy of a picture that cannot be locked.
    static Log upToTheCopy(Log entries) {
        entries.insert(entries.begin(), {"copy P", "make mask of P", "fail P8"});
        return entries;
    }

    static inline std::string copied; // the picture of which the host makes an image
    static inline bool hasMask = true;
    static inline std::optional<Mode> copyMode;
    Value picture;
};

TEST_P(ImagesOfPictures, AreTheHostsWhereItMakesThem) {
    copied = "P";
    EXPECT_EQ(width(), 1u);
    EXPECT_EQ(log, Log{"copy P"});
}

TEST_P(ImagesOfPictures, AreElseConvertedTogetherWithTheMask) {
    EXPECT_EQ(image(), maskedBy(blackAndWhite(), colors()));
    EXPECT_EQ(log, (Log{"copy P", "make mask of P", "lock P8", "lock PM8", "unlock PM", "unlock P"}));
}

TEST_P(ImagesOfPictures, AreConvertedAloneWhenThereIsNoMask) {
    withoutMask();
    EXPECT_EQ(image(), colors());
    EXPECT_EQ(log, (Log{"copy P", "make mask of P", "lock P8", "unlock P"}));
}

TEST_P(ImagesOfPictures, ThatCannotBeLockedAreTheHostsOfACopy) {
    modes[handle(picture)] = Fails;
    copied = "C";
    EXPECT_EQ(width(), 1u);
    EXPECT_EQ(log, expected(upToTheCopy({"new (5, 3, 32)", "make mask of C", "copy C"})));
}

TEST_P(ImagesOfPictures, ThatCannotBeLockedAreElseConvertedFromACopyWithItsMask) {
    modes[handle(picture)] = Fails;
    EXPECT_EQ(image(), maskedBy(blackAndWhite(), colors()));
    EXPECT_EQ(log, expected(upToTheCopy({"new (5, 3, 32)", "make mask of C", "copy C", "lock C8", "lock CM8",
                                         "unlock CM", "unlock C"})));
}

TEST_P(ImagesOfPictures, TakeForTheCopyOfAMaskOfAnotherSizeThePartThatCoversThePicture) {
    static Value large;
    large = newPicture(7, 9, grays(7 * 9));
    modes[handle(picture)] = Fails;
    replace(
        "REALGetPictureMask", +[](REALpicture asked, bool create) {
            if (names[asked] != "P")
                return original<host::service::REALGetPictureMask>("REALGetPictureMask")(asked, create);
            REALLockObject(large.object());
            return handle(large);
        });
    recordDrawing();
    Owned<CGImageRef> image(bridge::copyCGImage(handle(picture)));
    ASSERT_GE(drawn.size(), 2u);
    // The last two: before them an image of the pair was tried.
    EXPECT_EQ(drawn.end()[-2], std::pair(handle(picture), kWhole));
    EXPECT_EQ(drawn.end()[-1], std::pair(handle(large), kWhole));
    large = {};
}

TEST_P(ImagesOfPictures, ThatCannotBeLockedNeedNoMaskForTheCopy) {
    withoutMask();
    modes[handle(picture)] = Fails;
    EXPECT_EQ(image(), colors());
    EXPECT_EQ(log, expected(upToTheCopy({"new (5, 3, 32)", "copy C", "lock C8", "unlock C"})));
}

TEST_P(ImagesOfPictures, AreAlsoCopiedWhenTheMaskCannotBeApplied) {
    failingCall = "masked image";
    EXPECT_EQ(image(), maskedBy(blackAndWhite(), colors()));
    EXPECT_EQ(failingCall, "") << "was not called";
    EXPECT_EQ(std::count(log.begin(), log.end(), "copy C"), 1);
}

TEST_P(ImagesOfPictures, AreNullWhenAllWaysFail) {
    modes[handle(picture)] = Fails;
    copyMode = Fails;
    EXPECT_EQ(bridge::copyCGImage(handle(picture)), nullptr);
    EXPECT_EQ(log, expected(upToTheCopy({"new (5, 3, 32)", "make mask of C", "copy C", "fail C8"})));
}

TEST_P(ImagesOfPictures, AreNullWithoutAPictureForTheCopy) {
    modes[handle(picture)] = Fails;
    host.failService("newPicture");
    EXPECT_EQ(bridge::copyCGImage(handle(picture)), nullptr);
    EXPECT_EQ(log, expected(upToTheCopy({"new (5, 3, 32)"})));
}

TEST_P(ImagesOfPictures, AreNullWhenASideOfTheCopyCannotBeRead) {
    modes[handle(picture)] = Fails;
    for (int side : {0, 1}) {
        log.clear();
        host.failService("REALGetPropValueInt", side);
        EXPECT_EQ(bridge::copyCGImage(handle(picture)), nullptr) << side;
        EXPECT_EQ(log, expected(upToTheCopy({}))) << side;
    }
}

TEST_P(ImagesOfPictures, AreNullWhenASideOfTheCopyCannotBeReadWhateverTheHostWrote) {
    modes[handle(picture)] = Fails;
    replace(
        "REALGetPropValueInt", +[](REALobject, const char*, std::int32_t* out) {
            *out = 9;
            return false;
        });
    EXPECT_EQ(bridge::copyCGImage(handle(picture)), nullptr);
    EXPECT_EQ(log, expected(upToTheCopy({})));
}

TEST_P(ImagesOfPictures, AreNullWhenASideOfTheCopyIsBelow1) {
    modes[handle(picture)] = Fails;
    static std::map<std::string, std::int32_t> sides;
    replace(
        "REALGetPropValueInt", +[](REALobject, const char* name, std::int32_t* out) {
            *out = sides[name];
            return true;
        });
    for (auto [width, height] : {std::pair(0, 3), std::pair(5, 0), std::pair(-5, 3), std::pair(5, -3)}) {
        sides = {{"Width", width}, {"Height", height}};
        log.clear();
        EXPECT_EQ(bridge::copyCGImage(handle(picture)), nullptr) << width << " x " << height;
        EXPECT_EQ(log, expected(upToTheCopy({}))) << width << " x " << height;
    }
    sides = {{"Width", 1}, {"Height", 1}};
    EXPECT_EQ(width(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Hosts, ImagesOfPictures, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- drawing ----------------------------------------------------------------------------------------------

class Drawing : public Pictures, public testing::WithParamInterface<HostVersion> {
  protected:
    Drawing() : Pictures(GetParam().version) {}

    void SetUp() override {
        Pictures::SetUp();
        source = newPicture(kWidth, kHeight, colors());
        destination = newPicture(kWidth, kHeight, grays());
        name(source, "S");
        name(destination, "D");
    }
    void TearDown() override {
        source = destination = {};
        Pictures::TearDown();
    }

    void withoutDrawPicture() {
        replace(
            "REALLoadObjectMethod", +[](REALobject, const char*) -> void* { return nullptr; });
    }
    void draw(int w = kWidth, int h = kHeight, int sw = kWidth, int sh = kHeight) {
        GraphicsDrawPicture(handle(destination), handle(source), 0, 0, w, h, 0, 0, sw, sh);
    }
    bool asked(const char* service) const {
        std::vector<std::string> all = host.requestedServices();
        return std::find(all.begin(), all.end(), service) != all.end();
    }

    Value source, destination;
};

TEST_P(Drawing, GoesThroughTheHostsMethod) {
    draw();
    EXPECT_EQ(read(destination), colors());
    EXPECT_EQ(log, Log{});
    EXPECT_FALSE(asked("RuntimeGraphicsDrawPicture"));
}

TEST_P(Drawing, NamesTheMethodWithAllItsDefaultsAndDrawsFromBothOrigins) {
    static std::string declared;
    static std::array<std::int32_t, 8> passed;
    static REALpicture drawn;
    replace(
        "REALLoadObjectMethod", +[](REALobject, const char* declaration) {
            declared = declaration;
            using I = std::int32_t;
            return reinterpret_cast<void*>(
                +[](REALobject, REALpicture image, I x, I y, I w, I h, I sx, I sy, I sw, I sh) {
                    drawn = image;
                    passed = {x, y, w, h, sx, sy, sw, sh};
                });
        });
    GraphicsDrawPicture(handle(destination), handle(source), 1, 2, 30, 40, 3, 4, -10000, -10000);
    EXPECT_EQ(declared,
              "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
              "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)");
    EXPECT_EQ(drawn, handle(source));
    EXPECT_EQ(passed, (std::array<std::int32_t, 8>{0, 0, 30, 40, 0, 0, -10000, -10000}));
}

TEST_P(Drawing, ScalesThroughTheHostsMethod) {
    Value small = newPicture(1, 1, {{255, 10, 20, 30}});
    GraphicsDrawPicture(handle(destination), handle(small), 0, 0, kWidth, kHeight, 0, 0, -10000, -10000);
    EXPECT_EQ(read(destination), Pixels(kWidth * kHeight, Pixel{255, 10, 20, 30}));
}

TEST_P(Drawing, OfNothingDrawsNothing) {
    GraphicsDrawPicture(handle(destination), nullptr, 0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight);
    GraphicsDrawPicture(nullptr, handle(source), 0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight);
    EXPECT_EQ(read(destination), grays());
    EXPECT_EQ(log, Log{});
}

TEST_P(Drawing, OfNothingLooksForNoWayToDraw) {
    GraphicsDrawPicture(handle(destination), nullptr, 0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight);
    EXPECT_TRUE(asked("pluginPictureGraphicsGetter"));
    EXPECT_FALSE(asked("REALLoadObjectMethod"));
    EXPECT_FALSE(asked("RuntimeGraphicsDrawPicture"));
}

TEST_P(Drawing, WithoutTheMethodCopiesRows) {
    withoutDrawPicture();
    draw();
    EXPECT_EQ(read(destination), colors());
    EXPECT_EQ(log, (Log{"lock S10", "lock D10", "unlock D", "unlock S", "clear D"}));
    // Older hosts are asked for their drawing entry, to no effect.
    EXPECT_EQ(asked("RuntimeGraphicsDrawPicture"), host.version() < 2012.0);
}

TEST_P(Drawing, WithoutGraphicsCopiesRowsAndAsksForNothing) {
    host.failService("pluginPictureGraphicsGetter");
    draw();
    EXPECT_EQ(read(destination), colors());
    EXPECT_FALSE(asked("REALLoadObjectMethod"));
    EXPECT_FALSE(asked("RuntimeGraphicsDrawPicture"));
}

TEST_P(Drawing, CopiesNoRowsWhenTheSizeChanges) {
    withoutDrawPicture();
    draw(kWidth + 1, kHeight, kWidth, kHeight);
    draw(kWidth, kHeight, kWidth, kHeight - 1);
    draw(kWidth, kHeight, -10000, -10000);
    EXPECT_EQ(read(destination), grays());
    EXPECT_EQ(log, Log{});
    // The defaults are a size like any other.
    draw(-10000, -10000, -10000, -10000);
    EXPECT_EQ(read(destination), colors());
}

TEST_P(Drawing, CopiesRowsOnlyBetweenBuffersOfOneSize) {
    withoutDrawPicture();
    for (auto [width, height] : {std::pair(kWidth + 1, kHeight), std::pair(kWidth, kHeight + 1)}) {
        Value other = newPicture(width, height, grays(width * height));
        name(other, "O");
        log.clear();
        GraphicsDrawPicture(handle(other), handle(source), 0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight);
        EXPECT_EQ(read(other), grays(width * height));
        EXPECT_EQ(log, (Log{"lock S10", "lock O10", "unlock O", "unlock S", "clear O"}));
    }
}

TEST_P(Drawing, CopiesRowsWhateverKindTheHostSaysItDelivered) {
    withoutDrawPicture();
    modes = {{handle(source), OtherKind}, {handle(destination), OtherKind}};
    draw();
    EXPECT_EQ(read(destination), colors());
    modes.clear();
}

TEST_P(Drawing, CopiesRowsOnlyOfTheKnownFormat) {
    withoutDrawPicture();
    for (const Value& picture : {source, destination}) {
        for (Mode mode : {OtherFormat, NoRows, NoHeight}) {
            modes = {{handle(picture), mode}};
            log.clear();
            draw();
            EXPECT_EQ(read(destination), grays()) << mode;
            EXPECT_EQ(log, (Log{"lock S10", "lock D10", "unlock D", "unlock S", "clear D"}));
        }
    }
    modes.clear();
}

TEST_P(Drawing, CopiesNothingWhenTheSourceCannotBeLocked) {
    withoutDrawPicture();
    modes[handle(source)] = Fails;
    draw();
    EXPECT_EQ(read(destination), grays());
    EXPECT_EQ(log, expected({"fail S10"}));
}

TEST_P(Drawing, CopiesNothingWhenTheDestinationCannotBeLocked) {
    withoutDrawPicture();
    modes[handle(destination)] = Fails;
    draw();
    EXPECT_EQ(read(destination), grays());
    EXPECT_EQ(log, expected({"lock S10", "fail D10", "unlock S", "clear D"}));
}

INSTANTIATE_TEST_SUITE_P(Hosts, Drawing, testing::ValuesIn(kHostVersions),
                         [](const auto& info) { return info.param.name; });

// --- hosts without the services ---------------------------------------------------------------------------

class WithoutPictureServices : public Pictures {
  protected:
    WithoutPictureServices()
        : Pictures(2014.01, {"REALCopyPictureCGImage", "newPicture", "pluginPictureGraphicsGetter"}) {}
};

TEST_F(WithoutPictureServices, ThereAreNoImagesAndNothingIsDrawn) {
    Value source = newPicture(kWidth, kHeight, colors()), destination = newPicture(kWidth, kHeight, grays());
    withhold("REALLockPictureDescription");
    for (int minor : {6, 7}) {
        onSystem(minor);
        EXPECT_EQ(CreateCGImageInternal(handle(source), handle(destination)), nullptr);
    }
    GraphicsDrawPicture(handle(destination), handle(source), 0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight);
    EXPECT_EQ(read(destination), grays());
    EXPECT_EQ(log, Log{});
}

// --- the framework ----------------------------------------------------------------------------------------

class Framework : public Pictures {
  protected:
    static std::map<std::string, int> leftByLoading(CFIndex expectedReferences) {
        return objectsLeftBy([=] {
            CFBundleRef bundle = LoadFrameworkBundle();
            EXPECT_EQ(bundle ? CFGetRetainCount(bundle) : 0, expectedReferences);
            if (bundle) CFRelease(bundle);
        });
    }
};

TEST_F(Framework, IsLoadedFromTheSystemsFolder) {
    Owned<CFBundleRef> bundle(LoadFrameworkBundle());
    ASSERT_TRUE(bundle);
    EXPECT_NE(CFBundleGetFunctionPointerForName(bundle.get(), CFSTR("GetGWorldPixMap")), nullptr);
    EXPECT_EQ(bundleParts,
              (Log{"folder (-32767, 1718772077, 1)", "ApplicationServices.framework"})); // 'fram'
}

TEST_F(Framework, IsTheCallersAndNothingElseIsLeft) {
    EXPECT_EQ(leftByLoading(1), (std::map<std::string, int>{}));
}

TEST_F(Framework, IsNullWhenAStepFailsAndNothingIsLeft) {
    for (const char* call : {"folder", "URL of reference", "URL", "bundle", "executable"}) {
        auto left = objectsLeftBy([&] {
            failingCall = call;
            EXPECT_EQ(LoadFrameworkBundle(), nullptr) << call;
            EXPECT_EQ(failingCall, "") << call << " was not called";
        });
        EXPECT_EQ(left, (std::map<std::string, int>{})) << call;
    }
}

} // namespace
