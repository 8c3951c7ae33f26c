// Instances of classes.
#pragma once

#include "runtime/model.h"

namespace studio {

// A new instance with its class constructors run, superclass first; one host reference. Null for an unknown
// class.
REALobject newInstance(Class& cls);
REALobject newInstance(std::string_view className);
// Runs the destructors, subclass first. The heap calls this when the last reference is gone.
void finalizeInstance(REALobject object);

bool isA(REALobject object, std::string_view className);
std::string classNameOf(REALobject object); // as Print shows it
// The property of the object's class, or of Variant, since any object is a variant, too.
const Property* findProperty(REALobject object, std::string_view name);
// Makes a delegate the handler of an object's event, in place of any earlier one; it is called with the
// object. Null removes it. Raises UnsupportedOperationException when there is no such event.
void setHandler(REALobject object, std::string_view event, REALobject handler);

} // namespace studio
