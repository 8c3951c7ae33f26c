// Reading an image under a transform, bilinear or nearest.
#include "ImageSampler.h"

#include <algorithm>
#include <array>

namespace cg {

namespace {

bool isWhole(double v) { return v == std::floor(v); }

/// The largest integer that is not above `v`. Before SSE4, std::floor is a call that took most of a picture's
/// time.
int floorOf(double v) {
    int towardsZero = toInt(v);
    return towardsZero - (v < towardsZero ? 1 : 0);
}

} // namespace

Matrix stretch(const Image& from, const Image& to) {
    return {static_cast<double>(to.width()) / static_cast<double>(from.width()),   0, 0,
            static_cast<double>(to.height()) / static_cast<double>(from.height()), 0, 0};
}

ImageSampler::ImageSampler(const Image& image, Role role, const ColorSpace* space, bool extended,
                           const Matrix& toImage, Quality quality)
    : reader_(image, role, space, extended), toCells_(toImage), quality_(quality) {
    if (quality == Quality::smooth) {
        auto shrink = [](double footprint) { return std::max(1, toInt(std::round(footprint))); };
        shrinkX_ =
            std::min(shrink(std::fabs(toImage.a) + std::fabs(toImage.c)), static_cast<int>(image.width()));
        shrinkY_ =
            std::min(shrink(std::fabs(toImage.b) + std::fabs(toImage.d)), static_cast<int>(image.height()));
        toCells_ = toImage.then({1. / shrinkX_, 0, 0, 1. / shrinkY_, 0, 0});
    }
    if (Image* mask = get<Image>(image.mask())) {
        mask_ = std::make_unique<ImageSampler>(*mask, Role::shape, nullptr, false,
                                               toImage.then(stretch(image, *mask)), quality);
    }
}

void ImageSampler::prepare(const IntRect& area) {
    if (mask_) {
        mask_->prepare(area);
        maskRow_.resize(static_cast<std::size_t>(area.width()));
    }
    // The cells around the centres of the corner pixels: an affine map has its extremes there.
    double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
    for (double x : {area.x0 + 0.5, area.x1 - 0.5})
        for (double y : {area.y0 + 0.5, area.y1 - 0.5}) {
            Point p = toCells_.apply({x, y});
            x0 = std::min(x0, p.x);
            x1 = std::max(x1, p.x);
            y0 = std::min(y0, p.y);
            y1 = std::max(y1, p.y);
        }
    int width = (static_cast<int>(reader_.image().width()) + shrinkX_ - 1) / shrinkX_;
    int height = (static_cast<int>(reader_.image().height()) + shrinkY_ - 1) / shrinkY_;
    auto low = [](double v, int count) { return std::clamp(toInt(std::floor(v - 0.5)), 0, count - 1); };
    auto high = [](double v, int count) { return std::clamp(toInt(std::floor(v - 0.5)) + 2, 1, count); };
    fetch({low(x0, width), low(y0, height), high(x1, width), high(y1, height)});
}

void ImageSampler::fetch(const IntRect& cells) {
    cells_ = cells;
    auto width = static_cast<std::size_t>(cells.width());
    window_.resize(width * static_cast<std::size_t>(cells.height()));
    bool shrinks = shrinkX_ > 1 || shrinkY_ > 1;
    int left = cells.x0 * shrinkX_,
        right = std::min(cells.x1 * shrinkX_, static_cast<int>(reader_.image().width()));
    if (shrinks) source_.resize(static_cast<std::size_t>(right - left));
    for (int j = cells.y0; j < cells.y1; ++j) {
        Planes target = window_.at(static_cast<std::size_t>(j - cells.y0) * width);
        if (!shrinks) {
            reader_.read(left, j, right - left, Alpha::premultiplied, target);
            continue;
        }
        int top = j * shrinkY_, bottom = std::min(top + shrinkY_, static_cast<int>(reader_.image().height()));
        for (int y = top; y < bottom; ++y) {
            reader_.read(left, y, right - left, Alpha::premultiplied, source_.planes());
            for (std::size_t k = 0; k < target.size(); ++k) {
                if (k < alphaPlane && static_cast<int>(k) >= colors()) continue;
                const float* pixel = source_.planes()[k];
                for (int i = cells.x0, x = left; i < cells.x1; ++i) {
                    int end = std::min(x + shrinkX_, right);
                    float sum = 0;
                    float weight = 1.f / static_cast<float>((end - x) * (bottom - top));
                    for (; x < end; ++x) sum += *pixel++;
                    target[k][i - cells.x0] += sum * weight;
                }
            }
        }
    }
}

void ImageSampler::sampleRow(int x, int y, std::size_t n, const Planes& out) const {
    int width = cells_.width(), lastX = cells_.x1 - 1, lastY = cells_.y1 - 1;
    Point start = toCells_.apply({x + 0.5, y + 0.5});
    bool nearest = quality_ == Quality::nearest;
    // Without scaling or turning, whole pixels are copied.
    bool copies = toCells_.a == 1 && toCells_.b == 0 && toCells_.c == 0 && toCells_.d == 1 &&
                  isWhole(toCells_.tx) && isWhole(toCells_.ty);
    int firstX = toInt(start.x), sameY = toInt(start.y);
    copies = copies && firstX >= cells_.x0 && firstX + static_cast<int>(n) <= cells_.x1 &&
             sameY >= cells_.y0 && sameY < cells_.y1;

    auto eachPlane = [&](auto body) {
        for (std::size_t k = 0; k < out.size(); ++k)
            if (k >= alphaPlane || static_cast<int>(k) < colors()) body(window_.planes()[k], out[k]);
    };
    if (copies) {
        std::ptrdiff_t offset = (sameY - cells_.y0) * width + firstX - cells_.x0;
        eachPlane([&](const float* plane, float* target) { std::copy_n(plane + offset, n, target); });
        return;
    }
    auto column = [&](int at) { return std::clamp(at, cells_.x0, lastX) - cells_.x0; };
    auto line = [&](int at) { return (std::clamp(at, cells_.y0, lastY) - cells_.y0) * width; };
    for (std::size_t i = 0; i < n; ++i) {
        double u = start.x + toCells_.a * static_cast<double>(i),
               v = start.y + toCells_.b * static_cast<double>(i);
        if (nearest) {
            int offset = line(floorOf(v)) + column(floorOf(u));
            eachPlane([&](const float* plane, float* target) { target[i] = plane[offset]; });
            continue;
        }
        u -= 0.5;
        v -= 0.5;
        int left = floorOf(u), top = floorOf(v);
        auto fx = static_cast<float>(u - left), fy = static_cast<float>(v - top);
        int c0 = column(left), c1 = column(left + 1), l0 = line(top), l1 = line(top + 1);
        eachPlane([&](const float* plane, float* target) {
            float upper = plane[l0 + c0] + fx * (plane[l0 + c1] - plane[l0 + c0]),
                  lower = plane[l1 + c0] + fx * (plane[l1 + c1] - plane[l1 + c0]);
            target[i] = upper + fy * (lower - upper);
        });
    }
}

void ImageSampler::row(int x, int y, std::size_t n, const Planes& out) const {
    sampleRow(x, y, n, out);
    if (!mask_) return;
    mask_->row(x, y, n, maskRow_.planes());
    const float* coverage = maskRow_.planes()[alphaPlane];
    for (std::size_t k = 0; k < out.size(); ++k) {
        if (k < alphaPlane && static_cast<int>(k) >= colors()) continue;
        for (std::size_t i = 0; i < n; ++i) out[k][i] *= coverage[i];
    }
}

} // namespace cg
