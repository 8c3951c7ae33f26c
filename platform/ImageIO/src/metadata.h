// Metadata in plain C++: the fields of EXIF, IPTC and the file formats under their keys.
#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace imageio {

/// A boolean, a number, text in UTF-8 (or else Latin-1), or an array of numbers or texts.
using MetadataValue = std::variant<bool, long, double, std::string, std::vector<long>, std::vector<double>,
                                   std::vector<std::string>>;

struct MetadataEntry {
    /// The keys of the dictionary, such as "{Exif}", and of the value in it.
    const char *dictionary, *key;
    MetadataValue value;
};

class Metadata {
  public:
    void add(const char* dictionary, const char* key, MetadataValue value) {
        entries_.push_back({dictionary, key, std::move(value)});
    }
    const MetadataValue* find(std::string_view dictionary, std::string_view key) const;
    /// The same as a number; 0 if there is none.
    double number(std::string_view dictionary, std::string_view key) const;

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

  private:
    std::vector<MetadataEntry> entries_;
};

/// The directories of EXIF and TIFF that hold tags.
enum class TagDirectory { image, exif, gps };

/// A field as the format's library returns it: numbers, or the bytes of a text.
struct TagField {
    std::vector<double> numbers;
    std::string bytes;
    std::endian order = std::endian::little;
};

/// Looks each known tag of a directory up with `fieldOf` and adds the values that make sense, except those
/// that are there.
using FieldOfTag = std::function<std::optional<TagField>(std::uint16_t tag)>;
void addTags(Metadata& metadata, TagDirectory directory, const FieldOfTag& fieldOf);

/// A data set of IPTC's application record.
struct IPTCProperty {
    std::uint16_t dataset;
    const char* key;
    /// An array of texts; otherwise one text.
    bool several = false;
};
std::span<const IPTCProperty> iptcProperties();

/// Looks every known tag and property up under its keys: the names of the dictionary, such as "{Exif}", and
/// of the value.
using ValueOfKey = std::function<std::optional<MetadataValue>(const char* dictionary, const char* key)>;
Metadata metadataFrom(const ValueOfKey& valueOf);

/// An EXIF block without its mark; empty when there is nothing to say. What describes the stored pixels
/// (compression, resolution) is left to the format.
std::vector<std::uint8_t> exifBlock(const Metadata& metadata, int orientation);

/// These add what a block says and what is not there yet; of a damaged block, what can be read.

/// An EXIF block, with or without its mark.
void addExif(Metadata& metadata, std::span<const std::uint8_t> block);
/// IPTC's data sets as they are.
void addIPTC(Metadata& metadata, std::span<const std::uint8_t> record);
/// Photoshop's resources, in which JPEG files keep IPTC's data sets.
void addPhotoshop(Metadata& metadata, std::span<const std::uint8_t> resources);
/// What an XMP packet says that IPTC, EXIF and TIFF have keys for. Packets above 1 MB and those of more than
/// 50 levels are left out.
void addXMP(Metadata& metadata, std::span<const std::uint8_t> packet);

/// The other way, for what {IPTC} holds; empty when that is nothing.
std::vector<std::uint8_t> iptcRecord(const Metadata& metadata);
std::vector<std::uint8_t> photoshopResources(const Metadata& metadata);
std::string xmpPacket(const Metadata& metadata);

} // namespace imageio
