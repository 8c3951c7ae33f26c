// Antialiased drawing on a picture, through Core Graphics.
#pragma once

#include "picture_data.h"
#include "shapes.h"

#include <CoreGraphics/CoreGraphics.h>
#include <typeset/text.h>

namespace studio {

CGContextRef newContextOn(Pixels& pixels); // device RGB; the caller releases it

// Draws in the picture's colour within `clip`, a box of whole pixels of the picture; places are pixels from
// `origin`. A context of its own, because the picture's belongs to plugins, which may have turned it or
// clipped it.
class Drawing {
  public:
    Drawing(Picture& picture, shapes::Point origin, shapes::Box clip);
    ~Drawing();
    Drawing(const Drawing&) = delete;

    // Scales what lies in `from` to fill `to`; both are in whole pixels. What is outside of the source draws
    // nothing.
    void draw(const Pixels& source, shapes::Box to, shapes::Box from);
    void fill(const shapes::Shape& shape);
    void fill(const typeset::Text& text, double x, double y); // where its first baseline starts

  private:
    CGContextRef context_;
    shapes::Point origin_;
    shapes::Box visible_;
};

} // namespace studio
