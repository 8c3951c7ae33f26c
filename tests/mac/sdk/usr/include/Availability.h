// When a system brought what is declared, as a compiler reads it.
#pragma once

#define MAC_OS_X_VERSION_10_4 1040
#define MAC_OS_X_VERSION_10_5 1050

#define __KAZ_MAC_SINCE(version) __attribute__((availability(macosx, introduced = version)))
