// Reads plugins' records into the class model.
#pragma once

#include <hostapi/abi.h>

namespace studio {

// Faulty parts of a record are reported as violations and skipped.
void registerPluginClass(REALclassDefinition* record);
void registerPluginFunction(const void* record);

} // namespace studio
