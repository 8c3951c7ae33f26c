// Files that are cut off, garbled or no images at all.
#include "files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <png.h>

namespace {

struct TestFile {
    const char* name;
    Bytes file;
};

std::vector<TestFile> testFiles() {
    return {{"JPEG", jpegFile(64, 64, 3)},
            {"CMYK JPEG", jpegFile(64, 64, 4)},
            {"PNG", pngFile(64, 64, PNG_COLOR_TYPE_RGB)},
            {"interlaced PNG", pngFile(64, 64, PNG_COLOR_TYPE_RGB_ALPHA, {.interlaced = true})},
            {"GIF", gifFile()},
            {"WebP", webpFile(64, 64, true)},
            {"BMP", bmpFile24()}};
}

} // namespace

TEST(Damage, CutOffFilesAreNotImages) {
    for (const TestFile& test : testFiles()) {
        ASSERT_TRUE(decode(test.file)) << test.name;
        for (double part : {0.99, 0.7, 0.5, 0.1}) {
            auto size = static_cast<std::size_t>(static_cast<double>(test.file.size()) * part);
            if (test.file.size() - size < 4) size = test.file.size() - 4;
            Bytes cut(test.file.begin(), test.file.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(decode(cut)) << test.name << " cut to " << part;
        }
    }
}

TEST(Damage, AnyCutEndsCleanly) {
    for (const TestFile& test : testFiles())
        for (std::size_t size = 0; size < test.file.size(); size += 1 + test.file.size() / 200)
            decode(Bytes(test.file.begin(), test.file.begin() + static_cast<std::ptrdiff_t>(size)));
}

TEST(Damage, AnyFlippedByteEndsCleanly) {
    for (const TestFile& test : testFiles()) {
        bool isPNG = std::strstr(test.name, "PNG");
        for (std::size_t at = 0; at < test.file.size(); at += 1 + test.file.size() / 300) {
            Bytes file = test.file;
            file[at] ^= 0x5A;
            auto image = decode(file);
            // Every byte of a PNG is covered by a checksum, or is part of a length, a type or the signature.
            if (isPNG) {
                EXPECT_FALSE(image) << test.name << " byte " << at;
            }
        }
    }
}

TEST(Damage, OtherDataAreNotImages) {
    EXPECT_FALSE(source({}));
    const char* text = "Dear reader, this is a letter and not a photograph.";
    EXPECT_FALSE(source(Bytes(text, text + std::strlen(text))));
    EXPECT_FALSE(cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithData(nullptr, nullptr)));
    EXPECT_FALSE(cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithURL(nullptr, nullptr)));
    EXPECT_EQ(CGImageSourceGetCount(nullptr), 0u);
    EXPECT_EQ(CGImageSourceCreateImageAtIndex(nullptr, 0, nullptr), nullptr);
}

TEST(Damage, AbsurdSizesAreRefused) {
    Bytes bmp = bmpFile24();
    for (std::size_t at : {18, 22}) {
        std::uint32_t huge = 0x7FFFFFF0;
        std::memcpy(&bmp[at], &huge, 4);
    }
    EXPECT_FALSE(decode(bmp));
    Bytes gif = gifFile();
    gif[6] = gif[7] = gif[8] = gif[9] = 0xFF;
    EXPECT_FALSE(decode(gif));
}
