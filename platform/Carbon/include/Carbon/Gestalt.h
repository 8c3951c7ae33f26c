// The version of the system.
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

CF_EXTERN_C_END
