// CGPointKaz and CGRectKaz: the fields themselves, in double precision; the host reads and writes them in
// place.
#include "support.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace family {
namespace {

PointFields& point(REALobject self) { return instanceData<PointFields>(self); }
RectangleFields& rect(REALobject self) { return instanceData<RectangleFields>(self); }

REALproperty doubleField(const char* name, std::size_t offset) {
    return host::settableField(name, "Double", static_cast<std::uint32_t>(offset));
}

REALstring asciiString(const char* text) {
    return bridge::newString(text, std::strlen(text), kREALTextEncodingASCII);
}

// --- CGPointKaz -------------------------------------------------------------------------------------------

void initPoint(REALobject self, double x, double y) { point(self) = {x, y}; }

REALstring pointDescription(REALobject self, std::uint32_t) {
    char text[80];
    std::snprintf(text, sizeof text, "{%g, %g}", point(self).x, point(self).y);
    return asciiString(text);
}

REALproperty pointProperties[] = {
    /// The distance from the left.
    ///     self.X = 5
    doubleField("X", offsetof(PointFields, x)),
    /// The distance from the bottom.
    ///     self.Y = 6
    doubleField("Y", offsetof(PointFields, y)),
    /// The point as {x, y}.
    ///     Print self.Description
    property("Description", "String", pointDescription),
};

REALmethodDefinition pointMethods[] = {
    /// Makes a point.
    ///     Dim origin As New CGPointKaz(0, 0)
    method("Constructor(x as double, y as double)", initPoint),
};

// --- CGRectKaz --------------------------------------------------------------------------------------------

void initRect(REALobject self, double x, double y, double width, double height) {
    rect(self) = {x, y, width, height};
}

double maxX(REALobject self, std::uint32_t) { return rect(self).x + rect(self).width; }
double maxY(REALobject self, std::uint32_t) { return rect(self).y + rect(self).height; }

REALstring rectDescription(REALobject self, std::uint32_t) {
    char text[160];
    std::snprintf(text, sizeof text, "{{%g, %g}, {%g, %g}}", rect(self).x, rect(self).y, rect(self).width,
                  rect(self).height);
    return asciiString(text);
}

bool isEmpty(REALobject self) { return rect(self).width <= 0 || rect(self).height <= 0; }

bool containsPoint(REALobject self, REALobject p) {
    if (!p) return false;
    const RectangleFields& r = rect(self);
    return point(p).x >= r.x && point(p).x < r.x + r.width && point(p).y >= r.y &&
           point(p).y < r.y + r.height;
}

REALobject insetBy(REALobject self, double dx, double dy) {
    const RectangleFields& r = rect(self);
    return newRectangle(RectangleFields{r.x + dx, r.y + dy, r.width - 2 * dx, r.height - 2 * dy});
}

REALobject offsetBy(REALobject self, double dx, double dy) {
    const RectangleFields& r = rect(self);
    return newRectangle(RectangleFields{r.x + dx, r.y + dy, r.width, r.height});
}

// Null when the two have nothing in common.
REALobject intersection(REALobject self, REALobject other) {
    if (!other) return nullptr;
    const RectangleFields &a = rect(self), &b = rect(other);
    double left = std::max(a.x, b.x), bottom = std::max(a.y, b.y);
    double right = std::min(a.x + a.width, b.x + b.width), top = std::min(a.y + a.height, b.y + b.height);
    if (right <= left || top <= bottom) return nullptr;
    return newRectangle(RectangleFields{left, bottom, right - left, top - bottom});
}

// The smallest rectangle around both.
REALobject unionWith(REALobject self, REALobject other) {
    if (!other) return newRectangle(rect(self));
    const RectangleFields &a = rect(self), &b = rect(other);
    double left = std::min(a.x, b.x), bottom = std::min(a.y, b.y);
    double right = std::max(a.x + a.width, b.x + b.width), top = std::max(a.y + a.height, b.y + b.height);
    return newRectangle(RectangleFields{left, bottom, right - left, top - bottom});
}

REALproperty rectProperties[] = {
    /// The left edge.
    ///     self.X = 12
    doubleField("X", offsetof(RectangleFields, x)),
    /// The bottom edge.
    ///     self.Y = 24
    doubleField("Y", offsetof(RectangleFields, y)),
    /// The distance from the left to the right edge.
    ///     self.Width = 96
    doubleField("Width", offsetof(RectangleFields, width)),
    /// The distance from the bottom to the top edge.
    ///     self.Height = 72
    doubleField("Height", offsetof(RectangleFields, height)),
    /// The right edge: X plus Width.
    ///     Print Str(self.MaxX)
    property("MaxX", "Double", maxX),
    /// The top edge: Y plus Height.
    ///     Print Str(self.MaxY)
    property("MaxY", "Double", maxY),
    /// The rectangle as {{x, y}, {width, height}}.
    ///     Print self.Description
    property("Description", "String", rectDescription),
};

REALmethodDefinition rectMethods[] = {
    /// Makes a rectangle of its lower left corner and its size.
    ///     Dim unit As New CGRectKaz(0, 0, 1, 1)
    method("Constructor(x as double, y as double, width as double, height as double)", initRect),
    /// Whether the width or the height is 0 or less.
    ///     Print Str(self.IsEmpty)
    method("IsEmpty as boolean", isEmpty),
    /// Whether a point is inside; the left and bottom edges are, the right and top ones are not. False for
    /// Nil.
    ///     Print Str(self.Contains(New CGPointKaz(50, 50)))
    method("Contains(p as CGPointKaz) as boolean", containsPoint),
    /// Returns the rectangle smaller by dx and dy at each side, or larger for negative ones.
    ///     Print self.Inset(5, 5).Description
    method("Inset(dx as double, dy as double) as CGRectKaz", insetBy),
    /// Returns the rectangle moved by dx and dy.
    ///     Print self.Offset(5, -5).Description
    method("Offset(dx as double, dy as double) as CGRectKaz", offsetBy),
    /// Returns what two rectangles have in common, or Nil if that is nothing.
    ///     Print self.Intersection(New CGRectKaz(50, 50, 100, 100)).Description
    method("Intersection(r as CGRectKaz) as CGRectKaz", intersection),
    /// Returns the smallest rectangle around both; a copy of this one for Nil.
    ///     Print self.Union(New CGRectKaz(50, 50, 100, 100)).Description
    method("Union(r as CGRectKaz) as CGRectKaz", unionWith),
};

} // namespace

/// A point in double precision.
///     Dim point As New CGPointKaz(3, 4)
REALclassDefinition CGPointKazClass =
    classDefinition({.name = "CGPointKaz", .dataSize = sizeof(PointFields)}, pointProperties, pointMethods);

/// A rectangle in double precision: its lower left corner and its size.
///     Dim box As New CGRectKaz(10, 20, 100, 80)
REALclassDefinition CGRectKazClass =
    classDefinition({.name = "CGRectKaz", .dataSize = sizeof(RectangleFields)}, rectProperties, rectMethods);

} // namespace family
