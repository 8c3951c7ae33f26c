// CIPageCurlTransition: a page that curls up, lit as a picture of a ball is.
#include "page.h"

namespace engine::transitions {

namespace {

/// Without a back of its own the page shows its picture on both sides. The geometry is fitted to Core Image's
/// pictures; what the shading does is our own reading of its description.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage"),
          back = in.image("inputBacksideImage"), shading = in.image("inputShadingImage");
    if (!image) return nullptr;
    if (time(in) == 0) return image;
    if (time(in) == 1) return target ? target : empty();
    Curl curl(in, pageExtent(in, image));
    auto radius = static_cast<float>(curl.radius);
    UpperLayer upper{radius};
    LowerLayer lower{radius};
    Image above = atop(litBy(shading, curl, upper), onLayer(back ? back : image, curl, upper)),
          below = atop(litBy(shading, curl, lower), onLayer(image, curl, lower));
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    return crop(composite(above, composite(below, target)), extent);
}

const Registrar filter{
    {"CIPageCurlTransition",
     "Page Curl",
     "Curls a picture up like a page, and shows the one below it.",
     fitted("the geometry; the shading is our own reading"),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), backsideInput(), imageInput("inputShadingImage", "Shading Image"),
      vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}), timeInput(), curlAngleInput(),
      curlRadiusInput()},
     build}};

} // namespace

} // namespace engine::transitions
