// AppKit of Mac OS X 10.5, as far as the product uses it.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

@class CIImage;

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)currentContext;
- (void*)graphicsPort;
@end

@interface NSImageRep : NSObject <NSCopying>
@end

@interface NSCIImageRep : NSImageRep
+ (id)imageRepWithCIImage:(CIImage*)image;
@end

@interface NSImage : NSObject <NSCopying>
- (id)initWithContentsOfFile:(NSString*)fileName;
- (id)initWithSize:(NSSize)aSize;
- (void)addRepresentation:(NSImageRep*)imageRep;
- (void)lockFocus;
- (NSSize)size;
- (NSData*)TIFFRepresentation;
- (void)unlockFocus;
- (CGImageRef)CGImageForProposedRect:(NSRect*)proposedDestRect
                             context:(NSGraphicsContext*)referenceContext
                               hints:(NSDictionary*)hints __KAZ_MAC_SINCE(10.6);
@end

@interface NSColor : NSObject <NSCopying>
+ (NSColor*)colorWithDeviceRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
- (CGFloat)alphaComponent;
- (CGFloat)blueComponent;
- (CGFloat)greenComponent;
- (CGFloat)redComponent;
@end
