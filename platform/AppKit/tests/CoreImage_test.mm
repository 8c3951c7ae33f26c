// Where AppKit and Core Image meet.
#include "support.h"

#import <QuartzCore/QuartzCore.h>

#include <cstring>

static CIImage* plain(CGFloat red, CGFloat green, CGFloat blue) {
    return [CIImage imageWithColor:[CIColor colorWithRed:red green:green blue:blue]];
}

TEST(CoreImage, AContextDrawsIntoItsPort) {
    Bitmap canvas(4, 4);
    Current current(canvas.get());
    CIContext* context = [[NSGraphicsContext currentContext] CIContext];
    EXPECT_EQ([[NSGraphicsContext currentContext] CIContext], context);
    [context drawImage:plain(1, 0, 0) inRect:CGRectMake(1, 1, 2, 2) fromRect:CGRectMake(0, 0, 2, 2)];
    EXPECT_EQ(canvas.pixel(1, 1), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(canvas.pixel(0, 0), (Pixel{0, 0, 0, 0}));
}

TEST(CoreImage, ImagesDrawThemselves) {
    Bitmap canvas(4, 4);
    Current current(canvas.get());
    [plain(1, 0, 0) drawInRect:NSMakeRect(0, 0, 4, 4)
                      fromRect:NSMakeRect(0, 0, 4, 4)
                     operation:NSCompositeSourceOver
                      fraction:1];
    [plain(0, 0, 1) drawAtPoint:NSMakePoint(2, 2)
                       fromRect:NSMakeRect(7, 7, 1, 1)
                      operation:NSCompositeSourceOver
                       fraction:0.5f];
    // Rows are counted from the top.
    EXPECT_EQ(canvas.pixel(1, 1), (Pixel{255, 0, 0, 255}));
    Pixel half = canvas.pixel(2, 1);
    EXPECT_NEAR(half[0], 128, 2);
    EXPECT_NEAR(half[2], 128, 2);
    [plain(0, 1, 0) drawInRect:NSMakeRect(0, 0, 1, 1)
                      fromRect:NSMakeRect(0, 0, 1, 1)
                     operation:NSCompositeDestinationOut
                      fraction:1];
    EXPECT_EQ(canvas.pixel(0, 3), (Pixel{0, 0, 0, 0}));
    // The state of the context is as before.
    [plain(0, 1, 0) drawInRect:NSMakeRect(1, 0, 1, 1)
                      fromRect:NSMakeRect(0, 0, 1, 1)
                     operation:NSCompositeSourceOver
                      fraction:1];
    EXPECT_EQ(canvas.pixel(1, 3), (Pixel{0, 255, 0, 255}));
}

TEST(CoreImage, WithoutAContextNothingIsDrawn) {
    [NSGraphicsContext setCurrentContext:nil];
    EXPECT_EQ(raised([&] {
                  [plain(1, 0, 0) drawInRect:NSMakeRect(0, 0, 1, 1)
                                    fromRect:NSMakeRect(0, 0, 1, 1)
                                   operation:NSCompositeCopy
                                    fraction:1];
              }),
              nil);
}

TEST(CoreImage, BitmapsAndImagesBecomeEachOther) {
    CIImage* image = [plain(0.2f, 0.4f, 0.6f) imageByCroppingToRect:CGRectMake(3, 5, 2, 1)];
    NSBitmapImageRep* bitmap = [[[NSBitmapImageRep alloc] initWithCIImage:image] autorelease];
    ASSERT_TRUE(bitmap != nil);
    EXPECT_EQ([bitmap pixelsWide], 2);
    EXPECT_EQ([bitmap pixelsHigh], 1);
    CIImage* again = [[[CIImage alloc] initWithBitmapImageRep:bitmap] autorelease];
    EXPECT_TRUE(CGRectEqualToRect([again extent], CGRectMake(0, 0, 2, 1)));
    std::uint8_t pixel[4] = {};
    auto space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
    [[CIContext contextWithOptions:nil] render:again
                                      toBitmap:pixel
                                      rowBytes:4
                                        bounds:CGRectMake(1, 0, 1, 1)
                                        format:kCIFormatRGBA8
                                    colorSpace:space.get()];
    EXPECT_NEAR(pixel[0], 51, 1);
    EXPECT_NEAR(pixel[2], 153, 1);
    EXPECT_EQ([[NSBitmapImageRep alloc] initWithCIImage:nil], nil);
    EXPECT_EQ([[NSBitmapImageRep alloc] initWithCIImage:plain(1, 1, 1)], nil);
    EXPECT_EQ([[CIImage alloc] initWithBitmapImageRep:nil], nil);
}
