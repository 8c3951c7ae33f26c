// CIRadialGradient, against a reference in double precision.
#include "two_color_reference.h"

using namespace reference;

TEST(CIRadialGradient, ChangesEvenlyBetweenTwoCircles) {
    Image image = filter("CIRadialGradient", {{"inputColor0", firstColor},
                                              {"inputColor1", secondColor},
                                              {"inputCenter", Numbers{20, 30}},
                                              {"inputRadius0", 5.0},
                                              {"inputRadius1", 35.0}});
    EXPECT_LT(error(image, filled(-20, -10, 120, 80,
                                  [](int x, int y) {
                                      return mixed((std::hypot(x + 0.5 - 20, y + 0.5 - 30) - 5) / 30);
                                  })),
              floatError);
}
