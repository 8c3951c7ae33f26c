// Outlines of what Graphics draws, in pixels from a picture's top left corner.
#pragma once

#include <vector>

namespace studio::shapes {

struct Point {
    double x, y;
};

// Closed outlines, filled by the non-zero rule: those that turn clockwise add to each other, others cut
// holes. Places may be any 32-bit numbers.
using Shape = std::vector<std::vector<Point>>;

// The pen is a rectangle that hangs to the right of and below the point that it draws; a stroke is what it
// touches on its way. Level and upright lines therefore fill whole pixels.
struct Pen {
    double width, height;
};

Shape line(Point from, Point to, Pen pen);
Shape polygon(std::vector<Point> corners);
Shape polygonFrame(const std::vector<Point>& corners, Pen pen);

struct Box {
    double x, y, width, height;
};

// The corners are quarters of an oval of the size `arcs`, at most the box's; frames lie inside of the box.
Shape roundRect(Box box, Pen arcs);
Shape roundRectFrame(Box box, Pen arcs, Pen pen);
inline Shape oval(Box box) { return roundRect(box, {box.width, box.height}); }
inline Shape ovalFrame(Box box, Pen pen) { return roundRectFrame(box, {box.width, box.height}, pen); }

Shape moved(const Shape& shape, Point by);
Box intersection(Box a, Box b); // without size where they do not meet
// What lies within the box: of an enormous shape, numbers that suit a context.
Shape clipped(const Shape& shape, Box box);

} // namespace studio::shapes
