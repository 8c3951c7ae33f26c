// Every format and alpha, there and back.
#include "reference.h"

using namespace reference;

TEST(Codec, FormatsComeBackAsTheyWere) {
    for (Format format :
         {Format::ARGB8, Format::RGBA8, Format::BGRA8, Format::RGBA16, Format::RGBAf, Format::Gray8})
        for (Alpha alpha : {Alpha::premultiplied, Alpha::straight, Alpha::opaque}) {
            PixelLayout layout{67, 5, format, alpha,
                               format == Format::Gray8 ? color::ColorSpace::deviceGray()
                                                       : color::ColorSpace::sRGB()};
            std::size_t row = 67 * bytesPerPixel(format);
            std::vector<std::uint8_t> in(row * 5), out(row * 5);
            bool first = format == Format::ARGB8;
            for (std::size_t i = 0; i < 67 * 5; ++i)
                for (int c = 0; c < (format == Format::Gray8 ? 1 : 4); ++c) {
                    bool isAlpha = c == (first ? 0 : 3);
                    int v = isAlpha && alpha == Alpha::opaque ? 255
                            : isAlpha                         ? 200 + int(i % 56)
                                                              : int((i * 37 + c * 11) % 200);
                    if (format == Format::RGBAf)
                        reinterpret_cast<float*>(in.data())[4 * i + c] = v / 255.f;
                    else if (format == Format::RGBA16)
                        reinterpret_cast<std::uint16_t*>(in.data())[4 * i + c] = std::uint16_t(v * 257);
                    else
                        in[bytesPerPixel(format) * i + c] = std::uint8_t(v);
                }
            render(bitmap(layout, in.data(), row, nullptr), {0, 0, 67, 5}, {layout, out.data(), row},
                   {0, 0, 67, 5});
            for (std::size_t i = 0; i < 67 * 5 * bytesPerPixel(format); ++i) {
                if (format == Format::RGBAf && i % 4 == 0)
                    ASSERT_NEAR(reinterpret_cast<float*>(in.data())[i / 4],
                                reinterpret_cast<float*>(out.data())[i / 4], 1e-5);
                else if (format == Format::RGBA16 && i % 2 == 0)
                    ASSERT_NEAR(reinterpret_cast<std::uint16_t*>(in.data())[i / 2],
                                reinterpret_cast<std::uint16_t*>(out.data())[i / 2], 2);
                else if (bytesPerPixel(format) <= 4)
                    ASSERT_NEAR(int(in[i]), int(out[i]), 1) << int(format) << int(alpha) << ' ' << i;
            }
        }
}
