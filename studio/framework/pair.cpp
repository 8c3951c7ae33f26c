// Pair: two variants, written a : b.
#include "pair.h"

#include "table.h"

namespace studio {

namespace {

struct Pair {
    REALobject left = nullptr, right = nullptr;
};
Pair& pair(REALobject self) { return dataOf<Pair>(self); }

/// Two values, written left : right.
///     Dim price As Pair = "fig" : 0.4
FrameworkClass pairClass() {
    FrameworkClass table = classWithData<Pair>("Pair");
    table.destructor = +[](REALobject self) {
        heap().release(pair(self).left);
        heap().release(pair(self).right);
    };
    table.properties = {
        /// The value in front of the colon.
        ///     Print price.Left
        property("Left", "Variant", pairLeft),
        /// The value behind the colon.
        ///     Print Str(price.Right)
        property("Right", "Variant", pairRight),
    };
    table.methods = {
        /// Makes a pair of two values.
        ///     Dim other As New Pair("pear", 0.3)
        method("Constructor(left As Variant, right As Variant)",
               [](REALobject self, REALobject left, REALobject right) {
                   heap().release(std::exchange(pair(self).left, Heap::retain(left)));
                   heap().release(std::exchange(pair(self).right, Heap::retain(right)));
               }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{pairClass()}}; });

} // namespace

REALobject pairLeft(REALobject self) { return Heap::retain(pair(self).left); }
REALobject pairRight(REALobject self) { return Heap::retain(pair(self).right); }

} // namespace studio
