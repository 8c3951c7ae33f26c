// Reading GIF files, with giflib.
#include "decoder.h"

#include <cstring>

#include <gif_lib.h>

namespace imageio {

namespace {

/// Reads a file frame by frame without keeping any: a small file may unpack to many large frames.
class Reader {
  public:
    explicit Reader(Bytes file) : rest_(file), gif_(nullptr, close) {
        int error = 0;
        gif_.reset(DGifOpen(&rest_, give, &error));
        if (!gif_) throw Damaged("GIF header");
        checkSize(width(), height());
    }

    std::size_t width() const { return static_cast<std::size_t>(gif_->SWidth); }
    std::size_t height() const { return static_cast<std::size_t>(gif_->SHeight); }

    /// Goes to the next frame, whose pixels must then be drawn or skipped; false at the end of the file.
    bool next();
    const GifImageDesc& frame() const { return gif_->Image; }
    const GraphicsControlBlock& control() const { return control_; }
    void skipPixels() {
        GifByteType* block = nullptr;
        do check(DGifGetCodeNext(gif_.get(), &block));
        while (block);
    }
    /// Draws the frame over the canvas.
    void drawOn(const Pixels& canvas);

  private:
    static int give(GifFileType* gif, GifByteType* out, int size) {
        auto* rest = static_cast<Bytes*>(gif->UserData);
        std::size_t n = std::min(rest->size(), static_cast<std::size_t>(size));
        std::memcpy(out, rest->data(), n);
        *rest = rest->subspan(n);
        return static_cast<int>(n);
    }
    static void close(GifFileType* gif) {
        int ignored = 0;
        DGifCloseFile(gif, &ignored);
    }
    static void check(int result) {
        if (result != GIF_OK) throw Damaged("GIF data");
    }
    void readExtension();
    void drawLine(const Pixels& canvas, int y, const std::vector<GifPixelType>& line) const;

    Bytes rest_;
    std::unique_ptr<GifFileType, void (*)(GifFileType*)> gif_;
    GraphicsControlBlock control_ = {};
};

bool Reader::next() {
    control_ = {.DisposalMode = DISPOSAL_UNSPECIFIED,
                .UserInputFlag = false,
                .DelayTime = 0,
                .TransparentColor = NO_TRANSPARENT_COLOR};
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        check(DGifGetRecordType(gif_.get(), &type));
        switch (type) {
        case IMAGE_DESC_RECORD_TYPE:
            check(DGifGetImageDesc(gif_.get()));
            checkSize(static_cast<std::uint64_t>(frame().Width), static_cast<std::uint64_t>(frame().Height),
                      4);
            return true;
        case EXTENSION_RECORD_TYPE:
            readExtension();
            break;
        case TERMINATE_RECORD_TYPE:
            return false;
        default:
            break;
        }
    }
}

void Reader::readExtension() {
    int code = 0;
    GifByteType* block = nullptr;
    check(DGifGetExtension(gif_.get(), &code, &block));
    if (block && code == GRAPHICS_EXT_FUNC_CODE) check(DGifExtensionToGCB(block[0], block + 1, &control_));
    while (block) check(DGifGetExtensionNext(gif_.get(), &block));
}

void Reader::drawOn(const Pixels& canvas) {
    const GifImageDesc& d = frame();
    std::vector<GifPixelType> line(static_cast<std::size_t>(d.Width));
    auto readLine = [&](int y) {
        check(DGifGetLine(gif_.get(), line.data(), d.Width));
        drawLine(canvas, y, line);
    };
    // Interlaced rows come in four passes.
    struct Pass {
        int first, step;
    };
    static constexpr Pass whole[] = {{0, 1}}, interlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (Pass pass : d.Interlace ? std::span<const Pass>(interlaced) : std::span<const Pass>(whole))
        for (int y = pass.first; y < d.Height; y += pass.step) readLine(y);
}

void Reader::drawLine(const Pixels& canvas, int y, const std::vector<GifPixelType>& line) const {
    const GifImageDesc& d = frame();
    const ColorMapObject* map = d.ColorMap ? d.ColorMap : gif_->SColorMap;
    if (!map) throw Damaged("GIF without palette");
    if (d.Top + y >= gif_->SHeight) return;
    for (int x = 0; x < d.Width && d.Left + x < gif_->SWidth; ++x) {
        int color = line[static_cast<std::size_t>(x)];
        if (color == control_.TransparentColor) continue;
        if (color >= map->ColorCount) throw Damaged("GIF colour outside of its palette");
        const GifColorType& c = map->Colors[color];
        std::uint8_t* pixel =
            canvas.row(static_cast<std::size_t>(d.Top + y)) + static_cast<std::size_t>(d.Left + x) * 4;
        pixel[0] = c.Red;
        pixel[1] = c.Green;
        pixel[2] = c.Blue;
        pixel[3] = 255;
    }
}

void clear(const GifImageDesc& d, const Info& info, const Pixels& canvas) {
    auto left = static_cast<std::size_t>(d.Left), top = static_cast<std::size_t>(d.Top);
    std::size_t right = std::min(info.width, left + static_cast<std::size_t>(d.Width)),
                bottom = std::min(info.height, top + static_cast<std::size_t>(d.Height));
    if (left >= right) return;
    for (std::size_t y = top; y < bottom; ++y) std::memset(canvas.row(y) + left * 4, 0, (right - left) * 4);
}

Decoded decode(Bytes bytes, std::size_t index, bool wantsPixels) {
    Reader reader(bytes);
    Decoded result;
    Info& info = result.info;
    info.width = reader.width();
    info.height = reader.height();
    info.isIndexed = true;
    info.space = color::ColorSpace::sRGB();
    info.hasAlpha = true;

    // An image is the canvas after this frame has been drawn over the ones before it.
    Pixels& canvas = result.pixels;
    canvas.alpha = Alpha::straight;
    canvas.allocate(info.width, info.height);
    std::vector<std::uint8_t> before;
    for (std::size_t i = 0; i <= index; ++i) {
        if (!reader.next()) throw Damaged("no such GIF frame");
        int disposal = i < index ? reader.control().DisposalMode : DISPOSE_DO_NOT;
        if (disposal == DISPOSE_PREVIOUS) before.assign(canvas.bytes.get(), canvas.bytes.get() + canvas.size);
        reader.drawOn(canvas);
        if (disposal == DISPOSE_BACKGROUND)
            clear(reader.frame(), info, canvas);
        else if (disposal == DISPOSE_PREVIOUS)
            std::memcpy(canvas.bytes.get(), before.data(), before.size());
    }
    double delay = reader.control().DelayTime / 100.;
    info.metadata.add("{GIF}", "UnclampedDelayTime", delay);
    // Delays too short to be seen count as a tenth of a second.
    info.metadata.add("{GIF}", "DelayTime", delay > 0.05 ? delay : 0.1);
    // A file that is cut off is damaged even if this frame is complete.
    while (reader.next()) reader.skipPixels();

    bool opaque = true;
    for (std::size_t i = 3; opaque && i < canvas.size; i += 4) opaque = canvas.bytes[i] == 255;
    if (opaque) {
        canvas.alpha = Alpha::none;
        info.hasAlpha = false;
    }
    if (!wantsPixels) canvas.bytes.reset();
    return result;
}

std::size_t count(Bytes bytes) {
    Reader reader(bytes);
    std::size_t frames = 0;
    for (; reader.next(); ++frames) reader.skipPixels();
    return frames;
}

bool recognises(Bytes file) {
    return file.size() >= 6 &&
           (std::memcmp(file.data(), "GIF87a", 6) == 0 || std::memcmp(file.data(), "GIF89a", 6) == 0);
}

} // namespace

const Format gifFormat = {"com.compuserve.gif", recognises, count, decode};

} // namespace imageio
