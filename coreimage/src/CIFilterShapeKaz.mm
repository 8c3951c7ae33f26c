// CIFilterShapeKaz: the region in which an image or a filter's result is defined.
#include "wrapper.h"

namespace coreimage {
namespace {

CIFilterShape* shape(REALobject self) { return nativeHandle<CIFilterShape*>(self); }

// A transform as this class reads it: six doubles at the start of the object's data; identity for null.
CGAffineTransform transformOf(REALobject transform) {
    if (!transform) return CGAffineTransformIdentity;
    const double* fields = &instanceData<double>(transform);
    return CGAffineTransformMake(static_cast<CGFloat>(fields[0]), static_cast<CGFloat>(fields[1]),
                                 static_cast<CGFloat>(fields[2]), static_cast<CGFloat>(fields[3]),
                                 static_cast<CGFloat>(fields[4]), static_cast<CGFloat>(fields[5]));
}

// The combining methods: an empty wrapper gives nil.
template <class Combine>
REALobject combined(REALobject self, Combine&& combine) {
    if (!shape(self)) return nullptr;
    return wrappedResult(kFilterShape, combine);
}

void initWithRect(REALobject self, REALobject rect) {
    construct(self, [&] { return [[CIFilterShape alloc] initWithRect:rectangleOf(rect)]; });
}

REALobject transformBy(REALobject self, REALobject transform, bool interior) {
    return combined(self, [&] { return [shape(self) transformBy:transformOf(transform) interior:interior]; });
}

REALobject insetByXY(REALobject self, std::int32_t x, std::int32_t y) {
    return combined(self, [&] { return [shape(self) insetByX:x Y:y]; });
}

REALobject unionWith(REALobject self, REALobject other) {
    if (!shape(other)) return nullptr;
    return combined(self, [&] { return [shape(self) unionWith:shape(other)]; });
}

REALobject unionWithRect(REALobject self, REALobject rect) {
    return combined(self, [&] { return [shape(self) unionWithRect:rectangleOf(rect)]; });
}

REALobject intersectWith(REALobject self, REALobject other) {
    if (!shape(other)) return nullptr;
    return combined(self, [&] { return [shape(self) intersectWith:shape(other)]; });
}

REALobject intersectWithRect(REALobject self, REALobject rect) {
    return combined(self, [&] { return [shape(self) intersectWithRect:rectangleOf(rect)]; });
}

REALproperty properties[] = {
    handleProperty(),
    /// The shape with its rectangles as Core Image describes it.
    ///     Print self.description
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kFilterShape>(),
    /// Makes a shape of one rectangle, in pixels; Nil counts as an empty one.
    ///     Dim square As New CIFilterShapeKaz(New CGRectKaz(0, 0, 10, 10))
    method("Constructor(cgrect as CGRectKaz)", initWithRect),
    /// Returns the shape under the matrix of six doubles that begins the transform object's data, or
    /// unchanged for Nil; the flag asks for the rectangle inside of the result instead of the one around it.
    /// Nil for an empty shape.
    ///     Print self.TransformBy(Nil, False).description
    method("TransformBy(CGAffineTransform as NSAffineTransformKaz, flag as boolean) as CIFilterShapeKaz",
           transformBy),
    /// Returns the shape smaller by x and y pixels at each side, or larger for negative ones; Nil for an
    /// empty shape.
    ///     Print self.InsetByX(10, 5).description
    method("InsetByX(x as integer, y as integer) as CIFilterShapeKaz", insetByXY),
    /// Returns the two shapes together, or Nil if either is empty or Nil.
    ///     Print self.UnionWith(New CIFilterShapeKaz(New CGRectKaz(200, 0, 50, 50))).description
    method("UnionWith(s as CIFilterShapeKaz) as CIFilterShapeKaz", unionWith),
    /// Returns the shape together with a rectangle; Nil for an empty shape.
    ///     Print self.UnionWithRect(New CGRectKaz(200, 0, 50, 50)).description
    method("UnionWithRect(cgrect as CGRectKaz) as CIFilterShapeKaz", unionWithRect),
    /// Returns what two shapes have in common, or Nil if either is empty or Nil.
    ///     Print self.IntersectWith(New CIFilterShapeKaz(New CGRectKaz(50, 0, 100, 100))).description
    method("IntersectWith(s as CIFilterShapeKaz) as CIFilterShapeKaz", intersectWith),
    /// Returns what the shape has in common with a rectangle; Nil for an empty shape.
    ///     Print self.IntersectWithRect(New CGRectKaz(50, 0, 100, 100)).description
    method("IntersectWithRect(cgrect as CGRectKaz) as CIFilterShapeKaz", intersectWithRect),
};

void CIFilterShapeConstructor(REALobject self) { constructWrapper(self); }
void CIFilterShapeDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// A region of the plane: where an image or a filter's result is defined.
///     Dim shape As New CIFilterShapeKaz(New CGRectKaz(0, 0, 100, 80))
REALclassDefinition CIFilterShapeKazClass = classDefinition({.name = "CIFilterShapeKaz",
                                                             .constructor = CIFilterShapeConstructor,
                                                             .destructor = CIFilterShapeDestructor},
                                                            properties, methods);

} // namespace coreimage
