// The rows of an image, matched and masked, in a layout of the caller's choice.
#include "ImageSampler.h"

namespace cg {

struct ImageRows::State {
    Retained<CGImageRef> image;
    Retained<CGColorSpaceRef> space;
    PixelFormat format;
    PixelReader reader;
    PlaneBuffer buffer;
    /// Stretched over the image; null without.
    std::unique_ptr<ImageSampler> mask;
    PlaneBuffer maskBuffer;
};

namespace {

const Image& checked(CGImageRef ref) {
    const Image* image = get<Image>(ref);
    if (!image) throw std::invalid_argument("no image");
    return *image;
}

} // namespace

ImageRows::ImageRows(CGImageRef ref, const PixelFormat& format, CGColorSpaceRef space) {
    const Image& image = checked(ref);
    PixelReader reader(image, PixelReader::Role::picture, get<ColorSpace>(space), format.bits == 32);
    if (reader.colors() != format.colors)
        throw std::invalid_argument("image and layout differ in components");
    state_.reset(new State{Retained(ref), Retained(space), format, reader, PlaneBuffer(image.width()),
                           nullptr, PlaneBuffer()});
    if (Image* mask = get<Image>(image.mask())) {
        state_->mask = std::make_unique<ImageSampler>(*mask, ImageSampler::Role::shape, nullptr, false,
                                                      stretch(image, *mask), ImageSampler::Quality::smooth);
        state_->maskBuffer.resize(image.width());
    }
}

ImageRows::~ImageRows() = default;

void ImageRows::read(std::size_t y, std::size_t count, std::uint8_t* out, std::size_t rowBytes) {
    State& s = *state_;
    std::size_t width = s.reader.image().width();
    if (y + count > s.reader.image().height()) throw std::out_of_range("rows outside of the image");
    bool straight = s.format.alpha == Alpha::straight;
    const Planes& planes = s.buffer.planes();
    for (std::size_t r = y; r < y + count; ++r, out += rowBytes) {
        auto row = static_cast<int>(r), n = static_cast<int>(width);
        s.reader.read(0, row, n, straight ? Alpha::straight : Alpha::premultiplied, planes);
        if (s.mask) {
            s.mask->prepare({0, row, n, row + 1});
            s.mask->row(0, row, width, s.maskBuffer.planes());
            const float* coverage = s.maskBuffer.planes()[alphaPlane];
            for (std::size_t i = 0; i < width; ++i) planes[alphaPlane][i] *= coverage[i];
            if (!straight)
                for (std::size_t k = 0; k < static_cast<std::size_t>(s.format.colors); ++k)
                    for (std::size_t i = 0; i < width; ++i) planes[k][i] *= coverage[i];
        }
        s.format.pack(out, 0, width, planes);
    }
}

} // namespace cg
