// CILinearGradient, against a reference in double precision.
#include "two_color_reference.h"

using namespace reference;

TEST(CILinearGradient, ChangesEvenlyAlongALine) {
    Image image = filter("CILinearGradient", {{"inputColor0", firstColor},
                                              {"inputColor1", secondColor},
                                              {"inputPoint0", Numbers{10, 5}},
                                              {"inputPoint1", Numbers{60, 45}}});
    EXPECT_LT(error(image, filled(-20, -10, 120, 80,
                                  [](int x, int y) {
                                      return mixed(((x + 0.5 - 10) * 50 + (y + 0.5 - 5) * 40) /
                                                   (50 * 50 + 40 * 40));
                                  })),
              floatError);
}
