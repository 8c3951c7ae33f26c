// NSAffineTransformKaz: a transform that is built step by step.
#include "support.h"

namespace family {
namespace {

// Other parts read six doubles from an argument of this class, so its data is never smaller than those.
struct TransformData {
    NSAffineTransform* transform;
    std::uint32_t room[11];
};
static_assert(sizeof(TransformData) >= 6 * sizeof(double));

NSAffineTransform* transform(REALobject self) { return instanceData<TransformData>(self).transform; }

void initIdentity(REALobject self) {
    construct(self, [] { return [[NSAffineTransform transform] retain]; });
}

void initWithMatrix(REALobject self, double a, double b, double c, double d, double tx, double ty) {
    construct(self, [&] {
        NSAffineTransform* made = [NSAffineTransform transform];
        [made
            setTransformStruct:{static_cast<CGFloat>(a), static_cast<CGFloat>(b), static_cast<CGFloat>(c),
                                static_cast<CGFloat>(d), static_cast<CGFloat>(tx), static_cast<CGFloat>(ty)}];
        return [made retain];
    });
}

void translate(REALobject self, double x, double y) {
    guardedInPool(
        [&] { [transform(self) translateXBy:static_cast<CGFloat>(x) yBy:static_cast<CGFloat>(y)]; });
}

void scale(REALobject self, double x, double y) {
    guardedInPool([&] { [transform(self) scaleXBy:static_cast<CGFloat>(x) yBy:static_cast<CGFloat>(y)]; });
}

void rotateByDegrees(REALobject self, double angle) {
    guardedInPool([&] { [transform(self) rotateByDegrees:static_cast<CGFloat>(angle)]; });
}

void invert(REALobject self) {
    guardedInPool([&] { [transform(self) invert]; });
}

void append(REALobject self, REALobject other) {
    if (raisesWhenNull(nativeHandle(other), "transform is nil")) return;
    guardedInPool([&] { [transform(self) appendTransform:transform(other)]; });
}

REALobject transformPoint(REALobject self, REALobject point) {
    if (raisesWhenNull(point, "point is nil")) return nullptr;
    return guardedInPool([&]() -> REALobject {
        if (!transform(self)) return nullptr;
        const PointFields& p = instanceData<PointFields>(point);
        NSPoint result = [transform(self)
            transformPoint:NSMakePoint(static_cast<CGFloat>(p.x), static_cast<CGFloat>(p.y))];
        return newPoint(CGPointMake(result.x, result.y));
    });
}

template <CGFloat NSAffineTransformStruct::*Member>
double element(REALobject self, std::uint32_t) {
    return guardedInPool(
        [&] { return transform(self) ? double([transform(self) transformStruct].*Member) : 0.0; });
}

REALproperty properties[] = {
    handleProperty(),
    /// The share of x that goes into the new x.
    ///     Print Str(self.M11)
    property("M11", "Double", element<&NSAffineTransformStruct::m11>),
    /// The share of x that goes into the new y.
    ///     Print Str(self.M12)
    property("M12", "Double", element<&NSAffineTransformStruct::m12>),
    /// The share of y that goes into the new x.
    ///     Print Str(self.M21)
    property("M21", "Double", element<&NSAffineTransformStruct::m21>),
    /// The share of y that goes into the new y.
    ///     Print Str(self.M22)
    property("M22", "Double", element<&NSAffineTransformStruct::m22>),
    /// What is added to x.
    ///     Print Str(self.TX)
    property("TX", "Double", element<&NSAffineTransformStruct::tX>),
    /// What is added to y.
    ///     Print Str(self.TY)
    property("TY", "Double", element<&NSAffineTransformStruct::tY>),
};

REALmethodDefinition methods[] = {
    /// Makes the identity, which changes nothing.
    ///     Dim identity As New NSAffineTransformKaz
    method("Constructor", initIdentity),
    /// Makes a transform of its six elements: x becomes m11 x + m21 y + tx, and y becomes m12 x + m22 y + ty.
    ///     Dim mirror As New NSAffineTransformKaz(-1, 0, 0, 1, 100, 0)
    method(
        "Constructor(m11 as double, m12 as double, m21 as double, m22 as double, tx as double, ty as double)",
        initWithMatrix),
    /// Adds a move by x and y.
    ///     self.Translate(10, 20)
    method("Translate(x as double, y as double)", translate),
    /// Adds scaling by factors along x and y.
    ///     self.Scale(2, 2)
    method("Scale(x as double, y as double)", scale),
    /// Adds a turn by an angle in degrees, anticlockwise.
    ///     self.RotateByDegrees(90)
    method("RotateByDegrees(angle as double)", rotateByDegrees),
    /// Turns the transform into its opposite; one that has none, such as a scale by 0, stays as it is.
    ///     self.Invert
    method("Invert", invert),
    /// Adds a transform to be applied after this one. Raises NilObjectException without one.
    ///     self.Append(New NSAffineTransformKaz)
    method("Append(transform as NSAffineTransformKaz)", append),
    /// Returns where a point goes, or Nil while the object is empty. Raises NilObjectException for Nil.
    ///     Print self.TransformPoint(New CGPointKaz(1, 0)).Description
    method("TransformPoint(p as CGPointKaz) as CGPointKaz", transformPoint),
};

} // namespace

/// A transform built step by step; each step is applied before those already there.
///     Dim turn As New NSAffineTransformKaz
REALclassDefinition NSAffineTransformKazClass = classDefinition({.name = "NSAffineTransformKaz",
                                                                 .dataSize = sizeof(TransformData),
                                                                 .constructor = constructWrapper,
                                                                 .destructor = destroyWrapper},
                                                                properties, methods);

} // namespace family
