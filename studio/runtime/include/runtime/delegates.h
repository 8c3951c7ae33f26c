// Delegates: objects that call a routine, or a method of an object.
#pragma once

#include "runtime/heap.h"

namespace studio {

struct DelegateData {
    const Method* method;
    REALobject self; // null for a routine outside classes
    WeakCell* weak;  // instead of `self`
};

// Makes the class one of delegates that have this signature.
void makeDelegateClass(Class& cls, const Signature& signature);
// One host reference. `self` is borrowed; a weak delegate does not keep it alive.
REALobject newDelegate(Class& cls, const Method& method, REALobject self, bool weak);
// The method, and the object with one host reference for the caller. NilObjectException for a null delegate
// and for one whose object is gone.
DelegateData delegateTarget(REALobject delegate);
// Arguments are borrowed and of the parameters' types; the result is owned.
Bits invokeDelegate(REALobject delegate, const Bits* arguments);

} // namespace studio
