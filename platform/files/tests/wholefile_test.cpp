// What is no regular file is refused without waiting, and a file is replaced whole or not at all.
#include <files/wholefile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class WholeFile : public testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("wholefile-" + std::to_string(getpid()));
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string path(const char* name) const { return folder / name; }
    std::string contents(const char* name) const {
        std::stringstream text;
        text << std::ifstream(folder / name, std::ios::binary).rdbuf();
        return text.str();
    }
    // One entry is "old", the file under test.
    std::size_t entries() const {
        return std::size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    static std::span<const std::uint8_t> bytes(std::string_view text) {
        return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
    }
    static std::string refusal(const std::function<void()>& work) {
        try {
            work();
        } catch (const wholefile::Error& error) {
            return error.what();
        }
        return "nothing was refused";
    }

    fs::path folder;
};

// Files may grow to `size` bytes while this lives; more fails as on a full disk.
struct SmallDisk {
    rlimit before;
    explicit SmallDisk(rlim_t size) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit small = {size, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &before); }
};

} // namespace

TEST_F(WholeFile, IsReadAndReplaced) {
    wholefile::replace(path("new"), bytes("first"));
    EXPECT_EQ(contents("new"), "first");
    wholefile::replace(path("new"), bytes("then this"));
    std::vector<std::uint8_t> read = wholefile::read(path("new"));
    EXPECT_EQ(std::string(read.begin(), read.end()), "then this");
    EXPECT_EQ(entries(), 1u);
    EXPECT_TRUE(wholefile::read("/proc/self/maps").size() > 100); // tells no size
}

TEST_F(WholeFile, AFailedReplacementLeavesTheOldFile) {
    wholefile::replace(path("old"), bytes("precious"));
    SmallDisk disk(100);
    EXPECT_EQ(refusal([&] { wholefile::replace(path("old"), bytes(std::string(5000, 'x'))); }),
              "File too large");
    EXPECT_EQ(contents("old"), "precious");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(WholeFile, AReplacementKeepsTheModeAndTheLink) {
    wholefile::replace(path("real"), bytes("a"));
    chmod(path("real").c_str(), 0640);
    fs::create_symlink("real", folder / "link");
    wholefile::replace(path("link"), bytes("b"));
    EXPECT_EQ(contents("real"), "b");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    struct stat status;
    stat(path("real").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    fs::create_symlink("later", folder / "dangling");
    wholefile::replace(path("dangling"), bytes("c"));
    EXPECT_EQ(contents("later"), "c");
}

TEST_F(WholeFile, WhatIsNoRegularFileIsRefused) {
    mkfifo(path("pipe").c_str(), 0666); // opening one waits for the other end
    fs::create_symlink("loop", folder / "loop");
    int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {AF_UNIX, {}};
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path("socket").c_str());
    ASSERT_EQ(bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(socket);

    EXPECT_EQ(refusal([&] { wholefile::read(path("pipe")); }), "it is not a regular file");
    EXPECT_EQ(refusal([&] { wholefile::read("/dev/zero"); }), "it is not a regular file");
    EXPECT_EQ(refusal([&] { wholefile::read(folder); }), "it is a folder");
    EXPECT_EQ(refusal([&] { wholefile::read(path("socket")); }), "No such device or address");
    EXPECT_EQ(refusal([&] { wholefile::read(path("loop")); }), "Too many levels of symbolic links");
    EXPECT_EQ(refusal([&] { wholefile::read(path("none")); }), "No such file or directory");
    EXPECT_EQ(refusal([&] { wholefile::read(std::string(300, 'n')); }), "File name too long");
    for (const char* name : {"pipe", "socket"})
        EXPECT_EQ(refusal([&] { wholefile::replace(path(name), bytes("x")); }), "it is not a regular file")
            << name;
    EXPECT_EQ(refusal([&] { wholefile::replace("/dev/null", bytes("x")); }), "it is not a regular file");
    EXPECT_EQ(refusal([&] { wholefile::replace(folder, bytes("x")); }), "it is a folder");
    EXPECT_EQ(refusal([&] { wholefile::replace(path("loop"), bytes("x")); }),
              "Too many levels of symbolic links");
    EXPECT_EQ(refusal([&] { wholefile::replace(path("no/folder"), bytes("x")); }), "no such folder");
    EXPECT_EQ(refusal([&] { wholefile::openToWrite(path("pipe"), false); }), "it is not a regular file");
    EXPECT_EQ(refusal([&] { wholefile::openToWrite(folder, true); }), "it is a folder");
    EXPECT_EQ(entries(), 3u);
}

TEST_F(WholeFile, OneThatClaimsMoreThanMemoryIsRefusedUnread) {
    std::ofstream(path("sparse")) << "x";
    ASSERT_EQ(truncate64(path("sparse").c_str(), 5'000'000'000), 0);
    EXPECT_EQ(refusal([&] { wholefile::read(path("sparse")); }), "it is too large");
    EXPECT_EQ(refusal([&] { wholefile::read("/proc/self/maps", 10); }), "it is too large");
}

TEST_F(WholeFile, AnyBytesMakeAName) {
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') continue;
        std::string name = path("n") + char(byte);
        wholefile::replace(name, bytes("x"));
        EXPECT_EQ(wholefile::read(name).size(), 1u) << byte;
    }
}
