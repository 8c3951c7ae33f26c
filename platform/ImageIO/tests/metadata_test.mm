// Properties of files: EXIF, written byte by byte here, in every format that carries it.
#import <Foundation/Foundation.h>

#include "files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>

#include <png.h>
#include <tiffio.h>

namespace {

enum Type {
    byteType = 1,
    ascii = 2,
    shortType = 3,
    longType = 4,
    rational = 5,
    undefined = 7,
    srational = 10
};
enum Directory { image, exif, gps };

constexpr const char* names[] = {"{TIFF}", "{Exif}", "{GPS}"};

/// A field and the property that it must become. Rationals are pairs of numbers; texts are arrays of numbers.
struct Field {
    Directory directory;
    std::uint16_t tag;
    Type type;
    std::vector<long> numbers;
    const char* key;
    id expected;
};

std::vector<long> text(const char* t) { return std::vector<long>(t, t + std::strlen(t) + 1); }

std::vector<long> comment(const char* code, const std::vector<long>& rest) {
    std::vector<long> all(code, code + 8);
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

NSNumber* number(double value) { return [NSNumber numberWithDouble:value]; }

NSArray* list(const std::vector<double>& values) {
    NSMutableArray* array = [NSMutableArray array];
    for (double value : values) [array addObject:number(value)];
    return array;
}

Field textField(Directory directory, std::uint16_t tag, const char* key, const char* value) {
    return {directory, tag, ascii, text(value), key, [NSString stringWithUTF8String:value]};
}

Field shortField(Directory directory, std::uint16_t tag, const char* key, long value) {
    return {directory, tag, shortType, {value}, key, number(double(value))};
}

Field ratioField(Directory directory, std::uint16_t tag, const char* key, long above, long below) {
    return {directory, tag, rational, {above, below}, key, number(double(above) / double(below))};
}

std::vector<Field> allFields(bool bigEndian) {
    std::vector<long> greeting;
    for (long c : {0x47L, 0xE9L, 0x2603L, 0xD83DL, 0xDE00L}) {
        greeting.push_back(bigEndian ? c >> 8 : c & 0xFF);
        greeting.push_back(bigEndian ? c & 0xFF : c >> 8);
    }
    return {
        textField(image, 0x010D, "DocumentName", "page"),
        textField(image, 0x010E, "ImageDescription", "a harbour"),
        textField(image, 0x010F, "Make", "Maker"),
        textField(image, 0x0110, "Model", "Model 7"),
        shortField(image, 0x0112, "Orientation", 6),
        ratioField(image, 0x011A, "XResolution", 300, 1),
        ratioField(image, 0x011B, "YResolution", 601, 2),
        shortField(image, 0x0128, "ResolutionUnit", 2),
        textField(image, 0x0131, "Software", "Darkroom 1.2"),
        textField(image, 0x0132, "DateTime", "2011:05:06 07:08:09"),
        textField(image, 0x013B, "Artist", "Zo\xC3\xAB"),
        textField(image, 0x013C, "HostComputer", "desk"),
        {image, 0x013E, rational, {3127, 10000, 329, 1000}, "WhitePoint", list({0.3127, 0.329})},
        textField(image, 0x8298, "Copyright", "nobody"),

        ratioField(exif, 0x829A, "ExposureTime", 1, 60),
        ratioField(exif, 0x829D, "FNumber", 28, 10),
        shortField(exif, 0x8822, "ExposureProgram", 2),
        {exif, 0x8827, shortType, {200, 400}, "ISOSpeedRatings", list({200, 400})},
        shortField(exif, 0x8830, "SensitivityType", 2),
        {exif, 0x9000, undefined, {'0', '2', '2', '1'}, "ExifVersion", list({2, 2, 1})},
        textField(exif, 0x9003, "DateTimeOriginal", "2010:01:02 03:04:05"),
        textField(exif, 0x9004, "DateTimeDigitized", "2010:01:02 03:04:06"),
        textField(exif, 0x9010, "OffsetTime", "+02:00"),
        {exif, 0x9101, undefined, {1, 2, 3, 0}, "ComponentsConfiguration", list({1, 2, 3, 0})},
        ratioField(exif, 0x9102, "CompressedBitsPerPixel", 4, 1),
        {exif, 0x9201, srational, {-3, 2}, "ShutterSpeedValue", number(-1.5)},
        ratioField(exif, 0x9202, "ApertureValue", 3, 1),
        {exif, 0x9203, srational, {-1, 4}, "BrightnessValue", number(-0.25)},
        {exif, 0x9204, srational, {-2, 3}, "ExposureBiasValue", number(-2. / 3)},
        ratioField(exif, 0x9205, "MaxApertureValue", 2, 1),
        ratioField(exif, 0x9206, "SubjectDistance", 5, 2),
        shortField(exif, 0x9207, "MeteringMode", 5),
        shortField(exif, 0x9208, "LightSource", 1),
        shortField(exif, 0x9209, "Flash", 16),
        ratioField(exif, 0x920A, "FocalLength", 355, 10),
        {exif, 0x9214, shortType, {10, 20, 30, 40}, "SubjectArea", list({10, 20, 30, 40})},
        {exif, 0x9286, undefined, comment("UNICODE", greeting), "UserComment",
         [NSString stringWithUTF8String:"G\xC3\xA9\xE2\x98\x83\xF0\x9F\x98\x80"]},
        textField(exif, 0x9290, "SubsecTime", "12"),
        textField(exif, 0x9291, "SubsecTimeOriginal", "34"),
        textField(exif, 0x9292, "SubsecTimeDigitized", "56"),
        {exif, 0xA000, undefined, {'0', '1', '0', '0'}, "FlashPixVersion", list({1, 0})},
        shortField(exif, 0xA001, "ColorSpace", 1),
        {exif, 0xA002, longType, {70000}, "PixelXDimension", number(70000)},
        shortField(exif, 0xA003, "PixelYDimension", 48),
        ratioField(exif, 0xA20E, "FocalPlaneXResolution", 9000, 2),
        ratioField(exif, 0xA20F, "FocalPlaneYResolution", 9001, 2),
        shortField(exif, 0xA210, "FocalPlaneResolutionUnit", 2),
        {exif, 0xA214, shortType, {11, 12}, "SubjectLocation", list({11, 12})},
        ratioField(exif, 0xA215, "ExposureIndex", 7, 2),
        shortField(exif, 0xA217, "SensingMethod", 2),
        {exif, 0xA300, undefined, {3}, "FileSource", number(3)},
        {exif, 0xA301, undefined, {1}, "SceneType", number(1)},
        shortField(exif, 0xA401, "CustomRendered", 1),
        shortField(exif, 0xA402, "ExposureMode", 1),
        shortField(exif, 0xA403, "WhiteBalance", 1),
        ratioField(exif, 0xA404, "DigitalZoomRatio", 3, 2),
        shortField(exif, 0xA405, "FocalLenIn35mmFilm", 53),
        shortField(exif, 0xA406, "SceneCaptureType", 3),
        shortField(exif, 0xA407, "GainControl", 1),
        shortField(exif, 0xA408, "Contrast", 2),
        shortField(exif, 0xA409, "Saturation", 1),
        shortField(exif, 0xA40A, "Sharpness", 2),
        shortField(exif, 0xA40C, "SubjectDistRange", 3),
        textField(exif, 0xA420, "ImageUniqueID", "0123456789abcdef0123456789abcdef"),
        textField(exif, 0xA431, "BodySerialNumber", "B-1"),
        {exif, 0xA432, rational, {24, 1, 70, 1, 28, 10, 40, 10}, "LensSpecification", list({24, 70, 2.8, 4})},
        textField(exif, 0xA433, "LensMake", "Glassworks"),
        textField(exif, 0xA434, "LensModel", "24-70"),
        ratioField(exif, 0xA500, "Gamma", 11, 5),

        {gps, 0x00, byteType, {2, 2, 0, 0}, "GPSVersion", list({2, 2, 0, 0})},
        textField(gps, 0x01, "LatitudeRef", "N"),
        {gps, 0x02, rational, {48, 1, 51, 1, 2952, 100}, "Latitude", number(48 + 51 / 60. + 29.52 / 3600)},
        textField(gps, 0x03, "LongitudeRef", "W"),
        {gps, 0x04, rational, {2, 1, 1767, 100, 0, 1}, "Longitude", number(2 + 17.67 / 60)},
        {gps, 0x05, byteType, {1}, "AltitudeRef", number(1)},
        ratioField(gps, 0x06, "Altitude", 355, 10),
        {gps, 0x07, rational, {12, 1, 3, 1, 9, 1}, "TimeStamp", @"12:03:09"},
        textField(gps, 0x09, "Status", "A"),
        textField(gps, 0x0A, "MeasureMode", "3"),
        ratioField(gps, 0x0B, "DOP", 3, 2),
        textField(gps, 0x0C, "SpeedRef", "K"),
        ratioField(gps, 0x0D, "Speed", 21, 2),
        textField(gps, 0x10, "ImgDirectionRef", "T"),
        ratioField(gps, 0x11, "ImgDirection", 27312, 100),
        textField(gps, 0x12, "MapDatum", "WGS-84"),
        {gps, 0x14, rational, {10, 1, 30, 1, 0, 1}, "DestLatitude", number(10.5)},
        {gps, 0x1B, undefined, comment("ASCII\0\0\0", {'G', 'P', 'S'}), "ProcessingMethod", @"GPS"},
        textField(gps, 0x1D, "DateStamp", "2010:01:02"),
        shortField(gps, 0x1E, "Differential", 1),
    };
}

/// An EXIF block, from the byte-order mark on.
class Block {
  public:
    explicit Block(bool bigEndian) : big_(bigEndian) {}

    Bytes of(const std::vector<Field>& fields) const {
        std::map<std::uint16_t, Field> directories[3];
        for (const Field& field : fields) directories[field.directory].emplace(field.tag, field);
        auto pointer = [&](std::uint16_t tag, std::size_t to) {
            directories[image][tag] = {image, tag, longType, {long(to)}, "", nil};
        };
        pointer(0x8769, 0);
        pointer(0x8825, 0);
        std::size_t exifAt = 8 + table(directories[image], 8).size();
        std::size_t gpsAt = exifAt + table(directories[exif], exifAt).size();
        pointer(0x8769, exifAt);
        pointer(0x8825, gpsAt);
        Bytes out;
        out.insert(out.end(), 2, big_ ? 'M' : 'I');
        put(out, 42, 2);
        put(out, 8, 4);
        for (const Bytes& part :
             {table(directories[image], 8), table(directories[exif], exifAt), table(directories[gps], gpsAt)})
            out.insert(out.end(), part.begin(), part.end());
        return out;
    }

  private:
    void put(Bytes& out, long value, int bytes) const {
        for (int i = 0; i < bytes; ++i)
            out.push_back(static_cast<std::uint8_t>(value >> 8 * (big_ ? bytes - 1 - i : i)));
    }

    Bytes table(const std::map<std::uint16_t, Field>& fields, std::size_t at) const {
        Bytes entries, data;
        put(entries, long(fields.size()), 2);
        std::size_t dataAt = at + 2 + 12 * fields.size() + 4;
        for (const auto& [tag, field] : fields) {
            bool ratio = field.type == rational || field.type == srational;
            int size = field.type == shortType ? 2 : ratio || field.type == longType ? 4 : 1;
            Bytes value;
            for (long n : field.numbers) put(value, n, size);
            put(entries, tag, 2);
            put(entries, field.type, 2);
            put(entries, long(field.numbers.size() / (ratio ? 2 : 1)), 4);
            if (value.size() <= 4) {
                value.resize(4);
                entries.insert(entries.end(), value.begin(), value.end());
            } else {
                put(entries, long(dataAt + data.size()), 4);
                data.insert(data.end(), value.begin(), value.end());
                data.resize((data.size() + 1) / 2 * 2);
            }
        }
        put(entries, 0, 4);
        entries.insert(entries.end(), data.begin(), data.end());
        return entries;
    }

    bool big_;
};

Bytes jpegWith(const Bytes& block) {
    Bytes file = jpegFile(64, 48, 3), marker = {0xFF, 0xE1};
    std::size_t size = block.size() + 8;
    marker.push_back(static_cast<std::uint8_t>(size >> 8));
    marker.push_back(static_cast<std::uint8_t>(size));
    for (char c : {'E', 'x', 'i', 'f', '\0', '\0'}) marker.push_back(static_cast<std::uint8_t>(c));
    marker.insert(marker.end(), block.begin(), block.end());
    // After the first marker, JFIF's.
    std::size_t at = 4 + file[4] * 256u + file[5];
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), marker.begin(), marker.end());
    return file;
}

/// An extended WebP container with the picture of a simple file and the block.
Bytes webpWith(const Bytes& block) {
    Bytes simple = webpFile(64, 48, false), file(simple.begin(), simple.begin() + 12);
    auto put = [&](std::size_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) file.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    };
    auto tag = [&](const char* name) { file.insert(file.end(), name, name + 4); };
    tag("VP8X");
    put(10, 4);
    put(0x08, 4); // has EXIF
    put(63, 3);
    put(47, 3);
    file.insert(file.end(), simple.begin() + 12, simple.end());
    tag("EXIF");
    put(block.size(), 4);
    file.insert(file.end(), block.begin(), block.end());
    if (block.size() % 2) file.push_back(0);
    for (int i = 0; i < 4; ++i)
        file[4 + std::size_t(i)] = static_cast<std::uint8_t>((file.size() - 8) >> 8 * i);
    return file;
}

NSDictionary* propertiesOf(const Bytes& file) {
    return [(NSDictionary*)CGImageSourceCopyPropertiesAtIndex(source(file).get(), 0, nullptr) autorelease];
}

id valueIn(NSDictionary* properties, const char* dictionary, const char* key) {
    NSDictionary* inner = [properties objectForKey:[NSString stringWithUTF8String:dictionary]];
    return [inner objectForKey:[NSString stringWithUTF8String:key]];
}

void expectSame(id actual, id expected, const char* what) {
    if ([expected isKindOfClass:[NSArray class]]) {
        ASSERT_TRUE([actual isKindOfClass:[NSArray class]]) << what;
        ASSERT_EQ([actual count], [expected count]) << what;
        for (NSUInteger i = 0; i < [expected count]; ++i)
            expectSame([actual objectAtIndex:i], [expected objectAtIndex:i], what);
    } else if ([expected isKindOfClass:[NSNumber class]]) {
        ASSERT_TRUE([actual isKindOfClass:[NSNumber class]]) << what;
        double value = [expected doubleValue];
        // libtiff keeps some rationals as floats.
        EXPECT_NEAR([actual doubleValue], value, 1e-6 * (1 + std::fabs(value))) << what;
    } else {
        EXPECT_TRUE([actual isEqual:expected]) << what << " is " << [[actual description] UTF8String];
    }
}

void expectFields(NSDictionary* properties, const std::vector<Field>& fields) {
    for (const Field& field : fields) {
        id value = valueIn(properties, names[field.directory], field.key);
        ASSERT_TRUE(value != nil) << names[field.directory] << " " << field.key;
        expectSame(value, field.expected, field.key);
    }
}

} // namespace

TEST(Metadata, EveryFieldOfEXIFInBothByteOrders) {
    for (bool big : {false, true}) {
        std::vector<Field> fields = allFields(big);
        NSDictionary* properties = propertiesOf(jpegWith(Block(big).of(fields)));
        expectFields(properties, fields);
        // And no field more.
        NSUInteger count = 0;
        for (const char* name : names)
            count += [[properties objectForKey:[NSString stringWithUTF8String:name]] count];
        EXPECT_EQ(count, fields.size());
        EXPECT_EQ([[properties objectForKey:@"Orientation"] intValue], 6);
    }
}

TEST(Metadata, IsWrittenAsItWasRead) {
    std::vector<Field> fields = allFields(false);
    NSDictionary* properties = propertiesOf(jpegWith(Block(false).of(fields)));
    // The format has these itself.
    std::erase_if(fields, [](const Field& field) {
        for (const char* own : {"Compression", "PhotometricInterpretation", "XResolution", "YResolution",
                                "ResolutionUnit", "TileWidth", "TileLength"})
            if (field.directory == image && std::strcmp(field.key, own) == 0) return true;
        return false;
    });
    auto picture = decode(pngFile(20, 20, PNG_COLOR_TYPE_RGB));
    for (const char* type : {"public.jpeg", "public.png"}) {
        NSDictionary* read = propertiesOf(encode({picture.get()}, type, (CFDictionaryRef)properties));
        SCOPED_TRACE(type);
        expectFields(read, fields);
        EXPECT_EQ([[read objectForKey:@"Orientation"] intValue], 6);
        EXPECT_NEAR([[read objectForKey:@"DPIHeight"] doubleValue], 300.5, 1);
    }
    NSDictionary* read = propertiesOf(encode({picture.get()}, "public.tiff", (CFDictionaryRef)properties));
    for (const Field& field : fields)
        if (field.directory == image && field.type == ascii)
            expectSame(valueIn(read, names[image], field.key), field.expected, field.key);
}

TEST(Metadata, PNGAndWebPCarryTheSameBlock) {
    std::vector<Field> fields = allFields(true);
    Bytes block = Block(true).of(fields);
    for (const Bytes& file : {pngFile(20, 20, PNG_COLOR_TYPE_RGB, {.exif = block}), webpWith(block)}) {
        ASSERT_TRUE(decode(file));
        NSDictionary* properties = propertiesOf(file);
        expectFields(properties, fields);
        // These formats have no resolution of their own here.
        EXPECT_NEAR([[properties objectForKey:@"DPIHeight"] doubleValue], 300.5, 1e-6);
    }
}

TEST(Metadata, TIFFHasDirectoriesOfItsOwn) {
    char path[] = "/tmp/imageio_XXXXXX";
    int descriptor = mkstemp(path);
    ASSERT_GE(descriptor, 0);
    TIFF* tiff = TIFFFdOpen(descriptor, path, "w");
    TIFFCreateEXIFDirectory(tiff);
    const std::uint16_t speeds[] = {320};
    const float lens[] = {24, 70, 2.8f, 4};
    TIFFSetField(tiff, EXIFTAG_EXPOSURETIME, 1 / 250.);
    TIFFSetField(tiff, EXIFTAG_FNUMBER, 5.6);
    TIFFSetField(tiff, EXIFTAG_ISOSPEEDRATINGS, 1, speeds);
    TIFFSetField(tiff, EXIFTAG_EXIFVERSION, "0230");
    TIFFSetField(tiff, EXIFTAG_DATETIMEORIGINAL, "2012:03:04 05:06:07");
    TIFFSetField(tiff, EXIFTAG_LENSSPECIFICATION, lens);
    toff_t exifAt = 0, gpsAt = 0;
    ASSERT_TRUE(TIFFWriteCustomDirectory(tiff, &exifAt));
    TIFFCreateGPSDirectory(tiff);
    const double latitude[] = {33, 51, 24}, clock[] = {23, 5, 7.5};
    TIFFSetField(tiff, GPSTAG_LATITUDEREF, "S");
    TIFFSetField(tiff, GPSTAG_LATITUDE, latitude);
    TIFFSetField(tiff, GPSTAG_TIMESTAMP, clock);
    ASSERT_TRUE(TIFFWriteCustomDirectory(tiff, &gpsAt));
    TIFFCreateDirectory(tiff);
    for (auto [tag, value] : {std::pair(TIFFTAG_IMAGEWIDTH, 4), std::pair(TIFFTAG_IMAGELENGTH, 2),
                              std::pair(TIFFTAG_BITSPERSAMPLE, 8), std::pair(TIFFTAG_SAMPLESPERPIXEL, 1),
                              std::pair(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK),
                              std::pair(TIFFTAG_COMPRESSION, COMPRESSION_NONE)})
        TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
    const float white[] = {0.3127f, 0.329f};
    TIFFSetField(tiff, TIFFTAG_WHITEPOINT, white);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 150.);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 151.);
    TIFFSetField(tiff, TIFFTAG_MAKE, "Scanner");
    TIFFSetField(tiff, TIFFTAG_EXIFIFD, exifAt);
    TIFFSetField(tiff, TIFFTAG_GPSIFD, gpsAt);
    std::uint8_t row[4] = {1, 2, 3, 4};
    for (std::uint32_t y = 0; y < 2; ++y) TIFFWriteScanline(tiff, row, y, 0);
    TIFFClose(tiff);
    std::ifstream written(path, std::ios::binary);
    Bytes file{std::istreambuf_iterator<char>(written), {}};
    std::remove(path);

    ASSERT_TRUE(decode(file));
    NSDictionary* properties = propertiesOf(file);
    auto expect = [&](const char* dictionary, const char* key, id value) {
        expectSame(valueIn(properties, dictionary, key), value, key);
    };
    expect("{TIFF}", "Make", @"Scanner");
    expect("{TIFF}", "Compression", number(1));
    expect("{TIFF}", "PhotometricInterpretation", number(1));
    expect("{TIFF}", "XResolution", number(150));
    expect("{TIFF}", "WhitePoint", list({0.3127, 0.329}));
    expect("{Exif}", "ExposureTime", number(1 / 250.));
    expect("{Exif}", "FNumber", number(5.6));
    expect("{Exif}", "ISOSpeedRatings", list({320}));
    expect("{Exif}", "ExifVersion", list({2, 3}));
    expect("{Exif}", "DateTimeOriginal", @"2012:03:04 05:06:07");
    expect("{Exif}", "LensSpecification", list({24, 70, 2.8, 4}));
    expect("{GPS}", "LatitudeRef", @"S");
    expect("{GPS}", "Latitude", number(33 + 51 / 60. + 24 / 3600.));
    expect("{GPS}", "TimeStamp", @"23:05:07.50");
}

TEST(Metadata, TheFormatsOwnFields) {
    NSDictionary* jpeg = propertiesOf(jpegFile(16, 16, 3));
    expectSame(valueIn(jpeg, "{JFIF}", "JFIFVersion"), list({1, 0, 1}), "JFIFVersion");
    expectSame(valueIn(jpeg, "{JFIF}", "XDensity"), number(1), "XDensity");
    EXPECT_TRUE([jpeg objectForKey:@"{Exif}"] == nil);
    EXPECT_TRUE([jpeg objectForKey:@"HasAlpha"] == nil);
    EXPECT_TRUE([[jpeg objectForKey:@"ColorModel"] isEqual:@"RGB"]);
    NSDictionary* png =
        propertiesOf(pngFile(16, 16, PNG_COLOR_TYPE_GRAY, {.interlaced = true, .gamma = 0.5}));
    expectSame(valueIn(png, "{PNG}", "InterlaceType"), number(1), "InterlaceType");
    expectSame(valueIn(png, "{PNG}", "Gamma"), number(0.5), "Gamma");
    NSDictionary* gif = propertiesOf(gifFile());
    expectSame(valueIn(gif, "{GIF}", "DelayTime"), number(0.1), "DelayTime");
}

TEST(Metadata, UnknownValuesAreLeftOut) {
    Bytes file = jpegWith(Block(false).of({{exif, 0x9206, rational, {0, 0}, "", nil},
                                           {exif, 0x9202, rational, {5, 0}, "", nil},
                                           {exif, 0x9000, undefined, {0, 1, 2, 3}, "", nil},
                                           {gps, 0x07, rational, {99, 1, 0, 1, 0, 1}, "", nil},
                                           {exif, 0x829D, rational, {8, 1}, "", nil}}));
    NSDictionary* properties = propertiesOf(file);
    EXPECT_EQ([[properties objectForKey:@"{Exif}"] count], 1u);
    EXPECT_TRUE([properties objectForKey:@"{GPS}"] == nil);
    // Text that is not UTF-8 is Latin-1.
    file = jpegWith(Block(false).of({{image, 0x013B, ascii, {'Z', 'o', 0xEB, 0}, "", nil}}));
    expectSame(valueIn(propertiesOf(file), "{TIFF}", "Artist"), [NSString stringWithUTF8String:"Zo\xC3\xAB"],
               "Artist");
}

TEST(Metadata, DamageNeverLosesThePicture) {
    for (bool big : {false, true}) {
        Bytes block = Block(big).of(allFields(big));
        auto expectPicture = [](const Bytes& damaged, std::size_t at) {
            Bytes file = jpegWith(damaged);
            EXPECT_TRUE(decode(file)) << "byte " << at;
            EXPECT_EQ([[propertiesOf(file) objectForKey:@"PixelWidth"] intValue], 64) << "byte " << at;
        };
        for (std::size_t at = 0; at < block.size(); ++at) {
            @autoreleasepool {
                Bytes flipped = block;
                flipped[at] ^= at % 3 == 0 ? 0xFF : at % 3 == 1 ? 0x80 : 0x01;
                expectPicture(flipped, at);
                if (at % 5 == 0)
                    expectPicture(Bytes(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(at)), at);
            }
        }
    }
}
