// Core Graphics' objects among Cocoa's.
#import <Foundation/Foundation.h>

#include <testing/bitmap.h>

#include <string_view>

static int liveCount(std::string_view name) {
    for (const cg::LiveCount* c = cg::LiveCount::first(); c; c = c->next())
        if (name == c->name()) return c->count();
    return -1;
}

TEST(Objects, LiveInDictionaries) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    int before = liveCount("CGColorSpace");
    const CGFloat white[3] = {0.95f, 1, 1.09f};
    CGColorSpaceRef space = CGColorSpaceCreateCalibratedGray(white, nullptr, 2.2f);
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithCapacity:1];
    [options setObject:(id)space forKey:@"color_space"];
    EXPECT_EQ(CFGetRetainCount(space), 2);
    CGColorSpaceRelease(space);
    EXPECT_EQ(CGColorSpaceGetModel((CGColorSpaceRef)[options objectForKey:@"color_space"]),
              kCGColorSpaceModelMonochrome);
    EXPECT_EQ(liveCount("CGColorSpace"), before + 1);
    [pool release];
    EXPECT_EQ(liveCount("CGColorSpace"), before);
}

TEST(Objects, WrongTypesAreNull) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents((CGColorSpaceRef) @"text"), 0u);
    Bitmap bitmap(1, 1);
    EXPECT_EQ(CGImageGetWidth((CGImageRef)bitmap.get()), 0u);
    [pool release];
}

TEST(Objects, DescribeThemselves) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    EXPECT_TRUE([[(id)space description] hasPrefix:@"<CGColorSpace 0x"]);
    CGColorSpaceRelease(space);
    [pool release];
}

TEST(Objects, AreCountedAndLeaveNothingBehind) {
    int images = liveCount("CGImage"), contexts = liveCount("CGContext"), colors = liveCount("CGColor"),
        providers = liveCount("CGDataProvider");
    {
        Bitmap bitmap(4, 4);
        CGContextSetRGBFillColor(bitmap.get(), 1, 0, 0, 1);
        CGContextFillRect(bitmap.get(), CGRectMake(0, 0, 4, 4));
        auto image = cg::Retained<CGImageRef>::adopt(CGBitmapContextCreateImage(bitmap.get()));
        auto part = cg::Retained<CGImageRef>::adopt(
            CGImageCreateWithImageInRect(image.get(), CGRectMake(1, 1, 2, 2)));
        EXPECT_EQ(liveCount("CGImage"), images + 2);
        EXPECT_EQ(liveCount("CGContext"), contexts + 1);
    }
    EXPECT_EQ(liveCount("CGImage"), images);
    EXPECT_EQ(liveCount("CGContext"), contexts);
    EXPECT_EQ(liveCount("CGColor"), colors);
    EXPECT_EQ(liveCount("CGDataProvider"), providers);
}
