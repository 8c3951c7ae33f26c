// Every member that the plugin registers, called while something fails: memory, files, services, classes,
// Core Image.
//
//     faults [--short] [--places N] [--only TEXT] [--hosts VERSION,...] [--faults LETTERS] [--stacks]
//     [--self-test]
//
// Each run is a process of its own. It must end without a signal and in time, give back what it took, and
// raise nothing but the documented exceptions. tools/commands/faults explains the letters.
#include "../abi/good_arguments.h"
#include "injection.h"

#include <studio/host.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using faults::Kind;
using studio::Value;
namespace fs = std::filesystem;

// ---- what is asked for -----------------------------------------------------------------------------------

struct Settings {
    bool brief = false, selfTest = false, wholeStacks = false;
    std::string only, letters = "abcdef";
    std::vector<std::string> versions = {"none",   "2009.05", "2010.02", "2011",
                                         "2012.0", "2013.0",  "2013.03", "2014.01"};
    long places = 60; // the most places at which one call is made to fail
} settings;

// Shared by all processes.
struct Totals {
    long members, runs, memory, allocations, services, classes, exceptions, files;
    long crashes, inGNUstep, leaks, misuses, hangs, strange, halfFiles;
} * totals;

// ---- runs in a process of their own ----------------------------------------------------------------------

constexpr int kSecondsForACall = 60, kSecondsForAll = 300; // the machine may be busy
int toParent = -1;                                         // where a run tells what went wrong

void tell(const std::string& text) {
    if (::write(toParent, text.data(), text.size()) < 0) _exit(98);
}

std::string moduleOf(const Dl_info& info) {
    const char* slash = info.dli_fname ? std::strrchr(info.dli_fname, '/') : nullptr;
    return slash ? slash + 1 : "?";
}

// The innermost frames, without those of the C and C++ libraries.
void onSignal(int signal) {
    faults::disarm();
    void* frames[60];
    int count = backtrace(frames, 60);
    std::string stack, where; // `where`: the innermost library that is ours or GNUstep's
    bool thrown = false, runtime = false, innermost = false; // seen
    int told = 0;
    for (int i = 1; i < count; ++i) {
        Dl_info info = {};
        if (!dladdr(frames[i], &info)) continue;
        std::string module = moduleOf(info), symbol = info.dli_sname ? info.dli_sname : "?";
        // The Objective-C runtime gives up where it has no memory.
        if (!innermost && signal == SIGABRT && module.starts_with("libobjc")) runtime = true;
        if (!module.starts_with("libc.") && !symbol.starts_with("__kernel")) innermost = true;
        thrown |=
            symbol == "objc_exception_throw" || symbol == "__cxa_throw" || symbol == "objc_exception_rethrow";
        bool library = module.starts_with("libc.") || module.starts_with("libstdc++") ||
                       module.starts_with("libgcc") || module.starts_with("libobjc") ||
                       module.starts_with("ld-") || module.starts_with("linux") || module == "faults" ||
                       symbol.starts_with("__kernel");
        if (!library && where.empty()) where = module;
        if ((library || told == 6) && !settings.wholeStacks) continue;
        char offset[16];
        std::snprintf(
            offset, sizeof offset, "+%lx",
            static_cast<unsigned long>(static_cast<char*>(frames[i]) - static_cast<char*>(info.dli_fbase)));
        stack += " < " + module + (info.dli_sname ? ":" + symbol : offset);
        ++told;
    }
    bool inGNUstep = (runtime || where.starts_with("libgnustep")) && !thrown;
    tell((inGNUstep ? "G" : "S") + std::string("signal ") + std::to_string(signal) +
         (thrown ? ", an exception that nobody catches" : "") + stack);
    _exit(99);
}

void catchSignals() {
    faults::useSpareStack();
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    for (int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) sigaction(signal, &action, nullptr);
}

// Findings, each with the first run that shows it and how many do.
std::map<std::string, std::pair<std::string, int>> findings;

void note(const std::string& what, const std::string& run) {
    auto& [first, count] = findings[what];
    if (count++ == 0) first = run;
}

void printFindings() {
    for (const auto& [what, found] : findings)
        std::printf("  %s\n      %d times, first in: %s\n", what.c_str(), found.second, found.first.c_str());
    findings.clear();
    std::fflush(stdout);
}

// Runs `work` in a child. Its first word to the parent says what kind of fault it found; silence means none.
// Returns what the work told with a leading "=", if anything.
std::string inChild(const std::string& run, const std::function<void()>& work,
                    int seconds = kSecondsForACall) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    std::fflush(stdout);
    pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // runs within runs end with them
        close(ends[0]);
        toParent = ends[1];
        int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        catchSignals();
        try {
            work();
        } catch (const std::exception& error) {
            tell(std::string("X") + error.what());
        }
        _exit(0);
    }
    close(ends[1]);
    ++totals->runs;
    std::string told;
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(settings.selfTest ? 2 : seconds);
    for (;;) {
        auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd ready = {ends[0], POLLIN, 0};
        if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) == 0) {
            kill(child, SIGKILL);
            told = "H";
            break;
        }
        char buffer[4096];
        ssize_t n = read(ends[0], buffer, sizeof buffer);
        if (n <= 0) break;
        told.append(buffer, static_cast<std::size_t>(n));
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (told.empty() && !(WIFEXITED(status) && WEXITSTATUS(status) == 0)) told = "Sended without a word";
    if (told.empty() || told[0] == '=') return told;
    std::string text = told.substr(1);
    switch (told[0]) {
    case 'G':
        ++totals->inGNUstep;
        note("within GNUstep: " + text, run);
        break;
    case 'S':
        ++totals->crashes;
        note("CRASH: " + text, run);
        break;
    case 'H':
        ++totals->hangs;
        note("HANG: no end after " + std::to_string(seconds) + " s", run);
        break;
    case 'L':
        ++totals->leaks;
        note("LEAK: " + text, run);
        break;
    case 'M':
        ++totals->misuses;
        note("MISUSE: " + text, run);
        break;
    case 'F':
        ++totals->halfFiles;
        note("HALF A FILE: " + text, run);
        break;
    default:
        ++totals->strange;
        note("STRANGE: " + text, run);
    }
    return {};
}

// ---- the corpus ------------------------------------------------------------------------------------------

std::string photograph(const std::string& name) {
    const char* folder = std::getenv("KAZ_PHOTOS");
    return std::string(folder ? folder : ".") + "/" + name;
}

// One call. Preparing it makes its object and arguments, so that a fault strikes within the call alone.
struct Call {
    std::string name;
    std::function<std::function<void()>()> prepare;
};

class Corpus {
  public:
    explicit Corpus(studio::Host& host) : host(host), good(host) {
        good.file = photograph("chelsea.png");
        for (const studio::Class* cls : host.pluginClasses())
            if (cls->name.starts_with("CI")) addClass(*cls);
        for (const studio::Method* function : host.pluginFunctions()) {
            if (function->declaration.find("CI") == std::string::npos) continue; // the family's
            add("function " + function->declaration, [this, function] {
                return [this, function, arguments = good.goodArguments(function->signature)] {
                    this->host.function(function->declaration, arguments);
                };
            });
        }
        members = long(calls.size());
        addFiles();
    }

    std::vector<Call> calls;
    long members = 0; // of the plugin

  private:
    void add(std::string name, std::function<std::function<void()>()> prepare) {
        calls.push_back({std::move(name), std::move(prepare)});
    }

    Value objectOf(const std::string& className, const studio::Method* method) {
        bool fresh = method && (equalNames(method->signature.name, "Constructor") ||
                                equalNames(method->signature.name, "Destructor"));
        Value object = fresh ? Value() : good.sample(className);
        return object.isNil() ? host.instantiate(className) : object;
    }

    void addClass(const studio::Class& cls) {
        std::string name = cls.name;
        for (const auto& method : cls.methods) {
            const studio::Method* m = method.get();
            add(name + "." + m->declaration, [this, name, m] {
                return [this, m, object = objectOf(name, m), arguments = good.goodArguments(m->signature)] {
                    host.call(object, m->declaration, arguments);
                };
            });
            if (!m->setter) continue;
            add(name + "." + m->declaration + " = ...", [this, name, m] {
                GoodArguments::Parameter value;
                value.name = "value";
                value.type = m->signature.result;
                return [this, m, object = objectOf(name, m), arguments = good.goodArguments(m->signature),
                        assigned = good.goodArgument(value)] {
                    host.assign(object, m->signature.name, arguments, assigned);
                };
            });
        }
        for (const auto& method : cls.sharedMethods) {
            const studio::Method* m = method.get();
            add(name + "::" + m->declaration, [this, name, m] {
                return [this, name, m, arguments = good.goodArguments(m->signature)] {
                    host.shared(name, m->declaration, arguments);
                };
            });
        }
        for (const studio::Property& property : cls.properties)
            add(name + "." + property.name, [this, name, key = property.name] {
                return [this, key, object = objectOf(name, nullptr)] { host.get(object, key); };
            });
    }

    // What a program does with files besides.
    void addFiles() {
        auto path = [] {
            return fs::temp_directory_path() / ("faults-" + std::to_string(getpid()) + ".png");
        };
        for (int format : {1, 2})
            add("Picture.Save " + std::to_string(format), [this, format, path] {
                std::ofstream(path()) << "the old file";
                Value picture = host.create("Picture", {64, 48, 32});
                Value file = host.function("GetFolderItem", {path().string()});
                return [this, format, path, picture, file] {
                    try {
                        host.call(picture, "Save", {file, format});
                    } catch (const studio::HostException&) {
                        faults::disarm();
                        std::stringstream text;
                        text << std::ifstream(path()).rdbuf();
                        fs::remove(path());
                        if (text.str() != "the old file") tell("F" + path().string());
                        throw;
                    }
                    fs::remove(path());
                };
            });
        add("Picture.Open", [this] {
            Value file = host.function("GetFolderItem", {good.file});
            return [this, file] { host.shared("Picture", "Open", {file}); };
        });
        add("TextInputStream.Open", [this] {
            Value file = host.function("GetFolderItem", {good.file});
            return [this, file] { host.call(host.shared("TextInputStream", "Open", {file}), "ReadAll"); };
        });
        add("an image of a file, rendered", [this] {
            Value file = host.function("GetFolderItem", {good.file});
            return [this, file] {
                Value image = host.shared("CIImageKaz", "imageWithContentsOfFile", {file});
                if (!image.isNil()) host.call(image, "RenderPicture", {8, 8});
            };
        });
    }

    studio::Host& host;
    GoodArguments good;
};

const std::vector<std::string> kKnownExceptions = {
    "OutOfMemoryException", "NilObjectException", "UnsupportedOperationException", "OutOfBoundsException",
    "RuntimeException",     "IOException",        "InvalidArgumentException"};

// Runs the call, and tells the parent what is wrong afterwards.
void runAndCheck(studio::Host& host, const Call& call, const std::function<void()>& before) {
    std::function<void()> run = call.prepare();
    before();
    std::string unknown;
    try {
        run();
    } catch (const studio::HostException& exception) {
        faults::disarm();
        if (std::find(kKnownExceptions.begin(), kKnownExceptions.end(), exception.className) ==
            kKnownExceptions.end())
            unknown = exception.className;
    } catch (const studio::UsageError&) {
    } catch (const std::bad_alloc&) { // of this program itself
    }
    long calls = faults::disarm();
    run = {};
    host.takePendingException();
    host.stopFailing();
    studio::Report report = host.report();
    if (!report.violations.empty())
        tell("M" + report.violations.front());
    else if (!report.leaks.empty()) {
        const studio::Leak& leak = report.leaks.front();
        tell("L" + leak.className + " (references: " + std::to_string(leak.hostReferences) + " host, " +
             std::to_string(leak.pluginReferences) + " plugin)");
    } else if (!unknown.empty())
        tell("X" + unknown);
    else
        tell("=" + std::to_string(calls));
}

// Up to `most` numbers from 1 to `count`, the first ones all.
std::vector<long> placesIn(long count, long most) {
    std::vector<long> result;
    if (count <= most) {
        for (long n = 1; n <= count; ++n) result.push_back(n);
        return result;
    }
    for (long i = 0; i < most; ++i) result.push_back(1 + i * i * (count - 1) / ((most - 1) * (most - 1)));
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

// ---- faults ----------------------------------------------------------------------------------------------

void injected(studio::Host& host, const Call& call, const std::string& where, Kind kind, bool cut,
              long& total) {
    std::string told = inChild(where + call.name,
                               [&] { runAndCheck(host, call, [&] { faults::arm(kind, 0, false, cut); }); });
    long count = told.empty() ? 0 : std::atol(told.c_str() + 1);
    for (long n : placesIn(count, settings.places))
        for (bool onwards : {false, true}) {
            if (onwards && (cut || kind == Kind::message)) continue;
            ++total;
            inChild(where + call.name + ", call " + std::to_string(n) + (onwards ? " and on" : "") + " of " +
                        std::to_string(count),
                    [&] { runAndCheck(host, call, [&] { faults::arm(kind, n, onwards, cut); }); });
        }
}

void refused(studio::Host& host, const Call& call, const std::string& where) {
    for (int n = 0; n < settings.places; ++n) {
        std::string told = inChild(where + call.name + ", allocation " + std::to_string(n + 1), [&] {
            std::function<void()> run = call.prepare();
            run = {};
            bool struck = false;
            runAndCheck(host,
                        {call.name,
                         [&] {
                             auto prepared = call.prepare();
                             return [&, prepared] {
                                 host.failAllocation(n);
                                 struct Done {
                                     studio::Host& host;
                                     bool& struck;
                                     ~Done() { struck = host.allocationFailed(); }
                                 } done{host, struck};
                                 prepared();
                             };
                         }},
                        [] {});
            tell(struck ? "1" : "0");
        });
        if (told.empty()) continue; // noted
        if (told.back() == '0') break;
        ++totals->allocations;
    }
}

studio::HostOptions optionsFor(const std::string& version) {
    studio::HostOptions options;
    if (version == "none")
        options.version.reset();
    else
        options.version = std::stod(version);
    return options;
}

std::string hiddenClass;
REALResolver hostResolver;

// Registers all classes but the hidden one.
void registerOthers(REALclassDefinition* record) {
    if (record->name == hiddenClass) return;
    reinterpret_cast<void (*)(REALclassDefinition*)>(hostResolver("PluginRegisterClass"))(record);
}

void loadPlugins(studio::Host& host) {
    if (hiddenClass.empty()) {
        host.loadPlugin(KAZ_FAMILY);
    } else {
        host.loadPlugin([](REALResolver resolver) {
            hostResolver = resolver;
            void* family = dlopen(KAZ_FAMILY, RTLD_NOW | RTLD_GLOBAL);
            reinterpret_cast<studio::PluginEntry>(dlsym(family, "REALPluginMain"))(
                [](const char* name) -> void* {
                    if (!std::strcmp(name, "PluginRegisterClass"))
                        return reinterpret_cast<void*>(registerOthers);
                    return hostResolver(name);
                });
        });
    }
    host.loadPlugin(KAZ_PLUGIN);
}

// The whole corpus once, on a host that lacks something. Without a lock, a reference or two are lost by
// design.
void callAll(const studio::HostOptions& options, bool countsReferences) {
    studio::Host host(options);
    loadPlugins(host);
    Corpus corpus(host);
    for (const Call& call : corpus.calls) {
        try {
            call.prepare()();
        } catch (const studio::HostException&) {
        } catch (const studio::UsageError&) {
        } catch (const std::logic_error&) {
        }
        host.takePendingException();
    }
    studio::Report report = host.report();
    if (!countsReferences) return;
    if (!report.violations.empty())
        tell("M" + report.violations.front());
    else if (!report.leaks.empty())
        tell("L" + report.leaks.front().className);
}

void withoutServices(const std::string& version) {
    std::vector<std::string> names = studio::Host::serviceNames();
    for (std::size_t i = 0; i < names.size(); i += settings.brief ? 4 : 1) {
        const std::string& name = names[i];
        if (name == "RegisterPluginVersion") continue; // without it no plugin is loaded
        ++totals->services;
        bool counts = name.find("ock") == std::string::npos; // neither locks nor unlocks
        inChild(
            "host " + version + " without " + name,
            [&] {
                studio::HostOptions options = optionsFor(version);
                options.withheld.insert(name);
                callAll(options, counts);
            },
            kSecondsForAll);
    }
}

void withoutClasses(const std::string& version) {
    std::string told = inChild("host " + version, [&] {
        studio::Host host(optionsFor(version));
        host.loadPlugin(KAZ_FAMILY);
        std::string names = "=";
        for (const studio::Class* cls : host.pluginClasses()) names += cls->name + "\n";
        tell(names);
    });
    std::istringstream names(told.empty() ? "" : told.substr(1));
    int index = 0;
    for (std::string name; std::getline(names, name);) {
        if (settings.brief && index++ % 3) continue;
        ++totals->classes;
        inChild(
            "host " + version + " without the class " + name,
            [&] {
                hiddenClass = name;
                callAll(optionsFor(version), true);
            },
            kSecondsForAll);
    }
}

void onHost(const std::string& version) {
    auto wants = [](char letter) { return settings.letters.find(letter) != std::string::npos; };
    if (wants('c')) withoutServices(version);
    if (wants('d')) withoutClasses(version);
    if (!wants('a') && !wants('b') && !wants('e') && !wants('f')) return;
    studio::Host host(optionsFor(version));
    loadPlugins(host);
    Corpus corpus(host);
    totals->members = std::max(totals->members, corpus.members);
    std::string where = "host " + version + ", ";
    for (std::size_t i = 0; i < corpus.calls.size(); ++i) {
        const Call& call = corpus.calls[i];
        if (call.name.find(settings.only) == std::string::npos) continue;
        // In brief, half of the calls on the newest host and few on the others.
        if (settings.brief && i < std::size_t(corpus.members) && i % (version == "2014.01" ? 2 : 16))
            continue;
        if (wants('a')) injected(host, call, where + "memory: ", Kind::memory, false, totals->memory);
        if (wants('b')) refused(host, call, where + "service: ");
        if (wants('e')) injected(host, call, where + "message: ", Kind::message, false, totals->exceptions);
        if (wants('f')) {
            injected(host, call, where + "file: ", Kind::file, false, totals->files);
            injected(host, call, where + "cut file: ", Kind::file, true, totals->files);
        }
    }
}

// ---- does it see anything? -------------------------------------------------------------------------------

// A leak, an allocation that nobody checks, an endless loop: each must be found.
int selfTest() {
    inChild("self-test", [] {
        studio::Host host(optionsFor("2014.01"));
        loadPlugins(host);
        auto found = [&](Call call, Kind kind) { injected(host, call, "", kind, false, totals->memory); };
        found({"a leak", [&] { return [&] { new Value(host.create("Dictionary")); }; }}, Kind::none);
        found({"an unchecked allocation",
               [&] {
                   return [] {
                       static volatile int* kept;
                       kept = static_cast<int*>(std::malloc(64));
                       kept[3] = 1;
                   };
               }},
              Kind::memory);
        found({"an endless loop",
               [&] {
                   return [] {
                       for (volatile int forever = 1; forever;) {
                       }
                   };
               }},
              Kind::none);
    });
    std::printf("a leak: %s; an unchecked allocation: %s; an endless loop: %s\n",
                totals->leaks ? "found" : "MISSED", totals->crashes ? "found" : "MISSED",
                totals->hangs ? "found" : "MISSED");
    return totals->leaks && totals->crashes && totals->hangs ? 0 : 1;
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) result.push_back(part);
    return result;
}

} // namespace

int main(int count, char** words) {
    for (int i = 1; i < count; ++i) {
        std::string word = words[i], value = i + 1 < count ? words[i + 1] : "";
        if (word == "--short")
            settings.brief = true, settings.places = 5;
        else if (word == "--self-test")
            settings.selfTest = true;
        else if (word == "--stacks")
            settings.wholeStacks = true;
        else if (word == "--places")
            settings.places = std::atol(value.c_str()), ++i;
        else if (word == "--only")
            settings.only = value, ++i;
        else if (word == "--hosts")
            settings.versions = split(value), ++i;
        else if (word == "--faults")
            settings.letters = value, ++i;
        else {
            std::fprintf(stderr, "faults: unknown option %s\n", words[i]);
            return 2;
        }
    }
    void* shared = mmap(nullptr, sizeof(Totals), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    totals = new (shared) Totals();
    void* warm[2];
    backtrace(warm, 2); // loads what it needs, before memory fails
    if (settings.selfTest) return selfTest();
    faults::loadFaces(photograph("astronaut.png").c_str());

    for (const std::string& version : settings.versions) {
        std::fflush(stdout);
        if (pid_t child = fork(); child == 0) {
            try {
                onHost(version);
            } catch (const std::logic_error& error) {
                std::printf("host %s: %s\n", version.c_str(), error.what());
                ++totals->strange;
            }
            if (!findings.empty()) std::printf("host %s\n", version.c_str());
            printFindings();
            _exit(0);
        } else {
            int status = 0;
            waitpid(child, &status, 0);
            if (!WIFEXITED(status) || WEXITSTATUS(status)) ++totals->crashes;
        }
    }
    const Totals& t = *totals;
    std::printf(
        "hosts %zu, members %ld, runs %ld\n"
        "made to fail: %ld allocations of memory, %ld of the host, %ld file calls; raised: %ld exceptions\n"
        "missing in turn: %ld services, %ld classes\n"
        "crashes %ld (and %ld within GNUstep), leaks %ld, misuses %ld, hangs %ld, half files %ld, strange "
        "%ld\n",
        settings.versions.size(), t.members, t.runs, t.memory, t.allocations, t.files, t.exceptions,
        t.services, t.classes, t.crashes, t.inGNUstep, t.leaks, t.misuses, t.hangs, t.halfFiles, t.strange);
    return t.crashes || t.leaks || t.misuses || t.hangs || t.halfFiles || t.strange;
}
