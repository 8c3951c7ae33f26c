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

} // namespace

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

void addTags(Metadata& metadata, TagDirectory directory, const FieldOfTag& fieldOf) {
    for (const Tag& tag : tags) {
        if (tag.directory != directory) continue;
        std::optional<TagField> field = fieldOf(tag.number);
        if (!field) continue;
        if (std::optional<MetadataValue> value = valueOf(tag.as, *field))
            metadata.add(nameOf(directory), tag.key, std::move(*value));
    }
}

} // namespace imageio
