// CGImageDestination: prepares the images for an encoder and stores the file.
#include <ImageIO/CGImageDestination.h>

#include "encoder.h"
#include "properties.h"

#include <cg/image.h>
#include <files/wholefile.h>

#include <vector>

namespace imageio {

static cg::LiveCount live("CGImageDestination");

struct Type {
    const char* name;
    Encoder encode;
    /// Whether the format supports 16 bits, alpha and several images. The pictures are converted to
    /// fit the first two.
    bool deep, alpha, several;
};

static const Type* typeNamed(CFStringRef name) {
    static const Type all[] = {{"public.png", encodePNG, true, true, false},
                               {"public.jpeg", encodeJPEG, false, false, false},
                               {"public.tiff", encodeTIFF, true, true, true},
                               {"com.compuserve.gif", encodeGIF, false, true, false},
                               {"com.microsoft.bmp", encodeBMP, false, false, false},
                               {"org.webmproject.webp", encodeWebP, false, true, false}};
    char text[64];
    if (!name || !CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8)) return nullptr;
    for (const Type& type : all)
        if (std::string(text) == type.name) return &type;
    return nullptr;
}

class ImageDestination final : public cg::Payload {
  public:
    using Ref = CGImageDestinationRef;

    /// Writes to the file, or appends to the data. Throws std::invalid_argument for an unknown type or no
    /// target.
    ImageDestination(std::string path, CFMutableDataRef data, CFStringRef typeName, std::size_t count)
        : Payload(&live), path_(std::move(path)), data_(data), type_(typeNamed(typeName)), count_(count) {
        if (!type_ || !count || (count > 1 && !type_->several))
            throw std::invalid_argument("cannot be written");
        if (path_.empty() && !data) throw std::invalid_argument("nowhere to write");
    }

    const char* typeName() const override { return "CGImageDestination"; }

    void add(CGImageRef image, CFDictionaryRef properties) {
        if (cg::get<cg::Image>(image)) images_.push_back({cg::Retained(image), cg::Retained(properties)});
    }

    bool finish() {
        if (images_.size() != count_) return false;
        std::vector<Page> pages;
        std::vector<OutputImage> images;
        for (const Added& added : images_) pages.push_back(prepare(added));
        for (Page& page : pages) images.push_back(page.image);
        std::vector<std::uint8_t> file = type_->encode(images);
        return !file.empty() && store(file);
    }

  private:
    struct Added {
        cg::Retained<CGImageRef> image;
        cg::Retained<CFDictionaryRef> properties;
    };
    struct Page {
        OutputImage image;
        color::ColorSpacePtr space;
    };

    Page prepare(const Added& added) const;
    bool store(const std::vector<std::uint8_t>& file) const;

    std::string path_;
    cg::Retained<CFMutableDataRef> data_;
    const Type* type_;
    std::size_t count_;
    std::vector<Added> images_;
};

ImageDestination::Page ImageDestination::prepare(const Added& added) const {
    const cg::Image& image = *cg::get<cg::Image>(added.image.get());
    Page page;
    OutputImage& s = page.image;
    s.width = image.width();
    s.height = image.height();
    s.bits = image.format().bits > 8 && type_->deep ? 16 : 8;
    bool transparent = image.format().hasAlpha() || image.mask();

    // Gray and RGB keep their space; other models become sRGB.
    cg::Retained<CGColorSpaceRef> space(image.space());
    CGColorSpaceModel model = CGColorSpaceGetModel(space.get());
    if (model != kCGColorSpaceModelMonochrome && model != kCGColorSpaceModelRGB)
        space = cg::Retained<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    s.colors = static_cast<int>(CGColorSpaceGetNumberOfComponents(space.get()));
    page.space = cg::spaceOf(space.get());
    s.icc = page.space->iccData();
    s.isSRGB = s.colors == 3 && page.space->sameAs(*color::ColorSpace::sRGB());
    s.hasAlpha = transparent && type_->alpha;

    CFDictionaryRef properties = added.properties.get();
    s.dpiX = numberProperty(properties, kCGImagePropertyDPIWidth, s.dpiX);
    s.dpiY = numberProperty(properties, kCGImagePropertyDPIHeight, s.dpiY);
    s.quality = numberProperty(properties, kCGImageDestinationLossyCompressionQuality, s.quality);
    double orientation = numberProperty(properties, kCGImagePropertyOrientation, 1);
    s.orientation = orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;

    s.metadata = metadataIn(properties);

    cg::PixelFormat format;
    format.bits = s.bits;
    format.colors = s.colors;
    format.offset = {0, 1, 2, 3, -1};
    // A format without alpha shows the picture on white, so its alpha is read first.
    bool onWhite = transparent && !s.hasAlpha;
    bool readsAlpha = s.hasAlpha || onWhite;
    format.alpha = !readsAlpha ? cg::Alpha::none : onWhite ? cg::Alpha::premultiplied : cg::Alpha::straight;
    if (readsAlpha) format.offset[cg::alphaPlane] = s.colors;
    format.pixelBits = s.bits * (s.colors + readsAlpha);
    auto rows = std::make_shared<cg::ImageRows>(added.image.get(), format, space.get());
    std::size_t width = s.width, bytes = s.rowBytes();
    auto colors = static_cast<std::size_t>(s.colors);
    if (!onWhite) {
        s.rows = [=](std::size_t first, std::size_t count, std::uint8_t* out) {
            rows->read(first, count, out, bytes);
        };
        return page;
    }
    s.rows = [=](std::size_t first, std::size_t count, std::uint8_t* out) {
        std::vector<std::uint8_t> row(width * (colors + 1));
        for (std::size_t y = first; y < first + count; ++y) {
            rows->read(y, 1, row.data(), row.size());
            for (std::size_t x = 0; x < width; ++x)
                for (std::size_t k = 0; k < colors; ++k)
                    *out++ = static_cast<std::uint8_t>(row[x * (colors + 1) + k] + 255 -
                                                       row[x * (colors + 1) + colors]);
        }
    };
    return page;
}

bool ImageDestination::store(const std::vector<std::uint8_t>& file) const {
    if (data_) {
        CFDataAppendBytes(data_.get(), file.data(), static_cast<CFIndex>(file.size()));
        return true;
    }
    try {
        wholefile::replace(path_, file);
        return true;
    } catch (const wholefile::Error&) {
        return false;
    }
}

} // namespace imageio

using namespace imageio;

CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type, size_t count,
                                                      CFDictionaryRef options) {
    return cg::guarded([&] { return cg::make<ImageDestination>(cg::filePath(url), nullptr, type, count); });
}

CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type, size_t count,
                                                       CFDictionaryRef options) {
    return cg::make<ImageDestination>(std::string(), data, type, count);
}

void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                CFDictionaryRef properties) {
    if (ImageDestination* self = cg::get<ImageDestination>(destination))
        cg::guarded([&] { self->add(image, properties); });
}

void CGImageDestinationAddImageFromSource(CGImageDestinationRef destination, CGImageSourceRef source,
                                          size_t index, CFDictionaryRef properties) {
    auto image = cg::Retained<CGImageRef>::adopt(CGImageSourceCreateImageAtIndex(source, index, nullptr));
    auto own =
        cg::Retained<CFDictionaryRef>::adopt(CGImageSourceCopyPropertiesAtIndex(source, index, nullptr));
    auto all = cg::Retained<CFDictionaryRef>::adopt(mergedProperties(own.get(), properties));
    CGImageDestinationAddImage(destination, image.get(), all.get());
}

bool CGImageDestinationFinalize(CGImageDestinationRef destination) {
    ImageDestination* self = cg::get<ImageDestination>(destination);
    return self && cg::guarded([&] { return self->finish(); });
}
