// Metadata in plain C++: the fields of EXIF and of the file formats under their keys.
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

/// A boolean, a number, text in UTF-8 (or else Latin-1), or an array of numbers.
using MetadataValue = std::variant<bool, long, double, std::string, std::vector<long>, std::vector<double>>;

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

/// Looks each known tag of a directory up with `fieldOf` and adds the values that make sense.
using FieldOfTag = std::function<std::optional<TagField>(std::uint16_t tag)>;
void addTags(Metadata& metadata, TagDirectory directory, const FieldOfTag& fieldOf);

/// Looks every known tag up under its keys: the names of the dictionary, such as "{Exif}", and of the value.
using ValueOfKey = std::function<std::optional<MetadataValue>(const char* dictionary, const char* key)>;
Metadata metadataFrom(const ValueOfKey& valueOf);

/// An EXIF block without its mark; empty when there is nothing to say. What describes the stored pixels
/// (compression, resolution) is left to the format.
std::vector<std::uint8_t> exifBlock(const Metadata& metadata, int orientation);

/// Adds the tags of an EXIF block, with or without its mark; of a damaged block, those that can be read.
void addExif(Metadata& metadata, std::span<const std::uint8_t> block);

} // namespace imageio
