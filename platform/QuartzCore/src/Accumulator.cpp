// A bitmap that images are rendered into again and again.
#include "Accumulator.h"

#include "Attempt.h"
#include "Formats.h"

namespace ci {

std::unique_ptr<Accumulator> Accumulator::make(CGRect extent, int format, CGColorSpaceRef space,
                                               Failure& failure) {
    const CoreImageFormat* known = formatNamed(format);
    extent = CGRectIntegral(extent);
    if (!known || !canBePixels(extent)) return nullptr;
    if (space && CGColorSpaceGetModel(space) != kCGColorSpaceModelRGB) return nullptr;
    return attempt(failure, [&] {
        std::unique_ptr<Accumulator> made(new Accumulator);
        made->extent_ = extent;
        made->format_ = format;
        CFStringRef name = known->isBytes() ? kCGColorSpaceSRGB : kCGColorSpaceGenericRGBLinear;
        made->space_ = space ? cg::Retained<CGColorSpaceRef>(space)
                             : cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(name));
        made->rowBytes_ = static_cast<std::size_t>(extent.size.width) * known->bytesPerPixel();
        auto height = static_cast<std::size_t>(extent.size.height);
        if (made->rowBytes_ > SIZE_MAX / 2 / height) throw std::bad_alloc();
        made->pixels_ = std::make_shared<std::vector<std::uint8_t>>(made->rowBytes_ * height);
        return made;
    });
}

engine::Image Accumulator::image() const {
    Failure ignored;
    engine::Image pixels = imageOfBitmap(pixels_->data(), pixels_->size(), rowBytes_, extent_.size, format_,
                                         space_.get(), pixels_);
    return transform(pixels, CGAffineTransformMakeTranslation(extent_.origin.x, extent_.origin.y), ignored);
}

void Accumulator::detach(bool keep) {
    if (pixels_.use_count() == 1) return;
    pixels_ = keep ? std::make_shared<std::vector<std::uint8_t>>(*pixels_)
                   : std::make_shared<std::vector<std::uint8_t>>(pixels_->size());
}

void Accumulator::set(const engine::Image& image, CGRect dirty, Failure& failure) {
    CGRect part = CGRectIntersection(CGRectIntegral(dirty), extent_);
    if (CGRectIsEmpty(part)) return;
    attempt(failure, [&] { detach(!CGRectEqualToRect(part, extent_)); });
    if (failure) return;
    const CoreImageFormat* known = formatNamed(format_);
    auto rowsAbove = static_cast<std::size_t>(CGRectGetMaxY(extent_) - CGRectGetMaxY(part));
    auto left = static_cast<std::size_t>(part.origin.x - extent_.origin.x);
    renderBitmap(image, part, format_, space_.get(),
                 pixels_->data() + rowsAbove * rowBytes_ + left * known->bytesPerPixel(), rowBytes_, {},
                 failure);
}

void Accumulator::clear(Failure& failure) {
    attempt(failure, [&] {
        detach(false);
        std::fill(pixels_->begin(), pixels_->end(), std::uint8_t(0));
    });
}

} // namespace ci
