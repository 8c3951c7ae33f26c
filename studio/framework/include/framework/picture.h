// What the picture services do. Objects are borrowed as arguments and owned as results.
#pragma once

#include <hostapi/abi.h>

#include <cstdint>

namespace studio {

REALobject tryNewPicture(std::int32_t width, std::int32_t height,
                         std::int32_t depth); // null when it cannot be made
REALobject pictureGraphics(REALobject picture);
REALobject pictureMask(REALobject picture, bool create);
std::int32_t preferredDescription(); // the kind for a plugin that does not ask for one
bool describePicture(REALobject picture, REALpictureDescription* out, std::int32_t kind);
void undescribePicture(REALobject picture);
void pictureChanged(REALobject picture);
void* pictureCGImage(REALobject picture); // a CGImageRef that the caller owns

} // namespace studio
