// The C functions that make bitmap contexts and describe them.
#include <cg/canvas.h>

#include <cstring>

using namespace cg;

CGContextRef CGBitmapContextCreateWithData(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                           size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                           CGBitmapContextReleaseDataCallback releaseCallback,
                                           void* releaseInfo) {
    return guarded([&] {
        std::function<void(void*)> release;
        if (releaseCallback && data) release = [=](void* pixels) { releaseCallback(releaseInfo, pixels); };
        return make<Canvas>(data,
                            Image::Layout{.width = width,
                                          .height = height,
                                          .bitsPerComponent = bitsPerComponent,
                                          .bytesPerRow = bytesPerRow,
                                          .info = bitmapInfo},
                            space, std::move(release));
    });
}

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo) {
    return CGBitmapContextCreateWithData(data, width, height, bitsPerComponent, bytesPerRow, space,
                                         bitmapInfo, nullptr, nullptr);
}

/// One field of the layout, the empty value for null.
template <class Field>
static Field field(CGContextRef context, Field Image::Layout::*member) {
    Canvas* self = get<Canvas>(context);
    return self ? self->layout().*member : Field();
}

void* CGBitmapContextGetData(CGContextRef context) {
    Canvas* self = get<Canvas>(context);
    return self ? self->data() : nullptr;
}
size_t CGBitmapContextGetWidth(CGContextRef context) { return field(context, &Image::Layout::width); }
size_t CGBitmapContextGetHeight(CGContextRef context) { return field(context, &Image::Layout::height); }
size_t CGBitmapContextGetBitsPerComponent(CGContextRef context) {
    return field(context, &Image::Layout::bitsPerComponent);
}
size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
    return field(context, &Image::Layout::bitsPerPixel);
}
size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
    return field(context, &Image::Layout::bytesPerRow);
}
CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef context) {
    Canvas* self = get<Canvas>(context);
    return self ? self->space() : nullptr;
}
CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef context) {
    return CGBitmapContextGetBitmapInfo(context) & kCGBitmapAlphaInfoMask;
}
CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef context) {
    return field(context, &Image::Layout::info);
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
    Canvas* self = get<Canvas>(context);
    if (!self) return nullptr;
    return guarded([&] {
        Image::Layout layout = self->layout();
        layout.interpolate = true;
        // Memory given by a caller may end with the last pixel, without the padding of its row.
        std::size_t row = self->format().rowBytes(layout.width),
                    size = layout.bytesPerRow * (layout.height - 1) + row;
        std::shared_ptr<std::uint8_t[]> copy(new std::uint8_t[size]);
        std::memcpy(copy.get(), self->data(), size);
        auto provider = Retained<CGDataProviderRef>::adopt(makeProvider(copy.get(), size, copy));
        return make<Image>(layout, self->space(), provider.get());
    });
}
