// Finding faces with two models of dlib: histograms of gradients in five poses detect faces, and regression
// trees place 68 landmarks in each.
#include <vision/faces.h>

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

class DlibFinder : public FaceFinder {
  public:
    std::vector<Face> find(const GreyBitmap& bitmap) override {
        if (!bitmap.pixels || bitmap.width <= 0 || bitmap.height <= 0) return {};
        std::lock_guard lock(mutex_); // the detector keeps its pyramid between calls
        std::vector<dlib::rect_detection> found;
        GreyView view{&bitmap};
        detector_(view, found, kSureness);
        std::vector<Face> faces;
        for (const dlib::rect_detection& each : found) faces.push_back(faceAt(bitmap, each));
        std::stable_sort(faces.begin(), faces.end(), [](const Face& a, const Face& b) {
            return a.width * a.height > b.width * b.height;
        });
        return faces;
    }

  private:
    Face faceAt(const GreyBitmap& bitmap, const dlib::rect_detection& detection) {
        const dlib::rectangle& r = detection.rect;
        Face face;
        face.x = static_cast<double>(r.left());
        face.y = static_cast<double>(r.top());
        face.width = static_cast<double>(r.width());
        face.height = static_cast<double>(r.height());
        face.sureness = detection.detection_confidence;
        if (!loadPredictor()) return face;
        dlib::full_object_detection shape = (*predictor_)(GreyView{&bitmap}, r);
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

    std::mutex mutex_;
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
