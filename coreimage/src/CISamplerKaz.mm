// CISamplerKaz: an image with the transform, wrap mode and filter mode by which a kernel reads it.
#include "wrapper.h"

namespace coreimage {
namespace {

CISampler* sampler(REALobject self) { return nativeHandle<CISampler*>(self); }

NSDictionary* samplerOptions(REALobject matrix, REALstring wrapMode, REALstring filterMode) {
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithCapacity:3];
    auto add = [&](NSString* key, id value) {
        if (value) [options setObject:value forKey:key];
    };
    add(@"affine_matrix", nativeHandle(matrix));
    add(@"wrap_mode", bridge::temporaryString(wrapMode));
    add(@"filter_mode", bridge::temporaryString(filterMode));
    return options;
}

void initEmpty(REALobject) {}

void initWithImage(REALobject self, REALobject image) {
    construct(self, [&] { return [[CISampler alloc] initWithImage:nativeHandle<CIImage*>(image)]; });
}

void initWithImageAndOptions(REALobject self, REALobject image, REALobject matrix, REALstring wrapMode,
                             REALstring filterMode) {
    construct(self, [&] {
        return [[CISampler alloc] initWithImage:nativeHandle<CIImage*>(image)
                                        options:samplerOptions(matrix, wrapMode, filterMode)];
    });
}

REALobject definition(REALobject self) {
    return guardedInPool([&] { return newFilterShape([sampler(self) definition]); });
}

REALobject extent(REALobject self) {
    return guardedInPool([&]() -> REALobject {
        if (!sampler(self)) return nullptr;
        return newRectangle([sampler(self) extent]);
    });
}

REALproperty properties[] = {
    handleProperty(),
    /// The sampler as Core Image describes it, for debugging.
    ///     Print self.description
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kSampler>(),
    /// Where the sampler has pixels, as a shape; endless when it clamps. Nil while the object is empty.
    ///     Print self.Definiton.description
    method("Definiton as CIFilterShapeKaz", definition), // the name's spelling is the class's own
    /// The rectangle, in pixels, in which the sampler has pixels; Nil while the object is empty.
    ///     Print self.Extent.Description
    method("Extent as CGRectKaz", extent),
    /// Makes an empty sampler.
    ///     Dim empty As New CISamplerKaz
    method("Constructor", initEmpty),
    /// Makes a sampler that reads the image as it is: transparent black beyond its edge, mixing pixels
    /// between them.
    ///     Dim plain As New CISamplerKaz(photo)
    method("Constructor(ciImage as CIImageKaz)", initWithImage),
    /// Makes a sampler that reads the image through a transform, with modes from this class's constants; Nil
    /// and empty text take the usual ones.
    ///     Dim half As New CISamplerKaz(photo, turn, CISamplerKaz.kCISamplerWrapClamp, _
    ///       CISamplerKaz.kCISamplerFilterNearest)
    method("Constructor(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, WrapMode as String, "
           "FilterMode as string)",
           initWithImageAndOptions),
};

REALconstant constants[] = {
    /// Wrap mode: transparent black beyond the edge.
    constant("kCISamplerWrapBlack = \"black\""),
    /// Wrap mode: the nearest pixel of the edge goes on beyond it.
    constant("kCISamplerWrapClamp = \"clamp\""),
    /// Filter mode: the nearest pixel.
    constant("kCISamplerFilterNearest = \"nearest\""),
    /// Filter mode: a mixture of the four pixels around.
    constant("kCISamplerFilterLinear = \"linear\""),
};

void CISamplerConstructor(REALobject self) { constructWrapper(self); }
void CISamplerDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// An image with a transform, a wrap mode and a filter mode: how a filter reads it.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("coffee.png"))
///     Dim turn As New NSAffineTransformKaz
///     turn.Scale(0.5, 0.5)
///     Dim sampler As New CISamplerKaz(photo)
REALclassDefinition CISamplerKazClass = classDefinition(
    {.name = "CISamplerKaz", .constructor = CISamplerConstructor, .destructor = CISamplerDestructor},
    properties, methods, constants);

REALobject samplerWithImage(REALobject image) {
    return wrappedResult(kSampler,
                         [&] { return [CISampler samplerWithImage:nativeHandle<CIImage*>(image)]; });
}

REALobject samplerWithImageAndOptions(REALobject image, REALobject matrix, REALstring wrapMode,
                                      REALstring filterMode) {
    CIImage* native = nativeHandle<CIImage*>(image);
    if (!native) return nullptr;
    return wrappedResult(kSampler, [&] {
        return [CISampler samplerWithImage:native options:samplerOptions(matrix, wrapMode, filterMode)];
    });
}

} // namespace coreimage
