// The program kaz_apply: pictures through a chain of filters, from files to files.
#include "catalogue.h"
#include "chain.h"
#include "command.h"
#include "files.h"
#include "jobs.h"
#include "pictures.h"
#include "values.h"

#include <ImageIO/ImageIO.h>
#include <files/wholefile.h>

#include <syntax/names.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace commands;
using engine::FilterInfo;
using engine::InputInfo;
using engine::InputKind;

[[noreturn]] void mistaken(const std::string& message) { misuse("apply", message); }

struct Task {
    std::vector<std::string> inputs;
    Chain chain;
    std::vector<std::string> outputs;
    std::string output, type;
    std::optional<double> quality;
    bool keepMetadata = false, list = false, plan = false;
    std::size_t jobs = 0;
};

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }
bool isFolder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// ----------------------------------------------------------------------------------- the command line

Size parseSize(const std::string& text) {
    Size size;
    if (text.ends_with("%")) {
        if (parseNumber(text.substr(0, text.size() - 1), size.scale) && size.scale > 0) {
            size.scale /= 100;
            return size;
        }
    } else {
        std::vector<std::string> parts = split(text, 'x');
        bool fine = parts.size() <= 2 && parseNumber(parts[0], size.width) && size.width >= 1;
        if (parts.size() == 2) fine = fine && parseNumber(parts[1], size.height) && size.height >= 1;
        size.width = std::floor(size.width), size.height = std::floor(size.height);
        if (fine) return size;
    }
    mistaken("'" + text + "' is no size; expected 800x600, 800 or 50%");
}

/// A word that can only be meant as a filter's name.
bool looksLikeFilter(const std::string& word) {
    return word.size() > 2 && word.starts_with("CI") && std::isupper((unsigned char)word[2]) &&
           word.find_first_of("./=") == std::string::npos && !exists(word);
}

void takeWord(Task& task, const std::string& word) {
    std::size_t equals = word.find('=');
    if (!task.chain.steps.empty() && equals != std::string::npos) {
        Step& step = task.chain.steps.back();
        std::string key = word.substr(0, equals), text = word.substr(equals + 1), mistake;
        const InputInfo* input = inputNamed(*step.filter, key);
        if (!input)
            mistaken(step.filter->name + " has no input '" + key + "'" + inputSuggestion(*step.filter, key) +
                     "\n  its inputs are " + keysOf(*step.filter));
        if (step.valueOf(*input))
            mistaken(step.filter->name + ": " + shortKey(input->key) + " is given twice");
        if (!isSpelledRight(*input, text, mistake))
            mistaken(step.filter->name + ": " + shortKey(input->key) + "=" + mistake);
        step.values.emplace_back(input, text);
        return;
    }
    const FilterInfo* filter = exists(word) && task.chain.steps.empty() ? nullptr : filterNamed(word);
    if (filter)
        task.chain.steps.push_back({filter, {}});
    else if (!task.chain.steps.empty() || looksLikeFilter(word))
        mistaken("there is no filter '" + word + "'" + filterSuggestion(word) +
                 (exists(word) ? "\n  pictures come before the first filter" : ""));
    else if (word != "-" && !exists(word) && word.find_first_of("./=") == std::string::npos &&
             !filterSuggestion(word).empty())
        mistaken("there is no file and no filter '" + word + "'" + filterSuggestion(word));
    else
        task.inputs.push_back(word);
}

Task parse(int count, char** arguments) {
    Words words("apply", count, arguments);
    Task task;
    while (!words.atEnd()) {
        std::string word = words.take();
        double number = 0;
        if (word == "-" || !word.starts_with("-")) {
            takeWord(task, word);
        } else if (word == "-o" || word == "--output") {
            task.output = words.valueOf(word);
        } else if (word == "--size") {
            task.chain.size = parseSize(words.valueOf(word));
        } else if (word == "--quality") {
            std::string text = words.valueOf(word);
            if (!parseNumber(text, number) || number < 1 || number > 100)
                mistaken("'" + text + "' is no quality; expected a number from 1 to 100");
            task.quality = number / 100;
        } else if (word == "--type") {
            std::string text = words.valueOf(word);
            task.type = typeForName(text);
            if (task.type.empty()) mistaken("'" + text + "' is no type; expected png, jpeg, tiff or webp");
        } else if (word == "--jobs" || word == "-j") {
            std::string text = words.valueOf(word);
            if (!parseNumber(text, number) || number < 1 || number > 256 || number != std::floor(number))
                mistaken("'" + text + "' is no number of jobs; expected 1 to 256");
            task.jobs = std::size_t(number);
        } else if (word == "--keep-metadata") {
            task.keepMetadata = true;
        } else if (word == "--list") {
            task.list = true;
        } else if (word == "--plan") {
            task.plan = true;
        } else {
            mistaken("there is no option " + word +
                     studio::suggestion(word, {"--output", "--size", "--quality", "--type", "--jobs",
                                               "--keep-metadata", "--list", "--plan"}));
        }
    }
    return task;
}

// --------------------------------------------------------------------------------- inputs and outputs

std::string extensionOf(const std::string& type) {
    return type == "public.jpeg"            ? ".jpg"
           : type == "public.tiff"          ? ".tiff"
           : type == "org.webmproject.webp" ? ".webp"
                                            : ".png";
}

/// Where the picture from `input` goes.
std::string outputFor(const Task& task, const std::string& input) {
    const std::string& output = task.output;
    std::string name = input == "-" ? "picture" : input.substr(input.rfind('/') + 1);
    std::size_t dot = name.rfind('.');
    std::string stem = dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
    if (output.ends_with("/") || isFolder(output)) {
        std::string extension = stem.size() < name.size() ? name.substr(stem.size()) : "";
        if (!task.type.empty() && typeForPath(name) != task.type) extension = extensionOf(task.type);
        if (typeForPath("x" + extension).empty()) extension = ".png";
        return output + (output.ends_with("/") ? "" : "/") + stem + extension;
    }
    std::size_t at = output.find('%');
    return at == std::string::npos ? output : output.substr(0, at) + stem + output.substr(at + 1);
}

/// Whether the folder is the one that was asked for as "-o folder/", and lies in one that exists.
bool canBeMade(const std::string& folder, const std::string& output) {
    std::size_t end = folder.find_last_not_of('/');
    if (!output.ends_with("/") || output != folder || end == std::string::npos || exists(folder))
        return false;
    std::size_t slash = folder.rfind('/', end);
    return slash == std::string::npos || isFolder(folder.substr(0, slash + 1));
}

void checkOutputs(Task& task) {
    bool several = task.inputs.size() > 1;
    bool many =
        task.output.ends_with("/") || isFolder(task.output) || task.output.find('%') != std::string::npos;
    if (task.output.empty()) mistaken("where to write is missing, such as -o out.png");
    if (several && !many) mistaken("several pictures need a folder or a pattern: -o out/ or -o 'out/%.png'");
    std::set<std::string> seen;
    for (const std::string& input : task.inputs) {
        std::string output = outputFor(task, input);
        task.outputs.push_back(output);
        if (output == "-") continue;
        if (task.type.empty() && typeForPath(output).empty())
            mistaken("cannot write " + output + ": its name must end in .png, .jpg, .tiff or .webp");
        std::string folder = output.substr(0, output.rfind('/') + 1);
        if (!folder.empty() && !isFolder(folder) && !canBeMade(folder, task.output))
            mistaken("cannot write " + output + ": no such folder");
        if (!seen.insert(output).second) mistaken("two pictures would be written to " + output);
    }
    for (const std::string& output : seen) {
        struct stat one, other;
        if (stat(output.c_str(), &one) != 0) continue;
        for (const std::string& read : task.inputs)
            if (stat(read.c_str(), &other) == 0 && one.st_dev == other.st_dev && one.st_ino == other.st_ino)
                mistaken(output + " would overwrite a picture that is read");
    }
}

void check(Task& task) {
    bool generates = !task.chain.steps.empty() && !task.chain.steps[0].takesPicture();
    if (task.inputs.empty() && !generates)
        mistaken(task.chain.steps.empty() ? "a picture is missing; './kaz apply --help' tells more"
                                          : task.chain.steps[0].filter->name + " needs a picture");
    for (const Step& step : task.chain.steps)
        if (!step.takesPicture() && (&step != &task.chain.steps[0] || !task.inputs.empty()))
            mistaken(step.filter->name +
                     " makes a picture and takes none; it has to come first, without a picture");
    for (const Step& step : task.chain.steps)
        for (auto& [input, text] : step.values)
            if (input->kind == InputKind::image && text != "@" && !exists(text))
                mistaken(step.filter->name + ": " + shortKey(input->key) + ": there is no file " + text);
    if (std::count(task.inputs.begin(), task.inputs.end(), "-") > 1)
        mistaken("the standard input can be read once");
    if (task.inputs.empty()) task.inputs.push_back("");
    if (!task.plan && (!task.list || !task.output.empty())) checkOutputs(task);
}

/// Empty, or why it failed.
std::string process(const Task& task, std::size_t index) {
    @autoreleasepool {
        const std::string& input = task.inputs[index];
        std::string failure, prefix = input.empty() ? "" : input + ": ";
        Result result = resultOf(task.chain, input, failure);
        if (failure.starts_with("cannot read " + input)) return failure;
        if (!result.image) return prefix + failure;
        const std::string& output = task.outputs[index];
        Encoding encoding;
        if (!task.type.empty())
            encoding.type = task.type;
        else if (output != "-")
            encoding.type = typeForPath(output);
        encoding.quality = task.quality;
        encoding.space = result.original.space;
        encoding.deep = [[result.original.properties objectForKey:(id)kCGImagePropertyDepth] intValue] > 8;
        if (task.keepMetadata) encoding.metadata = result.original.properties;
        NSData* data = encodePicture(result.image, result.area, encoding, failure);
        if (!data) return prefix + failure;
        return writeFile(output, bytesOf(data));
    }
}

void list(const Task& task) {
    for (std::size_t i = 0; i < task.inputs.size(); ++i) {
        if (!task.inputs[i].empty()) std::printf("%s", task.inputs[i].c_str());
        if (!task.outputs.empty()) std::printf(" -> %s", task.outputs[i].c_str());
        std::puts("");
    }
    for (const Step& step : task.chain.steps) {
        std::printf("%s\n", step.filter->name.c_str());
        for (const InputInfo& input : step.filter->inputs) {
            const std::string* given = step.valueOf(input);
            std::string value = given ? *given : defaultOf(input);
            if (value.empty() && input.key == "inputImage") continue;
            std::printf("  %s=%s%s\n", shortKey(input.key).c_str(), value.empty() ? "(none)" : value.c_str(),
                        given || value.empty() ? "" : "  (default)");
        }
    }
}

int plan(const Task& task) {
    std::string failure;
    Result result = resultOf(task.chain, task.inputs[0], failure);
    if (!result.image) {
        std::fprintf(stderr, "kaz apply: %s\n", failure.c_str());
        return kFailed;
    }
    std::printf("%s", [[result.image debugDescription] UTF8String]);
    return kFine;
}

int run(int argumentCount, char** arguments) {
    Task task = parse(argumentCount, arguments);
    check(task);
    if (task.list) return list(task), kFine;
    if (task.plan) return plan(task);
    if (canBeMade(task.output, task.output) && mkdir(task.output.c_str(), 0777) != 0)
        mistaken("cannot write " + task.output + ": " + std::strerror(errno));
    wholefile::removeDraftsWhenInterrupted();
    std::size_t count = task.inputs.size(), workers = std::min(task.jobs ? task.jobs : coreCount(), count);
    Jobs jobs{count, [&](std::size_t index) { return process(task, index); },
              [&](std::size_t index) { return task.inputs[index]; }};
    // Several pictures at a time leave each fewer cores.
    if (workers > 1) engine::setThreadCount(int(std::max<std::size_t>(1, coreCount() / workers)));
    std::size_t failed = runJobs(jobs, workers, count > 1 && isatty(STDERR_FILENO), "kaz apply: ");
    if (failed && count > 1) std::fprintf(stderr, "kaz apply: %zu of %zu pictures failed\n", failed, count);
    return failed ? kFailed : kFine;
}

} // namespace

int main(int count, char** arguments) {
    @autoreleasepool {
        return run(count, arguments);
    }
}
