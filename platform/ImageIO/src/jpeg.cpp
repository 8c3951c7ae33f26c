// Reading JPEG files, with libjpeg.
#include "decoder.h"

#include <cg/colorspace.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

namespace imageio {

namespace {

/// The library's errors jump back to readHeader() or readRows(); nothing on the way has a destructor.
struct Reader {
    explicit Reader(Bytes file) : file(file) {
        info.err = jpeg_std_error(&errors);
        info.client_data = this;
        errors.error_exit = [](j_common_ptr c) {
            std::longjmp(static_cast<Reader*>(c->client_data)->escape, 1);
        };
        // Level -1 means damaged data, which the library would fill in by guessing.
        errors.emit_message = [](j_common_ptr c, int level) {
            if (level < 0 && !isHarmless(c->err->msg_code)) c->err->error_exit(c);
        };
        errors.output_message = [](j_common_ptr) {};
        // A few bytes can make a scan over the whole picture. Encoders write some ten; small pictures may
        // have more.
        progress.progress_monitor = [](j_common_ptr c) {
            auto* jpeg = reinterpret_cast<j_decompress_ptr>(c);
            std::uint64_t pixels = std::max(1ull, 1ull * jpeg->image_width * jpeg->image_height);
            constexpr std::uint64_t work = 1'000'000'000; // pixels of all scans; 2 s
            if (jpeg->input_scan_number > int(std::clamp<std::uint64_t>(work / pixels, 20, 200)))
                c->err->error_exit(c);
        };
    }
    ~Reader() {
        if (created) jpeg_destroy_decompress(&info);
        std::free(icc);
    }

    static bool isHarmless(int message) {
        return message == JWRN_EXTRANEOUS_DATA || message == JWRN_ADOBE_XFORM || message == JWRN_JFIF_MAJOR ||
               message == JWRN_TOO_MUCH_DATA || message == JWRN_BOGUS_ICC;
    }

    bool readHeader();
    bool readRows();

    Bytes file;
    jpeg_decompress_struct info = {};
    jpeg_error_mgr errors = {};
    jpeg_progress_mgr progress = {};
    std::jmp_buf escape;
    bool created = false;
    JOCTET* icc = nullptr;
    unsigned iccSize = 0;
    Pixels pixels;
};

bool Reader::readHeader() {
    if (setjmp(escape)) return false;
    jpeg_create_decompress(&info);
    created = true;
    info.progress = &progress;
    // Progressive pictures need memory for all coefficients besides the pixels.
    info.mem->max_memory_to_use = static_cast<long>(memoryLimit / 2);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_save_markers(&info, JPEG_APP0 + 1, 0xFFFF);
    jpeg_save_markers(&info, JPEG_APP0 + 2, 0xFFFF);
    jpeg_save_markers(&info, JPEG_APP0 + 13, 0xFFFF);
    jpeg_read_header(&info, TRUE);
    switch (info.num_components) {
    case 1:
        info.out_color_space = JCS_GRAYSCALE;
        break;
    case 3:
        info.out_color_space = JCS_EXT_RGBX;
        break;
    case 4:
        info.out_color_space = JCS_CMYK;
        break;
    default:
        return false;
    }
    jpeg_read_icc_profile(&info, &icc, &iccSize);
    return true;
}

bool Reader::readRows() {
    if (setjmp(escape)) return false;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.row(info.output_scanline);
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return true;
}

void readMetadata(const jpeg_decompress_struct& jpeg, Info& info) {
    if (jpeg.saw_JFIF_marker) {
        info.metadata.add("{JFIF}", "JFIFVersion",
                          std::vector<long>{jpeg.JFIF_major_version, jpeg.JFIF_minor_version / 16,
                                            jpeg.JFIF_minor_version % 16});
        info.metadata.add("{JFIF}", "DensityUnit", long(jpeg.density_unit));
        info.metadata.add("{JFIF}", "XDensity", long(jpeg.X_density));
        info.metadata.add("{JFIF}", "YDensity", long(jpeg.Y_density));
        info.metadata.add("{JFIF}", "IsProgressive", bool(jpeg.progressive_mode));
    }
    // A kind of metadata is a marker and a name; the first of each kind counts. In this order, because what
    // one says the next does not replace.
    static constexpr char exif[] = "Exif\0", photoshop[] = "Photoshop 3.0",
                          xmp[] = "http://ns.adobe.com/xap/1.0/";
    auto find = [&](int code, std::string_view name) {
        for (jpeg_saved_marker_ptr marker = jpeg.marker_list; marker; marker = marker->next) {
            Bytes data(marker->data, marker->data_length);
            if (marker->marker == code && data.size() > name.size() &&
                std::equal(name.begin(), name.end(), reinterpret_cast<const char*>(data.data())))
                return data.subspan(name.size());
        }
        return Bytes();
    };
    addExif(info.metadata, find(JPEG_APP0 + 1, {exif, sizeof exif}));
    addPhotoshop(info.metadata, find(JPEG_APP0 + 13, {photoshop, sizeof photoshop}));
    addXMP(info.metadata, find(JPEG_APP0 + 1, {xmp, sizeof xmp}));
    setFromMetadata(info);
}

Decoded decode(Bytes file, std::size_t, bool wantsPixels) {
    Reader reader(file);
    if (!reader.readHeader()) throw Damaged("JPEG header");
    jpeg_decompress_struct& jpeg = reader.info;
    Decoded result;
    Info& info = result.info;
    info.width = jpeg.image_width;
    info.height = jpeg.image_height;
    checkSize(info.width, info.height);

    if (jpeg.saw_JFIF_marker && jpeg.density_unit) {
        double inch = jpeg.density_unit == 2 ? 2.54 : 1;
        info.dpiX = jpeg.X_density * inch;
        info.dpiY = jpeg.Y_density * inch;
    }
    int components = jpeg.num_components;
    setProfile(info, {reader.icc, reader.iccSize}, components,
               components == 1   ? cg::deviceGray()
               : components == 3 ? color::ColorSpace::sRGB()
                                 : color::ColorSpace::deviceCMYK());
    if (!wantsPixels) {
        readMetadata(jpeg, info);
        return result;
    }

    reader.pixels.samples = components == 1 ? 1 : 4;
    reader.pixels.allocate(info.width, info.height);
    if (!reader.readRows()) throw Damaged("JPEG data");
    // Files with Adobe's marker hold inverted CMYK: 255 is no ink.
    if (components == 4 && jpeg.saw_Adobe_marker)
        for (std::size_t i = 0; i < reader.pixels.size; ++i) reader.pixels.bytes[i] ^= 0xFF;
    result.pixels = std::move(reader.pixels);
    return result;
}

bool recognises(Bytes file) {
    return file.size() >= 3 && file[0] == 0xFF && file[1] == 0xD8 && file[2] == 0xFF;
}

} // namespace

const Format jpegFormat = {"public.jpeg", recognises, one, decode};

} // namespace imageio
