// Calls of the engine with Core Graphics' types, in which its exceptions end.
#include "Shim.h"

#include "Attempt.h"
#include "Formats.h"
#include "HalfFloats.h"

#include <cg/canvas.h>
#include <cg/color.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ci {

namespace {

constexpr double largest = std::numeric_limits<CGFloat>::max();

/// The pixels of an image whose layout the engine cannot read in place.
class ConvertedRows final : public engine::RowSource {
  public:
    /// Colours other than RGB become sRGB.
    explicit ConvertedRows(CGImageRef ref) : ConvertedRows(ref, *cg::get<cg::Image>(ref)) {}

    const engine::PixelLayout& layout() const override { return layout_; }
    void readRows(int first, int count, std::uint8_t* out) override {
        std::size_t rowBytes =
            static_cast<std::size_t>(layout_.width) * engine::bytesPerPixel(layout_.format);
        rows_.read(static_cast<std::size_t>(first), static_cast<std::size_t>(count), out, rowBytes);
    }

  private:
    ConvertedRows(CGImageRef ref, const cg::Image& image)
        : layout_(layoutFor(image)), space_(targetSpace(image)),
          rows_(ref, formatFor(layout_), space_.get()) {
        layout_.space = cg::spaceOf(space_.get());
    }

    static engine::PixelLayout layoutFor(const cg::Image& image) {
        engine::PixelLayout layout;
        layout.width = static_cast<int>(image.width());
        layout.height = static_cast<int>(image.height());
        int bits = image.format().bits;
        layout.format = bits == 32   ? engine::Format::RGBAf
                        : bits == 16 ? engine::Format::RGBA16
                                     : engine::Format::RGBA8;
        bool transparent = image.format().hasAlpha() || image.mask();
        layout.alpha = transparent ? engine::Alpha::straight : engine::Alpha::opaque;
        return layout;
    }
    static cg::Retained<CGColorSpaceRef> targetSpace(const cg::Image& image) {
        if (CGColorSpaceGetModel(image.space()) == kCGColorSpaceModelRGB) return image.space();
        return cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    }
    static cg::PixelFormat formatFor(const engine::PixelLayout& layout) {
        cg::PixelFormat format;
        format.bits = layout.format == engine::Format::RGBAf    ? 32
                      : layout.format == engine::Format::RGBA16 ? 16
                                                                : 8;
        format.pixelBits = 4 * format.bits;
        if (layout.alpha == engine::Alpha::straight) {
            format.alpha = cg::Alpha::straight;
            format.offset[cg::alphaPlane] = 3;
        } else {
            format.padding = 3;
        }
        return format;
    }

    engine::PixelLayout layout_;
    cg::Retained<CGColorSpaceRef> space_;
    cg::ImageRows rows_;
};

engine::Target targetOf(CGRect area, const CoreImageFormat& format, CGColorSpaceRef space, void* pixels,
                        std::size_t rowBytes) {
    engine::Target target;
    target.layout.width = static_cast<int>(area.size.width);
    target.layout.height = static_cast<int>(area.size.height);
    target.layout.format = format.layout;
    target.layout.space = cg::spaceOf(space);
    target.pixels = pixels;
    target.rowBytes = rowBytes;
    return target;
}

void renderAll(const engine::Image& image, CGRect area, const CoreImageFormat& format,
               const engine::Target& target, const engine::Options& options) {
    if (format.halves)
        renderHalves(image, fromCG(area), target, options);
    else
        engine::render(image, fromCG(area), target,
                       engine::Rect::ofSize(0, 0, area.size.width, area.size.height), options);
}

/// Reduces `dest` to the part that is not clipped away, in user space, and `source` to match. False if none
/// is left.
bool clip(CGContextRef context, CGRect& dest, CGRect& source) {
    CGRect bounds = CGContextGetClipBoundingBox(context);
    dest = CGRectStandardize(dest);
    source = CGRectStandardize(source);
    if (CGRectIsNull(bounds) || CGRectIsEmpty(dest) || CGRectIsEmpty(source)) return false;
    if (CGRectIsInfinite(source) || CGRectIsInfinite(dest)) {
        // An infinite picture cannot be scaled to an area, so it is drawn as it is; a finite one cannot fill
        // an infinite area.
        if (!CGRectIsInfinite(source)) return false;
        dest = source = CGRectIntersection(dest, bounds);
        return !CGRectIsEmpty(dest);
    }
    if (CGRectContainsRect(bounds, dest)) return true;
    CGRect part = CGRectIntersection(dest, bounds);
    if (CGRectIsEmpty(part)) return false;
    double sx = double(source.size.width) / dest.size.width,
           sy = double(source.size.height) / dest.size.height;
    source =
        CGRectMake(static_cast<CGFloat>(source.origin.x + sx * (double(part.origin.x) - dest.origin.x)),
                   static_cast<CGFloat>(source.origin.y + sy * (double(part.origin.y) - dest.origin.y)),
                   static_cast<CGFloat>(sx * part.size.width), static_cast<CGFloat>(sy * part.size.height));
    dest = part;
    return true;
}

/// True when the engine can write to the context's memory itself.
bool isPlain(const cg::GraphicsState& state) {
    const CGAffineTransform& m = state.ctm;
    return !state.mask && state.alpha == 1 && state.blend == kCGBlendModeNormal && m.b == 0 && m.c == 0 &&
           m.a > 0 && m.d > 0;
}

} // namespace

// --- geometry ---------------------------------------------------------------------------------------------

engine::Rect fromCG(CGRect r) {
    if (CGRectIsNull(r)) return {};
    return engine::Rect::ofSize(r.origin.x, r.origin.y, r.size.width, r.size.height);
}

CGRect toCG(const engine::Rect& r) {
    if (r.isEmpty()) return CGRectZero;
    double x0 = std::max(r.x0, -largest / 2), y0 = std::max(r.y0, -largest / 2);
    double x1 = std::min(r.x1, largest / 2), y1 = std::min(r.y1, largest / 2);
    return CGRectMake(static_cast<CGFloat>(x0), static_cast<CGFloat>(y0), static_cast<CGFloat>(x1 - x0),
                      static_cast<CGFloat>(y1 - y0));
}

engine::Affine fromCG(const CGAffineTransform& t) { return {t.a, t.b, t.c, t.d, t.tx, t.ty}; }

engine::Color fromCG(CGColorRef ref) {
    const cg::Color* color = cg::get<cg::Color>(ref);
    if (!color) return {};
    Failure ignored;
    return attempt(ignored, [&] {
        std::vector<double> c(color->components().begin(), color->components().end());
        color::ColorSpacePtr space = cg::spaceOf(color->space());
        double alpha = c.back();
        c.pop_back();
        if (!space->sameAs(*color::ColorSpace::sRGB()))
            c = color::ColorSpace::sRGB()->fromLinear(space->toLinear(c));
        return engine::Color{c[0], c[1], c[2], alpha};
    });
}

bool canBePixels(CGRect r) {
    return !CGRectIsEmpty(r) && !CGRectIsInfinite(r) && r.size.width <= 1 << 24 && r.size.height <= 1 << 24 &&
           std::fabs(r.origin.x) < 1e9f && std::fabs(r.origin.y) < 1e9f &&
           double(r.size.width) * r.size.height <= 1 << 28;
}

// --- images -----------------------------------------------------------------------------------------------

engine::Image imageOf(CGImageRef ref, const SpaceChoice& choice) {
    Failure ignored;
    return attempt(ignored, [&]() -> engine::Image {
        cg::Retained<CGImageRef> image(ref);
        if (choice.kind == SpaceChoice::Kind::given)
            // A space of another model is ignored.
            if (auto copy =
                    cg::Retained<CGImageRef>::adopt(CGImageCreateCopyWithColorSpace(ref, choice.space.get())))
                image = copy;
        const cg::Image* picture = cg::get<cg::Image>(image.get());
        if (!picture) return nullptr;
        auto layout = picture->mask() ? std::nullopt : layoutOf(picture->format(), picture->space());
        if (!layout) return engine::bitmap(std::make_shared<ConvertedRows>(image.get()));
        layout->width = static_cast<int>(picture->width());
        layout->height = static_cast<int>(picture->height());
        if (choice.kind == SpaceChoice::Kind::none) layout->space = nullptr;
        return engine::bitmap(*layout, picture->row(0), picture->layout().bytesPerRow,
                              std::make_shared<cg::Retained<CGImageRef>>(image));
    });
}

/// The layout of an image of a format; empty for an unknown format, an impossible size or a space that is not
/// RGB.
static std::optional<engine::Target> targetFor(const CoreImageFormat* format, CGSize pixels,
                                               CGColorSpaceRef space) {
    CGRect area = CGRectMake(0, 0, std::trunc(pixels.width), std::trunc(pixels.height));
    if (!format || !(pixels.width >= 1) || !(pixels.height >= 1) || !canBePixels(area)) return {};
    if (space && CGColorSpaceGetModel(space) != kCGColorSpaceModelRGB) return {};
    return targetOf(area, *format, space, nullptr, 0);
}

engine::Image imageOfBitmap(const void* bytes, std::size_t size, std::size_t rowBytes, CGSize pixels,
                            int format, CGColorSpaceRef space, std::shared_ptr<const void> owner) {
    const CoreImageFormat* known = formatNamed(format);
    auto target = targetFor(known, pixels, space);
    if (!target) return nullptr;
    std::uint64_t row = static_cast<std::uint64_t>(target->layout.width) * known->bytesPerPixel();
    auto height = static_cast<std::uint64_t>(target->layout.height);
    if (rowBytes < row || rowBytes * (height - 1) + row > size) return nullptr;
    Failure ignored;
    return attempt(ignored, [&] {
        auto make = known->halves ? imageOfHalves : static_cast<decltype(&imageOfHalves)>(engine::bitmap);
        return make(target->layout, bytes, rowBytes, std::move(owner));
    });
}

engine::Image imageOfBitmap(CFDataRef data, std::size_t rowBytes, CGSize pixels, int format,
                            CGColorSpaceRef space) {
    if (!data) return nullptr;
    Failure ignored;
    return attempt(ignored, [&] {
        return imageOfBitmap(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data)),
                             rowBytes, pixels, format, space,
                             std::make_shared<cg::Retained<CFDataRef>>(data));
    });
}

namespace {

class ProvidedRows final : public engine::RowSource {
  public:
    ProvidedRows(RowProvider provider, const engine::PixelLayout& layout, const CoreImageFormat& format,
                 int stripRows)
        : provider_(std::move(provider)), layout_(layout), format_(format), stripRows_(stripRows) {}

    const engine::PixelLayout& layout() const override { return layout_; }
    int stripRows() const override { return stripRows_; }
    void readRows(int first, int count, std::uint8_t* out) override {
        std::size_t rowBytes = static_cast<std::size_t>(layout_.width) * format_.bytesPerPixel();
        if (!format_.halves) {
            provider_(first, count, rowBytes, out);
            return;
        }
        std::vector<std::uint16_t> halves(rowBytes / 2 * static_cast<std::size_t>(count));
        provider_(first, count, rowBytes, halves.data());
        std::transform(halves.begin(), halves.end(), reinterpret_cast<float*>(out), floatOfHalf);
    }

  private:
    RowProvider provider_;
    engine::PixelLayout layout_;
    CoreImageFormat format_;
    int stripRows_;
};

} // namespace

engine::Image imageOfProvider(RowProvider provider, CGSize pixels, int format, CGColorSpaceRef space,
                              int stripRows) {
    const CoreImageFormat* known = formatNamed(format);
    auto target = targetFor(known, pixels, space);
    if (!target) return nullptr;
    Failure ignored;
    return attempt(ignored, [&] {
        return engine::bitmap(
            std::make_shared<ProvidedRows>(std::move(provider), target->layout, *known, stripRows));
    });
}

engine::Image constant(const engine::Color& color) {
    Failure ignored;
    return attempt(ignored, [&] { return engine::constant(color); });
}

engine::Image empty() {
    Failure ignored;
    return attempt(ignored, [] { return engine::empty(); });
}

engine::Image transform(const engine::Image& image, const CGAffineTransform& matrix, Failure& failure) {
    return attempt(failure, [&] { return engine::transform(image, fromCG(matrix)); });
}

engine::Image crop(const engine::Image& image, CGRect area, Failure& failure) {
    return attempt(failure, [&] { return engine::crop(image, fromCG(area)); });
}

engine::Image sampled(const engine::kernels::Sampler& reader, Failure& failure) {
    return attempt(failure, [&] {
        return engine::sampled(reader.image, reader.matrix, reader.wrap, reader.interpolation);
    });
}

engine::Image apply(const engine::FilterInfo& filter, const engine::Values& values, Failure& failure) {
    return attempt(failure, [&] { return engine::apply(filter, values); });
}

std::string planOf(const engine::Image& image, Failure& failure) {
    return attempt(failure, [&] {
        engine::Plan plan = engine::planSummary(image);
        return std::to_string(plan.passes) + (plan.passes == 1 ? " pass, " : " passes, ") +
               std::to_string(plan.steps) + (plan.steps == 1 ? " step\n" : " steps\n") + plan.text;
    });
}

// --- rendering --------------------------------------------------------------------------------------------

CGImageRef makeCGImage(const engine::Image& image, CGRect area, int code, CGColorSpaceRef space,
                       const engine::Options& options, Failure& failure) {
    const CoreImageFormat* known = formatNamed(code);
    if (!known || !canBePixels(area) || CGColorSpaceGetModel(space) != kCGColorSpaceModelRGB) return nullptr;
    CoreImageFormat format = *known;
    format.halves = false;
    return attempt(failure, [&]() -> CGImageRef {
        auto width = static_cast<std::size_t>(area.size.width),
             height = static_cast<std::size_t>(area.size.height);
        std::size_t rowBytes = width * format.bytesPerPixel();
        if (rowBytes > SIZE_MAX / 2 / height) throw std::bad_alloc();
        std::size_t size = rowBytes * height;
        std::shared_ptr<std::uint8_t[]> pixels(new std::uint8_t[size]);
        renderAll(image, area, format, targetOf(area, format, space, pixels.get(), rowBytes), options);
        auto provider = cg::Retained<CGDataProviderRef>::adopt(cg::makeProvider(pixels.get(), size, pixels));
        std::size_t pixelBits = 8 * format.bytesPerPixel();
        return CGImageCreate(width, height, pixelBits / 4, pixelBits, rowBytes, space, format.info,
                             provider.get(), nullptr, true, kCGRenderingIntentDefault);
    });
}

void renderBitmap(const engine::Image& image, CGRect area, int format, CGColorSpaceRef space, void* pixels,
                  std::size_t rowBytes, engine::Options options, Failure& failure) {
    const CoreImageFormat* known = formatNamed(format);
    if (!known || !canBePixels(area)) {
        failure = {false, known ? "the bounds cannot be rendered" : "unknown pixel format"};
        return;
    }
    if (!space) options.colorManaged = false;
    attempt(failure, [&] {
        renderAll(image, area, *known, targetOf(area, *known, space, pixels, rowBytes), options);
    });
}

void draw(const engine::Image& image, CGContextRef ref, CGRect dest, CGRect source, engine::Options options,
          Failure& failure) {
    cg::Canvas* context = cg::get<cg::Canvas>(ref);
    if (!context || !clip(ref, dest, source)) return;
    attempt(failure, [&] {
        auto layout = layoutOf(context->format(), context->space());
        if (layout && isPlain(context->state())) {
            engine::Target target;
            target.layout = *layout;
            target.layout.width = static_cast<int>(context->layout().width);
            target.layout.height = static_cast<int>(context->layout().height);
            target.pixels = context->data();
            target.rowBytes = context->layout().bytesPerRow;
            options.blend = true;
            engine::render(image, fromCG(source), target,
                           fromCG(CGContextConvertRectToDeviceSpace(ref, dest)), options);
            return;
        }
        // Otherwise the image is rendered at its size on the device, and drawn like any picture.
        const CGAffineTransform& m = context->state().ctm;
        CGRect area = CGRectMake(0, 0, std::ceil(std::hypot(m.a, m.b) * dest.size.width),
                                 std::ceil(std::hypot(m.c, m.d) * dest.size.height));
        if (!canBePixels(area)) return;
        engine::Image scaled =
            engine::transform(image, engine::Affine::translation(-source.origin.x, -source.origin.y)
                                         .then(engine::Affine::scale(area.size.width / source.size.width,
                                                                     area.size.height / source.size.height)));
        cg::Retained<CGColorSpaceRef> space(context->space());
        if (CGColorSpaceGetModel(space.get()) != kCGColorSpaceModelRGB)
            space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateDeviceRGB());
        int format = formatForBits(context->format().bits);
        auto picture =
            cg::Retained<CGImageRef>::adopt(makeCGImage(scaled, area, format, space.get(), options, failure));
        CGContextDrawImage(ref, dest, picture.get());
    });
}

} // namespace ci
