// IPTC and XMP: what files say, and what is written.
#import <Foundation/Foundation.h>

#include "files.h"

#include <testing/cocoa.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>

#include <png.h>
#include <tiffio.h>

namespace {

NSDictionary* propertiesOf(const Bytes& file) {
    return [(NSDictionary*)CGImageSourceCopyPropertiesAtIndex(source(file).get(), 0, nullptr) autorelease];
}

NSDictionary* iptcOf(const Bytes& file) { return [propertiesOf(file) objectForKey:@"{IPTC}"]; }

bool contains(const Bytes& file, std::string_view text) {
    return std::string_view(reinterpret_cast<const char*>(file.data()), file.size()).find(text) !=
           std::string_view::npos;
}

/// A JPEG file with a marker after JFIF's.
Bytes jpegWith(int number, std::string_view name, std::string_view contents) {
    Bytes file = jpegFile(16, 16, 3);
    std::string marker = {char(0xFF), char(0xE0 + number)};
    std::size_t size = 2 + name.size() + contents.size();
    marker += {char(size >> 8), char(size)};
    marker += std::string(name) + std::string(contents);
    std::size_t at = 4 + file[4] * 256u + file[5];
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), marker.begin(), marker.end());
    return file;
}

constexpr std::string_view xmpName("http://ns.adobe.com/xap/1.0/", 29), photoshopName("Photoshop 3.0", 14);

std::string dataset(int record, int number, std::string_view text) {
    std::string bytes = {0x1C, char(record), char(number), char(text.size() >> 8), char(text.size())};
    return bytes + std::string(text);
}

/// Photoshop's resources: one of another kind, and IPTC's.
std::string resources(std::string_view record) {
    std::string all("8BIM\x03\xED\0\0\0\0\0\x04"
                    "abcd",
                    16);
    all += std::string("8BIM\x04\x04\0\0\0\0", 10);
    all += {char(record.size() >> 8), char(record.size())};
    all += record;
    if (record.size() % 2) all += '\0';
    return all;
}

std::string packet(std::string_view properties) {
    return "<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>"
           "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
           "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'"
           " xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:tiff='http://ns.adobe.com/tiff/1.0/'"
           " xmlns:exif='http://ns.adobe.com/exif/1.0/' "
           "xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/'>" +
           std::string(properties) + "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end='w'?>";
}

const std::string somePacket = packet(
    "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Harbour &amp; sea</rdf:li></rdf:Alt></dc:title>"
    "<dc:subject><rdf:Bag><rdf:li>boats</rdf:li><rdf:li>Zo\xC3\xAB</rdf:li></rdf:Bag></dc:subject>"
    "<photoshop:City>Porto</photoshop:City><xmp:Rating>4</xmp:Rating>"
    "<tiff:Make>Maker</tiff:Make><exif:FNumber>28/10</exif:FNumber><tiff:Orientation>6</tiff:Orientation>");

void expectSomePacket(const Bytes& file) {
    ASSERT_TRUE(decode(file));
    NSDictionary *properties = propertiesOf(file), *iptc = [properties objectForKey:@"{IPTC}"];
    EXPECT_EQ(str([iptc objectForKey:@"ObjectName"]), "Harbour & sea");
    EXPECT_EQ(str([[iptc objectForKey:@"Keywords"] componentsJoinedByString:@" "]), "boats Zo\xC3\xAB");
    EXPECT_EQ(str([iptc objectForKey:@"City"]), "Porto");
    EXPECT_EQ([[iptc objectForKey:@"StarRating"] intValue], 4);
    EXPECT_EQ(str([[properties objectForKey:@"{TIFF}"] objectForKey:@"Make"]), "Maker");
    EXPECT_NEAR([[[properties objectForKey:@"{Exif}"] objectForKey:@"FNumber"] doubleValue], 2.8, 1e-6);
    EXPECT_EQ([[properties objectForKey:@"Orientation"] intValue], 6);
}

/// Every key, with a value that is not the others'.
NSDictionary* everything() {
    NSMutableDictionary* all = [NSMutableDictionary dictionary];
    for (NSString* key in @[
             @"ObjectTypeReference",
             @"ObjectName",
             @"EditStatus",
             @"EditorialUpdate",
             @"Urgency",
             @"Category",
             @"FixtureIdentifier",
             @"ReleaseTime",
             @"SpecialInstructions",
             @"ActionAdvised",
             @"DigitalCreationDate",
             @"OriginatingProgram",
             @"ProgramVersion",
             @"ObjectCycle",
             @"City",
             @"SubLocation",
             @"Province/State",
             @"Country/PrimaryLocationCode",
             @"Country/PrimaryLocationName",
             @"OriginalTransmissionReference",
             @"Headline",
             @"Credit",
             @"Source",
             @"CopyrightNotice",
             @"Caption/Abstract",
             @"ImageType",
             @"ImageOrientation",
             @"LanguageIdentifier"
         ])
        [all setObject:[key stringByAppendingString:@" \u00e9"] forKey:key];
    for (NSString* key in @[
             @"ObjectAttributeReference", @"SubjectReference", @"SupplementalCategory", @"Keywords",
             @"ContentLocationCode", @"ContentLocationName", @"ReferenceService", @"ReferenceNumber",
             @"Byline", @"BylineTitle", @"Contact", @"Writer/Editor"
         ])
        [all setObject:@[ [key stringByAppendingString:@" 1"], [key stringByAppendingString:@" 2"] ]
                forKey:key];
    [all addEntriesFromDictionary:@{
        @"DateCreated" : @"20120304",
        @"TimeCreated" : @"050607+0100",
        @"ReleaseDate" : @"20130405",
        @"ExpirationDate" : @"20140506",
        @"ExpirationTime" : @"080910-0500",
        @"DigitalCreationTime" : @"111213+0000",
        @"ReferenceDate" : @[ @"20010203", @"20020304" ],
        @"StarRating" : @5,
    }];
    return all;
}

Bytes written(const char* type, NSDictionary* properties) {
    auto picture = decode(pngFile(20, 20, PNG_COLOR_TYPE_RGB));
    return encode({picture.get()}, type, (CFDictionaryRef)properties);
}

} // namespace

TEST(IPTC, IsReadFromPhotoshopsResources) {
    std::string record = dataset(1, 90, "\033%G") + dataset(2, 0, std::string_view("\0\4", 2)) +
                         dataset(2, 5, "Harbour") + dataset(2, 25, "boats") + dataset(2, 25, "Zo\xC3\xAB") +
                         dataset(2, 55, "20120304") + dataset(2, 120, "a caption") +
                         dataset(2, 199, "unknown");
    NSDictionary* iptc = iptcOf(jpegWith(13, photoshopName, resources(record)));
    EXPECT_EQ([iptc count], 4u);
    EXPECT_EQ(str([iptc objectForKey:@"ObjectName"]), "Harbour");
    EXPECT_EQ(str([[iptc objectForKey:@"Keywords"] componentsJoinedByString:@" "]), "boats Zo\xC3\xAB");
    EXPECT_EQ(str([iptc objectForKey:@"DateCreated"]), "20120304");
    EXPECT_EQ(str([iptc objectForKey:@"Caption/Abstract"]), "a caption");
    // Text that is not UTF-8 is Latin-1.
    iptc = iptcOf(jpegWith(13, photoshopName, resources(dataset(2, 90, "K\xF6ln"))));
    EXPECT_EQ(str([iptc objectForKey:@"City"]), "K\xC3\xB6ln");
}

TEST(IPTC, IsWrittenAsItWasRead) {
    NSDictionary* all = everything();
    for (const char* type : {"public.jpeg", "public.tiff"}) {
        NSDictionary* iptc = iptcOf(written(type, @{@"{IPTC}" : all}));
        for (NSString* key in all)
            EXPECT_TRUE([[iptc objectForKey:key] isEqual:[all objectForKey:key]])
                << type << ' ' << str(key) << ": " << str([[iptc objectForKey:key] description]);
        EXPECT_EQ([iptc count], [all count]);
    }
}

TEST(IPTC, OtherFormatsKeepItAsXMP) {
    NSDictionary* all = everything();
    for (const char* type : {"public.png", "org.webmproject.webp"}) {
        Bytes file = written(type, @{@"{IPTC}" : all});
        NSDictionary* iptc = iptcOf(file);
        for (NSString* key in @[
                 @"ObjectName",
                 @"Keywords",
                 @"Urgency",
                 @"Category",
                 @"SupplementalCategory",
                 @"Byline",
                 @"City",
                 @"SubLocation",
                 @"Province/State",
                 @"Country/PrimaryLocationCode",
                 @"Country/PrimaryLocationName",
                 @"OriginalTransmissionReference",
                 @"Headline",
                 @"Credit",
                 @"Source",
                 @"CopyrightNotice",
                 @"Caption/Abstract",
                 @"SpecialInstructions",
                 @"DateCreated",
                 @"StarRating"
             ])
            EXPECT_TRUE([[iptc objectForKey:key] isEqual:[all objectForKey:key]])
                << type << ' ' << str(key) << ": " << str([[iptc objectForKey:key] description]);
    }
}

TEST(IPTC, OneTextStandsForSeveralAndTheFirstOfSeveralForOne) {
    NSDictionary* iptc = iptcOf(written(
        "public.jpeg",
        @{@"{IPTC}" : @{@"Keywords" : @"alone", @"City" : @[ @"first", @"second" ], @"Credit" : @7}}));
    EXPECT_TRUE([[iptc objectForKey:@"Keywords"] isEqual:@[ @"alone" ]]);
    EXPECT_EQ(str([iptc objectForKey:@"City"]), "first");
    EXPECT_EQ([iptc objectForKey:@"Credit"], nil);
}

TEST(IPTC, WithoutPropertiesNothingIsWritten) {
    for (const char* type : {"public.jpeg", "public.tiff", "public.png", "org.webmproject.webp"}) {
        Bytes file = written(type, @{});
        ASSERT_FALSE(file.empty()) << type;
        for (const char* mark : {"Photoshop", "adobe", "Exif", "EXIF", "XMP"})
            EXPECT_FALSE(contains(file, mark)) << type << ' ' << mark;
    }
}

TEST(XMP, IsReadInEveryFormatThatCarriesIt) {
    expectSomePacket(jpegWith(1, xmpName, somePacket));
    Bytes png = pngFile(16, 16, PNG_COLOR_TYPE_RGB);
    // An iTXt chunk before the pixels.
    std::string chunk = std::string("iTXtXML:com.adobe.xmp\0\0\0\0\0", 26) + somePacket;
    std::string bytes;
    auto put = [&](std::size_t v) { bytes += {char(v >> 24), char(v >> 16), char(v >> 8), char(v)}; };
    put(chunk.size() - 4);
    bytes += chunk;
    std::uint32_t crc = ~0u;
    for (unsigned char c : chunk) {
        crc ^= c;
        for (int i = 0; i < 8; ++i) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    put(~crc);
    png.insert(png.begin() + 33, bytes.begin(), bytes.end());
    expectSomePacket(png);
}

TEST(XMP, DoesNotReplaceWhatOtherBlocksSay) {
    Bytes file = jpegWith(1, xmpName, somePacket);
    Bytes other = jpegWith(13, photoshopName, resources(dataset(2, 5, "Of IPTC")));
    // Both markers, whichever is first.
    std::size_t at = 4 + other[4] * 256u + other[5], size = 2 + other[at + 2] * 256u + other[at + 3];
    for (std::size_t place : {at, at + 2 + file[at + 2] * 256u + file[at + 3]}) {
        Bytes both = file;
        both.insert(both.begin() + static_cast<std::ptrdiff_t>(place),
                    other.begin() + static_cast<std::ptrdiff_t>(at),
                    other.begin() + static_cast<std::ptrdiff_t>(at + size));
        EXPECT_EQ(str([iptcOf(both) objectForKey:@"ObjectName"]), "Of IPTC");
        EXPECT_EQ(str([iptcOf(both) objectForKey:@"City"]), "Porto");
    }
}

TEST(XMP, HostilePacketsAreLeftOut) {
    auto reads = [](const std::string& text) {
        Bytes written = jpegWith(1, xmpName, text);
        EXPECT_TRUE(decode(written));
        return [iptcOf(written) objectForKey:@"City"] != nil;
    };
    auto nested = [](int levels) {
        std::string open, close;
        for (int i = 0; i < levels; ++i) {
            open += "<dc:a rdf:parseType='Resource'>";
            close += "</dc:a>";
        }
        return packet(open + close + "<photoshop:City>Porto</photoshop:City>");
    };
    EXPECT_TRUE(reads(nested(40)));
    EXPECT_FALSE(reads(nested(60)));
    EXPECT_FALSE(reads(nested(1500)));
    std::string document = nested(0);
    document.insert(document.find("<x:xmpmeta"), "<!DOCTYPE x [<!ENTITY a 'b'>]>");
    EXPECT_FALSE(reads(document));
    EXPECT_FALSE(reads(nested(0).substr(0, 300)));
    EXPECT_FALSE(reads("<"));
    EXPECT_FALSE(reads(""));
}

TEST(IPTC, DamageNeverLosesThePicture) {
    std::string record = dataset(1, 90, "\033%G") + dataset(2, 5, "Harbour") + dataset(2, 55, "20120304") +
                         dataset(2, 60, "050607+0100");
    std::string iptc = resources(record), xmp = somePacket;
    for (std::string* block : {&iptc, &xmp})
        for (std::size_t at = 0; at < block->size(); ++at) {
            @autoreleasepool {
                std::string flipped = *block;
                flipped[at] = static_cast<char>(flipped[at] ^ (at % 2 ? 0xFF : 0x01));
                Bytes file =
                    jpegWith(block == &iptc ? 13 : 1, block == &iptc ? photoshopName : xmpName, flipped);
                EXPECT_TRUE(decode(file)) << at;
                EXPECT_EQ([[propertiesOf(file) objectForKey:@"PixelWidth"] intValue], 16) << at;
            }
        }
}

TEST(AddImageFromSource, KeepsReplacesAndTakesAway) {
    Bytes file = written(
        "public.jpeg", @{
            @"{IPTC}" : @{@"City" : @"Porto", @"Credit" : @"agency", @"Headline" : @"ships"},
            @"{TIFF}" : @{@"Make" : @"Maker"},
            @"{GPS}" : @{@"LatitudeRef" : @"N", @"Latitude" : @41.1},
        });
    auto copied = [&](NSDictionary* changes) {
        NSMutableData* data = [NSMutableData data];
        auto destination = cg::Retained<CGImageDestinationRef>::adopt(CGImageDestinationCreateWithData(
            (CFMutableDataRef)data, (CFStringRef) @"public.jpeg", 1, nullptr));
        CGImageDestinationAddImageFromSource(destination.get(), source(file).get(), 0,
                                             (CFDictionaryRef)changes);
        EXPECT_TRUE(CGImageDestinationFinalize(destination.get()));
        auto* bytes = static_cast<const std::uint8_t*>([data bytes]);
        return propertiesOf(Bytes(bytes, bytes + [data length]));
    };
    NSDictionary* all = copied(nil);
    EXPECT_EQ(str([[all objectForKey:@"{IPTC}"] objectForKey:@"City"]), "Porto");
    EXPECT_EQ(str([[all objectForKey:@"{TIFF}"] objectForKey:@"Make"]), "Maker");
    EXPECT_NEAR([[[all objectForKey:@"{GPS}"] objectForKey:@"Latitude"] doubleValue], 41.1, 1e-6);
    NSDictionary* changed = copied(@{
        @"{GPS}" : [NSNull null],
        @"{IPTC}" : @{@"City" : @"Lisbon", @"Credit" : [NSNull null]},
    });
    EXPECT_EQ([changed objectForKey:@"{GPS}"], nil);
    EXPECT_TRUE([[changed objectForKey:@"{IPTC}"] isEqual:(@{@"City" : @"Lisbon", @"Headline" : @"ships"})]);
    EXPECT_EQ(str([[changed objectForKey:@"{TIFF}"] objectForKey:@"Make"]), "Maker");
}
