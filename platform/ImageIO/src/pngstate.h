// What libpng works on, and how it reports errors.
#pragma once

#include <csetjmp>

#include <png.h>

namespace imageio {

/// Of the text that holds XMP.
constexpr const char* xmpKeyword = "XML:com.adobe.xmp";

/// The library is made with `this` and fail(): its errors jump to `escape`. Nothing on the way may have a
/// destructor.
struct PngState {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::jmp_buf escape;

    static void fail(png_structp png, png_const_charp) {
        std::longjmp(static_cast<PngState*>(png_get_error_ptr(png))->escape, 1);
    }
    static void ignoreWarning(png_structp, png_const_charp) {}
};

} // namespace imageio
