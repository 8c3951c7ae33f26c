// Compares this Core Image with pictures that Apple's rendered from the same inputs, and prints a table.
//
//     fidelity FOLDER [--filter NAME] [--limits FILE] [--out FOLDER]
//
// FOLDER holds reference/NAME/case.json and more/cases.json with their pictures. A difference is that of a
// premultiplied component, in steps of 255. With --limits, a mean above the one that the file states for a
// case, or a case that the file does not state, is a failure (exit code 1). --out writes our picture and the
// amplified difference of each case. Exit code 77 when FOLDER is not there.
#import <Foundation/Foundation.h>
#import <ImageIO/ImageIO.h>
#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Premultiplied sRGB bytes R, G, B, A, rows from the top.
struct Bitmap {
    int width = 0, height = 0;
    std::vector<std::uint8_t> bytes;

    Bitmap() = default;
    Bitmap(int width, int height) : width(width), height(height), bytes(4u * width * height) {}
    const std::uint8_t* at(int x, int y) const { return &bytes[4u * (static_cast<unsigned>(y) * width + x)]; }
    std::uint8_t* at(int x, int y) { return &bytes[4u * (static_cast<unsigned>(y) * width + x)]; }
};

struct Case {
    std::string filter, source;
    NSDictionary* inputs;
    NSString* folder;
    NSString* picture;
    /// Where an endless result was cropped; a square at the origin as large as the picture when it is empty.
    std::optional<CGRect> crop;
    bool cropped = false;
};

struct Difference {
    double mean = 0, percentile99 = 0, above8 = 0;
};

NSString* text(const std::string& s) { return [NSString stringWithUTF8String:s.c_str()]; }

id parsed(NSString* path) {
    NSData* data = [NSData dataWithContentsOfFile:path];
    return data ? [NSJSONSerialization JSONObjectWithData:data options:0 error:nullptr] : nil;
}

std::vector<Case> casesBelow(NSString* folder) {
    std::vector<Case> cases;
    NSString* reference = [folder stringByAppendingPathComponent:@"reference"];
    NSArray* names = [[[NSFileManager defaultManager] contentsOfDirectoryAtPath:reference error:nullptr]
        sortedArrayUsingSelector:@selector(compare:)];
    for (NSString* name in names) {
        NSString* base = [reference stringByAppendingPathComponent:name];
        NSDictionary* entry = parsed([base stringByAppendingPathComponent:@"case.json"]);
        if (!entry) continue;
        cases.push_back({[[entry objectForKey:@"filter"] UTF8String],
                         "reference",
                         [entry objectForKey:@"inputs"],
                         base,
                         [entry objectForKey : @"output"],
                         {},
                         [[entry objectForKey:@"outputCropped"] boolValue] == YES});
    }
    NSString* more = [folder stringByAppendingPathComponent:@"more"];
    for (NSDictionary* entry in parsed([more stringByAppendingPathComponent:@"cases.json"])) {
        Case c{[[entry objectForKey:@"filter"] UTF8String],
               "more",
               [entry objectForKey:@"inputs"],
               more,
               [entry objectForKey : @"output"],
               {},
               false};
        if (NSArray* r = [entry objectForKey:@"outputCroppedTo"])
            c.crop = CGRectMake([[r objectAtIndex:0] floatValue], [[r objectAtIndex:1] floatValue],
                                [[r objectAtIndex:2] floatValue], [[r objectAtIndex:3] floatValue]);
        cases.push_back(c);
    }
    return cases;
}

CIColor* colorFrom(id value) {
    if ([value isKindOfClass:[NSString class]]) {
        unsigned long bits = std::strtoul([value UTF8String] + 1, nullptr, 16);
        auto part = [&](int shift) { return static_cast<CGFloat>((bits >> shift & 255) / 255.0); };
        return [CIColor colorWithRed:part(24) green:part(16) blue:part(8) alpha:part(0)];
    }
    auto part = [&](unsigned i) { return [[value objectAtIndex:i] floatValue]; };
    return [CIColor colorWithRed:part(0) green:part(1) blue:part(2) alpha:part(3)];
}

CIImage* imageAt(const Case& c, NSString* name) {
    return [CIImage
        imageWithContentsOfURL:[NSURL fileURLWithPath:[c.folder stringByAppendingPathComponent:name]]];
}

/// An input as case files write it: {"number": 3}, {"vector": [1, 2]} and so on.
id valueFrom(const Case& c, NSDictionary* input, CIFilter* filter, NSString* key) {
    if (NSString* name = [input objectForKey:@"image"]) return imageAt(c, name);
    if (id number = [input objectForKey:@"number"]) return number;
    if (id color = [input objectForKey:@"color"]) return colorFrom(color);
    if (NSArray* vector = [input objectForKey:@"vector"]) {
        std::vector<CGFloat> values;
        for (NSNumber* v in vector) values.push_back([v floatValue]);
        return [CIVector vectorWithValues:values.data() count:values.size()];
    }
    NSString* string = [input objectForKey:@"string"];
    NSString* wanted = [[[filter attributes] objectForKey:key] objectForKey:kCIAttributeClass];
    if ([wanted isEqualToString:@"NSData"]) return [string dataUsingEncoding:NSUTF8StringEncoding];
    return string;
}

Bitmap rendered(CIImage* image, CGRect area) {
    Bitmap bitmap(static_cast<int>(area.size.width), static_cast<int>(area.size.height));
    CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGContextRef target = CGBitmapContextCreate(bitmap.bytes.data(), bitmap.width, bitmap.height, 8,
                                                4 * bitmap.width, space, kCGImageAlphaPremultipliedLast);
    CIContext* context = [CIContext contextWithCGContext:target options:nil];
    [context drawImage:image inRect:CGRectMake(0, 0, area.size.width, area.size.height) fromRect:area];
    CGContextRelease(target);
    CGColorSpaceRelease(space);
    return bitmap;
}

void write(const Bitmap& bitmap, NSString* path) {
    CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGContextRef context =
        CGBitmapContextCreate(const_cast<std::uint8_t*>(bitmap.bytes.data()), bitmap.width, bitmap.height, 8,
                              4 * bitmap.width, space, kCGImageAlphaPremultipliedLast);
    CGImageRef image = CGBitmapContextCreateImage(context);
    CGImageDestinationRef file = CGImageDestinationCreateWithURL((CFURLRef)[NSURL fileURLWithPath:path],
                                                                 CFSTR("public.png"), 1, nullptr);
    CGImageDestinationAddImage(file, image, nullptr);
    if (!CGImageDestinationFinalize(file)) std::fprintf(stderr, "cannot write %s\n", [path UTF8String]);
    CFRelease(file);
    CGImageRelease(image);
    CGContextRelease(context);
    CGColorSpaceRelease(space);
}

/// Compares where both are, `theirs` moved by (dx, dy); what only one of them has is compared with nothing.
Difference compared(const Bitmap& ours, const Bitmap& theirs, int dx, int dy, Bitmap* amplified = nullptr) {
    std::array<std::size_t, 256> counts{};
    if (amplified) *amplified = Bitmap(theirs.width, theirs.height);
    static const std::uint8_t nothing[4] = {};
    for (int y = 0; y < theirs.height; ++y)
        for (int x = 0; x < theirs.width; ++x) {
            int ox = x + dx, oy = y + dy;
            bool inside = ox >= 0 && oy >= 0 && ox < ours.width && oy < ours.height;
            const std::uint8_t *a = inside ? ours.at(ox, oy) : nothing, *b = theirs.at(x, y);
            for (int c = 0; c < 4; ++c) {
                int d = std::abs(a[c] - b[c]);
                ++counts[d];
                if (amplified)
                    amplified->at(x, y)[c] = c == 3 ? 255 : static_cast<std::uint8_t>(std::min(255, 8 * d));
            }
        }
    Difference result;
    double total = 4.0 * theirs.width * theirs.height, seen = 0;
    bool found = false;
    for (int d = 0; d < 256; ++d) {
        result.mean += d * counts[d] / total;
        if (d > 8) result.above8 += 100 * counts[d] / total;
        seen += counts[d];
        if (!found && seen >= 0.99 * total) result.percentile99 = d, found = true;
    }
    return result;
}

/// The bounds of what is at least half opaque: left, top, right, bottom.
std::array<int, 4> opaqueBounds(const Bitmap& bitmap) {
    std::array<int, 4> b{bitmap.width, bitmap.height, 0, 0};
    for (int y = 0; y < bitmap.height; ++y)
        for (int x = 0; x < bitmap.width; ++x)
            if (bitmap.at(x, y)[3] >= 128)
                b = {std::min(b[0], x), std::min(b[1], y), std::max(b[2], x + 1), std::max(b[3], y + 1)};
    return b;
}

struct Alignment {
    int dx = 0, dy = 0;
    Difference difference;
};

/// Pictures of one size lie on each other. Otherwise where `theirs` lies is not recorded, since some systems
/// round an extent up: it is found by its alpha, and then by the least difference nearby.
Alignment aligned(const Bitmap& ours, const Bitmap& theirs) {
    if (ours.width == theirs.width && ours.height == theirs.height)
        return {0, 0, compared(ours, theirs, 0, 0)};
    auto a = opaqueBounds(ours), b = opaqueBounds(theirs);
    Alignment middle{(a[0] + a[2] - b[0] - b[2]) / 2, (a[1] + a[3] - b[1] - b[3]) / 2, {}};
    Alignment best = middle;
    best.difference.mean = 1e9;
    for (int dy = middle.dy - 2; dy <= middle.dy + 2; ++dy)
        for (int dx = middle.dx - 2; dx <= middle.dx + 2; ++dx)
            if (Difference d = compared(ours, theirs, dx, dy); d.mean < best.difference.mean)
                best = {dx, dy, d};
    return best;
}

struct Limit {
    double mean = 0;
    std::map<std::string, double> inputs;
};

std::map<std::string, Limit> limitsIn(const char* path) {
    std::map<std::string, Limit> limits;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string source, filter, input;
        Limit limit;
        if (!(words >> source >> filter >> limit.mean)) continue;
        while (words >> input)
            limit.inputs[input.substr(0, input.find('='))] = std::atof(input.c_str() + input.find('=') + 1);
        limits[source + "/" + filter] = limit;
    }
    return limits;
}

/// A picture without alpha was drawn on black.
bool isOpaque(const Bitmap& bitmap) {
    for (std::size_t i = 3; i < bitmap.bytes.size(); i += 4)
        if (bitmap.bytes[i] != 255) return false;
    return true;
}

CIImage* onBlack(CIImage* image) {
    CIFilter* over = [CIFilter filterWithName:@"CISourceOverCompositing"];
    [over setValue:image forKey:@"inputImage"];
    [over setValue:[CIImage imageWithColor:[CIColor colorWithRed:0 green:0 blue:0]]
            forKey:@"inputBackgroundImage"];
    return [over valueForKey:@"outputImage"];
}

std::string describe(CGRect r) {
    char s[120];
    std::snprintf(s, sizeof s, "%g,%g %gx%g", r.origin.x, r.origin.y, r.size.width, r.size.height);
    return s;
}

struct Options {
    const char *folder = nullptr, *filter = nullptr, *limits = nullptr, *out = nullptr;
};

/// False when the case is worse than its limit.
bool compare(const Case& c, const Options& options, const std::map<std::string, Limit>& limits) {
    std::string name = c.source + "/" + c.filter;
    CIFilter* filter = [CIFilter filterWithName:text(c.filter)];
    if (!filter) {
        std::printf("%-46s no such filter\n", name.c_str());
        return !options.limits;
    }
    [filter setDefaults];
    for (NSString* key in c.inputs)
        [filter setValue:valueFrom(c, [c.inputs objectForKey:key], filter, key) forKey:key];
    auto limit = limits.find(name);
    if (limit != limits.end())
        for (const auto& [key, number] : limit->second.inputs)
            if (key != "scale") [filter setValue:[NSNumber numberWithDouble:number] forKey:text(key)];
    CIImage* output = [filter valueForKey:@"outputImage"];
    if (limit != limits.end() && limit->second.inputs.count("scale")) {
        CGFloat scale = static_cast<CGFloat>(limit->second.inputs.at("scale"));
        output = [output imageByApplyingTransform:CGAffineTransformMakeScale(scale, scale)];
    }
    CIImage* picture = imageAt(c, c.picture);
    Bitmap theirs = rendered(picture, [picture extent]);
    CGRect extent = [output extent];
    CGRect area = CGRectIntegral(extent);
    if (c.crop)
        area = *c.crop;
    else if (c.cropped || extent.size.width > 1e5 || extent.size.height > 1e5)
        area = CGRectMake(0, 0, theirs.width, theirs.height);
    if (output && isOpaque(theirs)) output = onBlack(output);
    Bitmap ours = output && !CGRectIsEmpty(area) ? rendered(output, area) : Bitmap(1, 1);

    Alignment best = aligned(ours, theirs);
    bool good = !options.limits || (limit != limits.end() && best.difference.mean <= limit->second.mean);
    std::printf("%-46s %7.3f %5.0f %7.2f%%  ", name.c_str(), best.difference.mean,
                best.difference.percentile99, best.difference.above8);
    if (ours.width != theirs.width || ours.height != theirs.height)
        std::printf(" ours %s, theirs %dx%d", describe(extent).c_str(), theirs.width, theirs.height);
    if (!good && limit == limits.end()) std::printf(" has no limit");
    if (!good && limit != limits.end()) std::printf(" is above its limit of %g", limit->second.mean);
    std::printf("\n");
    std::fflush(stdout);
    if (options.out) {
        Bitmap amplified;
        compared(ours, theirs, best.dx, best.dy, &amplified);
        NSString* stem =
            [NSString stringWithFormat:@"%s/%s-%s", options.out, c.filter.c_str(), c.source.c_str()];
        write(ours, [stem stringByAppendingString:@"-ours.png"]);
        write(theirs, [stem stringByAppendingString:@"-theirs.png"]);
        write(amplified, [stem stringByAppendingString:@"-difference.png"]);
    }
    return good;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        const char** value = argument == "--filter"   ? &options.filter
                             : argument == "--limits" ? &options.limits
                             : argument == "--out"    ? &options.out
                                                      : nullptr;
        if (value && i + 1 < argc)
            *value = argv[++i];
        else
            options.folder = argv[i];
    }
    @autoreleasepool {
        std::vector<Case> cases;
        if (options.folder) cases = casesBelow([NSString stringWithUTF8String:options.folder]);
        if (cases.empty()) {
            std::printf("Skipped: no pictures of Core Image at %s\n",
                        options.folder ? options.folder : "(no folder)");
            return 77;
        }
        auto limits = options.limits ? limitsIn(options.limits) : std::map<std::string, Limit>{};
        std::printf("%-46s %7s %5s %8s\n", "filter", "mean", "99th", "above 8");
        int worse = 0, seen = 0;
        for (const Case& c : cases) {
            if (options.filter && c.filter.find(options.filter) == std::string::npos) continue;
            @autoreleasepool {
                worse += !compare(c, options, limits);
            }
            ++seen;
        }
        std::printf("%d pictures compared, %d worse than their limits\n", seen, worse);
        return worse ? 1 : 0;
    }
}
