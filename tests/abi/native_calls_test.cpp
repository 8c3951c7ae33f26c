// The options, rectangles and lengths that the plugin passes on to Core Image.
#include "native_calls.h"
#include "plugin_test.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <utility>

namespace {

using studio::Value;
using testing::Contains;
using testing::ElementsAre;

class NativeCalls : public PluginTest {
  protected:
    explicit NativeCalls(studio::HostOptions options = {}) : PluginTest(std::move(options)) {
        watchNativeCalls();
        nativeCalls.clear();
    }

    Value rect(double x, double y, double width, double height) {
        return host.create("CGRectKaz", {x, y, width, height});
    }
    // The messages that make it are not noted.
    Value image(const Value& extent) {
        std::vector<std::string> before = calls();
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.0, 0.0})});
        Value result = host.call(endless, "imageByCroppingToRect", {extent});
        nativeCalls = before;
        return result;
    }
    Value space() { return host.shared("CGColorSpaceKaz", "SRGB"); }
    Value canvas() { return host.create("CGContextKaz", {8, 8}); }
    Value cgImage() { return host.call(canvas(), "CreateImage"); }
    static Value nil() { return {}; }

    // The calls that were noted; stops noting.
    static std::vector<std::string> calls() { return std::exchange(nativeCalls, {}); }
    // Calls that make URLs are left out: the platform uses the same messages.
    static std::vector<std::string> imageCalls() {
        std::vector<std::string> sent = calls();
        std::erase_if(sent, [](const std::string& call) { return call.starts_with("fileURLWithPath:"); });
        return sent;
    }
};

// --- images -----------------------------------------------------------------------------------------------

TEST_F(NativeCalls, EveryMakerSendsItsOwnMessage) {
    Value file = host.function("GetFolderItem", {"no-such-file.png"});
    Value data = host.memoryBlock("none");
    struct Maker {
        std::function<void()> make;
        const char* message;
    };
    auto constructor = [&](const char* declaration, std::vector<Value> arguments) {
        return [this, declaration, arguments] {
            host.call(host.instantiate("CIImageKaz"), declaration, arguments);
        };
    };
    auto shared = [&](const char* declaration, std::vector<Value> arguments) {
        return [this, declaration, arguments] { host.shared("CIImageKaz", declaration, arguments); };
    };
    auto function = [&](const char* declaration, std::vector<Value> arguments) {
        return [this, declaration, arguments] { host.function(declaration, arguments); };
    };
    const char* url = "file:///no/such/file.png";
    Value color = host.function("NewCIColorKaz", {1.0, 0.0, 0.0});
    std::vector<Maker> makers = {
        {constructor("Constructor(cgimage as CGImageKaz)", {cgImage()}), "initWithCGImage:"},
        {constructor("Constructor(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz)",
                     {cgImage(), space()}),
         "initWithCGImage:options: {color_space}"},
        {constructor("Constructor(file as FolderItem)", {file}), "initWithContentsOfURL:"},
        {constructor("Constructor(file as FolderItem, cgcolorspace as CGColorSpaceKaz)", {file, space()}),
         "initWithContentsOfURL:options: {color_space}"},
        {constructor("Constructor(file as FolderItem, cgcolorspace as CGColorSpaceKaz)", {file, nil()}),
         "initWithContentsOfURL:options: {}"},
        {constructor("Constructor(data as memoryblock)", {data}), "initWithData:"},
        {constructor("Constructor(data as memoryblock, cgcolorspace as CGColorSpaceKaz)", {data, space()}),
         "initWithData:options: {color_space}"},
        {constructor("Constructor(data as memoryblock, cgcolorspace as CGColorSpaceKaz)", {data, nil()}),
         "initWithData:options: {}"},
        {shared("emptyImage as CIImageKaz", {}), "emptyImage"},
        {shared("imageWithColor(color as CIColorKaz) as CIImageKaz", {color}), "imageWithColor:"},
        {shared("imageWithPicture(Pic as Picture) as CIImageKaz", {host.create("Picture", {4, 4, 32})}),
         "imageWithCGImage:"},
        {shared("imageWithCGImage(CGImage as CGImageKaz) as CIImageKaz", {cgImage()}), "imageWithCGImage:"},
        {shared("imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {cgImage(), space()}),
         "imageWithCGImage:options: {color_space}"},
        {shared("imageWithContentsOfURL(URL as String) as CIImageKaz", {url}), "imageWithContentsOfURL:"},
        {shared("imageWithContentsOfURL(URL as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {url, space()}),
         "imageWithContentsOfURL:options: {color_space}"},
        {shared("imageWithData(data as memoryblock) as CIImageKaz", {data}), "imageWithData:"},
        {shared("imageWithDataMT(data as memoryblock) as CIImageKaz", {data}), "imageWithData:"},
        {shared("imageWithContentsOfFile(file as folderitem) as CIImageKaz", {file}),
         "imageWithContentsOfURL:"},
        {shared("imageWithContentsOfFile(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {file, space()}),
         "imageWithContentsOfURL:options: {color_space}"},
        {shared("imageWithContentsOfFile(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {file, nil()}),
         "imageWithContentsOfURL:options: {}"},
        {shared("imageWithContentsOfFileMT(file as folderitem) as CIImageKaz", {file}),
         "imageWithContentsOfURL:"},
        {shared("imageWithContentsOfFileMT(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {file, nil()}),
         "imageWithContentsOfURL:options: {}"},
        {function("NewCIImagewithCGImageKaz(cgimage as CGImageKaz) as CIImageKaz", {cgImage()}),
         "imageWithCGImage:"},
        {function(
             "NewCIImagewithCGImageKaz(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
             {cgImage(), nil()}),
         "imageWithCGImage:options: {}"},
        {function("NewCIImagewithURLKaz(url as String) as CIImageKaz", {url}), "imageWithContentsOfURL:"},
        {function("NewCIImagewithURLKaz(url as String, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
                  {url, nil()}),
         "imageWithContentsOfURL:options: {}"},
        {function("NewCIImagewithDataKaz(Data as Memoryblock) as CIImageKaz", {data}), "imageWithData:"},
        {function("NewCIImagewithDataKaz(Data as Memoryblock, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
                  {data, space()}),
         "imageWithData:options: {color_space}"},
        {function("NewCIImagewithFileKaz(file as folderitem) as CIImageKaz", {file}),
         "imageWithContentsOfURL:"},
        {function("NewCIImagewithFileKaz(file as folderitem, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
                  {file, space()}),
         "imageWithContentsOfURL:options: {color_space}"},
    };
    int index = 0;
    for (const Maker& maker : makers) {
        calls();
        maker.make();
        EXPECT_THAT(imageCalls(), ElementsAre(maker.message)) << index;
        ++index;
    }
    makers.clear();
    file = data = color = {};
    expectClean();
}

TEST_F(NativeCalls, APathIsAFilesAndNoFolders) {
    host.shared("CIImageKaz", "imageWithContentsOfPath", {"/", space()});
    EXPECT_THAT(calls(), ElementsAre("fileURLWithPath:isDirectory: file",
                                     "imageWithContentsOfURL:options: {color_space}"));
    host.shared("CIImageKaz", "imageWithContentsOfPath", {"/no/such/file.png", nil()});
    EXPECT_THAT(calls(), Contains("imageWithContentsOfURL:options: {}"));
    expectClean();
}

TEST_F(NativeCalls, ANilColorSpaceStillPassesOptionsThatAreEmpty) {
    host.shared("CIImageKaz",
                "imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {cgImage(), nil()});
    EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:options: {}"));
    // One without a space of its own counts as none.
    host.shared("CIImageKaz",
                "imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {cgImage(), host.instantiate("CGColorSpaceKaz")});
    EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:options: {}"));
    expectClean();
}

TEST_F(NativeCalls, ALengthBeyondTheBlockIsPassedUnchecked) {
    Value block = host.memoryBlock(std::string(32, 'x'));
    host.function("NewCIImagewithBitmapMemoryKaz", {block, 4000, 16, 4, 2, 23, space()});
    EXPECT_THAT(calls(),
                ElementsAre("imageWithBitmapData:bytesPerRow:size:format:colorSpace: 4000 16 4x2 23 space"));
    host.create("CIImageKaz", {block, 5000, 16, 4, 2, 99, nil()});
    EXPECT_THAT(calls(),
                ElementsAre("initWithBitmapData:bytesPerRow:size:format:colorSpace: 5000 16 4x2 99 null"));
    block = {};
    expectClean();
}

TEST_F(NativeCalls, MemoryIsNotCopiedAndDataIs) {
    Value block = host.memoryBlock(std::string(32, 'x'));
    auto address = reinterpret_cast<host::service::memoryBlockGetPtr>(host.resolver()("memoryBlockGetPtr"));
    const void* own = address(reinterpret_cast<REALmemoryBlock>(block.object()));
    host.function("NewCIImagewithBitmapMemoryKaz", {block, 32, 16, 4, 2, 23, nil()});
    EXPECT_EQ(lastBitmapBytes, own);
    host.create("CIImageKaz", {block, 32, 16, 4, 2, 23, nil()});
    EXPECT_EQ(lastBitmapBytes, own);
    host.function("NewCIImagewithBitmapDataKaz", {block, 16, 4, 2, 23, nil()});
    EXPECT_NE(lastBitmapBytes, own);
    host.create("CIImageKaz", {block, 16, 4, 2, 23, nil()});
    EXPECT_NE(lastBitmapBytes, own);
    EXPECT_THAT(calls(),
                Contains("imageWithBitmapData:bytesPerRow:size:format:colorSpace: 32 16 4x2 23 null"));
    block = {};
    expectClean();
}

TEST_F(NativeCalls, AnImageFileInMemoryIsCopiedByEveryLoader) {
    Value block = host.memoryBlock("no image");
    auto address = reinterpret_cast<host::service::memoryBlockGetPtr>(host.resolver()("memoryBlockGetPtr"));
    const void* own = address(reinterpret_cast<REALmemoryBlock>(block.object()));
    const std::function<void()> loaders[] = {
        [&] { host.create("CIImageKaz", {block}); },
        [&] {
            host.create("CIImageKaz", {block, space()});
        },
        [&] { host.shared("CIImageKaz", "imageWithData", {block}); },
        [&] { host.shared("CIImageKaz", "imageWithDataMT", {block}); },
        [&] { host.function("NewCIImagewithDataKaz", {block}); },
        [&] {
            host.function("NewCIImagewithDataKaz", {block, space()});
        },
    };
    for (const auto& load : loaders) {
        lastDataBytes = nullptr;
        load();
        EXPECT_NE(lastDataBytes, nullptr);
        EXPECT_NE(lastDataBytes, own);
    }
    block = {};
    expectClean();
}

TEST_F(NativeCalls, ABitmapsSizeIsInSinglePrecision) {
    host.function("NewCIImagewithBitmapDataKaz", {host.memoryBlock("x"), 16, 16777217, 16777219, 23, nil()});
    EXPECT_THAT(
        calls(),
        ElementsAre(
            "imageWithBitmapData:bytesPerRow:size:format:colorSpace: 1 16 16777216x16777220 23 null"));
    expectClean();
}

TEST_F(NativeCalls, APictureIsDrawnInTheDevicesSpaceAndTheCachesAreGivenBack) {
    host.call(image(rect(1, 2, 8, 4)), "RenderPicture", {0, 9});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: {output_color_space}",
                                     "drawImage:inRect:fromRect: [0 0 8 9] [1 2 8 4]", "clearCaches",
                                     "reclaimResources"));
    host.call(image(rect(1, 2, 8, 4)), "RenderPicture", {0, 0, true});
    EXPECT_THAT(calls(), Contains("contextWithCGContext:options: {output_color_space software_renderer=1}"));
    expectClean();
}

TEST_F(NativeCalls, AnNSImageIsDrawnAtTheOrigin) {
    host.call(image(rect(1, 2, 8, 4)), "RenderNSImage");
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: nil",
                                     "drawImage:atPoint:fromRect: 0,0 [1 2 8 4]"));
    host.call(image(rect(1, 2, 8, 4)), "RenderNSImage", {true});
    EXPECT_THAT(calls(), Contains("contextWithCGContext:options: {software_renderer=1}"));
    expectClean();
}

TEST_F(NativeCalls, CreateCGImageKeepsTheOriginAndReplacesEachSize) {
    Value it = image(rect(1, 2, 8, 4));
    host.call(it, "CreateCGImage", {});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect: [0 0 8 4]"));
    host.call(it, "CreateCGImage", {rect(10, 10, 0, 0)});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect: [10 10 8 4]"));
    host.call(it, "CreateCGImage", {rect(10, 10, 0.5, 3), space()});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect:format:colorSpace: [10 10 8 3] 23 space"));
    host.call(it, "CreateCGImage", {rect(10, 10, 3, 0.5), nil()});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect:format:colorSpace: [10 10 3 4] 23 null"));
    it = {};
    expectClean();
}

TEST_F(NativeCalls, AnNSImageOfARepresentationIsRenderedWhenItIsDrawn) {
    Value shown = host.call(image(rect(1, 2, 8, 4)), "AsNSImageKaz");
    EXPECT_THAT(calls(), ElementsAre());
    EXPECT_FALSE(host.call(shown, "CopyPicture").isNil());
    EXPECT_THAT(calls(), testing::Not(ElementsAre()));
    shown = {};
    expectClean();
}

TEST_F(NativeCalls, WithoutAPortOrAContextThereIsNoNSImage) {
    Value it = image(rect(1, 2, 8, 4));
    answerContextsWith(0);
    EXPECT_TRUE(host.call(it, "RenderNSImage").isNil());
    EXPECT_THAT(calls(), ElementsAre());
    answerGraphicsPortsWithNull();
    EXPECT_TRUE(host.call(it, "RenderNSImage").isNil());
    it = {};
    expectClean();
}

TEST_F(NativeCalls, WithoutAContextThereIsNoPicture) {
    Value it = image(rect(1, 2, 8, 4));
    answerContextsWith(0);
    EXPECT_TRUE(host.call(it, "RenderPicture").isNil());
    EXPECT_EQ(host.report().alive("Picture"), 0);
    it = {};
    expectClean();
}

TEST_F(NativeCalls, AnNSImageLosesTheFocusWhenDrawingRaises) {
    Value it = image(rect(1, 2, 8, 4));
    raiseWhenDrawing("cannot draw");
    testing::internal::CaptureStderr();
    EXPECT_THAT(raisedBy([&] { host.call(it, "RenderNSImage"); }), testing::HasSubstr("cannot draw"));
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(somethingHasTheFocus());
    it = {};
    expectClean();
}

TEST_F(NativeCalls, AnImageOfNoCGImageIsAskedForAllTheSame) {
    for (Value none : {Value(), host.instantiate("CGImageKaz")}) {
        calls();
        EXPECT_TRUE(host.shared("CIImageKaz", "imageWithCGImage(CGImage as CGImageKaz) as CIImageKaz", {none})
                        .isNil());
        EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:"));
        EXPECT_TRUE(
            host.function("NewCIImagewithCGImageKaz(cgimage as CGImageKaz) as CIImageKaz", {none}).isNil());
        EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:"));
    }
    expectClean();
}

TEST_F(NativeCalls, NoArrayOfAdjustmentsComesWhenCocoaRaises) {
    Value it = image(rect(1, 2, 8, 4));
    raiseWhenAdjusting("cannot adjust");
    // Called as the host calls them: an exception hides the result from a program.
    testing::internal::CaptureStderr();
    for (const auto& method : host.findClass("CIImageKaz")->methods) {
        if (!method->signature.name.starts_with("autoAdjustmentFilters")) continue;
        using Adjust = REALarray (*)(REALobject, REALobject options);
        EXPECT_EQ(reinterpret_cast<Adjust>(method->function)(it.object(), nullptr), nullptr)
            << method->declaration;
        EXPECT_EQ(host.takePendingException().className(), "RuntimeException");
    }
    testing::internal::GetCapturedStderr();
    it = {};
    expectClean();
}

TEST_F(NativeCalls, ADefinitionIsAnObjectOfItsOwnThoughItsShapeHasAWrapper) {
    Value it = image(rect(1, 2, 8, 4));
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    answerDefinitionsWith(host.get(shape, "Handle").integer());
    Value first = host.call(it, "Definition");
    EXPECT_EQ(host.get(first, "Handle").integer(), host.get(shape, "Handle").integer());
    EXPECT_NE(first.object(), shape.object());
    EXPECT_NE(host.call(it, "Definition").object(), first.object());
    it = shape = first = {};
    expectClean();
}

// --- contexts ---------------------------------------------------------------------------------------------

TEST_F(NativeCalls, AContextWithoutColorSpacesHasOneOption) {
    host.create("CIContextKaz", {canvas(), nil(), nil(), false});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: {software_renderer=0}"));
    host.function("NewCIContextKaz", {canvas(), nil(), nil(), true});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: {software_renderer=1}"));
    expectClean();
}

TEST_F(NativeCalls, AContextsColorSpaces) {
    host.create("CIContextKaz", {canvas(), space(), nil(), false});
    EXPECT_THAT(calls(),
                ElementsAre("contextWithCGContext:options: {output_color_space software_renderer=0}"));
    host.create("CIContextKaz", {canvas(), nil(), space(), false});
    EXPECT_THAT(calls(),
                ElementsAre("contextWithCGContext:options: {software_renderer=0 working_color_space}"));
    host.function("NewCIContextKaz", {canvas(), space(), space(), false});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: "
                                     "{output_color_space software_renderer=0 working_color_space}"));
    expectClean();
}

TEST_F(NativeCalls, EachColorSpaceOfAContextIsItsOwn) {
    Value output = space(), working = host.shared("CGColorSpaceKaz", "GenericRGBLinear");
    auto native = [&](const Value& wrapper) {
        return reinterpret_cast<const void*>(
            static_cast<std::intptr_t>(host.get(wrapper, "Handle").integer()));
    };
    host.create("CIContextKaz", {canvas(), output, working, true});
    EXPECT_EQ(lastOptions["output_color_space"], native(output));
    EXPECT_EQ(lastOptions["working_color_space"], native(working));
    host.function("NewCIContextKaz", {canvas(), output, working, true});
    EXPECT_EQ(lastOptions["output_color_space"], native(output));
    EXPECT_EQ(lastOptions["working_color_space"], native(working));
    host.function("NewCIImagewithDataKaz", {host.memoryBlock("none"), working});
    EXPECT_EQ(lastOptions["color_space"], native(working));
}

TEST_F(NativeCalls, AnImagesURLIsWhole) {
    Value subject = image(rect(0, 0, 4, 4));
    answerURLsWithABase();
    EXPECT_EQ(host.call(subject, "url").text(), "http://localhost/folder/name.png");
}

// --- what is left -----------------------------------------------------------------------------------------

TEST_F(NativeCalls, NoCallLeavesACocoaObject) {
    const char* photos = std::getenv("KAZ_PHOTOS");
    Value file = host.function("GetFolderItem", {std::string(photos ? photos : ".") + "/chelsea.png"});
    Value missing = host.function("GetFolderItem", {"no-such-file.png"});
    Value data = host.memoryBlock("no image"), picture = image(rect(0, 0, 4, 4));
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    Value vector = host.function("NewCIVectorWithXYKaz", {1.0, 2.0});
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CIGaussianBlur"});
    const std::pair<const char*, std::function<void()>> calls[] = {
        {"URL", [&] { host.shared("CIImageKaz", "imageWithContentsOfURL", {"file:///no/such.png"}); }},
        {"URL, space",
         [&] {
             host.function("NewCIImagewithURLKaz", {"file:///no/such.png", space()});
         }},
        {"path",
         [&] {
             host.shared("CIImageKaz", "imageWithContentsOfPath", {"/no/such.png", space()});
         }},
        {"file", [&] { host.shared("CIImageKaz", "imageWithContentsOfFile", {missing}); }},
        {"file on a worker", [&] { host.shared("CIImageKaz", "imageWithContentsOfFileMT", {missing}); }},
        {"file and space on a worker",
         [&] {
             host.shared("CIImageKaz", "imageWithContentsOfFileMT", {missing, space()});
         }},
        {"image on a worker", [&] { host.shared("CIImageKaz", "imageWithContentsOfFileMT", {file}); }},
        {"data", [&] { host.shared("CIImageKaz", "imageWithData", {data}); }},
        {"data on a worker", [&] { host.shared("CIImageKaz", "imageWithDataMT", {data}); }},
        {"constructor of data", [&] { host.create("CIImageKaz", {data}); }},
        {"copy of a colour", [&] { host.call(color, "copy"); }},
        {"copy of a vector", [&] { host.call(vector, "copy"); }},
        {"vector of text", [&] { host.create("CIVectorKaz", {"[1 2 3]"}); }},
        {"colour of text", [&] { host.function("NewCIColorWithStringKaz", {"1 0 0 1"}); }},
        {"colour of numbers",
         [&] {
             host.create("CIColorKaz", {1.0, 0.0, 0.0, 0.5});
         }},
        {"description", [&] { host.get(color, "description"); }},
        {"sampler with options",
         [&] {
             host.function("NewCISamplerKaz",
                           {picture, host.create("NSAffineTransformKaz"), "clamp", "linear"});
         }},
        {"sampler", [&] { host.create("CISamplerKaz", {picture}); }},
        {"shape", [&] { host.create("CIFilterShapeKaz", {rect(0, 0, 4, 4)}); }},
        {"definition", [&] { host.call(picture, "Definition"); }},
        {"NSImage", [&] { host.call(picture, "AsNSImageKaz"); }},
        {"drawn NSImage", [&] { host.call(picture, "RenderNSImage", {true}); }},
        {"picture", [&] { host.call(picture, "RenderPicture"); }},
        {"context",
         [&] {
             host.create("CIContextKaz", {canvas(), space(), space(), true});
         }},
        {"text value", [&] { host.assign(filter, "ValueAsString", {"inputRadius"}, "3"); }},
        {"data value", [&] { host.assign(filter, "ValueAsData", {"inputRadius"}, data); }},
        {"number value", [&] { host.assign(filter, "ValueAsNumber", {"inputRadius"}, 0.1); }},
        {"attribute", [&] { host.call(filter, "AttributesItem", {0}); }},
        {"attributes", [&] { host.call(filter, "attributesDictionary"); }},
        {"names",
         [&] {
             host.shared("CIFilterKaz", "FilterNamesInCategories",
                         {host.array("String", {"CICategoryBlur"})});
         }},
        {"filter", [&] { host.shared("CIFilterKaz", "FilterWithName", {"CISepiaTone"}); }},
    };
    for (const auto& [name, call] : calls) EXPECT_THAT(cocoaObjectsLeftBy(call), testing::IsEmpty()) << name;
    nativeCalls.clear();
}

TEST_F(NativeCalls, AContextWithoutOptionsPassesNil) {
    host.create("CIContextKaz", {canvas()});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: nil"));
    host.function("NewCIContextKaz", {canvas()});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: nil"));
    expectClean();
}

TEST_F(NativeCalls, ANilContextIsNotStoredAndNoError) {
    Value bitmap = canvas(), picture = host.create("Picture", {8, 8, 32});
    answerContextsWith(0);
    std::vector<std::vector<Value>> constructors = {{bitmap}, {bitmap, nil(), nil(), true}, {picture}};
    for (const std::vector<Value>& arguments : constructors) {
        Value context;
        EXPECT_EQ(raisedBy([&] { context = host.create("CIContextKaz", arguments); }), "(none)");
        for (int word = 0; word < 4; ++word) EXPECT_EQ(context.word(word), 0u) << word;
    }
    EXPECT_TRUE(host.function("NewCIContextKaz", {bitmap}).isNil());
    EXPECT_TRUE(host.function("NewCIContextKaz", {bitmap, nil(), nil(), false}).isNil());
    constructors.clear();
    bitmap = picture = {};
    studio::Report report = host.report();
    EXPECT_TRUE(report.sound()) << report.text();
}

TEST_F(NativeCalls, AContextThatHasAWrapperComesBackAsThatWrapper) {
    Value bitmap = canvas();
    Value contexts[] = {host.create("CIContextKaz", {bitmap}),
                        host.create("CIContextKaz", {bitmap, nil(), nil(), true}),
                        host.create("CIContextKaz", {host.create("Picture", {8, 8, 32})}),
                        host.function("NewCIContextKaz", {bitmap})};
    for (const Value& context : contexts) {
        answerContextsWith(host.get(context, "Handle").integer());
        EXPECT_EQ(host.function("NewCIContextKaz", {bitmap}).object(), context.object());
        EXPECT_EQ(host.function("NewCIContextKaz", {bitmap, nil(), nil(), false}).object(), context.object());
    }
    for (Value& context : contexts) context = {};
    bitmap = {};
    studio::Report report = host.report();
    EXPECT_TRUE(report.sound()) << report.text();
}

TEST_F(NativeCalls, DrawingReplacesTheWholeSourceOrNothing) {
    Value context = host.create("CIContextKaz", {canvas()});
    Value it = image(rect(1, 2, 8, 4));
    calls();
    host.call(context, "DrawImage", {it});
    EXPECT_THAT(calls(), ElementsAre("drawImage:inRect:fromRect: [1 2 8 4] [1 2 8 4]"));
    host.call(context, "DrawImageRect", {it, rect(5, 6, 7, 8)});
    EXPECT_THAT(calls(), ElementsAre("drawImage:inRect:fromRect: [5 6 7 8] [1 2 8 4]"));
    host.call(context, "DrawImageRect", {it, rect(5, 6, 7, 8), rect(9, 9, 0.5, 10)});
    EXPECT_THAT(calls(), ElementsAre("drawImage:inRect:fromRect: [5 6 7 8] [9 9 0.5 10]"));
    host.call(context, "DrawImageRect", {it, rect(5, 6, 7, 8), rect(9, 9, 10, 0.5)});
    EXPECT_THAT(calls(), ElementsAre("drawImage:inRect:fromRect: [5 6 7 8] [9 9 10 0.5]"));
    host.call(context, "DrawImageRect", {it, rect(5, 6, 7, 8), rect(9, 9, 0.5, 0.5)});
    EXPECT_THAT(calls(), ElementsAre("drawImage:inRect:fromRect: [5 6 7 8] [1 2 8 4]"));
    host.call(context, "DrawImagePoint", {it, host.create("CGPointKaz", {3.0, 4.0})});
    EXPECT_THAT(calls(), Contains("drawImage:atPoint:fromRect: 3,4 [1 2 8 4]"));
    host.call(context, "DrawImagePoint", {it, host.create("CGPointKaz", {3.0, 4.0}), rect(9, 9, 0.5, 10)});
    EXPECT_THAT(calls(), Contains("drawImage:atPoint:fromRect: 3,4 [9 9 0.5 10]"));
    context = it = {};
    expectClean();
}

TEST_F(NativeCalls, AContextsCGImageNeverTakesItsOriginFromTheExtent) {
    Value context = host.create("CIContextKaz", {canvas()});
    Value it = image(rect(1, 2, 8, 4));
    calls();
    host.call(context, "CreateCGImage", {it});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect: [0 0 8 4]"));
    host.call(context, "CreateCGImage", {it, rect(5, 6, 0.5, 10)});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect: [5 6 8 10]"));
    host.call(context, "CreateCGImage", {it, rect(5, 6, 0.5, 10), space()});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect:format:colorSpace: [5 6 8 10] 23 space"));
    host.call(context, "CreateCGImage", {it, rect(5, 6, 10, 0.5), nil()});
    EXPECT_THAT(calls(), Contains("createCGImage:fromRect:format:colorSpace: [5 6 10 4] 23 null"));
    context = it = {};
    expectClean();
}

TEST_F(NativeCalls, CachesAndResourcesAreTheContexts) {
    Value context = host.create("CIContextKaz", {canvas()});
    calls();
    host.call(context, "ClearCaches");
    EXPECT_THAT(calls(), ElementsAre("clearCaches"));
    host.call(context, "ReclaimResources");
    EXPECT_THAT(calls(), ElementsAre("reclaimResources"));
    context = {};
    expectClean();
}

// --- shapes -----------------------------------------------------------------------------------------------

TEST_F(NativeCalls, ANilTransformIsTheIdentity) {
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    host.call(shape, "TransformBy", {nil(), false});
    EXPECT_THAT(calls(), ElementsAre("transformBy:interior: 1 0 0 1 0 0 exterior"));
    host.call(shape, "TransformBy", {nil(), true});
    EXPECT_THAT(calls(), ElementsAre("transformBy:interior: 1 0 0 1 0 0 interior"));
    shape = {};
    expectClean();
}

TEST_F(NativeCalls, ATransformIsReadAsSixDoubles) {
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    Value transform = host.instantiate("NSAffineTransformKaz");
    const double fields[] = {2, 0.5, 0.25, 3, 10, 20};
    std::memcpy(transform.data(), fields, sizeof fields);
    host.call(shape, "TransformBy", {transform, true});
    EXPECT_THAT(calls(), ElementsAre("transformBy:interior: 2 0.5 0.25 3 10 20 interior"));
    std::memset(transform.data(), 0, sizeof fields); // what it holds is no native object
    shape = transform = {};
    expectClean();
}

TEST_F(NativeCalls, ATransformIsNarrowedToSinglePrecision) {
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    Value transform = host.instantiate("NSAffineTransformKaz");
    const double fields[] = {1.0 / 3, 0, 0, 1, 16777217, 0};
    std::memcpy(transform.data(), fields, sizeof fields);
    host.call(shape, "TransformBy", {transform, false});
    EXPECT_THAT(calls(), ElementsAre("transformBy:interior: 0.333333343 0 0 1 16777216 0 exterior"));
    std::memset(transform.data(), 0, sizeof fields);
    shape = transform = {};
    expectClean();
}

TEST_F(NativeCalls, AnExceptionOfAShapeReachesTheHostAndTheResultIsNil) {
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    raiseWhenInsetting("cannot inset");
    testing::internal::CaptureStderr();
    EXPECT_THAT(raisedBy([&] { host.call(shape, "InsetByX", {1, 1}); }), testing::HasSubstr("cannot inset"));
    testing::internal::GetCapturedStderr();
    shape = {};
    expectClean();
}

TEST_F(NativeCalls, AResultThatHasAWrapperComesBackAsThatWrapper) {
    answerUnionsWithTheOther();
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    Value other = host.create("CIFilterShapeKaz", {rect(5, 6, 7, 8)});
    EXPECT_EQ(host.call(shape, "UnionWith", {other}).object(), other.object());
    shape = other = {};
    expectClean();
}

// --- pictures of every host -------------------------------------------------------------------------------

class PicturesOfHosts : public NativeCalls, public testing::WithParamInterface<double> {
  protected:
    PicturesOfHosts() : NativeCalls({.version = GetParam()}) {}
};

TEST_P(PicturesOfHosts, AreDrawnByTheSameMessages) {
    EXPECT_FALSE(host.call(image(rect(1, 2, 8, 4)), "RenderPicture", {5, 6, true}).isNil());
    EXPECT_THAT(imageCalls(),
                ElementsAre("contextWithCGContext:options: {output_color_space software_renderer=1}",
                            "drawImage:inRect:fromRect: [0 0 5 6] [1 2 8 4]", "clearCaches",
                            "reclaimResources"));
    expectClean();
}

TEST_P(PicturesOfHosts, AreGivenBackWhenDrawingRaises) {
    Value it = image(rect(1, 2, 8, 4));
    raiseWhenDrawing("cannot draw");
    testing::internal::CaptureStderr();
    EXPECT_THAT(raisedBy([&] { host.call(it, "RenderPicture"); }), testing::HasSubstr("cannot draw"));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(host.report().alive("Picture"), 0);
    it = {};
    expectClean(); // no description is left locked
}

// QuickDraw worlds and bitmap contexts.
INSTANTIATE_TEST_SUITE_P(Hosts, PicturesOfHosts, testing::Values(2009.05, 2011.0, 2014.01));

} // namespace
