// Object2D and its shapes: rectangles, ovals and arcs that Graphics.DrawObject draws.
#include "object2d.h"

#include "drawing.h"
#include "framework/picture.h"
#include "table.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace studio {

namespace {

using Outline = std::vector<shapes::Point>;

// The data of all shapes; the subclasses say which of it they use, and what it outlines.
struct Object2D {
    double x = 0, y = 0, rotation = 0, scale = 1;   // of the middle
    double fill = 100, border = 0, borderWidth = 1; // opacities in percent
    std::uint32_t fillColor = 0xFF000000, borderColor = 0xFF000000;
    double width = 100, height = 100, startAngle = 0, arcAngle = std::numbers::pi / 2;
    Outline (*outline)(const Object2D&) = nullptr; // around the middle, clockwise
};

Outline rectangle(const Object2D& o) {
    double w = o.width / 2, h = o.height / 2;
    return {{-w, -h}, {w, -h}, {w, h}, {-w, h}};
}

// Points of the oval from one angle to another; angles go clockwise, from the right.
Outline arcPoints(const Object2D& o, double from, double angle) {
    constexpr double kStep = 2; // pixels
    constexpr double kMostSteps = 4096;
    double length = std::abs(angle) * std::max(std::abs(o.width), std::abs(o.height)) / 2 * o.scale;
    double steps = std::clamp(std::ceil(length / kStep), 16.0, kMostSteps);
    Outline result;
    for (double i = 0; i <= steps; ++i) {
        double at = from + angle * i / steps;
        result.push_back({std::cos(at) * o.width / 2, std::sin(at) * o.height / 2});
    }
    return result;
}

Outline oval(const Object2D& o) { return arcPoints(o, 0, 2 * std::numbers::pi); }

// A slice with its point in the middle; a whole turn is an oval.
Outline slice(const Object2D& o) {
    if (std::abs(o.arcAngle) >= 2 * std::numbers::pi) return oval(o);
    Outline result = arcPoints(o, o.startAngle, o.arcAngle);
    result.push_back({0, 0});
    if (o.arcAngle < 0) std::reverse(result.begin(), result.end());
    return result;
}

Outline placed(const Object2D& o, double x, double y) {
    Outline result = o.outline(o);
    double c = std::cos(o.rotation) * o.scale, s = std::sin(o.rotation) * o.scale;
    for (shapes::Point& p : result) p = {x + o.x + c * p.x - s * p.y, y + o.y + s * p.x + c * p.y};
    return result;
}

// A line of a width along the closed outline, with round corners; all of its parts turn clockwise.
shapes::Shape stroke(const Outline& outline, double width) {
    constexpr int kCorner = 16;
    double radius = width / 2;
    shapes::Shape result;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        shapes::Point p = outline[i], q = outline[(i + 1) % outline.size()];
        double dx = q.x - p.x, dy = q.y - p.y, length = std::hypot(dx, dy);
        if (length > 0) {
            double nx = dy / length * radius, ny = -dx / length * radius;
            result.push_back(
                {{p.x + nx, p.y + ny}, {q.x + nx, q.y + ny}, {q.x - nx, q.y - ny}, {p.x - nx, p.y - ny}});
        }
        Outline corner;
        for (int k = 0; k < kCorner; ++k) {
            double angle = 2 * std::numbers::pi * k / kCorner;
            corner.push_back({p.x + radius * std::cos(angle), p.y + radius * std::sin(angle)});
        }
        result.push_back(std::move(corner));
    }
    return result;
}

std::uint32_t withOpacity(std::uint32_t color, double percent) {
    double alpha = double(color >> 24) * std::clamp(percent, 0.0, 100.0) / 100;
    return (color & 0xFFFFFF) | std::uint32_t(std::lround(alpha)) << 24;
}

} // namespace

void drawObject2D(REALobject object, double x, double y,
                  const std::function<void(const shapes::Shape&, std::uint32_t color)>& fill) {
    if (!object) raise("NilObjectException", "the object to draw is nil");
    const Object2D& o = dataOf<Object2D>(object);
    if (!o.outline)
        raise("UnsupportedOperationException",
              "a plain Object2D has no shape; make a RectShape, OvalShape or ArcShape");
    Outline outline = placed(o, x, y);
    if (o.fill > 0) fill(shapes::polygon(outline), withOpacity(o.fillColor, o.fill));
    if (o.border > 0)
        fill(stroke(outline, std::max(0.0, o.borderWidth * o.scale)), withOpacity(o.borderColor, o.border));
}

namespace {

template <auto Member>
FrameworkProperty number(const char* name) {
    return property(
        name, "Double", [](REALobject self) { return dataOf<Object2D>(self).*Member; },
        [](REALobject self, std::uint32_t, double value) { dataOf<Object2D>(self).*Member = value; });
}
template <auto Member>
FrameworkProperty color(const char* name) {
    return property(
        name, "Color", [](REALobject self) { return dataOf<Object2D>(self).*Member; },
        [](REALobject self, std::uint32_t, std::uint32_t value) { dataOf<Object2D>(self).*Member = value; });
}

template <Outline (*Shape)(const Object2D&)>
FrameworkClass shapeClass(const char* name, const char* superclass) {
    FrameworkClass table;
    table.name = name;
    table.superclass = superclass;
    table.constructor = +[](REALobject self) { dataOf<Object2D>(self).outline = Shape; };
    return table;
}

/// What the shapes that Graphics.DrawObject draws have in common. A plain one has no outline and cannot be
/// drawn.
///     Dim shape As Object2D = New OvalShape
FrameworkClass object2DClass() {
    FrameworkClass table = classWithData<Object2D>("Object2D");
    table.properties = {
        /// The place of the middle, in pixels from the left.
        ///     shape.X = 120
        number<&Object2D::x>("X"),
        /// The place of the middle, in pixels from the top.
        ///     shape.Y = 80
        number<&Object2D::y>("Y"),
        /// The angle by which the shape is turned around its middle, in radians, clockwise.
        ///     shape.Rotation = 0.5
        number<&Object2D::rotation>("Rotation"),
        /// The factor by which the shape and its border are enlarged.
        ///     shape.Scale = 1.5
        number<&Object2D::scale>("Scale"),
        /// The opacity of the inside, from 0 to 100 percent.
        ///     shape.Fill = 50
        number<&Object2D::fill>("Fill"),
        /// The opacity of the border, from 0 to 100 percent; 0, the default, draws none.
        ///     shape.Border = 100
        number<&Object2D::border>("Border"),
        /// The width of the border, in pixels. Its middle lies on the outline.
        ///     shape.BorderWidth = 3
        number<&Object2D::borderWidth>("BorderWidth"),
        /// The colour of the inside.
        ///     shape.FillColor = RGB(200, 40, 40)
        color<&Object2D::fillColor>("FillColor"),
        /// The colour of the border.
        ///     shape.BorderColor = RGB(40, 40, 40)
        color<&Object2D::borderColor>("BorderColor"),
    };
    return table;
}

/// A rectangle around its middle.
///     Dim box As New RectShape
FrameworkClass rectShapeClass() {
    FrameworkClass table = shapeClass<rectangle>("RectShape", "Object2D");
    table.properties = {
        /// The width, in pixels.
        ///     box.Width = 160
        number<&Object2D::width>("Width"),
        /// The height, in pixels.
        ///     box.Height = 90
        number<&Object2D::height>("Height"),
    };
    return table;
}

/// An oval that fits into its width and height.
///     Dim oval As New OvalShape
FrameworkClass ovalShapeClass() { return shapeClass<oval>("OvalShape", "RectShape"); }

/// A slice of an oval with its point in the middle.
///     Dim slice As New ArcShape
FrameworkClass arcShapeClass() {
    FrameworkClass table = shapeClass<slice>("ArcShape", "OvalShape");
    table.properties = {
        /// Where the slice begins, in radians from the right, clockwise.
        ///     slice.StartAngle = 0.5
        number<&Object2D::startAngle>("StartAngle"),
        /// How far the slice reaches from there, in radians, clockwise.
        ///     slice.ArcAngle = 1.5
        number<&Object2D::arcAngle>("ArcAngle"),
    };
    return table;
}

const Registrar registrar([] {
    return FrameworkPart{{object2DClass(), rectShapeClass(), ovalShapeClass(), arcShapeClass()}};
});

} // namespace

} // namespace studio
