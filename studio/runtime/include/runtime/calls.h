// Calls by declaration: from the host into C functions, and from plugins into the host's own methods.
#pragma once

#include "runtime/model.h"

namespace studio {

// Each calls a method, its setter, or a property's accessor. Arguments are borrowed and already of the
// parameters' types, results are owned, and exceptions are thrown.
Bits invoke(const Method& method, REALobject self, const Bits* arguments);
void invokeSetter(const Method& method, REALobject self, const Bits* arguments);
Bits readProperty(const Property& property, REALobject self);
void writeProperty(const Property& property, REALobject self, Bits value); // takes the value over
void callHook(void* function, REALobject self, std::string_view name, Origin origin);
// The C function by which a plugin calls a method of the host's own; made on first use.
void* functionForPlugins(const Method& method, bool setter);

// Overloads, by the types of the arguments.
struct Choice {
    const Method* method = nullptr;
    std::string problem; // why there is none, for people
};
Choice chooseOverload(const std::vector<const Method*>& candidates, const std::vector<const Type*>& arguments,
                      std::string_view name, bool withSetterValue = false);

} // namespace studio
