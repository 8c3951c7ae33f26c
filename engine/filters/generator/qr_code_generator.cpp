// CIQRCodeGenerator: a message as a QR code.
#include "filter.h"

#include <qrencode.h>

namespace engine {

namespace {

/// The code of a message in black on white: a pixel for each module and a margin of one, as in pictures of
/// Core Image. An unknown level counts as M; a message too long for any code gives the empty image.
Image build(const Inputs& in) {
    Bytes message = in.data("inputMessage");
    if (message.empty()) return empty();
    std::string name = in.string("inputCorrectionLevel");
    QRecLevel level = name == "L"   ? QR_ECLEVEL_L
                      : name == "Q" ? QR_ECLEVEL_Q
                      : name == "H" ? QR_ECLEVEL_H
                                    : QR_ECLEVEL_M;
    std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeData(static_cast<int>(message.size()), message.data(), 0, level), QRcode_free);
    if (!code) return empty();
    int side = code->width + 2;
    auto pixels = std::make_shared<Bytes>(static_cast<std::size_t>(side) * side, 255);
    for (int y = 0; y < code->width; ++y)
        for (int x = 0; x < code->width; ++x)
            if (code->data[y * code->width + x] & 1) (*pixels)[(y + 1) * side + x + 1] = 0;
    PixelLayout layout{side, side, Format::Gray8, Alpha::opaque, nullptr};
    return bitmap(layout, pixels->data(), side, pixels);
}

InputInfo messageInput() {
    InputInfo info = dataInput("inputMessage", "Message", {}, {});
    info.defaultValue.reset();
    info.identity.reset();
    return info;
}

InputInfo levelInput() {
    InputInfo info;
    info.key = "inputCorrectionLevel";
    info.displayName = "Correction Level";
    info.kind = InputKind::text;
    info.defaultValue = std::string("M");
    return info;
}

const Registrar filter{{"CIQRCodeGenerator",
                        "QR Code Generator",
                        "Writes a message as a QR code.",
                        publicDefinition("ISO/IEC 18004, with a margin of one module"),
                        "10.9",
                        categories("Generator StillImage BuiltIn"),
                        {messageInput(), levelInput()},
                        build}};

} // namespace

} // namespace engine
