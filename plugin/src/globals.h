// The plugin's global functions, in the order in which the host learns of them.
#pragma once

#include <hostapi/abi.h>

#include <span>

namespace plugin {

std::span<REALmethodDefinition> globalsMethods();

} // namespace plugin
