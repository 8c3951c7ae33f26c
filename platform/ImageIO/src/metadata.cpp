// The known tags of EXIF and TIFF, and how their fields become values.
#include "metadata.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace imageio {

namespace {

/// How a field becomes a value.
enum class As {
    integer,
    real,
    text,
    integers,
    reals,
    /// "0221" becomes the version 2.2.1, an array.
    version,
    /// Text after eight bytes that name its encoding.
    comment,
    /// Degrees, minutes and seconds become one number of degrees.
    degrees,
    /// Hours, minutes and seconds become the text "12:34:56".
    clock,
};

struct Tag {
    TagDirectory directory;
    std::uint16_t number;
    const char* key;
    As as;
};

using enum TagDirectory;

constexpr Tag tags[] = {
    {image, 0x0103, "Compression", As::integer},
    {image, 0x0106, "PhotometricInterpretation", As::integer},
    {image, 0x010D, "DocumentName", As::text},
    {image, 0x010E, "ImageDescription", As::text},
    {image, 0x010F, "Make", As::text},
    {image, 0x0110, "Model", As::text},
    {image, 0x0112, "Orientation", As::integer},
    {image, 0x011A, "XResolution", As::real},
    {image, 0x011B, "YResolution", As::real},
    {image, 0x0128, "ResolutionUnit", As::integer},
    {image, 0x0131, "Software", As::text},
    {image, 0x0132, "DateTime", As::text},
    {image, 0x013B, "Artist", As::text},
    {image, 0x013C, "HostComputer", As::text},
    {image, 0x013E, "WhitePoint", As::reals},
    {image, 0x013F, "PrimaryChromaticities", As::reals},
    {image, 0x0142, "TileWidth", As::integer},
    {image, 0x0143, "TileLength", As::integer},
    {image, 0x8298, "Copyright", As::text},

    {exif, 0x829A, "ExposureTime", As::real},
    {exif, 0x829D, "FNumber", As::real},
    {exif, 0x8822, "ExposureProgram", As::integer},
    {exif, 0x8824, "SpectralSensitivity", As::text},
    {exif, 0x8827, "ISOSpeedRatings", As::integers},
    {exif, 0x8830, "SensitivityType", As::integer},
    {exif, 0x8831, "StandardOutputSensitivity", As::integer},
    {exif, 0x8832, "RecommendedExposureIndex", As::integer},
    {exif, 0x8833, "ISOSpeed", As::integer},
    {exif, 0x8834, "ISOSpeedLatitudeyyy", As::integer},
    {exif, 0x8835, "ISOSpeedLatitudezzz", As::integer},
    {exif, 0x9000, "ExifVersion", As::version},
    {exif, 0x9003, "DateTimeOriginal", As::text},
    {exif, 0x9004, "DateTimeDigitized", As::text},
    {exif, 0x9010, "OffsetTime", As::text},
    {exif, 0x9011, "OffsetTimeOriginal", As::text},
    {exif, 0x9012, "OffsetTimeDigitized", As::text},
    {exif, 0x9101, "ComponentsConfiguration", As::integers},
    {exif, 0x9102, "CompressedBitsPerPixel", As::real},
    {exif, 0x9201, "ShutterSpeedValue", As::real},
    {exif, 0x9202, "ApertureValue", As::real},
    {exif, 0x9203, "BrightnessValue", As::real},
    {exif, 0x9204, "ExposureBiasValue", As::real},
    {exif, 0x9205, "MaxApertureValue", As::real},
    {exif, 0x9206, "SubjectDistance", As::real},
    {exif, 0x9207, "MeteringMode", As::integer},
    {exif, 0x9208, "LightSource", As::integer},
    {exif, 0x9209, "Flash", As::integer},
    {exif, 0x920A, "FocalLength", As::real},
    {exif, 0x9214, "SubjectArea", As::integers},
    {exif, 0x9286, "UserComment", As::comment},
    {exif, 0x9290, "SubsecTime", As::text},
    {exif, 0x9291, "SubsecTimeOriginal", As::text},
    {exif, 0x9292, "SubsecTimeDigitized", As::text},
    {exif, 0xA000, "FlashPixVersion", As::version},
    {exif, 0xA001, "ColorSpace", As::integer},
    {exif, 0xA002, "PixelXDimension", As::integer},
    {exif, 0xA003, "PixelYDimension", As::integer},
    {exif, 0xA004, "RelatedSoundFile", As::text},
    {exif, 0xA20B, "FlashEnergy", As::real},
    {exif, 0xA20E, "FocalPlaneXResolution", As::real},
    {exif, 0xA20F, "FocalPlaneYResolution", As::real},
    {exif, 0xA210, "FocalPlaneResolutionUnit", As::integer},
    {exif, 0xA214, "SubjectLocation", As::integers},
    {exif, 0xA215, "ExposureIndex", As::real},
    {exif, 0xA217, "SensingMethod", As::integer},
    {exif, 0xA300, "FileSource", As::integer},
    {exif, 0xA301, "SceneType", As::integer},
    {exif, 0xA302, "CFAPattern", As::integers},
    {exif, 0xA401, "CustomRendered", As::integer},
    {exif, 0xA402, "ExposureMode", As::integer},
    {exif, 0xA403, "WhiteBalance", As::integer},
    {exif, 0xA404, "DigitalZoomRatio", As::real},
    {exif, 0xA405, "FocalLenIn35mmFilm", As::integer},
    {exif, 0xA406, "SceneCaptureType", As::integer},
    {exif, 0xA407, "GainControl", As::integer},
    {exif, 0xA408, "Contrast", As::integer},
    {exif, 0xA409, "Saturation", As::integer},
    {exif, 0xA40A, "Sharpness", As::integer},
    {exif, 0xA40C, "SubjectDistRange", As::integer},
    {exif, 0xA420, "ImageUniqueID", As::text},
    {exif, 0xA430, "CameraOwnerName", As::text},
    {exif, 0xA431, "BodySerialNumber", As::text},
    {exif, 0xA432, "LensSpecification", As::reals},
    {exif, 0xA433, "LensMake", As::text},
    {exif, 0xA434, "LensModel", As::text},
    {exif, 0xA435, "LensSerialNumber", As::text},
    {exif, 0xA500, "Gamma", As::real},

    {gps, 0x00, "GPSVersion", As::integers},
    {gps, 0x01, "LatitudeRef", As::text},
    {gps, 0x02, "Latitude", As::degrees},
    {gps, 0x03, "LongitudeRef", As::text},
    {gps, 0x04, "Longitude", As::degrees},
    {gps, 0x05, "AltitudeRef", As::integer},
    {gps, 0x06, "Altitude", As::real},
    {gps, 0x07, "TimeStamp", As::clock},
    {gps, 0x08, "Satellites", As::text},
    {gps, 0x09, "Status", As::text},
    {gps, 0x0A, "MeasureMode", As::text},
    {gps, 0x0B, "DOP", As::real},
    {gps, 0x0C, "SpeedRef", As::text},
    {gps, 0x0D, "Speed", As::real},
    {gps, 0x0E, "TrackRef", As::text},
    {gps, 0x0F, "Track", As::real},
    {gps, 0x10, "ImgDirectionRef", As::text},
    {gps, 0x11, "ImgDirection", As::real},
    {gps, 0x12, "MapDatum", As::text},
    {gps, 0x13, "DestLatitudeRef", As::text},
    {gps, 0x14, "DestLatitude", As::degrees},
    {gps, 0x15, "DestLongitudeRef", As::text},
    {gps, 0x16, "DestLongitude", As::degrees},
    {gps, 0x17, "DestBearingRef", As::text},
    {gps, 0x18, "DestBearing", As::real},
    {gps, 0x19, "DestDistanceRef", As::text},
    {gps, 0x1A, "DestDistance", As::real},
    {gps, 0x1B, "ProcessingMethod", As::comment},
    {gps, 0x1C, "AreaInformation", As::comment},
    {gps, 0x1D, "DateStamp", As::text},
    {gps, 0x1E, "Differential", As::integer},
    {gps, 0x1F, "HPositioningError", As::real},
};

const char* nameOf(TagDirectory directory) {
    return directory == image ? "{TIFF}" : directory == exif ? "{Exif}" : "{GPS}";
}

/// The text up to the first zero: some writers leave rubbish after it.
std::string textOf(const std::string& bytes) { return bytes.substr(0, bytes.find('\0')); }

void appendUTF8(std::string& out, std::uint32_t c) {
    auto put = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    auto rest = [&](unsigned shift) { put(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        rest(0);
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        rest(6);
        rest(0);
    } else {
        put(0xF0 | c >> 18);
        rest(12);
        rest(6);
        rest(0);
    }
}

std::string fromUTF16(std::string_view bytes, std::endian order) {
    std::string out;
    auto unit = [&](std::size_t at) -> std::uint32_t {
        auto first = static_cast<std::uint8_t>(bytes[at]), second = static_cast<std::uint8_t>(bytes[at + 1]);
        return order == std::endian::big ? first << 8u | second : second << 8u | first;
    };
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t c = unit(at);
        if (c == 0) break;
        std::uint32_t low = c >= 0xD800 && c < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
        if (low >= 0xDC00 && low < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
            at += 2;
        }
        appendUTF8(out, c >= 0xD800 && c < 0xE000 ? 0xFFFD : c);
    }
    return out;
}

std::optional<MetadataValue> commentOf(const TagField& field) {
    if (field.bytes.size() <= 8) return std::nullopt;
    std::string_view code(field.bytes.data(), 8), rest(field.bytes.data() + 8, field.bytes.size() - 8);
    if (code.starts_with("JIS")) return std::nullopt;
    std::string text = code.starts_with("UNICODE") ? fromUTF16(rest, field.order) : textOf(std::string(rest));
    // Cameras reserve room for a comment and fill it with spaces.
    if (text.find_first_not_of(' ') == std::string::npos) return std::nullopt;
    return text;
}

std::optional<MetadataValue> versionOf(const std::string& digits) {
    if (digits.size() < 4) return std::nullopt;
    for (std::size_t i = 0; i < 4; ++i)
        if (digits[i] < '0' || digits[i] > '9') return std::nullopt;
    auto digit = [&](std::size_t i) { return long(digits[i] - '0'); };
    std::vector<long> version = {digit(0) * 10 + digit(1), digit(2)};
    if (digit(3)) version.push_back(digit(3));
    return version;
}

/// Degrees, minutes and seconds as degrees; the last two may be missing.
double sexagesimal(const std::vector<double>& n) {
    return n[0] + (n.size() > 1 ? n[1] / 60 : 0) + (n.size() > 2 ? n[2] / 3600 : 0);
}

std::optional<MetadataValue> clockOf(const std::vector<double>& n) {
    if (n.size() < 3) return std::nullopt;
    for (double part : n)
        if (!(part >= 0) || part > 60) return std::nullopt;
    char text[32];
    int hours = static_cast<int>(n[0]), minutes = static_cast<int>(n[1]);
    // Seconds have decimals only if they are not whole.
    if (n[2] == std::floor(n[2]))
        std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, static_cast<int>(n[2]));
    else
        std::snprintf(text, sizeof text, "%02d:%02d:%05.2f", hours, minutes, n[2]);
    return std::string(text);
}

std::optional<MetadataValue> valueOf(As as, const TagField& field) {
    switch (as) {
    case As::text: {
        std::string text = textOf(field.bytes);
        if (text.empty()) return std::nullopt;
        return text;
    }
    case As::comment:
        return commentOf(field);
    case As::version:
        return versionOf(field.bytes);
    default:
        break;
    }
    const std::vector<double>& n = field.numbers;
    if (n.empty()) return std::nullopt;
    // A zero denominator means that the value is unknown.
    for (double number : n)
        if (!std::isfinite(number)) return std::nullopt;
    // Damaged fields may have any type, so the number may not fit.
    auto whole = [](double number) {
        return static_cast<long>(std::clamp(number, -2147483648., 2147483647.));
    };
    switch (as) {
    case As::integer:
        return whole(n[0]);
    case As::real:
        return n[0];
    case As::integers: {
        std::vector<long> all;
        for (double number : n) all.push_back(whole(number));
        return all;
    }
    case As::reals:
        return n;
    case As::degrees:
        return sexagesimal(n);
    default:
        return clockOf(n);
    }
}

// ----------------------------------------------------------------------------------------- writing EXIF

/// The types of TIFF 6.0's fields.
enum FieldType : std::uint16_t {
    byteType = 1,
    asciiType,
    shortType,
    longType,
    rationalType,
    undefinedType = 7,
    signedLongType = 9,
    signedRationalType
};

/// A directory's entry as it is written, with its values in little-endian order.
struct Field {
    std::uint16_t tag;
    FieldType type;
    std::uint32_t count;
    std::string bytes;
};

void put(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i);
}

/// Numerator and denominator: the simplest fraction next to the number, by its continued fraction.
void putRational(std::string& out, double number) {
    double size = std::min(std::fabs(number), 4294967295.);
    double x = size, p0 = 0, q0 = 1, p1 = 1, q1 = 0;
    for (int i = 0; i < 32; ++i) {
        double whole = std::floor(x), p = whole * p1 + p0, q = whole * q1 + q0;
        if (p > 2147483647. || q > 10000000.) break;
        p0 = p1, q0 = q1, p1 = p, q1 = q;
        if (std::fabs(p / q - size) <= 1e-12 * size || x == whole) break;
        x = 1 / (x - whole);
    }
    if (q1 == 0) p1 = size, q1 = 1; // beyond what the loop takes
    auto numerator = static_cast<std::int64_t>(number < 0 ? -p1 : p1);
    put(out, static_cast<std::uint32_t>(numerator), 4);
    put(out, static_cast<std::uint32_t>(q1), 4);
}

Field reals(std::uint16_t tag, const std::vector<double>& numbers) {
    bool negative = std::any_of(numbers.begin(), numbers.end(), [](double n) { return n < 0; });
    Field field{
        tag, negative ? signedRationalType : rationalType, static_cast<std::uint32_t>(numbers.size()), {}};
    for (double number : numbers) putRational(field.bytes, number);
    return field;
}

Field bytesField(std::uint16_t tag, FieldType type, std::string bytes) {
    auto count = static_cast<std::uint32_t>(bytes.size());
    return {tag, type, count, std::move(bytes)};
}

/// Tags of one byte, or several, that are no text.
FieldType byteTypeOf(const Tag& tag) {
    bool undefined = tag.directory == exif && (tag.number == 0xA300 || tag.number == 0xA301 ||
                                               tag.number == 0x9101 || tag.number == 0xA302);
    bool byte = tag.directory == gps && (tag.number == 0x00 || tag.number == 0x05);
    return undefined ? undefinedType : byte ? byteType : shortType;
}

Field integers(const Tag& tag, const std::vector<double>& numbers) {
    FieldType type = byteTypeOf(tag);
    bool large = std::any_of(numbers.begin(), numbers.end(), [](double n) { return n > 65535; });
    bool negative = std::any_of(numbers.begin(), numbers.end(), [](double n) { return n < 0; });
    if (type == shortType && (large || negative)) type = negative ? signedLongType : longType;
    Field field{tag.number, type, static_cast<std::uint32_t>(numbers.size()), {}};
    for (double number : numbers)
        put(field.bytes, static_cast<std::uint32_t>(static_cast<std::int64_t>(number)),
            type == shortType                            ? 2
            : type == longType || type == signedLongType ? 4
                                                         : 1);
    return field;
}

/// The numbers of a value; a text has none.
std::vector<double> numbersOf(const MetadataValue& value) {
    if (auto* list = std::get_if<std::vector<double>>(&value)) return *list;
    if (auto* list = std::get_if<std::vector<long>>(&value)) return {list->begin(), list->end()};
    if (auto* real = std::get_if<double>(&value)) return {*real};
    if (auto* integer = std::get_if<long>(&value)) return {static_cast<double>(*integer)};
    if (auto* flag = std::get_if<bool>(&value)) return {*flag ? 1. : 0.};
    return {};
}

/// What valueOf() reads as that value; nothing for one of another kind than the tag's.
std::optional<Field> fieldFor(const Tag& tag, const MetadataValue& value) {
    auto* text = std::get_if<std::string>(&value);
    std::vector<double> n = numbersOf(value);
    for (double number : n)
        if (!std::isfinite(number)) return std::nullopt;
    switch (tag.as) {
    case As::text:
        if (text) return bytesField(tag.number, asciiType, *text + '\0');
        break;
    case As::comment:
        // Eight zeros: the encoding is not told.
        if (text) return bytesField(tag.number, undefinedType, std::string(8, '\0') + *text);
        break;
    case As::clock: {
        int hours = 0, minutes = 0;
        double seconds = 0;
        if (text && std::sscanf(text->c_str(), "%d:%d:%lf", &hours, &minutes, &seconds) == 3)
            return reals(tag.number, {double(hours), double(minutes), seconds});
        break;
    }
    case As::version:
        if (n.size() >= 2) {
            char digits[16];
            std::snprintf(digits, sizeof digits, "%02d%d%d", int(n[0]) % 100, int(n[1]) % 10,
                          n.size() > 2 ? int(n[2]) % 10 : 0);
            return bytesField(tag.number, undefinedType, digits);
        }
        break;
    case As::degrees:
        if (n.size() == 1) {
            double minutes = (n[0] - std::floor(n[0])) * 60;
            return reals(tag.number,
                         {std::floor(n[0]), std::floor(minutes), (minutes - std::floor(minutes)) * 60});
        }
        break;
    case As::integer:
    case As::integers:
        if (!n.empty()) return integers(tag, n);
        break;
    case As::real:
    case As::reals:
        if (!n.empty()) return reals(tag.number, n);
        break;
    }
    return std::nullopt;
}

/// Of the stored pixels; the format itself has these.
bool describesPixels(const Tag& tag) {
    constexpr std::uint16_t ones[] = {0x0103, 0x0106, 0x0112, 0x011A, 0x011B, 0x0128, 0x0142, 0x0143};
    return tag.directory == image &&
           std::find(std::begin(ones), std::end(ones), tag.number) != std::end(ones);
}

/// A directory that begins at `offset` of the block, and behind it the values that do not fit its entries.
std::string directoryBytes(std::vector<Field> fields, std::size_t offset) {
    std::sort(fields.begin(), fields.end(), [](const Field& a, const Field& b) { return a.tag < b.tag; });
    std::string entries, values;
    std::size_t behind = offset + 2 + 12 * fields.size() + 4;
    put(entries, static_cast<std::uint32_t>(fields.size()), 2);
    for (const Field& field : fields) {
        put(entries, field.tag, 2);
        put(entries, field.type, 2);
        put(entries, field.count, 4);
        if (field.bytes.size() <= 4) {
            entries += field.bytes + std::string(4 - field.bytes.size(), '\0');
            continue;
        }
        put(entries, static_cast<std::uint32_t>(behind + values.size()), 4);
        values += field.bytes;
        if (values.size() % 2) values += '\0';
    }
    put(entries, 0, 4);
    return entries + values;
}

Field pointer(std::uint16_t tag, std::size_t offset) {
    Field field{tag, longType, 1, {}};
    put(field.bytes, static_cast<std::uint32_t>(offset), 4);
    return field;
}

} // namespace

std::vector<std::uint8_t> exifBlock(const Metadata& metadata, int orientation) {
    std::vector<Field> fields[3];
    for (const Tag& tag : tags) {
        const MetadataValue* value =
            describesPixels(tag) ? nullptr : metadata.find(nameOf(tag.directory), tag.key);
        if (std::optional<Field> field = value ? fieldFor(tag, *value) : std::nullopt)
            fields[static_cast<int>(tag.directory)].push_back(std::move(*field));
    }
    auto& [ofImage, ofExif, ofGPS] = fields;
    if (ofImage.empty() && ofExif.empty() && ofGPS.empty() && orientation == 1) return {};
    Field turned{0x0112, shortType, 1, {}};
    put(turned.bytes, static_cast<std::uint32_t>(orientation), 2);
    ofImage.push_back(turned);
    // The other two directories lie behind the first; its length does not depend on where they are.
    constexpr std::size_t header = 8;
    if (!ofExif.empty()) ofImage.push_back(pointer(0x8769, 0));
    if (!ofGPS.empty()) ofImage.push_back(pointer(0x8825, 0));
    std::size_t exifAt = header + directoryBytes(ofImage, header).size();
    std::string exifBytes = ofExif.empty() ? "" : directoryBytes(ofExif, exifAt);
    std::size_t gpsAt = exifAt + exifBytes.size();
    std::string gpsBytes = ofGPS.empty() ? "" : directoryBytes(ofGPS, gpsAt);
    for (Field& field : ofImage) {
        if (field.tag == 0x8769) field = pointer(0x8769, exifAt);
        if (field.tag == 0x8825) field = pointer(0x8825, gpsAt);
    }
    std::string block{'I', 'I', 42, 0, header, 0, 0, 0};
    block += directoryBytes(ofImage, header) + exifBytes + gpsBytes;
    return {block.begin(), block.end()};
}

const MetadataValue* Metadata::find(std::string_view dictionary, std::string_view key) const {
    for (const MetadataEntry& entry : entries_)
        if (dictionary == entry.dictionary && key == entry.key) return &entry.value;
    return nullptr;
}

double Metadata::number(std::string_view dictionary, std::string_view key) const {
    const MetadataValue* value = find(dictionary, key);
    if (!value) return 0;
    if (const long* integer = std::get_if<long>(value)) return static_cast<double>(*integer);
    const double* real = std::get_if<double>(value);
    return real ? *real : 0;
}

Metadata metadataFrom(const ValueOfKey& valueOf) {
    Metadata metadata;
    for (const Tag& tag : tags)
        if (std::optional<MetadataValue> value = valueOf(nameOf(tag.directory), tag.key))
            metadata.add(nameOf(tag.directory), tag.key, std::move(*value));
    auto addIPTC = [&](const char* key) {
        if (std::optional<MetadataValue> value = valueOf("{IPTC}", key))
            metadata.add("{IPTC}", key, std::move(*value));
    };
    for (const IPTCProperty& property : iptcProperties()) addIPTC(property.key);
    addIPTC("StarRating");
    return metadata;
}

void addTags(Metadata& metadata, TagDirectory directory, const FieldOfTag& fieldOf) {
    for (const Tag& tag : tags) {
        if (tag.directory != directory || metadata.find(nameOf(directory), tag.key)) continue;
        std::optional<TagField> field = fieldOf(tag.number);
        if (!field) continue;
        if (std::optional<MetadataValue> value = valueOf(tag.as, *field))
            metadata.add(nameOf(directory), tag.key, std::move(*value));
    }
}

} // namespace imageio
