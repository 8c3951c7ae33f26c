// Dates for other classes of the framework.
#pragma once

#include <hostapi/abi.h>

#include <ctime>

namespace studio {

REALobject newDate(std::time_t time); // in local time; owned

} // namespace studio
