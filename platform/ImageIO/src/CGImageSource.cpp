// CGImageSource: a file, the format that recognises it, and its images as CGImages.
#include <ImageIO/CGImageSource.h>

#include "properties.h"

#include <cg/image.h>

namespace imageio {

static cg::LiveCount live("CGImageSource");

class ImageSource final : public cg::Payload {
  public:
    using Ref = CGImageSourceRef;

    /// Throws Damaged for bytes of no known format.
    explicit ImageSource(CGDataProviderRef provider) : Payload(&live), provider_(provider) {
        cg::DataProvider* data = cg::get<cg::DataProvider>(provider);
        if (!data) throw Damaged("no data");
        bytes_ = {data->bytes(), data->size()};
        format_ = formatOf(bytes_);
        if (!format_) throw Damaged("unknown format");
        type_ = cg::Retained<CFStringRef>::adopt(
            CFStringCreateWithCString(kCFAllocatorDefault, format_->type, kCFStringEncodingASCII));
    }

    const char* typeName() const override { return "CGImageSource"; }
    CFStringRef type() const { return type_.get(); }
    std::size_t count() const { return format_->count(bytes_); }
    Decoded decode(std::size_t index, bool pixels) const {
        // The first image needs no count, which for some formats means decoding the file.
        if (index > 0 && index >= count()) throw Damaged("no such image");
        return format_->decode(bytes_, index, pixels);
    }

  private:
    cg::Retained<CGDataProviderRef> provider_;
    cg::Retained<CFStringRef> type_;
    Bytes bytes_;
    const Format* format_;
};

/// The pixels as an image of Core Graphics.
static CGImageRef makeImage(const Decoded& decoded) {
    const Pixels& p = decoded.pixels;
    int colors = decoded.info.space->components();
    CGBitmapInfo info = p.alpha == Alpha::straight        ? kCGImageAlphaLast
                        : p.alpha == Alpha::premultiplied ? kCGImageAlphaPremultipliedLast
                        : p.samples > colors              ? kCGImageAlphaNoneSkipLast
                                                          : kCGImageAlphaNone;
    if (p.bits == 16) info |= kCGBitmapByteOrder16Host;
    if (p.bits == 32) info |= kCGBitmapFloatComponents | kCGBitmapByteOrder32Host;
    auto space = cg::Retained<CGColorSpaceRef>::adopt(cg::makeColorSpace(decoded.info.space));
    auto provider = cg::Retained<CGDataProviderRef>::adopt(cg::makeProvider(p.bytes.get(), p.size, p.bytes));
    auto bits = static_cast<std::size_t>(p.bits);
    return CGImageCreate(decoded.info.width, decoded.info.height, bits,
                         bits * static_cast<std::size_t>(p.samples), p.rowBytes, space.get(), info,
                         provider.get(), nullptr, true, kCGRenderingIntentDefault);
}

} // namespace imageio

using namespace imageio;

CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options) {
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithCFData(data));
    return cg::make<ImageSource>(provider.get());
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options) {
    auto provider = cg::Retained<CGDataProviderRef>::adopt(CGDataProviderCreateWithURL(url));
    return cg::make<ImageSource>(provider.get());
}

CFStringRef CGImageSourceGetType(CGImageSourceRef source) {
    ImageSource* self = cg::get<ImageSource>(source);
    return self ? self->type() : nullptr;
}

size_t CGImageSourceGetCount(CGImageSourceRef source) {
    ImageSource* self = cg::get<ImageSource>(source);
    return self ? cg::guarded([&] { return self->count(); }) : 0;
}

CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index, CFDictionaryRef options) {
    ImageSource* self = cg::get<ImageSource>(source);
    return self ? cg::guarded([&] { return makeImage(self->decode(index, true)); }) : nullptr;
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index,
                                                   CFDictionaryRef options) {
    ImageSource* self = cg::get<ImageSource>(source);
    return self ? cg::guarded([&] { return makeProperties(self->decode(index, false).info); }) : nullptr;
}
