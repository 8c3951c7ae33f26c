// Files that are not pictures, or are damaged ones: each gives nil, and nothing crashes.
#include "plugin_test.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace {

using studio::Value;

class DamagedImages : public PluginTest {
  protected:
    static std::string photo(const std::string& name) {
        const char* folder = std::getenv("KAZ_PHOTOS");
        std::ifstream file(std::string(folder ? folder : ".") + "/" + name, std::ios::binary);
        EXPECT_TRUE(file.good()) << "the sample photographs are missing: " << name;
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    // The image of a file with those bytes.
    Value load(const std::string& name, const std::string& bytes) {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / ("kaz-" + std::to_string(getpid()) + "-" + name);
        std::ofstream(path, std::ios::binary) << bytes;
        Value image =
            host.function("NewCIImagewithFileKaz", {host.function("GetFolderItem", {path.string()})});
        std::filesystem::remove(path);
        return image;
    }

    // A damaged file gives nil, as a file and as data, and leaves nothing behind.
    void expectNoImage(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(load(name, bytes).isNil()) << name;
        if (!bytes.empty())
            EXPECT_TRUE(host.function("NewCIImagewithDataKaz", {host.memoryBlock(bytes)}).isNil()) << name;
        expectClean();
    }
};

TEST_F(DamagedImages, TheWholeFilesAreImages) {
    EXPECT_EQ(host.call(load("a.png", photo("astronaut.png")), "Width").integer(), 512);
    EXPECT_EQ(host.call(load("a.jpg", photo("rocket.jpg")), "Width").integer(), 640);
    expectClean();
}

TEST_F(DamagedImages, AnEmptyFile) {
    expectNoImage("empty.png", "");
    expectNoImage("empty.jpg", "");
}

TEST_F(DamagedImages, ATextFileCalledJpg) {
    expectNoImage("text.jpg", "This is not a picture, whatever its name says.\n");
}

TEST_F(DamagedImages, AJpegCutShort) {
    std::string jpeg = photo("rocket.jpg");
    for (std::size_t length :
         {std::size_t(2), std::size_t(20), std::size_t(600), jpeg.size() / 2, jpeg.size() - 1000})
        expectNoImage("cut.jpg", jpeg.substr(0, length));
}

TEST_F(DamagedImages, APngCutShort) {
    std::string png = photo("astronaut.png");
    for (std::size_t length : {std::size_t(8), std::size_t(30), png.size() / 2, png.size() - 20})
        expectNoImage("cut.png", png.substr(0, length));
}

TEST_F(DamagedImages, APngWithAWrongChecksum) {
    std::string png = photo("astronaut.png");
    std::string header = png;
    header[29] = static_cast<char>(header[29] ^ 0xFF); // the checksum of the header chunk
    expectNoImage("header.png", header);
    std::size_t data = png.find("IDAT");
    ASSERT_NE(data, std::string::npos);
    std::string pixels = png;
    pixels[data + 100] = static_cast<char>(pixels[data + 100] ^ 0xFF);
    expectNoImage("pixels.png", pixels);
}

TEST_F(DamagedImages, AMissingFile) {
    Value missing = host.function("GetFolderItem", {"no-such-file-anywhere.png"});
    EXPECT_TRUE(host.function("NewCIImagewithFileKaz", {missing}).isNil());
    EXPECT_TRUE(host.function("NewCIImagewithFileKaz", {Value(nullptr)}).isNil());
    missing = {};
    expectClean();
}

} // namespace
