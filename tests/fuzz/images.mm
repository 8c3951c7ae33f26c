// Fuzzing the image codecs and their metadata: any bytes are pictures of the size they claim, or none.
#import <Foundation/Foundation.h>

#include <ImageIO/ImageIO.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSData* data = [NSData dataWithBytes:bytes length:size];
    CGImageSourceRef source = CGImageSourceCreateWithData((CFDataRef)data, nullptr);
    size_t count = source ? CGImageSourceGetCount(source) : 0;
    for (size_t i = 0; i < count && i < 3; ++i) {
        [(NSDictionary*)CGImageSourceCopyPropertiesAtIndex(source, i, nullptr) autorelease];
        CGImageRef image = CGImageSourceCreateImageAtIndex(source, i, nullptr);
        if (image && (CGImageGetWidth(image) == 0 || CGImageGetHeight(image) == 0)) std::abort();
        CGImageRelease(image);
    }
    if (source) CFRelease(source);
    [pool release];
    return 0;
}
