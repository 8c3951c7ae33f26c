// Pictures: pixels, a mask, a pen. What Graphics and the picture services work on.
#pragma once

#include "framework/pixels.h"
#include "runtime/runtime.h"

#include <memory>

struct OpaqueGWorldPtr;

namespace studio {

struct Picture {
    Pixels pixels;
    int depth = 32;
    bool hasAlpha = false;
    REALobject mask = nullptr;        // a Picture: black lets through, white does not
    int descriptions = 0;             // locked and not unlocked yet
    void* context = nullptr;          // a CGContextRef on the pixels, once it was asked for
    OpaqueGWorldPtr* world = nullptr; // on the pixels, once it was asked for
    std::unique_ptr<REALpixelBuffer> buffer;
    std::vector<void*> rows;
    std::uint32_t foreColor = 0xFF000000;
    std::int32_t penWidth = 1, penHeight = 1;
};

Picture& pictureOf(REALobject picture);
Pixels masked(REALobject picture); // a copy with the mask applied

// The services. Objects are owned.
REALobject tryNewPicture(std::int32_t width, std::int32_t height,
                         std::int32_t depth); // null when it cannot be
REALobject pictureGraphics(REALobject picture);
REALobject pictureMask(REALobject picture, bool create);
std::int32_t preferredDescription(); // the kind for a plugin that does not ask for one
bool describePicture(REALobject picture, REALpictureDescription* out, std::int32_t kind);
void undescribePicture(REALobject picture);
void pictureChanged(REALobject picture);
void* pictureCGImage(REALobject picture);

} // namespace studio
