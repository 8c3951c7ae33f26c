// CIGaussianGradient, against a reference in double precision.
#include "two_color_reference.h"

using namespace reference;

TEST(CIGaussianGradient, EndsAtItsRadius) {
    Image image = filter("CIGaussianGradient", {{"inputCenter", Numbers{30.5, 21}},
                                                {"inputRadius", 25.0},
                                                {"inputColor0", firstColor},
                                                {"inputColor1", secondColor}});
    EXPECT_LT(error(image, filled(0, 0, 80, 60,
                                  [](int x, int y) {
                                      double d = std::min(1.0, std::hypot(x + 0.5 - 30.5, y + 0.5 - 21) / 25);
                                      return mixed((1 - std::exp(-4.5 * d * d)) / (1 - std::exp(-4.5)));
                                  })),
              floatError);
}
