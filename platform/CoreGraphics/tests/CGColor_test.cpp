// Colours and colour spaces.
#include <CoreGraphics/CoreGraphics.h>

#include <cg/object.h>
#include <gtest/gtest.h>

using cg::Retained;

TEST(ColorSpace, DeviceSpacesAreOneObjectEach) {
    CGColorSpaceRef a = CGColorSpaceCreateDeviceRGB(), b = CGColorSpaceCreateDeviceRGB();
    EXPECT_EQ(a, b);
    EXPECT_EQ(CGColorSpaceGetModel(a), kCGColorSpaceModelRGB);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(a), 3u);
    CGColorSpaceRelease(a);
    CGColorSpaceRelease(b);
    CGColorSpaceRef gray = CGColorSpaceCreateDeviceGray(), cmyk = CGColorSpaceCreateDeviceCMYK();
    EXPECT_EQ(CGColorSpaceGetModel(gray), kCGColorSpaceModelMonochrome);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(cmyk), 4u);
    CGColorSpaceRelease(gray);
    CGColorSpaceRelease(cmyk);
}

TEST(ColorSpace, NamesAndProfiles) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceAdobeRGB1998));
    ASSERT_TRUE(space);
    auto name = Retained<CFStringRef>::adopt(CGColorSpaceCopyName(space.get()));
    EXPECT_TRUE(CFEqual(name.get(), kCGColorSpaceAdobeRGB1998));
    auto icc = Retained<CFDataRef>::adopt(CGColorSpaceCopyICCProfile(space.get()));
    ASSERT_TRUE(icc);
    auto again = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithICCProfile(icc.get()));
    ASSERT_TRUE(again);
    EXPECT_NE(again.get(), space.get());
    EXPECT_EQ(CGColorSpaceCopyName(again.get()), nullptr);
    EXPECT_EQ(CGColorSpaceCreateWithName(CFSTR("no such space")), nullptr);
}

TEST(ColorSpace, EveryNameWorks) {
    for (CFStringRef name :
         {kCGColorSpaceSRGB, kCGColorSpaceGenericRGB, kCGColorSpaceGenericRGBLinear, kCGColorSpaceGenericGray,
          kCGColorSpaceGenericGrayGamma2_2, kCGColorSpaceGenericCMYK, kCGColorSpaceAdobeRGB1998}) {
        auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(name));
        EXPECT_TRUE(space);
    }
}

TEST(ColorSpace, ImpossibleSpacesAreNull) {
    const CGFloat white[3] = {0.95f, 1, 1.09f}, noWhite[3] = {0, 0, 0}, singular[9] = {};
    EXPECT_EQ(CGColorSpaceCreateCalibratedGray(noWhite, nullptr, 2.2f), nullptr);
    EXPECT_EQ(CGColorSpaceCreateCalibratedGray(white, nullptr, -1), nullptr);
    EXPECT_EQ(CGColorSpaceCreateCalibratedRGB(white, nullptr, nullptr, singular), nullptr);
    EXPECT_EQ(CGColorSpaceCreateCalibratedRGB(nullptr, nullptr, nullptr, nullptr), nullptr);
    auto text =
        Retained<CFDataRef>::adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>("no profile"), 10));
    EXPECT_EQ(CGColorSpaceCreateWithICCProfile(text.get()), nullptr);
    EXPECT_EQ(CGColorSpaceCreateWithICCProfile(nullptr), nullptr);
    auto gray = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateCalibratedGray(white, nullptr, 2.2f));
    EXPECT_TRUE(gray);
}

TEST(Color, ComponentsAndEquality) {
    auto space = Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    const CGFloat components[] = {0.1f, 0.2f, 0.3f, 0.4f};
    auto color = Retained<CGColorRef>::adopt(CGColorCreate(space.get(), components));
    EXPECT_EQ(CGColorGetNumberOfComponents(color.get()), 4u);
    EXPECT_EQ(CGColorGetComponents(color.get())[2], 0.3f);
    EXPECT_EQ(CGColorGetAlpha(color.get()), 0.4f);
    EXPECT_EQ(CGColorGetColorSpace(color.get()), space.get());
    auto same = Retained<CGColorRef>::adopt(CGColorCreate(space.get(), components));
    EXPECT_TRUE(CGColorEqualToColor(color.get(), same.get()));
    auto other = Retained<CGColorRef>::adopt(CGColorCreateCopyWithAlpha(color.get(), 1));
    EXPECT_FALSE(CGColorEqualToColor(color.get(), other.get()));
    EXPECT_EQ(CGColorCreate(nullptr, components), nullptr);
    EXPECT_EQ(CGColorCreate(space.get(), nullptr), nullptr);
}
