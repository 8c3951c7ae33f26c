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
    singleField("X", offsetof(NSPoint, x)),
    singleField("Y", offsetof(NSPoint, y)),
    property("Description", "String", descriptionOf<NSPoint, NSStringFromPoint>),
};
REALmethodDefinition pointMethods[] = {
    method("Constructor(x as single, y as single)", fill<NSPoint, float, float>),
};

REALproperty sizeProperties[] = {
    singleField("Width", offsetof(NSSize, width)),
    singleField("Height", offsetof(NSSize, height)),
    property("Description", "String", descriptionOf<NSSize, NSStringFromSize>),
};
REALmethodDefinition sizeMethods[] = {
    method("Constructor(width as single, height as single)", fill<NSSize, float, float>),
};

REALproperty rectProperties[] = {
    singleField("X", offsetof(NSRect, origin.x)),
    singleField("Y", offsetof(NSRect, origin.y)),
    singleField("Width", offsetof(NSRect, size.width)),
    singleField("Height", offsetof(NSRect, size.height)),
    property("Description", "String", descriptionOf<NSRect, NSStringFromRect>),
};
REALmethodDefinition rectMethods[] = {
    method("Constructor(x as single, y as single, width as single, height as single)", fillRect),
};

REALproperty rangeProperties[] = {
    wordField("Location", offsetof(NSRange, location)),
    wordField("Length", offsetof(NSRange, length)),
    property("Description", "String", descriptionOf<NSRange, NSStringFromRange>),
};
REALmethodDefinition rangeMethods[] = {
    method("Constructor(location as UInt32, length as UInt32)", fill<NSRange, NSUInteger, NSUInteger>),
};

static_assert(sizeof(NSPoint) == 8 && sizeof(NSSize) == 8 && sizeof(NSRect) == 16 && sizeof(NSRange) == 8);

} // namespace

REALclassDefinition NSPointKazClass =
    classDefinition({.name = "NSPointKaz", .dataSize = sizeof(NSPoint)}, pointProperties, pointMethods);
REALclassDefinition NSSizeKazClass =
    classDefinition({.name = "NSSizeKaz", .dataSize = sizeof(NSSize)}, sizeProperties, sizeMethods);
REALclassDefinition NSRectKazClass =
    classDefinition({.name = "NSRectKaz", .dataSize = sizeof(NSRect)}, rectProperties, rectMethods);
REALclassDefinition NSRangeKazClass =
    classDefinition({.name = "NSRangeKaz", .dataSize = sizeof(NSRange)}, rangeProperties, rangeMethods);

} // namespace family
