#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

enum {
    gestaltSystemVersion = 0x73797376,       // 'sysv'
    gestaltSystemVersionMajor = 0x73797331,  // 'sys1'
    gestaltSystemVersionMinor = 0x73797332,  // 'sys2'
    gestaltSystemVersionBugFix = 0x73797333, // 'sys3'
};

// Errors: gestaltUndefSelectorErr for any other selector.
OSErr Gestalt(OSType selector, SInt32* response);

// Sets the version that Gestalt answers from now on (10.8.5 at start). Not Apple's: for programs that try the
// plugin's behaviour on another system. A major version of 0 makes the three version selectors undefined.
void GestaltSetSystemVersion(SInt32 major, SInt32 minor, SInt32 bugFix);

CF_EXTERN_C_END
