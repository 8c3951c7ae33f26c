// The current context and its saved states.
#include "support.h"

TEST(NSGraphicsContext, IsCurrentForAWhile) {
    EXPECT_EQ([NSGraphicsContext currentContext], nil);
    Bitmap context(4, 4);
    {
        Current current(context.get());
        EXPECT_EQ([[NSGraphicsContext currentContext] graphicsPort], context.get());
        Bitmap inner(2, 2);
        {
            Current second(inner.get());
            EXPECT_EQ([[NSGraphicsContext currentContext] graphicsPort], inner.get());
        }
        EXPECT_EQ([[NSGraphicsContext currentContext] graphicsPort], context.get());
    }
    EXPECT_EQ([NSGraphicsContext currentContext], nil);
    [NSGraphicsContext restoreGraphicsState]; // one too many
    EXPECT_EQ([NSGraphicsContext graphicsContextWithGraphicsPort:nullptr flipped:NO], nil);
}

TEST(NSGraphicsContext, SavesTheStateOfItsPort) {
    Bitmap context(4, 4);
    Current current(context.get());
    [[NSGraphicsContext currentContext] saveGraphicsState];
    CGContextTranslateCTM(context.get(), 1, 1);
    [[NSGraphicsContext currentContext] restoreGraphicsState];
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(context.get())));
}
