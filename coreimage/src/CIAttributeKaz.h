// CIAttributeKaz objects, for the filter class that makes them.
#pragma once

#include "wrapper.h"

namespace coreimage {

// A new, unregistered object that describes one parameter of a filter and retains both arguments; null when
// the host makes none.
REALobject newAttribute(NSDictionary* attribute, NSString* name);

} // namespace coreimage
