// Picture files: reading them upright, and writing them whole or not at all.
#include "pictures.h"

#include <ImageIO/ImageIO.h>
#include <files/wholefile.h>

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

bool writeAll(int file, NSData* data) {
    auto* bytes = static_cast<const char*>([data bytes]);
    for (std::size_t left = [data length]; left > 0;) {
        ssize_t n = write(file, bytes, left);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        bytes += n;
        left -= std::size_t(n);
    }
    return true;
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

std::string writeFile(const std::string& path, NSData* data) {
    if (path == "-") return writeAll(STDOUT_FILENO, data) ? "" : "cannot write the standard output";
    std::string refusal = "cannot write " + path + ": ";
    struct stat status;
    bool replaces = stat(path.c_str(), &status) == 0;
    if (replaces && S_ISDIR(status.st_mode)) return refusal + "it is a folder";
    // Pipes and devices cannot be replaced.
    if (replaces && !S_ISREG(status.st_mode)) {
        int file = open(path.c_str(), O_WRONLY);
        bool written = file >= 0 && writeAll(file, data);
        if (file < 0 || close(file) != 0 || !written) return refusal + std::strerror(errno);
        return {};
    }
    try {
        wholefile::replace(path, {static_cast<const std::uint8_t*>([data bytes]), [data length]});
        return {};
    } catch (const wholefile::Error& error) {
        return refusal + error.what();
    }
}

} // namespace commands
