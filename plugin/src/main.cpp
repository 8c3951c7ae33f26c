// The plugin's entry: agrees with the host on a record version, then registers the classes and the global
// functions.
#include "globals.h"

#include <coreimage/classes.h>
#include <hostapi/registration.h>
#include <hostapi/services.h>

#include <initializer_list>

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver) {
    NegotiateRecordVersion(resolver);

    // The two classes whose tables hold flags that only newer hosts know.
    FixConsoleFlags(&coreimage::CIContextKazClass);
    FixConsoleFlags(&coreimage::CIImageKazClass);

    for (REALclassDefinition* definition : {
             &coreimage::CIColorKazClass,
             &coreimage::CIImageKazClass,
             &coreimage::CIContextKazClass,
             &coreimage::CIVectorKazClass,
             &coreimage::CIFilterShapeKazClass,
             &coreimage::CIFilterKazClass,
             &coreimage::CISamplerKazClass,
             &coreimage::CIAttributeKazClass,
             &coreimage::CIFeatureKazClass,
             &coreimage::CIFaceFeatureKazClass, // after its superclass
             &coreimage::CIDetectorKazClass,
         })
        MyREALRegisterClass(definition);

    for (REALmethodDefinition& function : plugin::globalsMethods()) REALRegisterMethod(&function);
}
