// Picture files: reading them upright, and encoding what becomes one.
#pragma once

#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace commands {

struct Picture {
    /// Upright, with its corner at the origin; nil if it could not be read.
    CIImage* image = nil;
    /// Those of the file.
    NSDictionary* properties = nil;
    /// The space of the file's pixels, borrowed; may be null.
    CGColorSpaceRef space = nullptr;
};

/// The picture in a file, or on the standard input for "-", turned as its orientation asks. Everything is
/// autoreleased. If it cannot be read, `failure` says why.
Picture readPicture(const std::string& path, std::string& failure);

/// "public.png" for the path's extension; empty for one that cannot be written.
std::string typeForPath(const std::string& path);
/// The same for a format's name: png, jpeg, tiff, webp.
std::string typeForName(const std::string& name);

struct Encoding {
    std::string type = "public.png";
    /// 0 to 1, for JPEG.
    std::optional<double> quality;
    /// What to write of a picture's metadata; may be nil.
    NSDictionary* metadata = nil;
    /// The space of the pixels; sRGB if null.
    CGColorSpaceRef space = nullptr;
    /// 16 bits for each component, where the format has them.
    bool deep = false;
};

/// The pixels of `area` as a file. Nil, and why in `failure`, if they cannot be rendered.
NSData* encodePicture(CIImage* image, CGRect area, const Encoding& encoding, std::string& failure);

/// Valid as long as the data.
inline std::span<const std::uint8_t> bytesOf(NSData* data) {
    return {static_cast<const std::uint8_t*>([data bytes]), [data length]};
}

} // namespace commands
