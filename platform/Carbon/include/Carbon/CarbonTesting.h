// Not Apple's: a test hook for Gestalt.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

// Sets the version that Gestalt answers from now on; it starts as 10.8.5. A major version of 0 makes the
// version selectors undefined.
void GestaltSetSystemVersion(SInt32 major, SInt32 minor, SInt32 bugFix);

CF_EXTERN_C_END
