// The plugin's global functions, in the order in which the host learns of them.
#pragma once

#include <hostapi/records.h>

namespace plugin {

host::Table<REALmethodDefinition> globalsMethods();

} // namespace plugin
