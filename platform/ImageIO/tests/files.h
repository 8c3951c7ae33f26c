// Image files made with the format libraries, and helpers to read them back.
#pragma once

#include <ImageIO/ImageIO.h>

#include <testing/bitmap.h>

/// A picture with soft and hard edges: gradients, and a checkerboard in blue.
Bytes testPixels(int width, int height, int samples);

Bytes jpegFile(int width, int height, int components, bool adobeMarker = true);
struct PngOptions {
    int bits = 8;
    bool interlaced = false;
    double gamma = 0;
    Bytes exif = {};
};
/// Color types as in libpng; the pixels of testPixels().
Bytes pngFile(int width, int height, int colorType, const PngOptions& options = {});
/// Two frames: a red 4x4 square on a transparent canvas, then a green 2x2 one in the middle.
Bytes gifFile();
Bytes webpFile(int width, int height, bool alpha);
/// Three pixels wide, two high, bottom row first: R G B / white black gray.
Bytes bmpFile24();

cg::Retained<CGImageSourceRef> source(const Bytes& file);
cg::Retained<CGImageRef> decode(const Bytes& file, std::size_t index = 0);
/// The images written as one file of the type, such as "public.png"; empty when that failed.
Bytes encode(const std::vector<CGImageRef>& images, const char* type, CFDictionaryRef properties = nullptr);
/// The image drawn into sRGB, as premultiplied RGBA.
class Drawn {
  public:
    explicit Drawn(CGImageRef image);
    Pixel at(std::size_t x, std::size_t y) const { return bitmap_.pixel(x, y); }

  private:
    Bitmap bitmap_;
};
double number(const cg::Retained<CFDictionaryRef>& properties, CFStringRef key);
