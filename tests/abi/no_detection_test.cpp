// A system without detectors: nothing in this process loads their library.
#include "plugin_test.h"

namespace {

using studio::Value;

class WithoutDetection : public PluginTest {};

TEST_F(WithoutDetection, TheConstantsAreEmpty) {
    for (const char* name :
         {"CIDetectorTypeFace", "CIDetectorAccuracy", "CIDetectorAccuracyLow", "CIDetectorAccuracyHigh"})
        EXPECT_EQ(host.shared("CIDetectorKaz", name).text(), "") << name;
    EXPECT_EQ(host.shared("CIFeatureKaz", "CIFeatureTypeFace").text(), "");
    expectClean();
}

TEST_F(WithoutDetection, ADetectorKeepsANilHandle) {
    Value detector = host.create("CIDetectorKaz", {"CIDetectorTypeFace", Value(), Value()});
    EXPECT_EQ(host.get(detector, "Handle").integer(), 0);
    Value found = host.call(detector, "featuresInImage", {host.shared("CIImageKaz", "emptyImage")});
    EXPECT_FALSE(found.isNil());
    EXPECT_EQ(found.count(), 0);
    detector = found = {};
    expectClean();
}

} // namespace
