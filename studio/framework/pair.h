// What a Pair holds; each result is owned.
#pragma once

#include <hostapi/abi.h>

namespace studio {

REALobject pairLeft(REALobject pair);
REALobject pairRight(REALobject pair);

} // namespace studio
