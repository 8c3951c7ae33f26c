// NSPointKaz, NSSizeKaz, NSRectKaz and NSRangeKaz: Cocoa's structures, field by field; the host reads and
// writes them in place.
#include "support.h"

#include <cstddef>

namespace family {
namespace {

REALproperty singleField(const char* name, std::size_t offset) {
    return host::settableField(name, "Single", static_cast<std::uint32_t>(offset));
}

REALproperty wordField(const char* name, std::size_t offset) {
    return host::settableField(name, "UInt32", static_cast<std::uint32_t>(offset));
}

// A constructor that fills the structure with its arguments, in the order of its fields.
template <class Structure, class... Fields>
void fill(REALobject self, Fields... fields) {
    static_assert(sizeof(Structure) == (sizeof(Fields) + ...));
    instanceData<Structure>(self) = {fields...};
}

void fillRect(REALobject self, float x, float y, float width, float height) {
    instanceData<NSRect>(self) = NSMakeRect(x, y, width, height);
}

template <class Structure, NSString* (*text)(Structure)>
REALstring descriptionOf(REALobject self, std::uint32_t) {
    return stringResult([&] { return text(instanceData<Structure>(self)); });
}

REALproperty pointProperties[] = {
    /// The distance from the left.
    ///     self.X = 5
    singleField("X", offsetof(NSPoint, x)),
    /// The distance from the bottom.
    ///     self.Y = 6
    singleField("Y", offsetof(NSPoint, y)),
    /// The point as Cocoa writes it: {x, y}.
    ///     Print self.Description
    property("Description", "String", descriptionOf<NSPoint, NSStringFromPoint>),
};
REALmethodDefinition pointMethods[] = {
    /// Makes a point.
    ///     Dim origin As New NSPointKaz(0, 0)
    method("Constructor(x as single, y as single)", fill<NSPoint, float, float>),
};

REALproperty sizeProperties[] = {
    /// The width.
    ///     self.Width = 50
    singleField("Width", offsetof(NSSize, width)),
    /// The height.
    ///     self.Height = 40
    singleField("Height", offsetof(NSSize, height)),
    /// The size as Cocoa writes it: {width, height}.
    ///     Print self.Description
    property("Description", "String", descriptionOf<NSSize, NSStringFromSize>),
};
REALmethodDefinition sizeMethods[] = {
    /// Makes a size.
    ///     Dim unit As New NSSizeKaz(1, 1)
    method("Constructor(width as single, height as single)", fill<NSSize, float, float>),
};

REALproperty rectProperties[] = {
    /// The left edge.
    ///     self.X = 12
    singleField("X", offsetof(NSRect, origin.x)),
    /// The bottom edge.
    ///     self.Y = 24
    singleField("Y", offsetof(NSRect, origin.y)),
    /// The distance from the left to the right edge.
    ///     self.Width = 96
    singleField("Width", offsetof(NSRect, size.width)),
    /// The distance from the bottom to the top edge.
    ///     self.Height = 72
    singleField("Height", offsetof(NSRect, size.height)),
    /// The rectangle as Cocoa writes it: {{x, y}, {width, height}}.
    ///     Print self.Description
    property("Description", "String", descriptionOf<NSRect, NSStringFromRect>),
};
REALmethodDefinition rectMethods[] = {
    /// Makes a rectangle of its lower left corner and its size.
    ///     Dim unit As New NSRectKaz(0, 0, 1, 1)
    method("Constructor(x as single, y as single, width as single, height as single)", fillRect),
};

REALproperty rangeProperties[] = {
    /// The first index of the range.
    ///     self.Location = 3
    wordField("Location", offsetof(NSRange, location)),
    /// How many indexes the range has.
    ///     self.Length = 4
    wordField("Length", offsetof(NSRange, length)),
    /// The range as Cocoa writes it: {location, length}.
    ///     Print self.Description
    property("Description", "String", descriptionOf<NSRange, NSStringFromRange>),
};
REALmethodDefinition rangeMethods[] = {
    /// Makes a range of its first index and its length.
    ///     Dim start As New NSRangeKaz(0, 1)
    method("Constructor(location as UInt32, length as UInt32)", fill<NSRange, NSUInteger, NSUInteger>),
};

static_assert(sizeof(NSPoint) == 8 && sizeof(NSSize) == 8 && sizeof(NSRect) == 16 && sizeof(NSRange) == 8);

} // namespace

/// Cocoa's point, in single precision.
///     Dim point As New NSPointKaz(3, 4)
REALclassDefinition NSPointKazClass =
    classDefinition({.name = "NSPointKaz", .dataSize = sizeof(NSPoint)}, pointProperties, pointMethods);
/// Cocoa's size, in single precision.
///     Dim size As New NSSizeKaz(100, 80)
REALclassDefinition NSSizeKazClass =
    classDefinition({.name = "NSSizeKaz", .dataSize = sizeof(NSSize)}, sizeProperties, sizeMethods);
/// Cocoa's rectangle, in single precision: its lower left corner and its size.
///     Dim box As New NSRectKaz(10, 20, 100, 80)
REALclassDefinition NSRectKazClass =
    classDefinition({.name = "NSRectKaz", .dataSize = sizeof(NSRect)}, rectProperties, rectMethods);
/// Cocoa's range of indexes.
///     Dim range As New NSRangeKaz(2, 5)
REALclassDefinition NSRangeKazClass =
    classDefinition({.name = "NSRangeKaz", .dataSize = sizeof(NSRange)}, rangeProperties, rangeMethods);

} // namespace family
