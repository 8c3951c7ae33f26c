// Finding faces with two models of dlib: histograms of gradients in five poses detect faces, and regression
// trees place 68 landmarks in each. A cascade of OpenCV proposes profiles, which the histograms confirm.
#include <vision/faces.h>

#include "bitmaps.h"
#include "cascade.h"

#include <dlib/image_processing.h>
#include <dlib/image_processing/frontal_face_detector.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>

namespace vision {
namespace {

/// A bitmap that dlib reads in place, through the functions below: it finds them by the type of their
/// argument.
struct GreyView {
    const GreyBitmap* bitmap;
};
long num_rows(const GreyView& view) { return view.bitmap->height; }
long num_columns(const GreyView& view) { return view.bitmap->width; }
const void* image_data(const GreyView& view) { return view.bitmap->pixels; }
long width_step(const GreyView& view) { return static_cast<long>(view.bitmap->rowBytes); }

} // namespace
} // namespace vision

template <>
struct dlib::image_traits<vision::GreyView> {
    using pixel_type = unsigned char;
};

namespace vision {
namespace {

/// The first and one past the last of a part's landmarks.
struct Landmarks {
    unsigned long begin, end;
};
constexpr Landmarks kLeftEye{36, 42}, kRightEye{42, 48}, kOutlineOfLips{48, 60};

Point middle(const dlib::full_object_detection& shape, Landmarks part) {
    Point sum;
    for (unsigned long i = part.begin; i < part.end; ++i) {
        sum.x += static_cast<double>(shape.part(i).x());
        sum.y += static_cast<double>(shape.part(i).y());
    }
    double n = static_cast<double>(part.end - part.begin);
    return {sum.x / n, sum.y / n};
}

/// The standard deviation of the pixels in a square; 0 where it does not meet the bitmap.
double deviation(const GreyBitmap& bitmap, Point centre, double halfSide) {
    int x0 = std::max(0, static_cast<int>(centre.x - halfSide));
    int y0 = std::max(0, static_cast<int>(centre.y - halfSide));
    int x1 = std::min(bitmap.width, static_cast<int>(centre.x + halfSide) + 1);
    int y1 = std::min(bitmap.height, static_cast<int>(centre.y + halfSide) + 1);
    if (x0 >= x1 || y0 >= y1) return 0;
    double sum = 0, squares = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x) {
            double v =
                bitmap.pixels[static_cast<std::size_t>(y) * bitmap.rowBytes + static_cast<std::size_t>(x)];
            sum += v;
            squares += v * v;
        }
    double n = static_cast<double>(x1 - x0) * (y1 - y0);
    return std::sqrt(std::max(0.0, squares / n - sum / n * (sum / n)));
}

std::string landmarksFile() {
    const char* other = std::getenv("KAZ_FACE_LANDMARKS");
    return other ? other : KAZ_FACE_LANDMARKS;
}

std::string profilesFile() {
    const char* other = std::getenv("KAZ_FACE_PROFILES");
    return other ? other : KAZ_FACE_PROFILES;
}

/// The bitmap in which the cascade looks has so many pixels at most, and its smallest profile this side.
constexpr double kPixelsForProfiles = 0.4e6, kLeastProfile = 24;
/// The number of windows that must agree on a profile.
constexpr int kVotes = 3;
/// What the histograms must give a profile. In 86 photographs without people, the cascade proposed nine, of
/// which the best had -0.72.
constexpr double kSurenessOfProfile = -0.4;

class DlibFinder : public FaceFinder {
  public:
    std::vector<Face> find(const GreyBitmap& bitmap, Care care) override {
        if (!bitmap.pixels || bitmap.width <= 0 || bitmap.height <= 0) return {};
        std::lock_guard lock(mutex_); // the detector keeps its pyramid between calls
        std::vector<Face> faces;
        for (const dlib::rect_detection& each : detect(bitmap, kSureness))
            faces.push_back(faceAt(bitmap, each));
        if (care == Care::Thorough) addNew(faces, profilesIn(bitmap));
        std::stable_sort(faces.begin(), faces.end(), larger);
        return faces;
    }

  private:
    std::vector<dlib::rect_detection> detect(const GreyBitmap& bitmap, double sureness) {
        std::vector<dlib::rect_detection> found;
        detector_(GreyView{&bitmap}, found, sureness);
        return found;
    }

    /// What the cascade takes for a profile, and the histograms for a face.
    std::vector<Face> profilesIn(const GreyBitmap& bitmap) {
        std::vector<Face> faces;
        if (!loadProfiles()) return faces;
        double pixels = static_cast<double>(bitmap.width) * bitmap.height;
        double step = std::max(1.0, std::sqrt(pixels / kPixelsForProfiles));
        Grey reduced = resampled(bitmap, 0, 0, step, std::max(1, static_cast<int>(bitmap.width / step)),
                                 std::max(1, static_cast<int>(bitmap.height / step)));
        double smallest = std::max(kLeastProfile, kSmallestFace / step);
        for (bool looksRight : {false, true}) {
            // The cascade knows faces that look to the left.
            if (looksRight) reduced = mirrored(reduced.bitmap());
            for (Sighting at : profiles_->find(reduced.bitmap(), smallest, kVotes)) {
                if (looksRight) at.x = reduced.width - at.x - at.side;
                Sighting inBitmap{at.x * step, at.y * step, at.side * step, at.votes};
                if (std::optional<Face> face = confirmed(bitmap, inBitmap)) addNew(faces, {*face});
            }
        }
        return faces;
    }

    /// The face that the histograms see in the middle of an enlarged crop around the sighting.
    std::optional<Face> confirmed(const GreyBitmap& bitmap, const Sighting& at) {
        constexpr int side = 256; // the sighting itself gets half of it
        double step = 2 * at.side / side, x = at.x - at.side / 2, y = at.y - at.side / 2;
        Grey crop = resampled(bitmap, x, y, step, side, side);
        std::optional<dlib::rect_detection> best;
        // The histograms are not equally good at either side of a face.
        for (bool turned : {false, true}) {
            Grey view = turned ? mirrored(crop.bitmap()) : crop;
            for (dlib::rect_detection each : detect(view.bitmap(), kSurenessOfProfile)) {
                dlib::rectangle& r = each.rect;
                if (turned)
                    r = dlib::rectangle(side - 1 - r.right(), r.top(), side - 1 - r.left(), r.bottom());
                dlib::point centre = dlib::center(r);
                bool isIt = std::hypot(centre.x() - side / 2, centre.y() - side / 2) < side / 5 &&
                            r.width() > side / 4 && r.width() < side * 4 / 5;
                if (isIt && (!best || each.detection_confidence > best->detection_confidence)) best = each;
            }
        }
        if (!best) return {};
        // The landmarks are of frontal faces.
        Face face = best->detection_confidence >= kSureness ? faceAt(crop.bitmap(), *best) : placeOf(*best);
        auto outside = [&](Point p) { return Point{x + p.x * step, y + p.y * step}; };
        for (std::optional<Point>* part : {&face.leftEye, &face.rightEye, &face.mouth})
            if (*part) *part = outside(**part);
        Point corner = outside({face.x, face.y});
        return Face{corner.x,      corner.y,     face.width * step, face.height * step,
                    face.sureness, face.leftEye, face.rightEye,     face.mouth};
    }

    static Face placeOf(const dlib::rect_detection& detection) {
        const dlib::rectangle& r = detection.rect;
        Face face;
        face.x = static_cast<double>(r.left());
        face.y = static_cast<double>(r.top());
        face.width = static_cast<double>(r.width());
        face.height = static_cast<double>(r.height());
        face.sureness = detection.detection_confidence;
        return face;
    }

    Face faceAt(const GreyBitmap& bitmap, const dlib::rect_detection& detection) {
        Face face = placeOf(detection);
        if (!loadPredictor()) return face;
        dlib::full_object_detection shape = (*predictor_)(GreyView{&bitmap}, detection.rect);
        Point left = middle(shape, kLeftEye), right = middle(shape, kRightEye);
        double apart = std::hypot(right.x - left.x, right.y - left.y);
        // The regression places every landmark, even one that is outside of the bitmap or covered.
        double contrast =
            deviation(bitmap, {face.x + face.width / 2, face.y + face.height / 2}, face.width / 2);
        auto seen = [&](Point p) -> std::optional<Point> {
            bool inside = p.x >= 0 && p.y >= 0 && p.x < bitmap.width && p.y < bitmap.height;
            if (!inside || deviation(bitmap, p, apart / 8) < contrast / 16) return {};
            return p;
        };
        face.leftEye = seen(left);
        face.rightEye = seen(right);
        face.mouth = seen(middle(shape, kOutlineOfLips));
        return face;
    }

    /// Takes two thirds of a second and 70 MB, and is left out until the first face is found.
    bool loadPredictor() {
        if (triedToLoad_) return predictor_ != nullptr;
        triedToLoad_ = true;
        try {
            auto predictor = std::make_unique<dlib::shape_predictor>();
            dlib::deserialize(landmarksFile()) >> *predictor;
            if (predictor->num_parts() < kOutlineOfLips.end)
                throw dlib::serialization_error("it has other landmarks");
            predictor_ = std::move(predictor);
        } catch (const dlib::error& e) {
            std::fprintf(stderr, "vision: faces go without eyes and mouth: %s is damaged: %s\n",
                         landmarksFile().c_str(), e.what());
        }
        return predictor_ != nullptr;
    }

    bool loadProfiles() {
        if (triedToLoadProfiles_) return profiles_ != nullptr;
        triedToLoadProfiles_ = true;
        try {
            profiles_ = std::make_unique<Cascade>(profilesFile());
        } catch (const std::runtime_error& e) {
            std::fprintf(stderr, "vision: profiles are not found: %s\n", e.what());
        }
        return profiles_ != nullptr;
    }

    std::mutex mutex_;
    std::unique_ptr<Cascade> profiles_;
    bool triedToLoadProfiles_ = false;
    dlib::frontal_face_detector detector_ = dlib::get_frontal_face_detector();
    std::unique_ptr<dlib::shape_predictor> predictor_;
    bool triedToLoad_ = false;
};

} // namespace
} // namespace vision

vision::FaceFinder* visionFaceFinder(std::string* problem) {
    static std::mutex mutex;
    static std::unique_ptr<vision::DlibFinder> finder;
    std::lock_guard lock(mutex);
    try {
        if (!finder) {
            if (!std::ifstream(vision::landmarksFile())) {
                *problem = "cannot read " + vision::landmarksFile();
                return nullptr;
            }
            finder = std::make_unique<vision::DlibFinder>();
        }
        return finder.get();
    } catch (const std::exception& e) {
        *problem = e.what();
        return nullptr;
    }
}
