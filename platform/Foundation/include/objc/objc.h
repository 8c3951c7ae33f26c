// The runtime's header, with truth values for literals: @YES is a Boolean number, as on a Mac.
#pragma once

#include_next <objc/objc.h>

#ifdef __OBJC__
#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#endif
