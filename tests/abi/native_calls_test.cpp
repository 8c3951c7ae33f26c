// What reaches Core Image: options, rectangles and lengths as the plugin passes them on.
#include "native_calls.h"
#include "plugin_test.h"

#include <cstring>
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
    Value image(const Value& extent) {
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.0, 0.0})});
        return host.call(endless, "imageByCroppingToRect", {extent});
    }
    Value space() { return host.shared("CGColorSpaceKaz", "SRGB"); }
    Value canvas() { return host.create("CGContextKaz", {8, 8}); }
    Value cgImage() { return host.call(canvas(), "CreateImage"); }
    static Value nil() { return {}; }

    // The calls that were noted, and none from here on.
    static std::vector<std::string> calls() { return std::exchange(nativeCalls, {}); }
};

// --- images
// -------------------------------------------------------------------------------------------------

TEST_F(NativeCalls, ANilColorSpaceStillPassesOptionsThatAreEmpty) {
    host.shared("CIImageKaz",
                "imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {cgImage(), nil()});
    EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:options: {}"));
    host.shared("CIImageKaz",
                "imageWithContentsOfURL(URL as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {"file:///no/such/file.png", nil()});
    EXPECT_THAT(calls(), ElementsAre("imageWithContentsOfURL:options: {}"));
    host.shared("CIImageKaz", "imageWithContentsOfPath", {"/no/such/file.png", nil()});
    EXPECT_THAT(calls(), ElementsAre("imageWithContentsOfURL:options: {}"));
    host.function("NewCIImagewithDataKaz(Data as Memoryblock, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
                  {host.memoryBlock("none"), nil()});
    EXPECT_THAT(calls(), ElementsAre("imageWithData:options: {}"));
    expectClean();
}

TEST_F(NativeCalls, AColorSpaceGoesWithTheOptions) {
    host.shared("CIImageKaz",
                "imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
                {cgImage(), space()});
    EXPECT_THAT(calls(), ElementsAre("imageWithCGImage:options: {color_space}"));
    // One without a space of its own counts as none.
    host.shared("CIImageKaz", "imageWithContentsOfPath",
                {"/no/such/file.png", host.instantiate("CGColorSpaceKaz")});
    EXPECT_THAT(calls(), ElementsAre("imageWithContentsOfURL:options: {}"));
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
    host.function("NewCIImagewithBitmapMemoryKaz", {block, 32, 16, 4, 2, 23, nil()});
    const void* own = lastBitmapBytes;
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
    EXPECT_THAT(calls(),
                ElementsAre("contextWithCGContext:options: nil", "drawImage:atPoint:fromRect: 0,0 [1 2 8 4]",
                            "drawImage:inRect:fromRect: [0 0 8 4] [1 2 8 4]"));
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

// --- contexts
// -----------------------------------------------------------------------------------------------

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

TEST_F(NativeCalls, AContextWithoutOptionsPassesNil) {
    host.create("CIContextKaz", {canvas()});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: nil"));
    host.function("NewCIContextKaz", {canvas()});
    EXPECT_THAT(calls(), ElementsAre("contextWithCGContext:options: nil"));
    expectClean();
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

// --- shapes
// -------------------------------------------------------------------------------------------------

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

TEST_F(NativeCalls, AResultThatHasAWrapperComesBackAsThatWrapper) {
    answerUnionsWithTheOther();
    Value shape = host.create("CIFilterShapeKaz", {rect(1, 2, 3, 4)});
    Value other = host.create("CIFilterShapeKaz", {rect(5, 6, 7, 8)});
    EXPECT_EQ(host.call(shape, "UnionWith", {other}).object(), other.object());
    shape = other = {};
    expectClean();
}

} // namespace
