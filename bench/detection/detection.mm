// Which faces the detectors find, miss and invent in photographs whose faces were marked by eye.
#include "../bench.h"
#include "../filtered.h"

#import <QuartzCore/CIDetector.h>
#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Mark {
    double x, y, side;
    bool profile;
};

struct Photo {
    std::string kind, name;
    std::vector<Mark> marks;
};

/// What came of the faces of a set.
struct Tally {
    int faces = 0, found = 0, invented = 0;
    /// With eyes or a mouth.
    int withParts = 0;
    double seconds = 0;
};

/// A row of the table, at low and at high accuracy.
struct Row {
    std::string name;
    int pictures = 0, lostByHigh = 0;
    Tally low, high;
};

std::vector<Photo> read(const char* file) {
    std::vector<Photo> photos;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        Photo photo;
        if (!(words >> photo.kind >> photo.name) || photo.kind == "#") continue;
        for (std::string word; words >> word;) {
            Mark mark{};
            mark.profile = word.rfind("profile:", 0) == 0;
            if (std::sscanf(word.c_str() + (mark.profile ? 8 : 0), "%lf,%lf,%lf", &mark.x, &mark.y,
                            &mark.side) == 3)
                photo.marks.push_back(mark);
        }
        photos.push_back(photo);
    }
    return photos;
}

CIImage* load(const std::string& name) {
    for (const char* folder : {std::getenv("KAZ_PHOTOS"), std::getenv("KAZ_MEASURED")}) {
        if (!folder) continue;
        NSString* path = [NSString stringWithFormat:@"%s/%s", folder, name.c_str()];
        if (CIImage* image = [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:path]]) return image;
    }
    std::printf("there is no %s\n", name.c_str());
    std::exit(1);
}

/// Where the faces of a picture are, in its own coordinates.
struct Place {
    CGPoint centre;
    double side;
    bool profile;
};

struct Picture {
    CIImage* image;
    std::vector<Place> places;
};

Picture picture(const Photo& photo) {
    CIImage* image = load(photo.name);
    Picture result{image, {}};
    for (const Mark& m : photo.marks)
        result.places.push_back(
            {CGPointMake(static_cast<CGFloat>(m.x + m.side / 2),
                         static_cast<CGFloat>([image extent].size.height - m.y - m.side / 2)),
             m.side, m.profile});
    return result;
}

void apply(Picture& picture, CGAffineTransform transform, double scale) {
    for (Place& place : picture.places) {
        place.centre = CGPointApplyAffineTransform(place.centre, transform);
        place.side *= scale;
    }
}

Picture reduced(Picture picture, double scale) {
    auto s = static_cast<CGFloat>(scale);
    picture.image = bench::filtered(@"CILanczosScaleTransform", picture.image, @"inputScale", scale);
    apply(picture, CGAffineTransformMakeScale(s, s), scale);
    return picture;
}

Picture tilted(Picture picture, double degrees) {
    CGAffineTransform turn = CGAffineTransformMakeRotation(static_cast<CGFloat>(degrees * M_PI / 180));
    picture.image = [picture.image imageByApplyingTransform:turn];
    apply(picture, turn, 1);
    return picture;
}

bool shows(CIFaceFeature* face, const Place& place) {
    CGRect b = [face bounds];
    double apart = std::hypot(CGRectGetMidX(b) - place.centre.x, CGRectGetMidY(b) - place.centre.y);
    double size = b.size.width / place.side;
    return apart < 0.5 * place.side && size > 0.5 && size < 2;
}

/// Which of the places a detector sees.
std::vector<bool> look(const Picture& picture, bool high, bool profiles, Tally& tally) {
    NSDictionary* options =
        [NSDictionary dictionaryWithObject:high ? CIDetectorAccuracyHigh : CIDetectorAccuracyLow
                                    forKey:CIDetectorAccuracy];
    CIDetector* detector = [CIDetector detectorOfType:CIDetectorTypeFace context:nil options:options];
    std::clock_t start = std::clock();
    NSArray* faces = [detector featuresInImage:picture.image];
    tally.seconds += static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    std::vector<bool> seen;
    for (const Place& place : picture.places) {
        CIFaceFeature* match = nil;
        for (CIFaceFeature* face in faces)
            if (shows(face, place)) match = face;
        seen.push_back(match != nil);
        if (place.profile != profiles) continue;
        ++tally.faces;
        tally.found += match != nil;
        tally.withParts +=
            [match hasLeftEyePosition] || [match hasRightEyePosition] || [match hasMouthPosition];
    }
    for (CIFaceFeature* face in faces)
        tally.invented += std::none_of(picture.places.begin(), picture.places.end(),
                                       [&](const Place& place) { return shows(face, place); });
    return seen;
}

void measure(Row& row, const Picture& picture, bool profiles = false) {
    ++row.pictures;
    std::vector<bool> low = look(picture, false, profiles, row.low);
    std::vector<bool> high = look(picture, true, profiles, row.high);
    for (std::size_t i = 0; i < low.size(); ++i) row.lostByHigh += low[i] && !high[i];
}

void print(const Row& row) {
    auto side = [&](const Tally& t) {
        std::printf(" | %5d %6d %8d %6.2f", t.found, t.faces - t.found, t.invented, t.seconds / row.pictures);
    };
    std::printf("%-26s %8d %5d", row.name.c_str(), row.pictures, row.low.faces);
    side(row.low);
    side(row.high);
    std::printf(" | %d\n", row.lostByHigh);
    std::fflush(stdout);
}

double medianSide(const Photo& photo) {
    std::vector<double> sides;
    for (const Mark& m : photo.marks) sides.push_back(m.side);
    std::nth_element(sides.begin(), sides.begin() + static_cast<std::ptrdiff_t>(sides.size() / 2),
                     sides.end());
    return sides[sides.size() / 2];
}

} // namespace

/// detection TABLE [WORD]: every row, or those whose names contain WORD.
int main(int argc, char** argv) {
    if (argc < 2) return 2;
    std::vector<Photo> photos = read(argv[1]);
    std::string word = argc > 2 ? argv[2] : "";
    std::printf(
        "%-26s %8s %5s | %-28s | %-28s | %s\n%-26s %8s %5s | %5s %6s %8s %6s | %5s %6s %8s %6s | by high\n",
        "", "", "", "low accuracy", "high accuracy", "lost", "", "pictures", "faces", "found", "missed",
        "invented", "s", "found", "missed", "invented", "s");
    /// Measures every photo that `choose` makes a picture of.
    auto row = [&](const std::string& name, bool profiles, auto choose) {
        if (name.find(word) == std::string::npos) return;
        Row result;
        result.name = name;
        for (const Photo& photo : photos) @autoreleasepool {
                if (Picture chosen = choose(photo); chosen.image) measure(result, chosen, profiles);
            }
        print(result);
    };
    auto ofKind = [](const char* kind) {
        return [=](const Photo& photo) { return photo.kind == kind ? picture(photo) : Picture{}; };
    };
    row("portraits", false, ofKind("portrait"));
    row("groups", false, ofKind("group"));
    for (int size : {64, 48, 36, 32, 28, 24, 20})
        row("groups, faces of " + std::to_string(size), false, [&](const Photo& photo) {
            if (photo.kind != "group") return Picture{};
            double scale = size / medianSide(photo);
            return scale < 1 ? reduced(picture(photo), scale) : Picture{};
        });
    for (int angle : {10, 20, 30, 45})
        row("tilted by " + std::to_string(angle), false, [&](const Photo& photo) {
            // By its last character, so that about half of them turn to either side.
            double sign = photo.name[photo.name.size() - 5] % 2 ? 1 : -1;
            return photo.kind == "portrait" && medianSide(photo) < 150 && !photo.marks[0].profile
                       ? tilted(picture(photo), sign * angle)
                       : Picture{};
        });
    row("profiles", true, [](const Photo& photo) {
        bool any =
            std::any_of(photo.marks.begin(), photo.marks.end(), [](const Mark& m) { return m.profile; });
        return any ? picture(photo) : Picture{};
    });
    row("faceless", false, ofKind("faceless"));
}
