// Metadata blocks through exiv2: EXIF, IPTC and XMP, with all its exceptions and messages.
#include "metadata.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <mutex>
#include <new>

#include <exiv2/exiv2.hpp>

namespace imageio {

namespace {

/// A packet is a document of thousands of small objects while it is read.
constexpr std::size_t largestPacket = 1 << 20;
/// The library reads elements in elements by recursion.
constexpr int deepestPacket = 50;

constexpr const char *ratingProperty = "Xmp.xmp.Rating", *dateProperty = "Xmp.photoshop.DateCreated";

/// "20120304" for "2012-03-04" and whatever follows.
std::optional<MetadataValue> iptcDate(const std::string& text) {
    int year = 0, month = 0, day = 0, end = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d%n", &year, &month, &day, &end) != 3 || end != 10) return {};
    return text.substr(0, 4) + text.substr(5, 2) + text.substr(8, 2);
}

/// Held while the library works: one toolkit for XMP serves the process.
struct Library {
    Library() : lock(mutex) {
        if (prepared) return;
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        prepared = Exiv2::XmpParser::initialize();
    }

    static inline std::mutex mutex;
    static inline bool prepared = false;
    std::lock_guard<std::mutex> lock;
};

/// Runs `body`; what it throws for damaged blocks is dropped with what was not read.
template <class Body>
void withLibrary(Body body) {
    Library library;
    try {
        body();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
    }
}

std::string bytesOf(const Exiv2::Value& value, Exiv2::ByteOrder order) {
    std::string bytes(static_cast<std::size_t>(std::max(value.size(), 0l)), '\0');
    if (!bytes.empty()) value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), order);
    return bytes;
}

TagField fieldOf(const Exiv2::Exifdatum& datum, Exiv2::ByteOrder order) {
    TagField field;
    field.order = order == Exiv2::bigEndian ? std::endian::big : std::endian::little;
    Exiv2::TypeId type = datum.typeId();
    bool isBytes = type == Exiv2::asciiString || type == Exiv2::undefined || type == Exiv2::unsignedByte ||
                   type == Exiv2::comment;
    if (isBytes) field.bytes = bytesOf(datum.value(), order);
    switch (type) {
    case Exiv2::unsignedRational:
    case Exiv2::signedRational:
        for (long i = 0; i < datum.count(); ++i) {
            // The library returns all fractions as signed ones.
            auto [above, below] = datum.toRational(i);
            bool isSigned = type == Exiv2::signedRational;
            double numerator = isSigned ? double(above) : double(static_cast<std::uint32_t>(above));
            double denominator = isSigned ? double(below) : double(static_cast<std::uint32_t>(below));
            field.numbers.push_back(denominator != 0 ? numerator / denominator
                                                     : std::numeric_limits<double>::infinity());
        }
        break;
    case Exiv2::unsignedLong:
        for (long i = 0; i < datum.count(); ++i)
            field.numbers.push_back(static_cast<std::uint32_t>(datum.toLong(i)));
        break;
    case Exiv2::unsignedByte:
    case Exiv2::signedByte:
    case Exiv2::undefined:
    case Exiv2::unsignedShort:
    case Exiv2::signedShort:
    case Exiv2::signedLong:
        for (long i = 0; i < datum.count(); ++i)
            field.numbers.push_back(static_cast<double>(datum.toLong(i)));
        break;
    default:
        break;
    }
    return field;
}

void addAll(Metadata& metadata, const Exiv2::ExifData& data, Exiv2::ByteOrder order) {
    for (auto [directory, group] : {std::pair(TagDirectory::image, "Image"),
                                    {TagDirectory::exif, "Photo"},
                                    {TagDirectory::gps, "GPSInfo"}})
        addTags(metadata, directory, [&, group = group](std::uint16_t tag) -> std::optional<TagField> {
            for (const Exiv2::Exifdatum& datum : data)
                if (datum.tag() == tag && datum.groupName() == group) return fieldOf(datum, order);
            return std::nullopt;
        });
}

void addAll(Metadata& metadata, const Exiv2::IptcData& data) {
    for (const IPTCProperty& property : iptcProperties()) {
        if (metadata.find("{IPTC}", property.key)) continue;
        std::vector<std::string> texts;
        for (const Exiv2::Iptcdatum& datum : data)
            if (datum.record() == 2 && datum.tag() == property.dataset)
                texts.push_back(bytesOf(datum.value(), Exiv2::bigEndian));
        if (texts.empty()) continue;
        if (property.several)
            metadata.add("{IPTC}", property.key, std::move(texts));
        else
            metadata.add("{IPTC}", property.key, std::move(texts[0]));
    }
}

/// Whether the document is small and flat enough for the library, which itself refuses document types.
bool isSafe(std::string_view packet) {
    if (packet.size() > largestPacket) return false;
    int depth = 0;
    for (std::size_t at = packet.find('<'); at != packet.npos; at = packet.find('<', at + 1)) {
        char next = at + 1 < packet.size() ? packet[at + 1] : ' ';
        std::size_t end = packet.find('>', at);
        if (next == '?' || next == '!') continue;
        bool empty = end != packet.npos && packet[end - 1] == '/';
        if (next == '/')
            --depth;
        else if (!empty && ++depth > deepestPacket)
            return false;
    }
    return true;
}

Exiv2::IptcData iptcOf(const Metadata& metadata) {
    Exiv2::IptcData data;
    for (const IPTCProperty& property : iptcProperties()) {
        const MetadataValue* value = metadata.find("{IPTC}", property.key);
        if (!value) continue;
        std::vector<std::string> texts;
        if (auto* one = std::get_if<std::string>(value)) texts.push_back(*one);
        if (auto* several = std::get_if<std::vector<std::string>>(value)) texts = *several;
        if (!property.several && texts.size() > 1) texts.resize(1);
        for (const std::string& text : texts) {
            auto typed = Exiv2::Value::create(Exiv2::IptcDataSets::dataSetType(property.dataset, 2));
            // A text that is no date is written as it is.
            if (typed->read(reinterpret_cast<const Exiv2::byte*>(text.data()), static_cast<long>(text.size()),
                            Exiv2::bigEndian) != 0) {
                typed = Exiv2::Value::create(Exiv2::string);
                typed->read(text);
            }
            data.add(Exiv2::IptcKey(property.dataset, 2), typed.get());
        }
    }
    // Envelope record, coded character set: UTF-8.
    if (!data.empty()) data["Iptc.Envelope.CharacterSet"] = "\033%G";
    return data;
}

std::vector<std::uint8_t> vectorOf(const Exiv2::DataBuf& data) {
    return data.pData_ ? std::vector<std::uint8_t>(data.pData_, data.pData_ + data.size_)
                       : std::vector<std::uint8_t>();
}

} // namespace

void addExif(Metadata& metadata, std::span<const std::uint8_t> block) {
    static constexpr char mark[] = "Exif\0";
    constexpr std::size_t markSize = sizeof mark;
    if (block.size() > markSize && std::equal(mark, mark + markSize, block.begin()))
        block = block.subspan(markSize);
    if (block.empty()) return;
    withLibrary([&] {
        Exiv2::ExifData data;
        Exiv2::ByteOrder order =
            Exiv2::ExifParser::decode(data, block.data(), static_cast<std::uint32_t>(block.size()));
        addAll(metadata, data, order);
    });
}

void addIPTC(Metadata& metadata, std::span<const std::uint8_t> record) {
    if (record.empty()) return;
    withLibrary([&] {
        Exiv2::IptcData data;
        if (Exiv2::IptcParser::decode(data, record.data(), static_cast<std::uint32_t>(record.size())) == 0)
            addAll(metadata, data);
    });
}

void addPhotoshop(Metadata& metadata, std::span<const std::uint8_t> resources) {
    const Exiv2::byte* record = nullptr;
    std::uint32_t header = 0, size = 0;
    withLibrary([&] {
        if (Exiv2::Photoshop::locateIptcIrb(resources.data(), static_cast<long>(resources.size()), &record,
                                            &header, &size) != 0)
            record = nullptr;
    });
    if (record) addIPTC(metadata, {record + header, size});
}

void addXMP(Metadata& metadata, std::span<const std::uint8_t> packet) {
    std::string text(packet.begin(), packet.end());
    if (!isSafe(text)) return;
    withLibrary([&] {
        Exiv2::XmpData data;
        if (Exiv2::XmpParser::decode(data, text) != 0) return;
        auto add = [&](const char* property, const char* key, auto valueOf) {
            auto found = data.findKey(Exiv2::XmpKey(property));
            if (found == data.end() || metadata.find("{IPTC}", key)) return;
            if (std::optional<MetadataValue> value = valueOf(*found))
                metadata.add("{IPTC}", key, std::move(*value));
        };
        // What the library does not convert.
        add(ratingProperty, "StarRating",
            [](const Exiv2::Xmpdatum& datum) { return std::optional<MetadataValue>(datum.toLong()); });
        add(dateProperty, "DateCreated",
            [](const Exiv2::Xmpdatum& datum) { return iptcDate(datum.toString()); });
        Exiv2::IptcData iptc;
        Exiv2::copyXmpToIptc(data, iptc);
        addAll(metadata, iptc);
        Exiv2::ExifData exif;
        Exiv2::copyXmpToExif(data, exif);
        addAll(metadata, exif, Exiv2::littleEndian);
    });
}

std::vector<std::uint8_t> iptcRecord(const Metadata& metadata) {
    std::vector<std::uint8_t> record;
    withLibrary([&] {
        if (Exiv2::IptcData data = iptcOf(metadata); !data.empty())
            record = vectorOf(Exiv2::IptcParser::encode(data));
    });
    return record;
}

std::vector<std::uint8_t> photoshopResources(const Metadata& metadata) {
    std::vector<std::uint8_t> resources;
    withLibrary([&] {
        if (Exiv2::IptcData data = iptcOf(metadata); !data.empty())
            resources = vectorOf(Exiv2::Photoshop::setIptcIrb(nullptr, 0, data));
    });
    return resources;
}

std::string xmpPacket(const Metadata& metadata) {
    std::string packet;
    withLibrary([&] {
        Exiv2::XmpData data;
        if (Exiv2::IptcData iptc = iptcOf(metadata); !iptc.empty()) Exiv2::copyIptcToXmp(iptc, data, "UTF-8");
        if (metadata.find("{IPTC}", "StarRating"))
            data[ratingProperty] = std::to_string(static_cast<long>(metadata.number("{IPTC}", "StarRating")));
        const MetadataValue* date = metadata.find("{IPTC}", "DateCreated");
        auto* digits = date ? std::get_if<std::string>(date) : nullptr;
        if (digits && digits->size() == 8)
            data[dateProperty] = digits->substr(0, 4) + '-' + digits->substr(4, 2) + '-' + digits->substr(6);
        if (data.empty()) return;
        std::string text;
        // One byte of padding; 0 would be 2 KB.
        if (Exiv2::XmpParser::encode(text, data, Exiv2::XmpParser::useCompactFormat, 1) == 0) packet = text;
    });
    return packet;
}

} // namespace imageio
