// Values on their way through the wrapper classes: none is swapped, narrowed or taken for another.
#include "crafted_filter.h"
#include "plugin_test.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using studio::Value;

class Values : public PluginTest {
  protected:
    void TearDown() override { expectClean(); }

    Value rect(double x, double y, double width, double height) {
        return host.create("CGRectKaz", {x, y, width, height});
    }
    Value image(const Value& extent) {
        Value endless =
            host.shared("CIImageKaz", "imageWithColor", {host.function("NewCIColorKaz", {1.0, 0.0, 0.0})});
        return host.call(endless, "imageByCroppingToRect", {extent});
    }
    std::vector<double> numbers(const Value& object, const std::vector<const char*>& properties) {
        std::vector<double> result;
        for (const char* property : properties) result.push_back(host.get(object, property).number());
        return result;
    }
    std::vector<double> fields(const Value& rect) { return numbers(rect, {"X", "Y", "Width", "Height"}); }
    std::vector<double> size(const Value& object) { return numbers(object, {"Width", "Height"}); }
    using Numbers = std::vector<double>;
};

// --- colours ----------------------------------------------------------------------------------------------

TEST_F(Values, EveryComponentOfAColourIsItsOwn) {
    const Numbers expected = {0.125, 0.25, 0.5, 0.75};
    for (const Value& color : {host.create("CIColorKaz", {0.125, 0.25, 0.5, 0.75}),
                               host.function("NewCIColorKaz", {0.125f, 0.25f, 0.5f, 0.75f}),
                               host.function("NewCIColorWithStringKaz", {"0.125 0.25 0.5 0.75"})}) {
        EXPECT_EQ(numbers(color, {"Red", "Green", "Blue", "Alpha"}), expected);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(host.call(color, "Component", {i}).number(), expected[i]);
    }
    EXPECT_EQ(numbers(host.create("CIColorKaz", {0.125, 0.25, 0.5}), {"Red", "Green", "Blue", "Alpha"}),
              (Numbers{0.125, 0.25, 0.5, 1}));
}

TEST_F(Values, AColourKeepsTheComponentsOfItsOwnSpace) {
    struct Space {
        const char* name;
        Numbers components;
    };
    for (const Space& space :
         {Space{"DeviceGray", {0.25, 0.5}}, Space{"DeviceCMYK", {0.125, 0.25, 0.375, 0.5, 0.625}}}) {
        std::vector<Value> elements(space.components.begin(), space.components.end());
        Value cgColor = host.create(
            "CGColorKaz", {host.shared("CGColorSpaceKaz", space.name), host.array("Double", elements)});
        for (const Value& color :
             {host.create("CIColorKaz", {cgColor}), host.function("NewCIColorWithCGColorKaz", {cgColor})}) {
            int count = static_cast<int>(space.components.size());
            EXPECT_EQ(host.get(color, "NumberOfComponents").integer(), count);
            for (int i = 0; i < count; ++i)
                EXPECT_EQ(host.call(color, "Component", {i}).number(), space.components[i])
                    << space.name << i;
            EXPECT_EQ(host.get(color, "Alpha").number(), space.components.back());
            EXPECT_EQ(raisedBy([&] { host.call(color, "Component", {count}); }),
                      "OutOfBoundsException: Parameter index to method Component is too big. Range is 0 to " +
                          std::to_string(count - 1) + ", but value is " + std::to_string(count) + ".");
        }
    }
}

TEST_F(Values, GrayIsRedGreenAndBlue) {
    Value gray =
        host.create("CIColorKaz", {host.create("CGColorKaz", {host.shared("CGColorSpaceKaz", "DeviceGray"),
                                                              host.array("Double", {0.25, 0.5})})});
    double red = host.get(gray, "Red").number();
    EXPECT_EQ(host.get(gray, "Green").number(), red);
    EXPECT_EQ(host.get(gray, "Blue").number(), red);
}

TEST_F(Values, AnIndexBeyondTheSignedOnesIsTooBig) {
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    EXPECT_EQ(raisedBy([&] { host.call(color, "Component", {2147483649u}); }),
              "OutOfBoundsException: Parameter index to method Component is too big. "
              "Range is 0 to 3, but value is 2147483649.");
    EXPECT_EQ(raisedBy([&] { host.call(color, "Component", {4294967295u}); }),
              "OutOfBoundsException: Parameter index to method Component is too big. "
              "Range is 0 to 3, but value is 4294967295.");
}

// --- vectors ----------------------------------------------------------------------------------------------

TEST_F(Values, EveryComponentOfAVectorIsItsOwn) {
    const std::vector<Value> given = {1.25f, 2.5f, 3.75f, -5.5f};
    for (std::size_t count = 1; count <= 4; ++count) {
        std::vector<Value> arguments(given.begin(), given.begin() + static_cast<std::ptrdiff_t>(count));
        Numbers expected = {1.25, 2.5, 3.75, -5.5};
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(count), expected.end(), 0);
        std::string suffix = std::string("XYZW").substr(0, count);
        std::vector<Value> made = {host.shared("CIVectorKaz", "vectorWith" + suffix, arguments),
                                   host.function("NewCIVectorWith" + suffix + "Kaz", arguments),
                                   host.create("CIVectorKaz", {host.array("Single", arguments)}),
                                   host.create("CIVectorKaz", {host.array("Double", arguments)})};
        // The constructor of one component retains its vector once more, for good.
        if (count > 1) made.push_back(host.create("CIVectorKaz", arguments));
        for (const Value& vector : made) {
            EXPECT_EQ(numbers(vector, {"X", "Y", "Z", "W"}), expected) << suffix;
            EXPECT_EQ(host.get(vector, "Count").integer(), static_cast<int>(count));
            for (std::size_t i = 0; i < count; ++i)
                EXPECT_EQ(host.call(vector, "Value", {static_cast<int>(i)}).number(), expected[i]);
        }
    }
}

// --- filters ----------------------------------------------------------------------------------------------

TEST_F(Values, ANumberIsADouble) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CIGaussianBlur"});
    for (double number : {0.1, 1e-300, 16777217.0, -1.0 / 3}) {
        host.assign(filter, "ValueAsNumber", {"inputRadius"}, number);
        EXPECT_EQ(host.call(filter, "ValueAsNumber", {"inputRadius"}).number(), number);
    }
}

TEST_F(Values, NilAndNothingClearAKey) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CICrop"});
    host.call(filter, "SetDefaults");
    host.assign(filter, "ValueAsCIImage", {"inputImage"}, image(rect(0, 0, 4, 4)));
    EXPECT_FALSE(host.call(filter, "ValueAsCIImage", {"inputImage"}).isNil());
    host.assign(filter, "ValueAsCIImage", {"inputImage"}, Value());
    EXPECT_TRUE(host.call(filter, "ValueAsCIImage", {"inputImage"}).isNil());

    host.assign(filter, "ValueAsString", {"inputImage"}, "text");
    EXPECT_EQ(host.call(filter, "ValueAsString", {"inputImage"}).text(), "text");
    host.assign(filter, "ValueAsString", {"inputImage"}, "");
    EXPECT_TRUE(host.call(filter, "ValueAsCIImage", {"inputImage"}).isNil());

    Value cube = host.shared("CIFilterKaz", "FilterWithName", {"CIColorCube"});
    host.assign(cube, "ValueAsData", {"inputCubeData"}, host.memoryBlock("bytes"));
    EXPECT_FALSE(host.call(cube, "ValueAsData", {"inputCubeData"}).isNil());
    host.assign(cube, "ValueAsData", {"inputCubeData"}, host.memoryBlock(""));
    EXPECT_TRUE(host.call(cube, "ValueAsCIImage", {"inputCubeData"}).isNil());
}

TEST_F(Values, AHandleIsWrappedWhateverItIs) {
    Value color = host.function("NewCIColorKaz", {1.0, 0.5, 0.0});
    Value same = host.shared("CIFilterKaz", "FilterWithHandle", {host.get(color, "Handle")});
    EXPECT_EQ(same.object(), color.object());
}

// --- sizes of exactly 1, and fractions --------------------------------------------------------------------

TEST_F(Values, ASizeOf1IsKept) {
    Value picture = image(rect(2, 3, 10, 20));
    EXPECT_EQ(size(host.call(picture, "CreateCGImage", {rect(2, 3, 1, 1)})), (Numbers{1, 1}));
    EXPECT_EQ(size(host.call(picture, "CreateCGImage", {rect(2, 3, 1, 0.5)})), (Numbers{1, 20}));
    EXPECT_EQ(size(host.call(picture, "CreateCGImage", {rect(2, 3, 0.5, 1)})), (Numbers{10, 1}));
    Value context = host.create("CIContextKaz", {host.create("CGContextKaz", {4, 4})});
    EXPECT_EQ(size(host.call(context, "CreateCGImage", {picture, rect(2, 3, 1, 1)})), (Numbers{1, 1}));
    EXPECT_EQ(size(host.call(context, "CreateCGImage", {picture, rect(2, 3, 0.5, 1)})), (Numbers{10, 1}));
    EXPECT_EQ(size(host.call(context, "CreateCGImage", {picture, rect(2, 3, 1, 0.5)})), (Numbers{1, 20}));
    EXPECT_EQ(size(host.call(picture, "RenderPicture", {1, 0})), (Numbers{1, 20}));
    EXPECT_EQ(size(host.call(picture, "RenderPicture", {0, 1})), (Numbers{10, 1}));
    EXPECT_EQ(size(host.call(picture, "RenderPicture", {1, 1})), (Numbers{1, 1}));
}

TEST_F(Values, FractionsAreCutOff) {
    Value picture = image(rect(0, 0, 100, 50));
    Value scaled = host.call(picture, "ImageByApplyingTransform",
                             {host.create("NSAffineTransformKaz", {1.0079, 0.0, 0.0, 1.0196, 0.0, 0.0})});
    Numbers extent = fields(host.call(scaled, "Extent"));
    ASSERT_GT(extent[2], 100.5);
    ASSERT_GT(extent[3], 50.5);
    ASSERT_LT(extent[2], 101);
    ASSERT_LT(extent[3], 51);
    EXPECT_EQ(host.call(scaled, "Width").integer(), 100);
    EXPECT_EQ(host.call(scaled, "Height").integer(), 50);
    EXPECT_EQ(size(host.call(scaled, "RenderPicture")), (Numbers{100, 50}));
}

TEST_F(Values, AnImageWithoutAPixelHasNoPicture) {
    Value picture = image(rect(0, 0, 100, 50));
    Value thin = host.call(picture, "ImageByApplyingTransform",
                           {host.create("NSAffineTransformKaz", {1.0, 0.0, 0.0, 0.01, 0.0, 0.0})});
    EXPECT_EQ(host.call(thin, "Width").integer(), 100);
    EXPECT_EQ(host.call(thin, "Height").integer(), 0);
    EXPECT_TRUE(host.call(thin, "RenderPicture").isNil());
    EXPECT_TRUE(host.call(thin, "RenderPicture", {5, 0}).isNil());
}

// --- geometry ---------------------------------------------------------------------------------------------

TEST_F(Values, ATurnGoesItsOwnWay) {
    Value picture = image(rect(1, 2, 30, 10));
    // A quarter turn to the left, then a move.
    Value turn = host.create("NSAffineTransformKaz", {0.0, 1.0, -1.0, 0.0, 100.0, 7.0});
    EXPECT_EQ(fields(host.call(host.call(picture, "ImageByApplyingTransform", {turn}), "Extent")),
              (Numbers{88, 8, 10, 30}));
}

TEST_F(Values, EverySideOfARectangleIsItsOwn) {
    Value picture = image(rect(1, 2, 30, 10));
    EXPECT_EQ(fields(host.call(picture, "Extent")), (Numbers{1, 2, 30, 10}));
    EXPECT_EQ(fields(host.call(host.call(picture, "imageByCroppingToRect", {rect(5, 3, 7, 4)}), "Extent")),
              (Numbers{5, 3, 7, 4}));
    EXPECT_EQ(fields(host.call(host.function("NewCISamplerKaz", {picture}), "Extent")),
              (Numbers{1, 2, 30, 10}));
    EXPECT_EQ(host.call(picture, "Width").integer(), 30);
    EXPECT_EQ(host.call(picture, "Height").integer(), 10);
    Value empty = host.call(picture, "imageByCroppingToRect", {Value()});
    EXPECT_EQ(host.call(empty, "Width").integer(), 0);
}

// --- order ------------------------------------------------------------------------------------------------

TEST_F(Values, AnArrayOfNamesIsMadeBeforeAnythingElse) {
    Value filter = host.shared("CIFilterKaz", "FilterWithName", {"CIGaussianBlur"});
    Value names = host.array("String", {"CICategoryBlur", "CICategoryStillImage"});
    for (const std::function<void()>& call : std::initializer_list<std::function<void()>>{
             [&] { host.call(filter, "InputKeys"); }, [&] { host.call(filter, "Categories"); },
             [&] { host.shared("CIFilterKaz", "FilterNamesInCategory", {"CICategoryBlur"}); },
             [&] { host.shared("CIFilterKaz", "FilterNamesInCategories", {names}); }}) {
        std::vector<studio::ServiceCall> calls = host.callsDuring(call);
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(calls.front().service, "RuntimeArrayCreateSingleDimBoundedArray");
    }
}

TEST_F(Values, ADestroyedContextGivesBackItsPictureThenItsContext) {
    Value picture = host.create("Picture", {4, 4, 32});
    Value context = host.create("CIContextKaz", {picture});
    Value canvas = host.get(context, "CGContext");
    std::vector<const void*> unlocked;
    for (const studio::ServiceCall& call : host.callsDuring([&] { host.call(context, "Destructor"); }))
        if (call.service == "REALUnlockObject") unlocked.push_back(call.subject);
    EXPECT_EQ(unlocked, (std::vector<const void*>{picture.object(), canvas.object()}));
    canvas = context = picture = {};
    host.clearRecords(); // the picture's description stays locked
}

// --- what a wrapper keeps ---------------------------------------------------------------------------------

TEST_F(Values, ARefusedConstructionLeavesTheWrapperAsItWas) {
    const char* tooOften =
        "UnsupportedOperationException: Constructor called too often. Object is already initialized.";
    Value color = host.create("CIColorKaz", {0.125, 0.25, 0.5, 0.75});
    Value handle = host.get(color, "Handle");
    Value other = host.create("CIColorKaz", {1.0, 1.0, 1.0});
    for (const std::vector<Value>& arguments :
         {std::vector<Value>{0}, {host.get(other, "Handle")}, {1.0, 1.0, 1.0}, {1.0, 1.0, 1.0, 1.0}})
        EXPECT_EQ(raisedBy([&] { host.call(color, "Constructor", arguments); }), tooOften);
    // A full wrapper is refused before its arguments are looked at.
    EXPECT_EQ(raisedBy([&] { host.call(color, "Constructor(ColorValue as CGColorKaz)", {Value()}); }),
              tooOften);
    EXPECT_EQ(host.get(color, "Handle").integer(), handle.integer());
    EXPECT_EQ(numbers(color, {"Red", "Green", "Blue", "Alpha"}), (Numbers{0.125, 0.25, 0.5, 0.75}));

    Value vector = host.function("NewCIVectorWithXYKaz", {1.0f, 2.0f});
    EXPECT_EQ(raisedBy([&] { host.call(vector, "Constructor", {host.array("Single")}); }), tooOften);
    EXPECT_EQ(raisedBy([&] { host.call(vector, "Constructor", {host.array("Double")}); }), tooOften);
    EXPECT_EQ(raisedBy([&] { host.call(vector, "Constructor(StringRepresentation as String)", {""}); }),
              tooOften);
    EXPECT_EQ(numbers(vector, {"X", "Y"}), (Numbers{1, 2}));

    Value picture = image(rect(1, 2, 30, 10));
    for (const studio::Method* method : {host.findClass("CIImageKaz")->methods[1].get()})
        EXPECT_EQ(raisedBy([&] { host.call(picture, method->declaration, {Value()}); }), tooOften);
    EXPECT_EQ(raisedBy([&] { host.call(picture, "Constructor(data as memoryblock)", {Value()}); }), tooOften);
    EXPECT_EQ(raisedBy([&] {
                  host.call(picture, "Constructor(file as FolderItem, cgcolorspace as CGColorSpaceKaz)",
                            {Value(), Value()});
              }),
              tooOften);
    EXPECT_EQ(fields(host.call(picture, "Extent")), (Numbers{1, 2, 30, 10}));

    // A context alone looks at its argument first.
    Value context = host.create("CIContextKaz", {host.create("CGContextKaz", {4, 4})});
    EXPECT_EQ(raisedBy([&] { host.call(context, "Constructor(cgcontext as CGContextKaz)", {Value()}); }),
              "NilObjectException: CGContext is nil");
    EXPECT_EQ(raisedBy([&] {
                  host.call(context, "Constructor(cgcontext as CGContextKaz)",
                            {host.create("CGContextKaz", {4, 4})});
              }),
              tooOften);
}

TEST_F(Values, AHandleInTheUpperHalfIsNotNil) {
    // An object, though none of Core Image's, that lies where libraries do.
    int aClass = classOfObjects();
    ASSERT_LT(aClass, 0);
    EXPECT_EQ(raisedBy([&] { host.create("CIColorKaz", {aClass}); }),
              "UnsupportedOperationException: Reference is not a CIColor");
}

TEST_F(Values, ASamplersEmptyConstructorMayBeCalledAgain) {
    Value sampler = host.function("NewCISamplerKaz", {image(rect(1, 2, 3, 4))});
    EXPECT_EQ(raisedBy([&] { host.call(sampler, "Constructor"); }), "(none)");
    EXPECT_EQ(fields(host.call(sampler, "Extent")), (Numbers{1, 2, 3, 4}));
}

} // namespace
