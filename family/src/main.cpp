// The entry of the sibling plugin: it agrees on a record version as every plugin does, then registers its
// classes.
#include <hostapi/registration.h>
#include <hostapi/services.h>

#include <initializer_list>

namespace family {

extern REALclassDefinition CGPointKazClass;
extern REALclassDefinition CGRectKazClass;
extern REALclassDefinition CGColorSpaceKazClass;
extern REALclassDefinition CGColorKazClass;
extern REALclassDefinition CGImageKazClass;
extern REALclassDefinition CGContextKazClass;
extern REALclassDefinition NSAffineTransformKazClass;
extern REALclassDefinition NSImageKazClass;
extern REALclassDefinition NSPointKazClass;
extern REALclassDefinition NSSizeKazClass;
extern REALclassDefinition NSRectKazClass;
extern REALclassDefinition NSRangeKazClass;
extern REALclassDefinition NSColorKazClass;
extern REALclassDefinition CFStringKazClass;
extern REALclassDefinition CMTimeKazClass;
extern REALclassDefinition CMTimeRangeKazClass;
extern REALclassDefinition CMTimeMappingKazClass;
extern REALclassDefinition QTKitTimeKazClass;
extern REALclassDefinition QTKitTimeRangeKazClass;

} // namespace family

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver) {
    NegotiateRecordVersion(resolver);
    for (REALclassDefinition* definition : {
             &family::CGPointKazClass,
             &family::CGRectKazClass,
             &family::CGColorSpaceKazClass,
             &family::CGColorKazClass,
             &family::CGImageKazClass,
             &family::CGContextKazClass,
             &family::NSAffineTransformKazClass,
             &family::NSImageKazClass,
             &family::NSPointKazClass,
             &family::NSSizeKazClass,
             &family::NSRectKazClass,
             &family::NSRangeKazClass,
             &family::NSColorKazClass,
             &family::CFStringKazClass,
             &family::CMTimeKazClass,
             &family::CMTimeRangeKazClass,
             &family::CMTimeMappingKazClass,
             &family::QTKitTimeKazClass,
             &family::QTKitTimeRangeKazClass,
         })
        MyREALRegisterClass(definition);
}
