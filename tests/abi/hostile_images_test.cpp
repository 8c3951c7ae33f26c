// Image files that somebody damaged on purpose: each gives nil or a picture, in bounded memory and time.
#include "plugin_test.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

#include <jpeglib.h>
#include <png.h>
#include <sys/resource.h>
#include <tiffio.h>
#include <unistd.h>
#include <webp/encode.h>

namespace {

using studio::Value;
using Bytes = std::string;

#if __has_feature(address_sanitizer)
// The sanitizer keeps freed memory, and needs memory for its shadows.
constexpr long memoryGrowth = 2000;
#else
constexpr long memoryGrowth = 700;
#endif

// The most memory that the process ever held, in MB.
long peakMemory() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// ------------------------------------------------------------------------------------------ the originals

// Smooth, with edges, so that every part of a decoder has work.
Bytes pixels(int width, int height, int samples) {
    Bytes result;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int s = 0; s < samples; ++s)
                result +=
                    static_cast<char>(s == 2 ? (x / 8 + y / 8) % 2 * 150 + 50 : (s ? y : x) * 255 / width);
    return result;
}

// Rows that are made one at a time, for pictures larger than memory.
using Row = std::function<void(int y, std::uint8_t* out)>;

Bytes png(int width, int height, int bits, int colorType, const Row& row, bool interlaced = false) {
    Bytes file;
    png_structp out = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(out);
    png_set_write_fn(
        out, &file,
        [](png_structp p, png_bytep data, std::size_t size) {
            static_cast<Bytes*>(png_get_io_ptr(p))->append(reinterpret_cast<char*>(data), size);
        },
        nullptr);
    png_set_compression_level(out, 1);
    png_set_filter(out, 0, PNG_FILTER_NONE);
    png_set_IHDR(out, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), bits,
                 colorType, interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(out, info);
    int passes = png_set_interlace_handling(out);
    std::vector<std::uint8_t> bytes(png_get_rowbytes(out, info));
    for (int pass = 0; pass < passes; ++pass)
        for (int y = 0; y < height; ++y) {
            row(y, bytes.data());
            png_write_row(out, bytes.data());
        }
    png_write_end(out, nullptr);
    png_destroy_write_struct(&out, &info);
    return file;
}

void writeJpeg(jpeg_compress_struct& info, int width, int height, const Row& row, bool progressive) {
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 90, TRUE);
    // Whole coefficients, so that a scan can be repeated without a contradiction.
    static const jpeg_scan_info scans[] = {
        {3, {0, 1, 2}, 0, 0, 0, 0}, {1, {0}, 1, 63, 0, 0}, {1, {1}, 1, 63, 0, 0}, {1, {2}, 1, 63, 0, 0}};
    if (progressive) {
        info.scan_info = scans;
        info.num_scans = 4;
    }
    jpeg_start_compress(&info, TRUE);
    std::vector<JSAMPLE> bytes(static_cast<std::size_t>(width) * 3);
    JSAMPROW line = bytes.data();
    for (int y = 0; y < height; ++y) {
        row(y, bytes.data());
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
}

Bytes jpeg(int width, int height, const Row& row, bool progressive) {
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    writeJpeg(info, width, height, row, progressive);
    jpeg_destroy_compress(&info);
    Bytes file(reinterpret_cast<char*>(data), size);
    std::free(data);
    return file;
}

Bytes fileWith(const std::function<void(const std::filesystem::path&)>& write) {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("kaz-original-" + std::to_string(getpid()));
    write(path);
    std::ifstream file(path, std::ios::binary);
    Bytes bytes(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(path);
    return bytes;
}

Bytes tiff(int width, int height, int compression, int rowsPerStrip, int tile, const Row& row) {
    return fileWith([&](const std::filesystem::path& path) {
        TIFF* out = TIFFOpen(path.c_str(), "w");
        for (auto [tag, value] :
             {std::pair(TIFFTAG_IMAGEWIDTH, width), std::pair(TIFFTAG_IMAGELENGTH, height),
              std::pair(TIFFTAG_BITSPERSAMPLE, 8), std::pair(TIFFTAG_SAMPLESPERPIXEL, 1),
              std::pair(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK),
              std::pair(TIFFTAG_COMPRESSION, compression),
              std::pair(tile ? TIFFTAG_TILEWIDTH : TIFFTAG_ROWSPERSTRIP, tile ? tile : rowsPerStrip)})
            TIFFSetField(out, static_cast<std::uint32_t>(tag), value);
        if (tile) TIFFSetField(out, TIFFTAG_TILELENGTH, tile);
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(tile ? tile * tile : width));
        for (int y = 0; tile && y < height; y += tile)
            for (int x = 0; x < width; x += tile)
                TIFFWriteTile(out, bytes.data(), static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                              0, 0);
        for (int y = 0; !tile && y < height; ++y) {
            row(y, bytes.data());
            TIFFWriteScanline(out, bytes.data(), static_cast<std::uint32_t>(y), 0);
        }
        TIFFClose(out);
    });
}

void put(Bytes& file, std::size_t at, std::uint32_t value, int bytes, bool bigEndian = false) {
    for (int i = 0; i < bytes; ++i)
        file[at + static_cast<std::size_t>(i)] =
            static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i));
}

// A BMP with a palette of 16 grays; without data of its own all pixels are stored plainly.
Bytes bmp(std::uint32_t width, std::uint32_t height, std::uint32_t compression, const Bytes& data) {
    Bytes file(54 + 64, '\0');
    file.replace(0, 2, "BM");
    put(file, 10, 54 + 64, 4);
    put(file, 14, 40, 4);
    put(file, 18, width, 4);
    put(file, 22, height, 4);
    put(file, 26, 1, 2);
    put(file, 28, compression == 1 ? 8 : 4, 2);
    put(file, 30, compression, 4);
    put(file, 46, 16, 4);
    for (std::uint32_t i = 0; i < 16; ++i) put(file, 54 + i * 4, i * 0x111111, 4);
    return file + data;
}

// A GIF's beginning, with a palette of two colours, and frames of it.
Bytes gifHeader(std::uint32_t width, std::uint32_t height) {
    Bytes file("GIF89a\0\0\0\0\x80\0\0\0\0\0\xFF\xFF\xFF", 19);
    put(file, 6, width, 2);
    put(file, 8, height, 2);
    return file;
}

// The data holds one pixel, of index 1; a larger frame lacks all others.
Bytes gifFrame(std::uint32_t width, std::uint32_t height) {
    Bytes frame(",\0\0\0\0\0\0\0\0\0\x02\x02\x4C\x01\0", 15);
    put(frame, 5, width, 2);
    put(frame, 7, height, 2);
    return frame;
}

Bytes webp(int width, int height, bool lossless) {
    Bytes rgba = pixels(width, height, 4);
    auto* data = reinterpret_cast<const std::uint8_t*>(rgba.data());
    std::uint8_t* out = nullptr;
    std::size_t size = lossless ? WebPEncodeLosslessRGBA(data, width, height, width * 4, &out)
                                : WebPEncodeRGBA(data, width, height, width * 4, 80, &out);
    Bytes file(reinterpret_cast<char*>(out), size);
    WebPFree(out);
    return file;
}

Row rowsOf(const Bytes& all, std::size_t rowBytes) {
    return [&all, rowBytes](int y, std::uint8_t* out) {
        std::memcpy(out, all.data() + static_cast<std::size_t>(y) * rowBytes, rowBytes);
    };
}

// Puts right the checksum of each chunk, so that the damage inside gets past it.
void mendChecksums(Bytes& file) {
    auto u32 = [&](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(file[at + i]);
        return value;
    };
    for (std::size_t at = 8; at + 12 <= file.size();) {
        std::size_t size = u32(at);
        if (size > file.size() - at - 12) return;
        std::uint32_t crc = ~0u;
        for (std::size_t i = at + 4; i < at + 8 + size; ++i) {
            crc ^= static_cast<std::uint8_t>(file[i]);
            for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
        }
        put(file, at + 8 + size, ~crc, 4, true);
        at += 12 + size;
    }
}

// --------------------------------------------------------------------------------------------- the fixture

class HostileImages : public PluginTest {
  protected:
    // Loads the bytes as data and looks at the picture, if it is one.
    Value load(const Bytes& file) {
        ++count_;
        auto start = std::chrono::steady_clock::now();
        Value image = host.function("NewCIImagewithDataKaz", {host.memoryBlock(file)});
        if (!image.isNil()) {
            std::int64_t width = host.call(image, "Width").integer(),
                         height = host.call(image, "Height").integer();
            EXPECT_GE(width, 1);
            EXPECT_GE(height, 1);
            // Its pixels can be used, too.
            if (width * height < 1000000) {
                EXPECT_FALSE(host.call(image, "RenderPicture", {8, 8}).isNil());
            }
        }
        std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        EXPECT_LT(time.count(), 60);
        return image;
    }

    void expectNil(const Bytes& file, const char* what) { EXPECT_TRUE(load(file).isNil()) << what; }
    void expectPicture(const Bytes& file, const char* what) { EXPECT_FALSE(load(file).isNil()) << what; }

    // Cut off at many places: nil, but for the last few bytes, which some formats can do without.
    void cutShort(const Bytes& file, std::size_t dispensable) {
        for (std::size_t i = 0; i < 24; ++i) {
            std::size_t size = i < 8 ? file.size() * i / 80 : file.size() * (i - 7) / 18;
            if (size + dispensable < file.size()) expectNil(file.substr(0, size), "cut short");
        }
    }

    // A few bits are flipped, half of the time in the first bytes, where the structure is.
    void flipBits(const Bytes& original, int times, void (*mend)(Bytes&) = nullptr) {
        for (int i = 0; i < times; ++i) {
            Bytes file = original;
            std::size_t end = i % 2 ? file.size() : std::min<std::size_t>(file.size(), 160);
            for (std::size_t n = 1 + random_() % 8; n > 0; --n) {
                std::size_t at = 2 + random_() % (end - 2);
                file[at] = static_cast<char>(file[at] ^ 1 << random_() % 8);
            }
            if (mend) mend(file);
            load(file);
        }
    }

    void TearDown() override {
        expectClean();
        long growth = peakMemory() - before_;
        EXPECT_LT(growth, memoryGrowth) << "MB";
        std::printf("%d damaged files, peak memory grew by %ld MB\n", count_, growth);
    }

    std::mt19937 random_{20090401};
    long before_ = peakMemory();
    int count_ = 0;
};

// ------------------------------------------------------------------------------------------------- formats

TEST_F(HostileImages, PNG) {
    Bytes samples = pixels(200, 150, 4);
    Bytes plain = png(200, 150, 8, PNG_COLOR_TYPE_RGB_ALPHA, rowsOf(samples, 800)),
          interlaced = png(200, 150, 8, PNG_COLOR_TYPE_RGB_ALPHA, rowsOf(samples, 800), true);
    expectPicture(plain, "whole");
    cutShort(plain, 0);
    flipBits(plain, 10);
    flipBits(plain, 40, mendChecksums);
    flipBits(interlaced, 30, mendChecksums);
    for (std::uint32_t side : {0u, 100000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes file = plain;
        put(file, 16, side, 4, true);
        put(file, 20, side, 4, true);
        mendChecksums(file);
        expectNil(file, "absurd size");
    }
    // Zeros all over: above what may be loaded, and just below.
    auto zeros = [](int, std::uint8_t*) {};
    expectNil(png(30000, 30000, 1, PNG_COLOR_TYPE_GRAY, zeros), "30000 x 30000");
    expectPicture(png(11000, 11000, 8, PNG_COLOR_TYPE_RGB, zeros), "11000 x 11000");
}

TEST_F(HostileImages, JPEG) {
    Bytes samples = pixels(200, 150, 3);
    for (bool progressive : {false, true}) {
        Bytes file = jpeg(200, 150, rowsOf(samples, 600), progressive);
        expectPicture(file, "whole");
        cutShort(file, 2);
        flipBits(file, 40);
        std::size_t frame = file.find(progressive ? "\xFF\xC2" : "\xFF\xC0");
        ASSERT_NE(frame, Bytes::npos);
        for (std::uint32_t side : {65535u, 60000u, 20000u}) {
            put(file, frame + 5, side, 2, true);
            put(file, frame + 7, side, 2, true);
            expectNil(file, "absurd size");
        }
    }
    // A thousand scans over the whole picture, a few bytes each.
    Bytes file = jpeg(
        4000, 4000, [](int, std::uint8_t* out) { std::memset(out, 90, 12000); }, true);
    expectPicture(file, "progressive");
    std::size_t last = file.rfind("\xFF\xDA");
    Bytes scan = file.substr(last, file.size() - 2 - last), repeated = file.substr(0, last);
    for (int i = 0; i < 1000; ++i) repeated += scan;
    expectNil(repeated + "\xFF\xD9", "too many scans");
}

TEST_F(HostileImages, TIFF) {
    Bytes samples = pixels(200, 150, 1);
    for (int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        Bytes file = tiff(200, 150, compression, 20, 0, rowsOf(samples, 200));
        expectPicture(file, "whole");
        // The directory lies at the end.
        cutShort(file, 16);
        flipBits(file, 15);
        // The bits that matter most are in the directory.
        std::reverse(file.begin() + 8, file.end());
        for (int i = 0; i < 15; ++i) {
            Bytes damaged = file;
            for (int n = 0; n < 3; ++n) {
                std::size_t at = 8 + random_() % 200;
                damaged[at] = static_cast<char>(damaged[at] ^ 1 << random_() % 8);
            }
            std::reverse(damaged.begin() + 8, damaged.end());
            load(damaged);
        }
    }
    auto withSize = [](Bytes file, std::uint32_t width, std::uint32_t height) {
        for (auto [tag, value] : {std::pair("\x00\x01\x03\x00\x01\x00\x00\x00", width),
                                  std::pair("\x01\x01\x03\x00\x01\x00\x00\x00", height)}) {
            std::size_t at = file.find(Bytes(tag, 8));
            EXPECT_NE(at, Bytes::npos);
            put(file, at + 2, 4, 2); // a long number
            put(file, at + 8, value, 4);
        }
        return file;
    };
    Bytes file = tiff(200, 150, COMPRESSION_ADOBE_DEFLATE, 150, 0, rowsOf(samples, 200));
    expectPicture(withSize(file, 200, 150), "the same size");
    for (std::uint32_t side : {0u, 11000u, 100000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        expectNil(withSize(file, side, side), "absurd size");
    // One strip of zeros, and a tile much larger than its picture.
    auto zeros = [](int, std::uint8_t*) {};
    expectPicture(tiff(11000, 11000, COMPRESSION_ADOBE_DEFLATE, 11000, 0, zeros), "one strip");
    expectNil(withSize(tiff(10000, 10000, COMPRESSION_ADOBE_DEFLATE, 0, 10000, zeros), 10, 10), "one tile");
}

TEST_F(HostileImages, GIF) {
    const char* photos = std::getenv("KAZ_PHOTOS");
    std::ifstream sample(std::string(photos ? photos : ".") + "/no_time_for_that_tiny.gif", std::ios::binary);
    ASSERT_TRUE(sample.good()) << "the sample photographs are missing";
    Bytes animation(std::istreambuf_iterator<char>(sample), {});
    expectPicture(animation, "whole");
    cutShort(animation, 1);
    flipBits(animation, 60);
    expectPicture(gifHeader(1, 1) + gifFrame(1, 1) + ";", "one pixel");
    // The format has no sizes above 65535.
    for (auto [width, height] : {std::pair(0u, 10u), std::pair(65535u, 65535u), std::pair(20000u, 20000u)}) {
        expectNil(gifHeader(width, height) + gifFrame(1, 1) + ";", "absurd canvas");
        expectNil(gifHeader(10, 10) + gifFrame(width, height) + ";", "absurd frame");
    }
    // A size that is claimed but not drawn costs nothing.
    long before = peakMemory();
    Bytes many = gifHeader(11000, 11000) + gifFrame(1, 1);
    for (int i = 0; i < 1000; ++i) many += gifFrame(11000, 11000);
    expectPicture(many + ";", "many frames");
    EXPECT_LT(peakMemory() - before, memoryGrowth / 10);
}

// Thousands of frames, each as large as the canvas, cost what the first one does.
TEST_F(HostileImages, OfAnAnimationAnNSImageDecodesTheFirstFrame) {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("kaz-animation-" + std::to_string(getpid()) + ".gif");
    auto costOf = [&](int frames) {
        Bytes file = gifHeader(500, 500) + gifFrame(1, 1);
        for (int i = 1; i < frames; ++i) file += gifFrame(500, 500);
        std::ofstream(path, std::ios::binary) << file << ';';
        std::clock_t start = std::clock(); // of the processor
        Value image = host.create("NSImageKaz", {host.function("GetFolderItem", {path.string()})});
        EXPECT_NE(host.get(image, "Handle").integer(), 0);
        return double(std::clock() - start) / CLOCKS_PER_SEC;
    };
    costOf(1);
    double one = std::max(costOf(1), 0.004);
    EXPECT_LT(costOf(3000), 50 * one);
    std::filesystem::remove(path);
}

TEST_F(HostileImages, BMP) {
    Bytes rows;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 40; ++x) rows += static_cast<char>(x + y);
    Bytes plain = bmp(80, 60, 0, rows);
    expectPicture(plain, "whole");
    cutShort(plain, 0);
    flipBits(plain, 40);
    // Runs of five pixels, row by row.
    Bytes runs;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 16; ++x) (runs += '\5') += static_cast<char>((x + y) % 16);
        runs += Bytes(2, '\0');
    }
    Bytes packed = bmp(80, 60, 1, runs + Bytes("\0\1", 2));
    expectPicture(packed, "whole");
    cutShort(packed, 0);
    flipBits(packed, 40);
    for (std::uint32_t side : {0u, 100000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        expectNil(bmp(side, side, 0, rows), "absurd size");
        expectNil(bmp(side, side, 1, runs), "absurd size");
    }
    expectNil(bmp(11000, 11000, 0, rows), "a size without pixels");
    expectPicture(bmp(11000, 11000, 1, Bytes("\0\1", 2)), "ends at once");
}

TEST_F(HostileImages, WebP) {
    for (bool lossless : {false, true}) {
        Bytes file = webp(200, 150, lossless);
        expectPicture(file, "whole");
        cutShort(file, 1);
        flipBits(file, 50);
    }
    // The largest size without a container: 14 bits each.
    Bytes file = webp(200, 150, true);
    std::size_t header = file.find("VP8L");
    ASSERT_NE(header, Bytes::npos);
    put(file, header + 9, 0x0FFFFFFF, 4);
    expectNil(file, "absurd size");
    Bytes canvas("VP8X\x0A\0\0\0\x10\0\0\0", 12);
    canvas += Bytes(6, '\xFF');
    file = webp(200, 150, true);
    file.insert(12, canvas);
    put(file, 4, static_cast<std::uint32_t>(file.size() - 8), 4);
    expectNil(file, "absurd canvas");
}

// ---------------------------------------------------------------------------------------- and a large one

// Two values of sRGB, shown so finely that the eye cannot tell them apart.
int meanOfLight(int a, int b) {
    auto linear = [](int v) {
        return v <= 10 ? v / 255. / 12.92 : std::pow((v / 255. + 0.055) / 1.055, 2.4);
    };
    double mean = (linear(a) + linear(b)) / 2;
    double encoded = mean <= 0.0031308 ? mean * 12.92 : 1.055 * std::pow(mean, 1 / 2.4) - 0.055;
    return static_cast<int>(std::lround(encoded * 255));
}

TEST_F(HostileImages, ANinetySixMegapixelPhotographLoadsAndRenders) {
    constexpr int width = 12000, height = 8000, cell = 1000;
    // Cells of a colour of their own, with fine stripes of light across.
    auto color = [](int x, int y) {
        int light = y % 2 * 40;
        return std::array<int, 3>{x / cell * 15 + light, 100 + light, y / cell * 25 + light};
    };
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("kaz-large-" + std::to_string(getpid()) + ".jpg");
    {
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(path.c_str(), "wb"), std::fclose);
        ASSERT_TRUE(out);
        jpeg_compress_struct info = {};
        jpeg_error_mgr errors;
        info.err = jpeg_std_error(&errors);
        jpeg_create_compress(&info);
        jpeg_stdio_dest(&info, out.get());
        Row row = [&](int y, std::uint8_t* bytes) {
            for (int x = 0; x < width; ++x)
                for (int value : color(x, y)) *bytes++ = static_cast<std::uint8_t>(value);
        };
        writeJpeg(info, width, height, row, false);
        jpeg_destroy_compress(&info);
    }
    Value image = host.function("NewCIImagewithFileKaz", {host.function("GetFolderItem", {path.string()})});
    std::filesystem::remove(path);
    ASSERT_FALSE(image.isNil());
    EXPECT_EQ(host.call(image, "Width").integer(), width);
    EXPECT_EQ(host.call(image, "Height").integer(), height);

    auto expectColor = [&](const Value& surface, int x, int y, std::array<int, 3> expected) {
        Value pixel = host.call(surface, "Pixel", {x, y});
        unsigned argb = pixel.bits().u32;
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(int(argb >> (16 - 8 * k) & 0xFF), expected[k], 4)
                << x << "," << y << " component " << k;
    };
    // Cropped: rows count from below in the image, from above in the picture and in the file.
    Value area = host.create("CGRectKaz", {7450., 3950., 300., 200.});
    Value cropped = host.call(host.call(image, "imageByCroppingToRect", {area}), "RenderPicture");
    Value surface = host.get(cropped, "RGBSurface");
    int top = height - 3950 - 200;
    for (auto [x, y] : {std::pair(10, 10), std::pair(290, 11), std::pair(11, 190), std::pair(290, 191)})
        expectColor(surface, x, y, color(7450 + x, top + y));
    // Scaled: the stripes become their mean in linear light.
    Value scaled = host.call(image, "RenderPicture", {600, 400});
    surface = host.get(scaled, "RGBSurface");
    for (int i = 0; i < 8; ++i) {
        std::array<int, 3> dark = color(i * cell, i * cell), light = color(i * cell, i * cell + 1), mean;
        for (std::size_t k = 0; k < 3; ++k) mean[k] = meanOfLight(dark[k], light[k]);
        expectColor(surface, i * 50 + 25, i * 50 + 25, mean);
    }
    std::printf("peak memory %ld MB\n", peakMemory());
}

} // namespace
