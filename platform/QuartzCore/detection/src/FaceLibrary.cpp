// Loads the library that finds faces.
#include "FaceLibrary.h"

#include <dlfcn.h>
#include <exception>

namespace ci {

vision::FaceFinder* faceFinder(std::string& problem) {
    // The loader finds it beside this library by the run path.
    static void* library = dlopen("libvision.so", RTLD_NOW | RTLD_LOCAL);
    auto entry =
        library ? reinterpret_cast<decltype(&visionFaceFinder)>(dlsym(library, "visionFaceFinder")) : nullptr;
    if (entry) return entry(&problem);
    const char* reason = dlerror();
    problem = reason ? reason : "libvision.so cannot be loaded";
    // A build makes it only when it is wanted, which cannot always be seen in a program's text.
    problem += " (./kaz build vision makes it)";
    return nullptr;
}

std::vector<vision::Face> findFaces(vision::FaceFinder& finder, const vision::GreyBitmap& bitmap,
                                    vision::Care care, std::string& problem) {
    try {
        return finder.find(bitmap, care);
    } catch (const std::exception& e) {
        problem = e.what();
        return {};
    }
}

} // namespace ci
