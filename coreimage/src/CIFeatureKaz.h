// Features, for the detector class that returns them.
#pragma once

#include "wrapper.h"

namespace coreimage {

// The factory of features: a face becomes a CIFaceFeatureKaz, any other feature a CIFeatureKaz.
REALobject NewCIFeatureKaz(id feature);

// A constant of Core Image by the address of its variable, which is null on systems that lack it.
REALstring systemConstant(NSString* const* constant);

} // namespace coreimage
