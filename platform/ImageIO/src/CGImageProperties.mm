// The keys of property dictionaries, and the dictionary of a decoded image.
#import <Foundation/Foundation.h>

#include <ImageIO/CGImageDestination.h>

#include "properties.h"

#define KEY(symbol, text) const CFStringRef symbol = (CFStringRef) @text

KEY(kCGImagePropertyPixelWidth, "PixelWidth");
KEY(kCGImagePropertyPixelHeight, "PixelHeight");
KEY(kCGImagePropertyDepth, "Depth");
KEY(kCGImagePropertyDPIWidth, "DPIWidth");
KEY(kCGImagePropertyDPIHeight, "DPIHeight");
KEY(kCGImagePropertyOrientation, "Orientation");
KEY(kCGImagePropertyHasAlpha, "HasAlpha");
KEY(kCGImagePropertyIsFloat, "IsFloat");
KEY(kCGImagePropertyIsIndexed, "IsIndexed");
KEY(kCGImagePropertyColorModel, "ColorModel");
KEY(kCGImagePropertyProfileName, "ProfileName");
KEY(kCGImagePropertyColorModelRGB, "RGB");
KEY(kCGImagePropertyColorModelGray, "Gray");
KEY(kCGImagePropertyColorModelCMYK, "CMYK");
KEY(kCGImagePropertyColorModelLab, "Lab");
KEY(kCGImagePropertyTIFFDictionary, "{TIFF}");
KEY(kCGImagePropertyExifDictionary, "{Exif}");
KEY(kCGImagePropertyGPSDictionary, "{GPS}");
KEY(kCGImagePropertyIPTCDictionary, "{IPTC}");
KEY(kCGImagePropertyPNGDictionary, "{PNG}");
KEY(kCGImagePropertyGIFDictionary, "{GIF}");
KEY(kCGImagePropertyJFIFDictionary, "{JFIF}");
KEY(kCGImageDestinationLossyCompressionQuality, "kCGImageDestinationLossyCompressionQuality");

namespace imageio {

static CFStringRef modelName(color::Model model) {
    switch (model) {
    case color::Model::gray:
        return kCGImagePropertyColorModelGray;
    case color::Model::cmyk:
        return kCGImagePropertyColorModelCMYK;
    case color::Model::lab:
        return kCGImagePropertyColorModelLab;
    case color::Model::rgb:
        break;
    }
    return kCGImagePropertyColorModelRGB;
}

static NSString* stringOf(const std::string& text) {
    // Text that is not UTF-8 is read as Latin-1, in which every byte is a character.
    NSString* string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    if (!string)
        string = [[NSString alloc] initWithBytes:text.data()
                                          length:text.size()
                                        encoding:NSISOLatin1StringEncoding];
    return [string autorelease];
}

static id objectOf(bool value) { return [NSNumber numberWithBool:value]; }
static id objectOf(long value) { return [NSNumber numberWithInt:static_cast<int>(value)]; }
static id objectOf(double value) { return [NSNumber numberWithDouble:value]; }
static id objectOf(const std::string& value) { return stringOf(value); }
template <class T>
static id objectOf(const std::vector<T>& values) {
    NSMutableArray* array = [NSMutableArray array];
    for (T value : values) [array addObject:objectOf(value)];
    return array;
}

CFDictionaryRef makeProperties(const Info& info) {
    NSMutableDictionary* properties = [[NSMutableDictionary alloc] init];
    auto set = [&](CFStringRef key, id value) { [properties setObject:value forKey:(NSString*)key]; };
    @autoreleasepool {
        set(kCGImagePropertyPixelWidth, [NSNumber numberWithUnsignedInt:info.width]);
        set(kCGImagePropertyPixelHeight, [NSNumber numberWithUnsignedInt:info.height]);
        set(kCGImagePropertyDepth, [NSNumber numberWithInt:info.depth]);
        set(kCGImagePropertyColorModel, (NSString*)modelName(info.space->model()));
        if (info.hasAlpha) set(kCGImagePropertyHasAlpha, [NSNumber numberWithBool:YES]);
        if (info.isFloat) set(kCGImagePropertyIsFloat, [NSNumber numberWithBool:YES]);
        if (info.isIndexed) set(kCGImagePropertyIsIndexed, [NSNumber numberWithBool:YES]);
        if (!info.profileName.empty()) {
            NSString* name = stringOf(info.profileName);
            if (name) set(kCGImagePropertyProfileName, name);
        }
        if (info.dpiX > 0 && info.dpiY > 0) {
            set(kCGImagePropertyDPIWidth, [NSNumber numberWithDouble:info.dpiX]);
            set(kCGImagePropertyDPIHeight, [NSNumber numberWithDouble:info.dpiY]);
        }
        if (info.orientation) set(kCGImagePropertyOrientation, [NSNumber numberWithInt:info.orientation]);
        for (const MetadataEntry& entry : info.metadata) {
            NSString* name = [NSString stringWithUTF8String:entry.dictionary];
            NSMutableDictionary* dictionary = [properties objectForKey:name];
            if (!dictionary) [properties setObject:dictionary = [NSMutableDictionary dictionary] forKey:name];
            id value = std::visit([](const auto& v) { return objectOf(v); }, entry.value);
            if (value) [dictionary setObject:value forKey:[NSString stringWithUTF8String:entry.key]];
        }
    }
    return (CFDictionaryRef)properties;
}

static NSMutableDictionary* merged(NSDictionary* properties, NSDictionary* changes) {
    NSMutableDictionary* all = [NSMutableDictionary dictionaryWithDictionary:properties];
    for (id key in changes) {
        id value = [changes objectForKey:key], own = [all objectForKey:key];
        if ([value isKindOfClass:[NSDictionary class]] && [own isKindOfClass:[NSDictionary class]])
            [all setObject:merged(own, value) forKey:key];
        else
            [all setObject:value forKey:key];
    }
    return all;
}

CFDictionaryRef mergedProperties(CFDictionaryRef properties, CFDictionaryRef changes) {
    @autoreleasepool {
        NSDictionary* own = properties ? (NSDictionary*)properties : [NSDictionary dictionary];
        return (CFDictionaryRef)[merged(own, (NSDictionary*)changes) retain];
    }
}

static std::optional<MetadataValue> valueIn(id object) {
    if ([object isKindOfClass:[NSString class]]) return std::string([object UTF8String]);
    if ([object isKindOfClass:[NSNumber class]]) return [object doubleValue];
    if (![object isKindOfClass:[NSArray class]]) return std::nullopt;
    if ([[object lastObject] isKindOfClass:[NSString class]]) {
        std::vector<std::string> texts;
        for (id element in object)
            if ([element isKindOfClass:[NSString class]]) texts.push_back([element UTF8String]);
        return texts;
    }
    std::vector<double> numbers;
    for (id element in object) {
        if (![element isKindOfClass:[NSNumber class]]) return std::nullopt;
        numbers.push_back([element doubleValue]);
    }
    return numbers;
}

Metadata metadataIn(CFDictionaryRef properties) {
    return metadataFrom([&](const char* dictionary, const char* key) {
        id values = [(NSDictionary*)properties objectForKey:[NSString stringWithUTF8String:dictionary]];
        bool usable = [values isKindOfClass:[NSDictionary class]];
        return valueIn(usable ? [values objectForKey:[NSString stringWithUTF8String:key]] : nil);
    });
}

double numberProperty(CFDictionaryRef properties, CFStringRef key, double missing) {
    id value = [(NSDictionary*)properties objectForKey:(NSString*)key];
    return [value isKindOfClass:[NSNumber class]] ? [value doubleValue] : missing;
}

} // namespace imageio
