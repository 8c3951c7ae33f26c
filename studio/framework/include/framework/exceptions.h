// The data that every exception carries.
#pragma once

#include <hostapi/abi.h>

#include <string>
#include <vector>

namespace studio {

struct ExceptionData {
    REALstring message = nullptr;
    std::int32_t errorNumber = 0;
    std::vector<std::string> places; // "file:line", innermost first
};

ExceptionData& exceptionData(REALobject exception);

} // namespace studio
