// The program kaz_gallery: renders every filter into a page to look at.
//
// The page is plain files: page/ has its text, style and script, and filters.js, which is written here, what
// the script shows. Every picture is made as `kaz apply` would make it from the same words.
#include "catalogue.h"
#include "chain.h"
#include "command.h"
#include "files.h"
#include "jobs.h"
#include "pictures.h"

#include <syntax/names.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace commands;
using engine::FilterInfo;
using engine::InputInfo;
using engine::InputKind;

[[noreturn]] void mistaken(const std::string& message) { misuse("gallery", message); }

struct Job {
    std::string folder, photo, second;
    int width = 480, height = 320;
    std::size_t jobs = 0;
    std::vector<std::string> only;
};

/// One picture of a filter: which words it takes, and where it is.
struct Variant {
    std::string label;
    /// The input that is at an end, or empty.
    std::string input;
    Step step;
};

// ------------------------------------------------------------------------------------------ JSON

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    return out + "\"";
}

/// {"a": 1, ...} from keys and JSON values; those without a value are left out.
std::string object(const std::vector<std::pair<std::string, std::string>>& members) {
    std::vector<std::string> parts;
    for (auto& [key, value] : members)
        if (!value.empty()) parts.push_back(quoted(key) + ": " + value);
    return "{" + joined(parts, ", ") + "}";
}
std::string array(const std::vector<std::string>& values) { return "[" + joined(values, ", ") + "]"; }

const char* kindOf(const InputInfo& input) {
    switch (input.kind) {
    case InputKind::number:
        return "number";
    case InputKind::vector:
        return "vector";
    case InputKind::color:
        return "color";
    case InputKind::transform:
        return "transform";
    case InputKind::image:
        return "image";
    case InputKind::text:
        return "text";
    case InputKind::data:
        return "data";
    case InputKind::colorSpace:
        return "space";
    }
}

// -------------------------------------------------------------------------------------- what to render

/// What an input is given so that there is something to see; empty for its default.
std::string sampleValue(const FilterInfo& filter, const InputInfo& input, const Job& job) {
    if (input.kind == InputKind::image) {
        if (input.key == "inputImage") return {};
        if (input.key == "inputMaskImage" || input.key == "inputMask") return "mask.png";
        if (input.key == "inputGradientImage") return "gradient.png";
        // A page's shading lies on top of it, a material's is a sphere of it.
        if (input.key == "inputShadingImage")
            return filter.findInput("inputBacksideImage") ? "shine.png" : "sphere.png";
        if (input.key == "inputBacksideImage" && !job.photo.empty()) return "photo.jpg";
        if (input.key == "inputTexture" || input.key == "inputDisplacementImage") return "texture.png";
        return "second.jpg";
    }
    if (input.key == "inputMessage") return "Core Image";
    auto* standard = input.defaultValue ? std::get_if<engine::Numbers>(&*input.defaultValue) : nullptr;
    if (!standard) return {};
    // Core Image's places suit pictures of 300 pixels; here they go where they would be in this one.
    bool place = input.type == "Position" || input.type == "Position3";
    if (place && standard->size() >= 2) {
        engine::Numbers moved = *standard;
        moved[0] = std::round(moved[0] * job.width / 300), moved[1] = std::round(moved[1] * job.height / 300);
        if (*standard == engine::Numbers{150, 150}) moved = {job.width / 2.0, job.height / 2.0};
        return valueText(moved);
    }
    if (input.type == "Rectangle" && input.key != "inputRectangle" && standard->size() == 4)
        return valueText(engine::Numbers{0, 0, double(job.width), double(job.height)});
    return {};
}

bool has(const FilterInfo& filter, const char* category) {
    return std::find(filter.categories.begin(), filter.categories.end(), category) != filter.categories.end();
}

std::vector<Variant> variantsOf(const FilterInfo& filter, const Job& job) {
    Step step{&filter, {}};
    for (const InputInfo& input : filter.inputs)
        if (std::string text = sampleValue(filter, input, job); !text.empty())
            step.values.emplace_back(&input, text);
    auto with = [&](const InputInfo& input, const std::string& text) {
        Step changed = step;
        changed.values.emplace_back(&input, text);
        return changed;
    };
    std::vector<Variant> variants;
    const InputInfo* time = has(filter, "Transition") ? filter.findInput("inputTime") : nullptr;
    if (time) {
        for (const char* moment : {"0.5", "0", "0.25", "0.75", "1"})
            variants.push_back({"time " + std::string(moment), "inputTime", with(*time, moment)});
        // The other inputs show what they do half-way.
        step = variants[0].step;
    } else {
        variants.push_back({"defaults", "", step});
    }
    for (const InputInfo& input : filter.inputs) {
        if (input.kind == InputKind::transform)
            variants.push_back(
                {"turned and smaller", input.key, with(input, "scale:0.6+rotate:15+move:90,20")});
        if (input.kind != InputKind::number || &input == time) continue;
        for (auto& [word, end] :
             {std::pair("least ", input.sliderMin), std::pair("greatest ", input.sliderMax)})
            if (end)
                variants.push_back({word + shortKey(input.key), input.key, with(input, shortNumber(*end))});
    }
    return variants;
}

/// Whether every pixel of the area is opaque.
bool isOpaque(CIImage* image, CGRect area) {
    CIFilter* least = [CIFilter filterWithName:@"CIAreaMinimumAlpha"];
    [least setValue:image forKey:kCIInputImageKey];
    [least setValue:[CIVector vectorWithX:area.origin.x Y:area.origin.y Z:area.size.width W:area.size.height]
             forKey:@"inputExtent"];
    unsigned char pixel[4] = {0, 0, 0, 0};
    CIContext* context = [CIContext contextWithCGContext:nullptr options:nil];
    CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    [context render:[least outputImage]
           toBitmap:pixel
           rowBytes:4
             bounds:CGRectMake(0, 0, 1, 1)
             format:kCIFormatRGBA8
         colorSpace:space];
    CGColorSpaceRelease(space);
    return pixel[3] == 255;
}

/// How opaque pictures are written.
Encoding asJPEG() {
    Encoding encoding;
    encoding.type = "public.jpeg";
    encoding.quality = 0.85;
    return encoding;
}

/// A variant's picture as a file, and its description in JSON; empty if it failed.
struct Exhibit {
    NSData* data = nil;
    std::string text;
};

/// Renders one variant. Without a result, `failure` says why.
Exhibit rendered(const Variant& variant, std::size_t index, const Job& job, std::string& failure) {
    const FilterInfo& filter = *variant.step.filter;
    Chain chain{{variant.step}, {}};
    bool generates = !variant.step.takesPicture();
    if (generates) chain.size = {double(job.width), double(job.height)};
    CGRect frame = CGRectMake(0, 0, CGFloat(job.width), CGFloat(job.height));
    // A generator's own extent is shown as it is, without being scaled to the frame.
    Result result = resultOf(chain, generates ? "" : "photo.jpg", failure);
    bool small = false;
    if (result.image) {
        CGRect area = result.area;
        small = area.size.width * 4 < frame.size.width || area.size.height * 4 < frame.size.height;
        if (!small) result.area = frame;
    } else if (!failure.ends_with("nothing is left of the picture")) {
        return {};
    } else {
        failure.clear();
        result.image = [CIImage emptyImage];
        result.area = frame;
    }
    bool opaque = !small && isOpaque(result.image, result.area);
    Encoding encoding = asJPEG();
    if (!opaque) encoding.type = "public.png";
    NSData* data = encodePicture(result.image, result.area, encoding, failure);
    if (!data) return {};
    std::string file = "pictures/" + filter.name + "-" + std::to_string(index) + (opaque ? ".jpg" : ".png");
    if (failure = writeFile(file, bytesOf(data)); !failure.empty()) return {};
    std::vector<std::string> words;
    for (auto& [input, text] : variant.step.values)
        words.push_back(array({quoted(input->key), quoted(kindOf(*input)), quoted(text)}));
    return {data, object({{"label", quoted(variant.label)},
                          {"input", variant.input.empty() ? "" : quoted(variant.input)},
                          {"file", quoted(file)},
                          {"small", small ? "true" : ""},
                          {"words", array(words)}})};
}

/// Which variant shows best what a filter does: the first, unless that leaves the photograph as it is. Then
/// it is one at an end of a slider that does not take most of the picture away, which the size of its file
/// tells.
std::size_t bestOf(const std::vector<Exhibit>& exhibits, NSData* untouched) {
    if (![exhibits[0].data isEqualToData:untouched]) return 0;
    for (std::size_t i = exhibits.size(); i-- > 1;)
        if (![exhibits[i].data isEqualToData:untouched] && [exhibits[i].data length] * 4 > [untouched length])
            return i;
    return 0;
}

std::string describe(const FilterInfo& filter, const std::vector<std::string>& variants, std::size_t best) {
    std::vector<std::string> inputs;
    for (const InputInfo& input : filter.inputs)
        inputs.push_back(object({{"key", quoted(input.key)},
                                 {"name", quoted(input.displayName)},
                                 {"class", quoted(classOf(filter, input))},
                                 {"type", quoted(meaningOf(input))},
                                 {"range", quoted(rangeOf(input))},
                                 {"default", quoted(defaultOf(input))}}));
    return object({{"name", quoted(filter.name)},
                   {"title", quoted(filter.displayName)},
                   {"text", quoted(filter.description)},
                   {"category", quoted(mainCategory(filter))},
                   {"since", quoted(filter.since)},
                   {"source", quoted(sourceText(filter.source))},
                   {"generates", filter.findInput("inputImage") ? "" : "true"},
                   {"inputs", array(inputs)},
                   {"variants", array(variants)},
                   {"show", std::to_string(best)}});
}

// ---------------------------------------------------------------------------------- the pictures to work on

/// Writes what `words` of `kaz apply` make: filters and their values.
void make(const std::string& file, const std::string& input, const Size& size,
          const std::vector<std::string>& words) {
    Chain chain{{}, size};
    for (const std::string& word : words) {
        std::size_t equals = word.find('=');
        if (equals == std::string::npos)
            chain.steps.push_back({filterNamed(word), {}});
        else
            chain.steps.back().values.emplace_back(
                inputNamed(*chain.steps.back().filter, word.substr(0, equals)), word.substr(equals + 1));
    }
    std::string failure;
    Result result = resultOf(chain, input, failure);
    Encoding encoding;
    encoding.type = typeForPath(file);
    encoding.quality = 0.9;
    NSData* data = result.image ? encodePicture(result.image, result.area, encoding, failure) : nil;
    if (data) failure = writeFile(file, bytesOf(data));
    if (failure.empty()) return;
    std::fprintf(stderr, "kaz gallery: %s\n", failure.c_str());
    std::exit(kFailed);
}

void makePhotos(Job& job) {
    double w = job.width;
    if (job.photo.empty()) {
        Size size{w, std::round(w * 2 / 3)};
        std::string middle = shortNumber(w / 2) + "," + shortNumber(w / 3);
        make("photo.jpg", "", size,
             {"CICheckerboardGenerator", "width=" + shortNumber(w / 12), "color0=steelblue", "color1=gold",
              "CITwirlDistortion", "center=" + middle, "radius=" + shortNumber(w / 3), "angle=2",
              "CIVignette"});
        make("second.jpg", "", size,
             {"CIStripesGenerator", "width=" + shortNumber(w / 20), "color0=tomato", "color1=beige",
              "CIVortexDistortion", "center=" + middle, "radius=" + shortNumber(w / 3)});
    } else {
        make("photo.jpg", job.photo, {w}, {});
    }
    std::string failure;
    CGSize frame = [readPicture("photo.jpg", failure).image extent].size;
    job.width = int(frame.width), job.height = int(frame.height);
    Size size{frame.width, frame.height};
    if (!job.photo.empty()) {
        // The second photograph fills the frame of the first one.
        CGSize other = [readPicture(job.second, failure).image extent].size;
        if (!failure.empty()) mistaken(failure);
        double scale = std::max(frame.width / other.width, frame.height / other.height);
        make("second.jpg", job.second, {0, 0, 1},
             {"CILanczosScaleTransform", "scale=" + shortNumber(scale * 1.01), "CICrop",
              "rectangle=0,0," + shortNumber(frame.width) + "," + shortNumber(frame.height)});
    }
    std::string width = shortNumber(frame.width),
                middle = shortNumber(frame.width / 2) + "," + shortNumber(frame.height / 2);
    make("mask.png", "", size,
         {"CIRadialGradient", "center=" + middle, "radius0=" + shortNumber(frame.height / 5),
          "radius1=" + shortNumber(frame.height / 2), "color0=white", "color1=black"});
    make("gradient.png", "", size,
         {"CILinearGradient", "point0=0,0", "point1=" + width + ",0", "color0=indigo", "color1=gold"});
    make(
        "texture.png", "", size,
        {"CIRandomGenerator", "CIGaussianBlur", "radius=4", "CIColorControls", "contrast=4", "saturation=0"});
    make("shine.png", "", {128, 128},
         {"CIRadialGradient", "center=48,80", "radius0=8", "radius1=72", "color0=#ffffff60",
          "color1=#ffffff00"});
    make("sphere.png", "", {128, 128},
         {"CIRadialGradient", "center=44,84", "radius0=4", "radius1=84", "color0=white", "color1=navy"});
}

// ------------------------------------------------------------------------------------------- the program

void makeFolder(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0 || errno == EEXIST) return;
    mistaken("cannot write " + path + ": " + (errno == ENOENT ? "no such folder" : std::strerror(errno)));
}

void write(const std::string& path, std::span<const std::uint8_t> bytes) {
    std::string failure = writeFile(path, bytes);
    if (!failure.empty()) mistaken(failure);
}

std::string absolute(const std::string& path) {
    char* real = realpath(path.c_str(), nullptr);
    if (!real) mistaken("cannot read " + path + ": no such file");
    std::string result = real;
    std::free(real);
    return result;
}

Job parse(int count, char** arguments) {
    Words words("gallery", count, arguments);
    Job job;
    while (!words.atEnd()) {
        std::string word = words.take();
        auto whole = [&](double least, double most) {
            std::string text = words.valueOf(word);
            double number = 0;
            if (!parseNumber(text, number) || number != std::floor(number) || number < least || number > most)
                mistaken("'" + text + "' is not a number from " + shortNumber(least) + " to " +
                         shortNumber(most));
            return int(number);
        };
        if (word == "--photo") {
            job.photo = absolute(words.valueOf(word));
        } else if (word == "--second") {
            job.second = absolute(words.valueOf(word));
        } else if (word == "--size") {
            job.width = whole(32, 4096);
        } else if (word == "--jobs") {
            job.jobs = std::size_t(whole(1, 256));
        } else if (word == "--only") {
            job.only = split(words.valueOf(word), ',');
        } else if (word.starts_with("-")) {
            mistaken("there is no option " + word +
                     studio::suggestion(word, {"--photo", "--second", "--size", "--jobs", "--only"}));
        } else if (!job.folder.empty()) {
            mistaken("one folder is enough: " + job.folder + " or " + word);
        } else {
            job.folder = word;
        }
    }
    if (job.folder.empty()) mistaken("a folder to write to is missing, such as gallery/");
    // The set-up's photographs, where there are any.
    const char* photos = std::getenv("KAZ_PHOTOS");
    auto standard = [&](const char* name) {
        std::string path = photos ? photos + std::string("/") + name : "";
        return access(path.c_str(), R_OK) == 0 ? absolute(path) : "";
    };
    if (job.photo.empty()) job.photo = standard("coffee.png");
    if (job.second.empty()) job.second = standard("chelsea.png");
    if (job.second.empty()) job.second = job.photo;
    return job;
}

int run(int count, char** arguments) {
    Job job = parse(count, arguments);
    std::vector<const FilterInfo*> filters;
    for (const FilterInfo* filter : engine::allFilters()) {
        auto fits = [&](const std::string& word) {
            return studio::folded(filter->name).find(studio::folded(word)) != std::string::npos;
        };
        if (job.only.empty() || std::any_of(job.only.begin(), job.only.end(), fits))
            filters.push_back(filter);
    }
    if (filters.empty()) mistaken("no filter has '" + joined(job.only, ",") + "' in its name");
    std::string page = absolute("/proc/self/exe");
    page = page.substr(0, page.rfind('/')) + "/../share/gallery";
    makeFolder(job.folder);
    if (chdir(job.folder.c_str()) != 0) mistaken("cannot write " + job.folder + ": " + std::strerror(errno));
    makeFolder("pictures");
    std::size_t workers = job.jobs ? job.jobs : coreCount();
    // One thread each: processes are forked, so this one must not start threads, and there are more filters
    // than cores.
    engine::setThreadCount(1);
    makePhotos(job);
    auto render = [&](std::size_t index) {
        @autoreleasepool {
            std::string failure;
            CIImage* photo = readPicture("photo.jpg", failure).image;
            NSData* untouched = encodePicture(photo, [photo extent], asJPEG(), failure);
            std::vector<Exhibit> exhibits;
            std::vector<std::string> variants;
            for (const Variant& variant : variantsOf(*filters[index], job)) {
                exhibits.push_back(rendered(variant, exhibits.size(), job, failure));
                if (!exhibits.back().data)
                    return filters[index]->name + " (" + variant.label + "): " + failure;
                variants.push_back(exhibits.back().text);
            }
            std::string text = describe(*filters[index], variants, bestOf(exhibits, untouched));
            return writeFile(filters[index]->name + ".part", bytesOf(text));
        }
    };
    Jobs jobs{filters.size(), render, [&](std::size_t index) { return filters[index]->name; }};
    std::size_t failed = runJobs(jobs, workers, isatty(STDERR_FILENO), "kaz gallery: ");
    std::vector<std::string> parts;
    for (const FilterInfo* filter : filters) {
        NSString* path = [NSString stringWithUTF8String:(filter->name + ".part").c_str()];
        NSData* part = [NSData dataWithContentsOfFile:path];
        if (part) parts.emplace_back(static_cast<const char*>([part bytes]), [part length]);
        unlink([path UTF8String]);
    }
    std::string script = "// What script.js shows; written by ./kaz gallery.\nconst filters = [\n" +
                         joined(parts, ",\n") + "\n];\nconst frame = {width: " + std::to_string(job.width) +
                         ", height: " + std::to_string(job.height) + "};\n";
    write("filters.js", bytesOf(script));
    for (const char* name : {"index.html", "style.css", "script.js"}) {
        NSData* data =
            [NSData dataWithContentsOfFile:[NSString stringWithFormat:@"%s/%s", page.c_str(), name]];
        if (!data) mistaken("cannot read " + page + "/" + name);
        write(name, bytesOf(data));
    }
    std::printf("%zu filters; open %s/index.html\n", parts.size(), absolute(".").c_str());
    return failed ? kFailed : kFine;
}

} // namespace

int main(int count, char** arguments) {
    @autoreleasepool {
        return run(count, arguments);
    }
}
