// Picture files: reading them upright, and writing them whole or not at all.
#include "pictures.h"

#include <ImageIO/ImageIO.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace commands {

namespace {

NSString* text(const std::string& s) { return [NSString stringWithUTF8String:s.c_str()]; }

/// Where a stored pixel goes when a picture of this size is turned upright (EXIF 2.3, Orientation).
CGAffineTransform upright(int orientation, CGSize size) {
    CGFloat w = size.width, h = size.height;
    const CGAffineTransform turns[] = {{1, 0, 0, 1, 0, 0},  {-1, 0, 0, 1, w, 0},  {-1, 0, 0, -1, w, h},
                                       {1, 0, 0, -1, 0, h}, {0, -1, -1, 0, h, w}, {0, -1, 1, 0, 0, w},
                                       {0, 1, 1, 0, 0, 0},  {0, 1, -1, 0, h, 0}};
    return turns[orientation >= 1 && orientation <= 8 ? orientation - 1 : 0];
}

NSData* standardInput() {
    NSMutableData* data = [NSMutableData data];
    std::vector<char> buffer(1 << 16);
    for (ssize_t n; (n = read(STDIN_FILENO, buffer.data(), buffer.size())) != 0;) {
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) break;
        [data appendBytes:buffer.data() length:NSUInteger(n)];
    }
    return data;
}

} // namespace

Picture readPicture(const std::string& path, std::string& failure) {
    CIImage* image = nil;
    if (path == "-") {
        image = [CIImage imageWithData:standardInput()];
    } else {
        struct stat status;
        if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) {
            failure =
                "cannot read " + path + ": " + (errno == ENOENT ? "no such file" : std::strerror(errno));
            return {};
        }
        if (S_ISDIR(status.st_mode)) {
            failure = "cannot read " + path + ": it is a folder";
            return {};
        }
        image = [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:text(path)]];
    }
    if (!image) {
        failure = "cannot read " + (path == "-" ? "the standard input" : path) +
                  ": it is no JPEG, PNG, TIFF, GIF, BMP or WebP picture, or damaged";
        return {};
    }
    Picture picture{image, [image properties], [image colorSpace]};
    int orientation = [[picture.properties objectForKey:(id)kCGImagePropertyOrientation] intValue];
    if (orientation > 1)
        picture.image = [image imageByApplyingTransform:upright(orientation, [image extent].size)];
    return picture;
}

std::string typeForName(const std::string& name) {
    std::string lower(name);
    for (char& c : lower) c = char(std::tolower((unsigned char)c));
    if (lower == "png") return "public.png";
    if (lower == "jpg" || lower == "jpeg") return "public.jpeg";
    if (lower == "tif" || lower == "tiff") return "public.tiff";
    if (lower == "webp") return "org.webmproject.webp";
    return {};
}

std::string typeForPath(const std::string& path) {
    std::size_t dot = path.rfind('.');
    return dot == std::string::npos || path.find('/', dot) != std::string::npos
               ? ""
               : typeForName(path.substr(dot + 1));
}

NSData* encodePicture(CIImage* image, CGRect area, const Encoding& encoding, std::string& failure) {
    CGColorSpaceRef space = encoding.space;
    bool own = !space || CGColorSpaceGetModel(space) != kCGColorSpaceModelRGB;
    if (own) space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGImageRef pixels = nullptr;
    @try {
        CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
        pixels = [context createCGImage:image
                               fromRect:area
                                 format:encoding.deep ? kCIFormatRGBA16 : kCIFormatRGBA8
                             colorSpace:space];
        if (!pixels) failure = "the result is too large to be a picture";
    } @catch (NSException* exception) {
        failure = [[exception reason] UTF8String];
    }
    if (own) CGColorSpaceRelease(space);
    if (!pixels) return nil;
    NSMutableDictionary* properties = [NSMutableDictionary dictionary];
    if (encoding.metadata) [properties addEntriesFromDictionary:encoding.metadata];
    if (NSDictionary* exif = [properties objectForKey:(id)kCGImagePropertyExifDictionary]) {
        // The camera's size is not that of the result.
        NSMutableDictionary* adapted = [[exif mutableCopy] autorelease];
        [adapted setObject:[NSNumber numberWithUnsignedLong:CGImageGetWidth(pixels)]
                    forKey:@"PixelXDimension"];
        [adapted setObject:[NSNumber numberWithUnsignedLong:CGImageGetHeight(pixels)]
                    forKey:@"PixelYDimension"];
        [properties setObject:adapted forKey:(id)kCGImagePropertyExifDictionary];
    }
    [properties setObject:[NSNumber numberWithInt:1] forKey:(id)kCGImagePropertyOrientation];
    if (encoding.quality)
        [properties setObject:[NSNumber numberWithDouble:*encoding.quality]
                       forKey:(id)kCGImageDestinationLossyCompressionQuality];
    NSMutableData* data = [NSMutableData data];
    CGImageDestinationRef destination = CGImageDestinationCreateWithData(
        (CFMutableDataRef)data, (CFStringRef)text(encoding.type), 1, nullptr);
    CGImageDestinationAddImage(destination, pixels, (CFDictionaryRef)properties);
    bool done = destination && CGImageDestinationFinalize(destination);
    if (destination) CFRelease(destination);
    CGImageRelease(pixels);
    if (!done) failure = "the result cannot be encoded";
    return done ? data : nil;
}

} // namespace commands
