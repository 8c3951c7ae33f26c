// What a Picture consists of: pixels, a mask, a pen, and the faces that it shows to plugins.
#pragma once

#include "pixels.h"

#include <hostapi/abi.h>
#include <typeset/text.h>

#include <memory>

struct OpaqueGWorldPtr;

namespace studio {

struct Picture {
    Pixels pixels;
    int depth = 32;
    bool hasAlpha = false;
    REALobject mask = nullptr;        // a Picture: black lets through, white does not
    int descriptions = 0;             // locked and not unlocked yet
    void* context = nullptr;          // a CGContextRef on the pixels, made on first use
    OpaqueGWorldPtr* world = nullptr; // on the pixels, made on first use
    std::unique_ptr<REALpixelBuffer> buffer;
    std::vector<void*> rows;
    std::uint32_t foreColor = 0xFF000000;
    std::int32_t penWidth = 1, penHeight = 1;
    typeset::Style textStyle;
};

Picture& pictureOf(REALobject picture);
Pixels masked(REALobject picture);             // a copy with the mask applied
REALobject pictureSurface(REALobject picture); // its RGBSurface, owned

} // namespace studio
