// Reads plugins' records into the class model.
#pragma once

#include <host/abi.h>

namespace studio {

// A faulty record is reported as a violation and left out, as far as it is faulty.
void registerPluginClass(REALclassDefinition* record);
void registerPluginFunction(const void* record);

} // namespace studio
