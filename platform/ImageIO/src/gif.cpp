#include "decoder.h"

#include <cstring>

#include <gif_lib.h>

namespace imageio {

namespace {

using File = std::unique_ptr<GifFileType, void (*)(GifFileType*)>;

int give(GifFileType* gif, GifByteType* out, int size) {
    auto* rest = static_cast<Bytes*>(gif->UserData);
    std::size_t n = std::min(rest->size(), static_cast<std::size_t>(size));
    std::memcpy(out, rest->data(), n);
    *rest = rest->subspan(n);
    return static_cast<int>(n);
}

/// The whole file, unpacked to palette indices.
File open(Bytes& rest) {
    int error = 0;
    File gif(DGifOpen(&rest, give, &error), [](GifFileType* g) {
        int ignored = 0;
        if (g) DGifCloseFile(g, &ignored);
    });
    if (!gif) throw Damaged("GIF header");
    checkSize(static_cast<std::uint64_t>(gif->SWidth), static_cast<std::uint64_t>(gif->SHeight));
    if (DGifSlurp(gif.get()) != GIF_OK || gif->ImageCount < 1) throw Damaged("GIF data");
    return gif;
}

GraphicsControlBlock control(GifFileType* gif, int index) {
    GraphicsControlBlock block = {.DisposalMode = DISPOSAL_UNSPECIFIED,
                                  .UserInputFlag = false,
                                  .DelayTime = 0,
                                  .TransparentColor = NO_TRANSPARENT_COLOR};
    DGifSavedExtensionToGCB(gif, index, &block);
    return block;
}

/// Calls put(pixel, index) for the pixels of a frame that lie on the canvas.
template <class Put>
void forEachPixel(const GifFileType* gif, const SavedImage& frame, const Pixels& canvas, Put put) {
    const GifImageDesc& d = frame.ImageDesc;
    for (int y = 0; y < d.Height && d.Top + y < gif->SHeight; ++y)
        for (int x = 0; x < d.Width && d.Left + x < gif->SWidth; ++x)
            put(canvas.row(static_cast<std::size_t>(d.Top + y)) + static_cast<std::size_t>(d.Left + x) * 4,
                frame.RasterBits[static_cast<std::size_t>(y) * static_cast<std::size_t>(d.Width) +
                                 static_cast<std::size_t>(x)]);
}

void draw(GifFileType* gif, int index, const Pixels& canvas) {
    const SavedImage& frame = gif->SavedImages[index];
    const ColorMapObject* map = frame.ImageDesc.ColorMap ? frame.ImageDesc.ColorMap : gif->SColorMap;
    if (!map) throw Damaged("GIF without palette");
    int transparent = control(gif, index).TransparentColor;
    forEachPixel(gif, frame, canvas, [&](std::uint8_t* pixel, int color) {
        if (color == transparent) return;
        if (color >= map->ColorCount) throw Damaged("GIF colour outside of its palette");
        const GifColorType& c = map->Colors[color];
        pixel[0] = c.Red;
        pixel[1] = c.Green;
        pixel[2] = c.Blue;
        pixel[3] = 255;
    });
}

Decoded decode(Bytes bytes, std::size_t index, bool wantsPixels) {
    File gif = open(bytes);
    if (index >= static_cast<std::size_t>(gif->ImageCount)) throw Damaged("no such GIF frame");
    Decoded result;
    Info& info = result.info;
    info.width = static_cast<std::size_t>(gif->SWidth);
    info.height = static_cast<std::size_t>(gif->SHeight);
    info.isIndexed = true;
    info.space = color::ColorSpace::sRGB();
    info.hasAlpha = true;

    // A frame is what is seen after the ones before it.
    Pixels& canvas = result.pixels;
    canvas.alpha = Alpha::straight;
    canvas.allocate(info.width, info.height);
    std::memset(canvas.bytes.get(), 0, canvas.size);
    std::vector<std::uint8_t> before;
    for (int i = 0; i <= static_cast<int>(index); ++i) {
        int disposal = control(gif.get(), i).DisposalMode;
        if (disposal == DISPOSE_PREVIOUS) before.assign(canvas.bytes.get(), canvas.bytes.get() + canvas.size);
        draw(gif.get(), i, canvas);
        if (i == static_cast<int>(index)) break;
        if (disposal == DISPOSE_BACKGROUND)
            forEachPixel(gif.get(), gif->SavedImages[i], canvas,
                         [](std::uint8_t* p, int) { std::memset(p, 0, 4); });
        else if (disposal == DISPOSE_PREVIOUS)
            std::memcpy(canvas.bytes.get(), before.data(), before.size());
    }
    bool opaque = true;
    for (std::size_t i = 3; opaque && i < canvas.size; i += 4) opaque = canvas.bytes[i] == 255;
    if (opaque) {
        canvas.alpha = Alpha::none;
        info.hasAlpha = false;
    }
    if (!wantsPixels) canvas.bytes.reset();
    return result;
}

std::size_t count(Bytes bytes) { return static_cast<std::size_t>(open(bytes)->ImageCount); }

bool recognises(Bytes file) {
    return file.size() >= 6 &&
           (std::memcmp(file.data(), "GIF87a", 6) == 0 || std::memcmp(file.data(), "GIF89a", 6) == 0);
}

} // namespace

const Format gifFormat = {"com.compuserve.gif", recognises, count, decode};

} // namespace imageio
