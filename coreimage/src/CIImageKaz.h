// The instance methods of CIImageKaz that render and measure, for its table of methods.
#pragma once

#include "wrapper.h"

namespace coreimage::rendering {

REALobject createCGImage(REALobject self, REALobject rect);
REALobject createCGImageInColorSpace(REALobject self, REALobject rect, REALobject colorSpace);
REALobject asNSImage(REALobject self);
REALobject renderNSImage(REALobject self, bool useSoftwareRenderer);
REALpicture renderPicture(REALobject self, std::int32_t width, std::int32_t height, bool useSoftwareRenderer);

std::int32_t height(REALobject self);
std::int32_t width(REALobject self);
REALstring url(REALobject self);
REALobject colorSpace(REALobject self);
REALobject properties(REALobject self);
REALobject extent(REALobject self);
REALobject definition(REALobject self);

REALobject imageByApplyingTransform(REALobject self, REALobject transform);
REALobject imageByCroppingToRect(REALobject self, REALobject rect);

} // namespace coreimage::rendering
