// Pictures and their representations.
#include "support.h"

#import <QuartzCore/QuartzCore.h>

TEST(NSImage, LockFocusDrawsIntoTheImage) {
    NSImage* image = makeImage(4, 2, [NSColor redColor]);
    EXPECT_EQ([[image representations] count], 1u);
    EXPECT_EQ([NSGraphicsContext currentContext], nil);
    // The second time starts from the first drawing.
    [image lockFocus];
    [[NSColor blueColor] set];
    NSRectFill(NSMakeRect(0, 0, 1, 1));
    [image unlockFocus];
    NSBitmapImageRep* rep = [[image representations] objectAtIndex:0];
    const unsigned char* upper = [rep bitmapData];
    const unsigned char* lower = upper + [rep bytesPerRow];
    EXPECT_EQ(upper[0], 255);
    EXPECT_EQ(lower[2], 255);
    EXPECT_EQ(lower[0], 0);
    EXPECT_EQ(lower[4], 255);
}

TEST(NSImage, AnEmptyImageCannotTakeTheFocus) {
    NSImage* image = [[[NSImage alloc] initWithSize:NSMakeSize(0, 0)] autorelease];
    EXPECT_EQ(str([raised([&] { [image lockFocus]; }) name]), str(NSImageCacheException));
    EXPECT_EQ([NSGraphicsContext currentContext], nil);
}

TEST(NSImage, DrawsPartsScaledAndFaded) {
    NSImage* image = makeImage(4, 4, [NSColor redColor]);
    [image lockFocus];
    [[NSColor greenColor] set];
    NSRectFill(NSMakeRect(2, 0, 2, 4));
    [image unlockFocus];
    Bitmap context(8, 8);
    Current current(context.get());
    // The green half over the whole context.
    [image drawInRect:NSMakeRect(0, 0, 8, 8)
             fromRect:NSMakeRect(2, 0, 2, 4)
            operation:NSCompositeSourceOver
             fraction:1];
    EXPECT_EQ(context.pixel(7, 4), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(context.pixel(4, 0), (Pixel{0, 255, 0, 255}));
    [image drawInRect:NSMakeRect(0, 0, 8, 8)
             fromRect:NSMakeRect(0, 0, 1, 1)
            operation:NSCompositeCopy
             fraction:0.5f];
    EXPECT_EQ(context.pixel(2, 4), (Pixel{128, 0, 0, 128}));
}

TEST(NSImage, FilesThereAndBack) {
    NSImage* image = makeImage(5, 3, [NSColor colorWithDeviceRed:0.2f green:0.4f blue:0.6f alpha:1]);
    NSData* tiff = [image TIFFRepresentation];
    NSImage* again = [[[NSImage alloc] initWithData:tiff] autorelease];
    EXPECT_EQ([again size].width, 5);
    EXPECT_EQ([again size].height, 3);
    NSBitmapImageRep* rep = [[again representations] objectAtIndex:0];
    EXPECT_EQ([rep bitmapData][1], 102);
    for (NSBitmapImageFileType type : {NSPNGFileType, NSJPEGFileType, NSTIFFFileType}) {
        NSData* file = [rep representationUsingType:type properties:nil];
        NSBitmapImageRep* read = [NSBitmapImageRep imageRepWithData:file];
        EXPECT_EQ([read pixelsWide], 5) << type;
        EXPECT_NEAR([read bitmapData][1], 102, 2) << type;
    }
    EXPECT_EQ([rep representationUsingType:NSGIFFileType properties:nil], nil);
    EXPECT_EQ([[NSImage alloc] initWithData:[NSData data]], nil);
    EXPECT_EQ([[NSImage alloc] initWithContentsOfFile:@"/no/such/file.png"], nil);
}

TEST(NSImage, ResolutionDecidesTheSizeInPoints) {
    NSImage* image = makeImage(10, 10, [NSColor redColor]);
    NSBitmapImageRep* rep = [[image representations] objectAtIndex:0];
    [rep setSize:NSMakeSize(5, 5)];
    NSBitmapImageRep* read = [NSBitmapImageRep imageRepWithData:[rep representationUsingType:NSPNGFileType
                                                                                  properties:nil]];
    EXPECT_EQ([read pixelsWide], 10);
    EXPECT_NEAR([read size].width, 5, 0.01);
}

TEST(NSBitmapImageRep, PixelsOfItsOwn) {
    NSBitmapImageRep* rep = [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                                     pixelsWide:2
                                                                     pixelsHigh:2
                                                                  bitsPerSample:8
                                                                samplesPerPixel:4
                                                                       hasAlpha:YES
                                                                       isPlanar:NO
                                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                                    bytesPerRow:0
                                                                   bitsPerPixel:0] autorelease];
    unsigned char* data = [rep bitmapData];
    data[0] = data[3] = 255;
    Bitmap context(2, 2);
    Current current(context.get());
    [rep draw];
    EXPECT_EQ(context.pixel(0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(context.pixel(1, 1), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ([[NSBitmapImageRep alloc] initWithCGImage:nullptr], nil);
}

TEST(NSBitmapImageRep, RefusesLayoutsItCannotHold) {
    for (NSInteger bits : {4, 16})
        EXPECT_EQ([[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                          pixelsWide:2
                                                          pixelsHigh:2
                                                       bitsPerSample:bits
                                                     samplesPerPixel:4
                                                            hasAlpha:YES
                                                            isPlanar:NO
                                                      colorSpaceName:NSDeviceRGBColorSpace
                                                         bytesPerRow:0
                                                        bitsPerPixel:0],
                  nil);
}

TEST(NSCIImageRep, RendersWhenItIsDrawn) {
    CIImage* recipe =
        [[CIImage imageWithColor:[CIColor colorWithRed:0 green:0
                                                  blue:1]] imageByCroppingToRect:CGRectMake(10, 20, 4, 4)];
    NSCIImageRep* rep = [NSCIImageRep imageRepWithCIImage:recipe];
    EXPECT_EQ([rep CIImage], recipe);
    EXPECT_EQ([rep size].width, 4);
    NSImage* image = [[[NSImage alloc] initWithSize:NSSizeFromCGSize([recipe extent].size)] autorelease];
    [image addRepresentation:rep];
    Bitmap context(4, 4);
    Current current(context.get());
    [image drawAtPoint:NSMakePoint(0, 0)
              fromRect:NSMakeRect(0, 0, 0, 0)
             operation:NSCompositeSourceOver
              fraction:1];
    EXPECT_EQ(context.pixel(1, 1), (Pixel{0, 0, 255, 255}));
    NSRect proposed = NSMakeRect(0, 0, 8, 8);
    CGImageRef picture = [image CGImageForProposedRect:&proposed context:nil hints:nil];
    EXPECT_EQ(CGImageGetWidth(picture), 8u);
    EXPECT_EQ([NSCIImageRep imageRepWithCIImage:nil], nil);
}
