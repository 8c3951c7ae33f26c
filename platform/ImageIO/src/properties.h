// Property dictionaries.
#pragma once

#include <ImageIO/CGImageProperties.h>

#include "decoder.h"

namespace imageio {

/// The dictionary that describes an image, owned by the caller.
CFDictionaryRef makeProperties(const Info& info);

/// The first dictionary with the values of the second in place of its own, also in the dictionaries in it.
/// NSNull takes a value's place like any other, and is not written. Owned by the caller.
CFDictionaryRef mergedProperties(CFDictionaryRef properties, CFDictionaryRef changes);

/// The known metadata in its dictionaries; none for null.
Metadata metadataIn(CFDictionaryRef properties);

/// A number of a properties dictionary; `missing` when the dictionary is null or has no such number.
double numberProperty(CFDictionaryRef properties, CFStringRef key, double missing);

} // namespace imageio
