// Sample photographs, enlarged to the size of a camera's.
#include "photograph.h"

#include <ImageIO/ImageIO.h>

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>

CGContextRef bench::newBitmap(size_t width, size_t height) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGContextRef bitmap =
        CGBitmapContextCreate(nullptr, width, height, 8, width * 4, space, kCGImageAlphaPremultipliedLast);
    CGColorSpaceRelease(space);
    return bitmap;
}

CGImageRef bench::newPhotograph(const char* name, size_t width, size_t height) {
    const char* folder = std::getenv("KAZ_PHOTOS");
    NSString* path = [NSString stringWithFormat:@"%s/%s", folder ? folder : ".", name];
    CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)[NSURL fileURLWithPath:path], nullptr);
    CGImageRef small = source ? CGImageSourceCreateImageAtIndex(source, 0, nullptr) : nullptr;
    if (!small) {
        std::printf("  cannot read %s: run this as ./kaz bench\n", [path UTF8String]);
        std::exit(1);
    }
    CGContextRef bitmap = newBitmap(width, height);
    CGContextDrawImage(bitmap, CGRectMake(0, 0, width, height), small);
    CGImageRef photograph = CGBitmapContextCreateImage(bitmap);
    CGContextRelease(bitmap);
    CGImageRelease(small);
    CFRelease(source);
    return photograph;
}
