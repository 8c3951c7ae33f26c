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
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kFilterShape>(),
    method("Constructor(cgrect as CGRectKaz)", initWithRect),
    method("TransformBy(CGAffineTransform as NSAffineTransformKaz, flag as boolean) as CIFilterShapeKaz",
           transformBy),
    method("InsetByX(x as integer, y as integer) as CIFilterShapeKaz", insetByXY),
    method("UnionWith(s as CIFilterShapeKaz) as CIFilterShapeKaz", unionWith),
    method("UnionWithRect(cgrect as CGRectKaz) as CIFilterShapeKaz", unionWithRect),
    method("IntersectWith(s as CIFilterShapeKaz) as CIFilterShapeKaz", intersectWith),
    method("IntersectWithRect(cgrect as CGRectKaz) as CIFilterShapeKaz", intersectWithRect),
};

void CIFilterShapeConstructor(REALobject self) { constructWrapper(self); }
void CIFilterShapeDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

REALclassDefinition CIFilterShapeKazClass = classDefinition({.name = "CIFilterShapeKaz",
                                                             .constructor = CIFilterShapeConstructor,
                                                             .destructor = CIFilterShapeDestructor},
                                                            properties, methods);

} // namespace coreimage
