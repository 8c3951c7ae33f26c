// Reading WebP files, with libwebp.
#include "decoder.h"

#include <cstring>

#include <webp/decode.h>
#include <webp/demux.h>

namespace imageio {

namespace {

using Demuxer = std::unique_ptr<WebPDemuxer, void (*)(WebPDemuxer*)>;

Demuxer open(const Bytes& file) {
    WebPData data = {file.data(), file.size()};
    Demuxer demuxer(WebPDemux(&data), WebPDemuxDelete);
    if (!demuxer) throw Damaged("WebP container");
    return demuxer;
}

/// Calls `use` with the contents of the chunk, if there is one.
template <class Use>
void withChunk(const Demuxer& demuxer, const char* name, Use use) {
    WebPChunkIterator chunk;
    if (WebPDemuxGetChunk(demuxer.get(), name, 1, &chunk)) use(Bytes(chunk.chunk.bytes, chunk.chunk.size));
    WebPDemuxReleaseChunkIterator(&chunk);
}

void readStill(const Bytes& file, Pixels& pixels) {
    if (!WebPDecodeRGBAInto(file.data(), file.size(), pixels.bytes.get(), pixels.size,
                            static_cast<int>(pixels.rowBytes)))
        throw Damaged("WebP data");
}

void readFrame(const Bytes& file, std::size_t index, Pixels& pixels) {
    WebPData data = {file.data(), file.size()};
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options)) throw Damaged("WebP library");
    options.color_mode = MODE_RGBA;
    std::unique_ptr<WebPAnimDecoder, void (*)(WebPAnimDecoder*)> decoder(WebPAnimDecoderNew(&data, &options),
                                                                         WebPAnimDecoderDelete);
    std::uint8_t* canvas = nullptr;
    int time = 0;
    for (std::size_t i = 0; i <= index; ++i)
        if (!decoder || !WebPAnimDecoderGetNext(decoder.get(), &canvas, &time)) throw Damaged("WebP frame");
    std::memcpy(pixels.bytes.get(), canvas, pixels.size);
}

Decoded decode(Bytes file, std::size_t index, bool wantsPixels) {
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) throw Damaged("WebP header");
    Demuxer demuxer = open(file);
    Decoded result;
    Info& info = result.info;
    info.width = static_cast<std::size_t>(features.width);
    info.height = static_cast<std::size_t>(features.height);
    info.hasAlpha = features.has_alpha;
    info.space = color::ColorSpace::sRGB();
    withChunk(demuxer, "ICCP", [&](Bytes icc) { setProfile(info, icc, 3, info.space); });
    if (!wantsPixels) {
        withChunk(demuxer, "EXIF", [&](Bytes exif) { addExif(info.metadata, exif); });
        withChunk(demuxer, "XMP ", [&](Bytes xmp) { addXMP(info.metadata, xmp); });
        setFromMetadata(info);
        return result;
    }
    // While decoding, the library needs a second copy of a still picture, and three more of an animation.
    checkSize(info.width, info.height, features.has_animation ? 16 : 8);
    result.pixels.alpha = info.hasAlpha ? Alpha::straight : Alpha::none;
    result.pixels.allocate(info.width, info.height);
    if (features.has_animation)
        readFrame(file, index, result.pixels);
    else
        readStill(file, result.pixels);
    return result;
}

std::size_t count(Bytes file) { return WebPDemuxGetI(open(file).get(), WEBP_FF_FRAME_COUNT); }

bool recognises(Bytes file) {
    return file.size() >= 16 && std::memcmp(file.data(), "RIFF", 4) == 0 &&
           std::memcmp(file.data() + 8, "WEBP", 4) == 0;
}

} // namespace

const Format webpFormat = {"org.webmproject.webp", recognises, count, decode};

} // namespace imageio
