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
    doubleField("X", offsetof(PointFields, x)),
    doubleField("Y", offsetof(PointFields, y)),
    property("Description", "String", pointDescription),
};

REALmethodDefinition pointMethods[] = {
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
    doubleField("X", offsetof(RectangleFields, x)),
    doubleField("Y", offsetof(RectangleFields, y)),
    doubleField("Width", offsetof(RectangleFields, width)),
    doubleField("Height", offsetof(RectangleFields, height)),
    property("MaxX", "Double", maxX),
    property("MaxY", "Double", maxY),
    property("Description", "String", rectDescription),
};

REALmethodDefinition rectMethods[] = {
    method("Constructor(x as double, y as double, width as double, height as double)", initRect),
    method("IsEmpty as boolean", isEmpty),
    method("Contains(p as CGPointKaz) as boolean", containsPoint),
    method("Inset(dx as double, dy as double) as CGRectKaz", insetBy),
    method("Offset(dx as double, dy as double) as CGRectKaz", offsetBy),
    method("Intersection(r as CGRectKaz) as CGRectKaz", intersection),
    method("Union(r as CGRectKaz) as CGRectKaz", unionWith),
};

} // namespace

REALclassDefinition CGPointKazClass =
    classDefinition({.name = "CGPointKaz", .dataSize = sizeof(PointFields)}, pointProperties, pointMethods);

REALclassDefinition CGRectKazClass =
    classDefinition({.name = "CGRectKaz", .dataSize = sizeof(RectangleFields)}, rectProperties, rectMethods);

} // namespace family
