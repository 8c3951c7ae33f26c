// What the parts of the plugin family share in one process: the registry that maps a native object to its one
// wrapper, and the maker of host exceptions. Both belong to another part of the family, which publishes them
// as class methods of NSException.
#pragma once

#include <hostapi/services.h>

namespace bridge {

// Asks the family for the registry and tells it to get its exception maker ready, each once. Without the
// family there is no registry, and the functions below do nothing.
void ensureFamily();

// The wrapper of a native object, locked once more for the caller; null when it has none.
REALobject lockRegisteredWrapper(const void* native);

void registerWrapper(const void* native, REALobject wrapper);
void unregisterWrapper(const void* native);

// Gives NSException a maker of host exceptions (a "RuntimeException" with the reason as its message) if no
// part of the family brought one, so that a Cocoa exception never unwinds into the host.
void provideExceptionMaker();

} // namespace bridge
