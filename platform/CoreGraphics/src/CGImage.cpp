// Images and their C functions.
#include <CoreGraphics/CGAffineTransform.h>

#include <cg/image.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace cg {

static LiveCount live("CGImage");

Image::Image(const Layout& layout, CGColorSpaceRef space, CGDataProviderRef provider, CGImageRef mask)
    : Payload(&live), layout_(layout), space_(space), provider_(provider), mask_(mask) {
    DataProvider* data = get<DataProvider>(provider);
    ColorSpace* meaning = get<ColorSpace>(space);
    if (!data) throw std::invalid_argument("no data");
    bool alphaOnly = (layout.info & kCGBitmapAlphaInfoMask) == kCGImageAlphaOnly;
    if (!meaning && !layout.isMask && !alphaOnly) throw std::invalid_argument("no colour space");
    auto format = PixelFormat::of(layout.bitsPerComponent, layout.bitsPerPixel,
                                  meaning ? meaning->components() : 1, layout.info);
    if (!format) throw std::invalid_argument("unknown pixel layout");
    format_ = *format;

    // In 64 bits, so that no product wraps around.
    constexpr std::uint64_t maxSide = 1u << 24;
    std::uint64_t width = layout.width, height = layout.height;
    if (!width || !height || width > maxSide || height > maxSide) throw std::invalid_argument("bad size");
    std::uint64_t row = (width * layout.bitsPerPixel + 7) / 8;
    if (layout.bytesPerRow < row || layout.bytesPerRow * (height - 1) + row > data->size())
        throw std::invalid_argument("too few bytes");
    bytes_ = data->bytes();
}

} // namespace cg

using namespace cg;

/// The layout that images and masks share.
static Image::Layout layoutOf(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                              size_t bytesPerRow) {
    return {.width = width,
            .height = height,
            .bitsPerComponent = bitsPerComponent,
            .bitsPerPixel = bitsPerPixel,
            .bytesPerRow = bytesPerRow};
}

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat decode[], bool shouldInterpolate,
                         CGColorRenderingIntent intent) {
    if (decode) return nullptr;
    Image::Layout layout = layoutOf(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow);
    layout.info = bitmapInfo;
    layout.interpolate = shouldInterpolate;
    layout.intent = intent;
    return make<Image>(layout, space, provider);
}

CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                             size_t bytesPerRow, CGDataProviderRef provider, const CGFloat decode[],
                             bool shouldInterpolate) {
    if (decode) return nullptr;
    Image::Layout layout = layoutOf(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow);
    layout.isMask = true;
    layout.interpolate = shouldInterpolate;
    return make<Image>(layout, nullptr, provider);
}

CGImageRef CGImageCreateCopy(CGImageRef image) { return CGImageRetain(image); }

CGImageRef CGImageCreateWithMask(CGImageRef image, CGImageRef mask) {
    Image* picture = get<Image>(image);
    Image* shape = get<Image>(mask);
    if (!picture || !shape || picture->isMask() || picture->mask()) return nullptr;
    bool gray = shape->format().colors == 1 && !shape->format().hasAlpha() && !shape->mask();
    if (!shape->isMask() && !gray) return nullptr;
    return make<Image>(picture->layout(), picture->space(), picture->provider(), mask);
}

/// A copy of a part that does not begin at a byte, shifted so that it does.
static CGDataProviderRef shiftedRows(const Image& image, std::size_t x, std::size_t y, std::size_t width,
                                     std::size_t height, std::size_t* rowBytes) {
    std::size_t bits = image.layout().bitsPerPixel, first = x * bits, shift = first % 8;
    *rowBytes = (width * bits + 7) / 8;
    auto bytes = std::make_shared<std::vector<std::uint8_t>>(*rowBytes * height);
    std::size_t sourceBytes = image.format().rowBytes(image.width());
    for (std::size_t r = 0; r < height; ++r) {
        const std::uint8_t* from = image.row(y + r);
        for (std::size_t i = 0; i < *rowBytes; ++i) {
            std::size_t at = first / 8 + i;
            unsigned pair = static_cast<unsigned>(from[at] << 8) | (at + 1 < sourceBytes ? from[at + 1] : 0u);
            (*bytes)[r * *rowBytes + i] = static_cast<std::uint8_t>(pair >> (8 - shift));
        }
    }
    return makeProvider(bytes->data(), bytes->size(), bytes);
}

CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect) {
    Image* self = get<Image>(image);
    if (!self) return nullptr;
    CGRect whole =
        CGRectMake(0, 0, static_cast<CGFloat>(self->width()), static_cast<CGFloat>(self->height()));
    CGRect part = CGRectIntersection(CGRectIntegral(rect), whole);
    if (CGRectIsEmpty(part)) return nullptr;
    return guarded([&]() -> CGImageRef {
        Image::Layout layout = self->layout();
        auto x = static_cast<std::size_t>(part.origin.x), y = static_cast<std::size_t>(part.origin.y);
        layout.width = static_cast<std::size_t>(part.size.width);
        layout.height = static_cast<std::size_t>(part.size.height);
        Retained<CGDataProviderRef> provider;
        if (x * layout.bitsPerPixel % 8) {
            provider = Retained<CGDataProviderRef>::adopt(
                shiftedRows(*self, x, y, layout.width, layout.height, &layout.bytesPerRow));
        } else {
            std::size_t size =
                layout.bytesPerRow * (layout.height - 1) + self->format().rowBytes(layout.width);
            Retained<CGDataProviderRef> whole(self->provider());
            provider = Retained<CGDataProviderRef>::adopt(make<DataProvider>(
                self->row(y) + x * layout.bitsPerPixel / 8, size, [whole = std::move(whole)] {}));
        }
        // A mask covers the whole image, so it is cut in proportion.
        Retained<CGImageRef> mask;
        if (Image* shape = get<Image>(self->mask())) {
            CGFloat sx = static_cast<CGFloat>(shape->width()) / whole.size.width;
            CGFloat sy = static_cast<CGFloat>(shape->height()) / whole.size.height;
            mask = Retained<CGImageRef>::adopt(CGImageCreateWithImageInRect(
                self->mask(), CGRectApplyAffineTransform(part, CGAffineTransformMakeScale(sx, sy))));
            if (!mask) return nullptr;
        }
        return make<Image>(layout, self->space(), provider.get(), mask.get());
    });
}

CGImageRef CGImageCreateCopyWithColorSpace(CGImageRef image, CGColorSpaceRef space) {
    Image* self = get<Image>(image);
    if (!self || !self->space() ||
        CGColorSpaceGetNumberOfComponents(space) != CGColorSpaceGetNumberOfComponents(self->space()))
        return nullptr;
    return make<Image>(self->layout(), space, self->provider(), self->mask());
}

/// One field of the layout, the empty value for null.
template <class Field>
static Field field(CGImageRef image, Field Image::Layout::*member) {
    Image* self = get<Image>(image);
    return self ? self->layout().*member : Field();
}

bool CGImageIsMask(CGImageRef image) { return field(image, &Image::Layout::isMask); }
size_t CGImageGetWidth(CGImageRef image) { return field(image, &Image::Layout::width); }
size_t CGImageGetHeight(CGImageRef image) { return field(image, &Image::Layout::height); }
size_t CGImageGetBitsPerComponent(CGImageRef image) { return field(image, &Image::Layout::bitsPerComponent); }
size_t CGImageGetBitsPerPixel(CGImageRef image) { return field(image, &Image::Layout::bitsPerPixel); }
size_t CGImageGetBytesPerRow(CGImageRef image) { return field(image, &Image::Layout::bytesPerRow); }
CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image) {
    return field(image, &Image::Layout::info) & kCGBitmapAlphaInfoMask;
}
CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image) { return field(image, &Image::Layout::info); }
bool CGImageGetShouldInterpolate(CGImageRef image) { return field(image, &Image::Layout::interpolate); }
CGColorRenderingIntent CGImageGetRenderingIntent(CGImageRef image) {
    return field(image, &Image::Layout::intent);
}
const CGFloat* CGImageGetDecode(CGImageRef image) { return nullptr; }

CGColorSpaceRef CGImageGetColorSpace(CGImageRef image) {
    Image* self = get<Image>(image);
    return self ? self->space() : nullptr;
}

CGDataProviderRef CGImageGetDataProvider(CGImageRef image) {
    Image* self = get<Image>(image);
    return self ? self->provider() : nullptr;
}

CGImageRef CGImageRetain(CGImageRef image) {
    if (image) CFRetain(image);
    return image;
}

void CGImageRelease(CGImageRef image) {
    if (image) CFRelease(image);
}
