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
    property("description", "String", description),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kSampler>(),
    method("Definiton as CIFilterShapeKaz", definition), // the name's spelling is the class's own
    method("Extent as CGRectKaz", extent),
    method("Constructor", initEmpty),
    method("Constructor(ciImage as CIImageKaz)", initWithImage),
    method("Constructor(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, WrapMode as String, "
           "FilterMode as string)",
           initWithImageAndOptions),
};

REALconstant constants[] = {
    constant("kCISamplerWrapBlack = \"black\""),
    constant("kCISamplerWrapClamp = \"clamp\""),
    constant("kCISamplerFilterNearest = \"nearest\""),
    constant("kCISamplerFilterLinear = \"linear\""),
};

void CISamplerConstructor(REALobject self) { constructWrapper(self); }
void CISamplerDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

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
