// CIFaceBalance, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIFaceBalance, MovesChromaToThatOfSkin) {
    Picture p = noise(41, 13, 35);
    double strength = 0.7, warmth = 0.8, origI = 0.02, origQ = 0.05;
    double di = strength * (0.103905 * 1.3 - origI), dq = strength * (0.0176465 - origQ);
    Picture expected = mapped(p, [&](Pixel q) {
        double c[3] = {coded(q[0]), coded(q[1]), coded(q[2])};
        double y = 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2], w = 1 - (1 - y) * (1 - y);
        // The inverse of (.299 .587 .114; .595716 -.274453 -.321263; .211456 -.522591 .311135).
        return Pixel{linear(c[0] + w * (0.9562957 * di + 0.6210244 * dq)),
                     linear(c[1] + w * (-0.2721221 * di - 0.6473806 * dq)),
                     linear(c[2] + w * (-1.1069890 * di + 1.7046150 * dq)), q[3]};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputOrigI", origI},
                  {"inputOrigQ", origQ},
                  {"inputStrength", strength},
                  {"inputWarmth", warmth}};
    EXPECT_LT(error(filter("CIFaceBalance", values), expected), 5e-5);
}

TEST(CIFaceBalance, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIFaceBalance", {{"inputImage", image}}), image);
}
