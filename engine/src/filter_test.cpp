// Finding filters, and how they take their values.
#include "reference.h"

using namespace reference;

TEST(Filter, IsFoundByItsName) {
    EXPECT_EQ(findFilter("CINoSuchFilter"), nullptr);
    EXPECT_EQ(findFilter("CIGammaAdjust")->name, "CIGammaAdjust");
}

TEST(Filter, RefusesValuesOfAnotherKind) {
    Image image = imageOf(noise(4, 4, 22));
    EXPECT_THROW(filter("CIGammaAdjust", {{"inputImage", image}, {"inputPower", std::string("x")}}),
                 std::invalid_argument);
}

TEST(Filter, WithoutItsImageMakesNone) { EXPECT_EQ(filter("CISepiaTone", {}), nullptr); }

TEST(Filter, FallsBackToItsDefaults) {
    Picture p = noise(9, 7, 23);
    Values given{{"inputImage", imageOf(p)}, {"inputRadius", 10.0}, {"inputNoSuchKey", 3.0}};
    Picture expected = rendered(filter("CIBoxBlur", given), -10, -10, 29, 27);
    for (double bad : {double(NAN), double(INFINITY)})
        EXPECT_EQ(error(filter("CIBoxBlur", {{"inputImage", imageOf(p)}, {"inputRadius", bad}}), expected),
                  0);
    EXPECT_EQ(error(filter("CIBoxBlur", {{"inputImage", imageOf(p)}}), expected), 0);
}
