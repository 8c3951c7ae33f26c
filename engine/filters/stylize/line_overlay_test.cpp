// CILineOverlay, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CILineOverlay, IsBlackWhereEdgesAreSteep) {
    Picture p = noise(41, 33, 97);
    Image image = imageOf(p);
    Image edges = filter(
        "CIEdges",
        {{"inputImage", filter("CINoiseReduction",
                               {{"inputImage", image}, {"inputNoiseLevel", 0.05}, {"inputSharpness", 0.3}})},
         {"inputIntensity", 0.8}});
    Picture steep = rendered(edges, 0, 0, 41, 33);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel q = steep.get(x, y);
        double edge = luminance(q);
        return Pixel{0, 0, 0, q[3] * std::clamp((edge - 0.2) * 6 + 0.5, 0.0, 1.0)};
    });
    Values values{{"inputImage", image},       {"inputNRNoiseLevel", 0.05}, {"inputNRSharpness", 0.3},
                  {"inputEdgeIntensity", 0.8}, {"inputThreshold", 0.2},     {"inputContrast", 6.0}};
    EXPECT_LT(error(filter("CILineOverlay", values), expected), floatError);
    EXPECT_EQ(filter("CILineOverlay", {}), nullptr);
}
