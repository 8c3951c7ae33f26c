// The wrapper registry: it maps a native object to its one wrapper. It belongs to another part of the plugin
// family, which publishes it, like its maker of host exceptions, as a class method of NSException.
#pragma once

#include <hostapi/services.h>

namespace bridge {

// Asks the family for the wrapper registry and has it get its exception maker ready, each once. Without the
// family there is no wrapper registry, and the functions below do nothing.
void ensureFamily();

// The wrapper of a native object, locked once more for the caller; null when it has none.
REALobject lockRegisteredWrapper(const void* native);

void registerWrapper(const void* native, REALobject wrapper);
void unregisterWrapper(const void* native);

} // namespace bridge
