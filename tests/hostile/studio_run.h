// Runs the studio's command on a program's text, in a folder of its own, and tells how it ended.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace hostile {

struct Outcome {
    int code;           // 128 + the signal's number after a crash
    std::string output; // both streams
};

class StudioRun : public testing::Test {
  protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() / ("kaz-hostile-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    // A line for the shell, in the folder; "$STUDIO" is the command.
    Outcome shell(const std::string& line) {
        std::string whole =
            "cd " + folder.string() + " && export STUDIO=" STUDIO_COMMAND " && { " + line + "; } 2>&1";
        std::FILE* pipe = popen(whole.c_str(), "r");
        Outcome run;
        std::array<char, 4096> buffer;
        for (std::size_t n; (n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
            run.output.append(buffer.data(), n);
        int status = pclose(pipe);
        run.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return run;
    }
    Outcome program(const std::string& text, const std::string& before = "", const std::string& after = "") {
        std::ofstream(folder / "p.rbs") << text;
        return shell(before + " timeout --foreground 100 $STUDIO p.rbs " + after);
    }

    std::filesystem::path folder;
};

} // namespace hostile
