// What folds into one step or one pass.
#include "recipes.h"

using namespace reference;

TEST(Plan, ChainsAreOnePass) {
    Image image = imageOf(noise(8, 8, 20));
    EXPECT_EQ(planSummary(chainOfEight(image)).passes, 1);
    EXPECT_EQ(planSummary(filter("CIGaussianBlur", with(chainOfEight(image), "inputRadius", 3))).passes, 2);
    Image inverted = image;
    for (int i = 0; i < 40; ++i) inverted = filter("CIColorInvert", {{"inputImage", inverted}});
    EXPECT_EQ(planSummary(inverted).steps, 2) << "matrices are one";
    Image turned = image;
    for (int i = 0; i < 40; ++i) turned = transform(turned, Affine::rotation(0.1));
    EXPECT_EQ(planSummary(turned).steps, 2) << "transforms are one";
    Image cropped = image;
    for (int i = 1; i < 4; ++i) cropped = crop(cropped, Rect{0, 0, 8, 8}.grown(-i, -i));
    EXPECT_EQ(planSummary(cropped).steps, 2) << "crops are one";
    EXPECT_NE(planSummary(cropped).text.find("crop"), std::string::npos);
}

TEST(Plan, WhatIsReadTwiceIsKeptWhereThatIsQuicker) {
    auto twice = [](const Image& image) {
        return planSummary(composite(transform(image, Affine::translation(3, 0)), image)).passes;
    };
    Image image = imageOf(noise(16, 16, 21, true));
    EXPECT_EQ(twice(image), 1) << "a source is as quick as a copy";
    Image inverted = filter("CIColorInvert", {{"inputImage", image}});
    EXPECT_EQ(twice(inverted), 1) << "and so is a step";
    for (int i = 0; i < 5; ++i)
        inverted = filter("CIGammaAdjust",
                          with(filter("CIColorInvert", {{"inputImage", inverted}}), "inputPower", 2));
    EXPECT_EQ(twice(inverted), 2);
    Image blurred = filter("CIGaussianBlur", with(image, "inputRadius", 3));
    EXPECT_EQ(twice(blurred), 2);
    EXPECT_EQ(twice(filter("CIColorInvert", {{"inputImage", blurred}})), 3)
        << "a step on a blur is not quick";
}

TEST(Plan, ImagesReadTwiceAreComputedOnce) {
    // 2^40 evaluations if each reader computed its own.
    Image image = imageOf(noise(16, 16, 21, true));
    for (int i = 0; i < 40; ++i)
        image = filter("CIScreenBlendMode", {{"inputImage", image}, {"inputBackgroundImage", image}});
    EXPECT_NEAR(rendered(image, 0, 0, 16, 16).get(5, 5)[0], 1, 1e-4);
}
