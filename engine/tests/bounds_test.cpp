// No value of an input makes a filter much slower than its defaults do.
#include "reference.h"

#include <ctime>

using namespace reference;

namespace {

constexpr int kWidth = 256, kHeight = 192;

/// Seconds of the processor, of this thread alone.
double processorTime() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

/// What rendering the picture's area costs.
double costOf(const FilterInfo& info, const Values& values) {
    static std::vector<std::uint8_t> out(4 * kWidth * kHeight);
    Image result = engine::apply(info, values);
    double start = processorTime();
    render(result, {0, 0, kWidth, kHeight}, {{kWidth, kHeight}, out.data(), 4 * kWidth},
           {0, 0, kWidth, kHeight});
    return processorTime() - start;
}

/// Values that nobody means, and the ends of what people mean.
std::vector<double> hostileValues(const InputInfo& input) {
    std::vector<double> values = {0, 1e-9, -1, 1e3, -1e3, 1e6, 1e30, -1e30, double(NAN), double(INFINITY)};
    for (auto& end : {input.min, input.max, input.sliderMin, input.sliderMax})
        if (end) values.push_back(*end);
    return values;
}

Values defaultsOf(const FilterInfo& info, const Image& image) {
    Values values;
    for (const InputInfo& input : info.inputs)
        if (input.kind == InputKind::image) values[input.key] = image;
    return values;
}

} // namespace

// The widest Gaussian reads 8,000 pixels around a picture, however small; of 12 megapixels that is 11 times
// the picture, and here up to 1 s.
constexpr double kWidestGaussian = 2;

TEST(Bounds, NoNumberMakesAFilterTwentyTimesSlower) {
    engine::setThreadCount(1);
    Image image = imageOf(noise(kWidth, kHeight, 5));
    for (const FilterInfo* info : allFilters()) {
        Values values = defaultsOf(*info, image);
        costOf(*info, values); // tables are made once
        double usual = std::max(costOf(*info, values), 0.004);
        for (const InputInfo& input : info->inputs)
            for (double value : hostileValues(input)) {
                Values hostile = values;
                if (input.kind == InputKind::number)
                    hostile[input.key] = value;
                else if (input.kind == InputKind::vector)
                    hostile[input.key] = Numbers(4, value);
                else if (input.kind == InputKind::color)
                    hostile[input.key] = Color{value, value, value, value};
                else if (input.kind == InputKind::transform)
                    hostile[input.key] = Affine{std::isfinite(value) ? value : 1, 0, 0, 1, 0, 0};
                else
                    continue;
                double cost = costOf(*info, hostile);
                EXPECT_LE(cost, 20 * usual + kWidestGaussian)
                    << info->name << ' ' << input.key << " = " << value << ": " << cost / usual << " times";
            }
    }
    engine::setThreadCount(0);
}

// Fewer cells cost no more than many.
TEST(Bounds, LargeCrystalsAreNoSlowerThanSmallOnes) {
    engine::setThreadCount(1);
    Image image = imageOf(noise(kWidth, kHeight, 5));
    for (const char* name : {"CICrystallize", "CIPointillize"}) {
        const FilterInfo& info = *engine::findFilter(name);
        Values values = defaultsOf(info, image);
        double usual = std::max(costOf(info, values), 0.002);
        for (double radius : {100.0, 1000.0, 1e5}) {
            values["inputRadius"] = radius;
            EXPECT_LE(costOf(info, values), 2 * usual) << name << ' ' << radius;
        }
    }
    engine::setThreadCount(0);
}
