// Blurs other than the Gaussian and the box, against references in double precision.
#include "reference.h"

#include <atomic>

using namespace reference;

namespace {

/// The mean of weighted readings along a line through each pixel.
Picture along(const Picture& p, double sigma, double angle, double reach, int grown) {
    return filled(p.x0 - grown, p.y0 - grown, p.width + 2 * grown, p.height + 2 * grown, [&](int x, int y) {
        Pixel out{};
        double sum = 0;
        for (double k = -reach; k <= reach; ++k) {
            double weight = std::exp(-0.5 * k * k / (sigma * sigma));
            Pixel q = bilinear(p, x + 0.5 + k * std::cos(angle), y + 0.5 + k * std::sin(angle));
            for (int c = 0; c < 4; ++c) out[c] += weight * q[c];
            sum += weight;
        }
        for (double& v : out) v /= sum;
        return out;
    });
}

} // namespace

TEST(Blurs, ADiscIsTheMeanOfADisc) {
    Picture p = noise(44, 36, 81);
    for (double radius : {0.4, 1.0, 5.3, 20.0}) {
        // The part of each pixel's row within the disc, by summing thin strips.
        double r = radius + 0.5;
        int reach = int(std::ceil(radius));
        auto weight = [&](int dx, int dy) {
            double half = 0;
            for (int k = 0; k < 4000; ++k) {
                double y = dy - 0.5 + (k + 0.5) / 4000;
                half += std::sqrt(std::max(r * r - y * y, 0.0)) / 4000;
            }
            return std::clamp(half - (std::abs(dx) - 0.5), 0.0, 1.0) -
                   (dx == 0 ? std::clamp(0.5 - half, 0.0, 1.0) : 0);
        };
        std::vector<double> weights;
        double sum = 0;
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                weights.push_back(weight(dx, dy));
                sum += weights.back();
            }
        Picture expected = filled(-21, -21, 86, 78, [&](int x, int y) {
            Pixel out{};
            auto w = weights.begin();
            for (int dy = -reach; dy <= reach; ++dy)
                for (int dx = -reach; dx <= reach; ++dx, ++w)
                    for (int c = 0; c < 4; ++c) out[c] += *w / sum * p.get(x + dx, y + dy)[c];
            return out;
        });
        Image image = filter("CIDiscBlur", {{"inputImage", imageOf(p)}, {"inputRadius", radius}});
        EXPECT_EQ(image->extent(), (Rect{0, 0, 44, 36}.grown(reach, reach)));
        EXPECT_LT(error(image, expected), floatError) << radius;
        EXPECT_LT(difference(inTiles(image, -21, -21, 86, 78), expected), floatError) << radius;
    }
}

TEST(Blurs, MotionIsAGaussianAlongALine) {
    Picture p = noise(44, 36, 82);
    for (double angle : {0.0, 0.7, 2.9, -1.2}) {
        double sigma = 4.5;
        Values values{{"inputImage", imageOf(p)}, {"inputRadius", sigma}, {"inputAngle", angle}};
        Image image = filter("CIMotionBlur", values);
        Picture expected = along(p, sigma, angle, 14, 20);
        EXPECT_LT(error(image, expected), floatError) << angle;
        EXPECT_LT(difference(inTiles(image, -20, -20, 84, 76), expected), floatError) << angle;
    }
    // Nothing goes across.
    Image image = filter("CIMotionBlur", {{"inputImage", imageOf(p)}});
    EXPECT_EQ(image->extent().y0, 0);
    EXPECT_EQ(image->extent().y1, 36);
    EXPECT_LT(image->extent().x0, -50);
}

TEST(Blurs, LongMotionIsNoLessAGaussian) {
    Picture rough = noise(60, 40, 83), smooth = trueGaussian(rough, 3);
    for (double sigma : {8.0, 20.0, 51.0}) {
        int reach = int(4 * sigma);
        for (double angle : {0.0, 1.5707963267948966}) {
            Values values{{"inputImage", imageOf(rough)}, {"inputRadius", sigma}, {"inputAngle", angle}};
            Picture expected = along(rough, sigma, angle, reach, 10);
            EXPECT_LT(error(filter("CIMotionBlur", values), expected), halfStep) << sigma << ' ' << angle;
        }
        // Between the pixels of lines that slant, readings smooth a little.
        Values values{{"inputImage", imageOf(smooth)}, {"inputRadius", sigma}, {"inputAngle", 0.5}};
        EXPECT_LT(error(filter("CIMotionBlur", values), along(smooth, sigma, 0.5, reach, 10)), 2 * halfStep)
            << sigma;
    }
}

TEST(Blurs, MotionIsAsWideAsCoreImagesIs) {
    // Alpha at the left edge of an opaque picture 660 pixels wide that Core Image blurred with radius 20 at 3
    // radians: pixels from the edge, and how far alpha has come from the least in that picture's row, 20 of
    // 255, to the most, 253.
    const struct {
        int x;
        double alpha;
    } samples[] = {{-36, 0.030}, {-24, 0.107}, {-18, 0.180}, {-12, 0.275}, {-6, 0.382},
                   {0, 0.502},   {6, 0.627},   {12, 0.738},  {18, 0.828},  {30, 0.944}};
    Image opaque = crop(constant({1, 1, 1, 1}), {0, -300, 660, 300});
    Values values{{"inputImage", opaque}, {"inputRadius", 20.0}, {"inputAngle", 3.0}};
    Image image = filter("CIMotionBlur", values);
    for (const auto& sample : samples)
        EXPECT_NEAR(rendered(image, sample.x, 0, 1, 1).get(sample.x, 0)[3], sample.alpha, 0.012) << sample.x;
}

TEST(Blurs, ZoomIsTheMeanOfAllSizes) {
    Picture p = noise(50, 40, 84);
    Point centre{18, 11};
    for (double amount : {20.0, 80.0, -60.0}) {
        Picture expected = filled(-40, -40, 130, 120, [&](int x, int y) {
            // As the engine has it: a reading for each pixel that the farthest of 64 pixels moves.
            double left = std::floor(x / 64.) * 64 + 0.5 - centre.x, dy = y + 0.5 - centre.y;
            double far = std::hypot(std::max(std::abs(left), std::abs(left + 63)), dy);
            int count = std::max(2, int(far * std::abs(std::exp(-amount / 100) - 1) + 1));
            Pixel out{};
            for (int k = 0; k < count; ++k) {
                double size = std::exp(-amount / 100 * (k + 0.5) / count);
                Pixel q = bilinear(p, centre.x + size * (x + 0.5 - centre.x), centre.y + size * dy);
                for (int c = 0; c < 4; ++c) out[c] += q[c] / count;
            }
            return out;
        });
        Values values{{"inputImage", imageOf(p)},
                      {"inputAmount", amount},
                      {"inputCenter", Numbers{centre.x, centre.y}}};
        Image image = filter("CIZoomBlur", values);
        EXPECT_LT(error(image, expected), 5 * floatError) << amount;
        EXPECT_LT(difference(inTiles(image, -40, -40, 130, 120), expected), 5 * floatError) << amount;
        Picture got = rendered(image, -400, -400, 800, 800);
        for (int y = -400; y < 400; ++y)
            for (int x = -400; x < 400; ++x)
                if (!image->extent().grown(1, 1).contains({x + 0., y + 0., x + 1., y + 1.}))
                    ASSERT_EQ(got.get(x, y)[3], 0) << x << ' ' << y;
    }
}

TEST(Blurs, ALongZoomOfALargePictureFitsInMemory) {
    // From its corner, of a picture that goes on for ever: more than could be kept at once.
    Image endless = clampToEdge(imageOf(noise(50, 40, 85, true)));
    Values values{{"inputImage", endless}, {"inputAmount", -200.0}, {"inputCenter", Numbers{-3000, -2000}}};
    Picture got = rendered(filter("CIZoomBlur", values), 100, 100, 5, 4);
    for (const Pixel& q : got.pixels) EXPECT_NEAR(q[3], 1, 1e-4);
}

namespace {

class TallSource : public RowSource {
  public:
    const PixelLayout& layout() const override { return layout_; }
    void readRows(int, int count, std::uint8_t* out) override {
        std::fill_n(out, 4 * layout_.width * count, std::uint8_t(200));
        rows += count;
    }
    int stripRows() const override { return 8; }
    std::atomic<int> rows{0};

  private:
    PixelLayout layout_{32, 4000, Format::RGBA8, Alpha::opaque, color::ColorSpace::sRGB()};
};

} // namespace

TEST(Blurs, NeighboursFarAwayAreNotRead) {
    const struct {
        const char* name;
        int rows; // that ten rows in the middle need at most, with whole strips of eight
    } filters[] = {{"CIMedianFilter", 32}, {"CIConvolution7X7", 40},       {"CIConvolution9Horizontal", 32},
                   {"CIDiscBlur", 56},     {"CIMotionBlur", 32},           {"CINoiseReduction", 32},
                   {"CIEdges", 32},        {"CISharpenLuminance", 60},     {"CIPixellate", 56},
                   {"CICrystallize", 300}, {"CILanczosScaleTransform", 32}};
    for (const auto& [name, rows] : filters) {
        auto source = std::make_shared<TallSource>();
        Image image = filter(name, {{"inputImage", bitmap(source)}});
        Picture got = inTiles(image, 4, 2000, 20, 10, 64);
        EXPECT_GT(source->rows, 0) << name;
        EXPECT_LE(source->rows, rows) << name;
    }
}
