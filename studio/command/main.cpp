// The command: studio [OPTIONS] PROGRAM.rbs [ARGUMENTS]
#include "language/runner.h"

#include <studio/host.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace studio;
namespace fs = std::filesystem;

constexpr const char* kUsage =
    "usage: studio [OPTIONS] PROGRAM.rbs [ARGUMENTS]\n"
    "\n"
    "  --test              run the Subs whose names begin with Test; ARGUMENTS: a part of their names\n"
    "  --only SUB          run that test alone\n"
    "  --host VERSION      act as this version of the host, such as 2012.0; none: keep the version secret\n"
    "  --without SERVICE   withhold a service from plugins; may be repeated\n"
    "  --plugin PATH       load one more plugin; may be repeated\n"
    "  --without-family    do not load the sibling plugin\n"
    "  --no-plugins        load only the plugins given with --plugin\n"
    "  --version           print the version\n"
    "  --help              print this text\n";

struct CommandLine {
    HostOptions host;
    std::vector<std::string> plugins;
    bool family = true, standard = true, test = false;
    std::string onlyTest;
    std::string program;
    std::vector<std::string> arguments;
};

[[noreturn]] void misuse(const std::string& message) {
    std::fprintf(stderr, "studio: %s; studio --help lists the options\n", message.c_str());
    std::exit(kMistake);
}

CommandLine parse(int count, char** words) {
    CommandLine result;
    for (int i = 1; i < count; ++i) {
        std::string word = words[i];
        auto next = [&] {
            if (++i >= count) misuse(word + " needs a value");
            return std::string(words[i]);
        };
        if (!result.program.empty()) {
            result.arguments.push_back(word);
        } else if (word == "--help" || word == "-h") {
            std::fputs(kUsage, stdout);
            std::exit(kFine);
        } else if (word == "--version") {
            std::puts("studio " KAZ_VERSION);
            std::exit(kFine);
        } else if (word == "--test") {
            result.test = true;
        } else if (word == "--only") {
            result.test = true;
            result.onlyTest = next();
        } else if (word == "--host") {
            std::string version = next();
            char* end = nullptr;
            result.host.version = std::strtod(version.c_str(), &end);
            if (version == "none")
                result.host.version.reset();
            else if (*end || *result.host.version < 2000)
                misuse("'" + version + "' is not a host version; expected one such as 2012.0, or none");
        } else if (word == "--without") {
            std::string service = next();
            std::vector<std::string> known = Host::serviceNames();
            if (std::find(known.begin(), known.end(), service) == known.end())
                misuse("there is no service " + service);
            result.host.withheld.insert(service);
        } else if (word == "--plugin") {
            result.plugins.push_back(next());
        } else if (word == "--without-family") {
            result.family = false;
        } else if (word == "--no-plugins") {
            result.standard = false;
        } else if (word[0] == '-') {
            misuse("unknown option " + word);
        } else {
            result.program = word;
        }
    }
    if (result.program.empty()) misuse("a program is missing");
    return result;
}

void loadPlugins(Host& host, const CommandLine& command) {
    fs::path folder = fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib";
    // The family comes first: the product finds its classes by name.
    if (command.standard && command.family && fs::exists(folder / "FamilyKaz.so"))
        host.loadPlugin((folder / "FamilyKaz.so").string());
    if (command.standard) {
        if (!fs::exists(folder / "CoreImageKaz.so"))
            throw UsageError("there is no plugin at " + (folder / "CoreImageKaz.so").string() +
                             "; build it, or start with --no-plugins");
        host.loadPlugin((folder / "CoreImageKaz.so").string());
    }
    for (const std::string& path : command.plugins) host.loadPlugin(path);
}

} // namespace

int main(int count, char** words) try {
    // Whoever reads along gets each line when it is printed, whatever ends the program.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    CommandLine command = parse(count, words);
    std::ifstream file(command.program, std::ios::binary);
    bool folder = fs::is_directory(command.program);
    if (!file || folder) {
        std::fprintf(stderr, "studio: cannot read %s: %s\n", command.program.c_str(),
                     folder ? "it is a folder" : std::strerror(errno));
        return kMistake;
    }
    std::stringstream source;
    source << file.rdbuf();
    Host host(command.host);
    try {
        loadPlugins(host, command);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "studio: %s\n", error.what());
        return kMistake;
    }
    if (command.test)
        return runTests(command.program, source.str(),
                        {command.arguments.empty() ? "" : command.arguments[0], command.onlyTest});
    return runProgram(command.program, source.str(), command.arguments);
} catch (const std::bad_alloc&) {
    std::fputs("studio: there is not enough memory\n", stderr);
    return kFailed;
}
