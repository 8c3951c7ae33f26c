// Cocoa objects handed to a class of another part of the family.
#include "conversion_test.h"

#include <bridge/wrapping.h>

#import <AppKit/AppKit.h>

namespace {

using studio::Value;

class Siblings : public ConversionTest {
  protected:
    void SetUp() override { bridge::ensureFamily(); }
    static Value received(REALobject object) { return Value::received(object); }
};

TEST_F(Siblings, AnImageGetsItsOneWrapper) {
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(2, 2)];
    {
        Value wrapper = received(NewNSImageKaz(image));
        EXPECT_EQ(wrapper.className(), "NSImageKaz");
        EXPECT_EQ(reinterpret_cast<id>(wrapper.word()), image);
        EXPECT_EQ([image retainCount], 2u);
        Value again = received(NewNSImageKaz(image));
        EXPECT_EQ(again.object(), wrapper.object());
        EXPECT_EQ([image retainCount], 2u);
    }
    EXPECT_EQ([image retainCount], 1u);
    EXPECT_EQ(bridge::lockRegisteredWrapper(image), nullptr);
    [image release];
}

TEST_F(Siblings, ATransformGetsItsOneWrapper) {
    NSAffineTransform* transform = [[NSAffineTransform alloc] init];
    [transform translateXBy:7 yBy:8];
    {
        Value wrapper = received(NewNSAffineTransformKaz(transform));
        EXPECT_EQ(wrapper.className(), "NSAffineTransformKaz");
        EXPECT_EQ(host.get(wrapper, "TX").number(), 7);
        EXPECT_EQ(received(NewNSAffineTransformKaz(transform)).object(), wrapper.object());
    }
    EXPECT_EQ([transform retainCount], 1u);
    [transform release];
}

TEST_F(Siblings, NilGivesNil) {
    EXPECT_EQ(NewNSImageKaz(nil), nullptr);
    EXPECT_EQ(NewNSAffineTransformKaz(nil), nullptr);
}

class NoSiblings : public ConversionTest {
  protected:
    NoSiblings() : ConversionTest({}, WithoutFamily) {}
};

TEST_F(NoSiblings, ThereIsNoWrapperAndNothingIsRetained) {
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(2, 2)];
    EXPECT_EQ(NewNSImageKaz(image), nullptr);
    EXPECT_EQ([image retainCount], 1u);
    [image release];
    EXPECT_EQ(NewNSAffineTransformKaz([NSAffineTransform transform]), nullptr);
}

} // namespace
