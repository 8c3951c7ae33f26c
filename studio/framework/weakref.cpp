// WeakRef: an object that it does not keep alive.
#include "table.h"

namespace studio {

namespace {

struct WeakRef {
    WeakCell* cell = nullptr;
};

/// An object that it does not keep alive.
///     Dim day As New Date
///     Dim remembered As New WeakRef(day)
FrameworkClass weakRefClass() {
    FrameworkClass table = classWithData<WeakRef>("WeakRef");
    table.destructor = +[](REALobject self) { Heap::release(dataOf<WeakRef>(self).cell); };
    table.properties = {
        /// The object, or Nil once it is gone.
        ///     Print Str(remembered.Value Is Nil)
        property("Value", "Object",
                 [](REALobject self) {
                     WeakCell* cell = dataOf<WeakRef>(self).cell;
                     return cell ? Heap::retain(cell->object) : nullptr;
                 }),
    };
    table.methods = {
        /// Remembers an object; Nil is allowed.
        ///     Dim other As New WeakRef(day)
        method("Constructor(target As Object)",
               [](REALobject self, REALobject target) {
                   Heap::release(std::exchange(dataOf<WeakRef>(self).cell, Heap::weakReference(target)));
               }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{weakRefClass()}}; });

} // namespace

} // namespace studio
