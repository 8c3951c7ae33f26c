// The version of the system, which tests may set.
#include <Carbon/CarbonTesting.h>
#include <Carbon/Gestalt.h>
#include <Carbon/MacErrors.h>

#include <atomic>

namespace {

struct Version {
    std::atomic<SInt32> major{10}, minor{8}, bugFix{5};
};
Version version;

} // namespace

OSErr Gestalt(OSType selector, SInt32* response) {
    SInt32 major = version.major, minor = version.minor, bugFix = version.bugFix;
    if (major == 0) return gestaltUndefSelectorErr;
    switch (selector) {
    case gestaltSystemVersion:
        // Two decimal digits written as hexadecimal, then one digit each.
        *response = ((major / 10) << 12) | ((major % 10) << 8) | (minor << 4) | bugFix;
        return noErr;
    case gestaltSystemVersionMajor:
        *response = major;
        return noErr;
    case gestaltSystemVersionMinor:
        *response = minor;
        return noErr;
    case gestaltSystemVersionBugFix:
        *response = bugFix;
        return noErr;
    }
    return gestaltUndefSelectorErr;
}

void GestaltSetSystemVersion(SInt32 major, SInt32 minor, SInt32 bugFix) {
    version.major = major;
    version.minor = minor;
    version.bugFix = bugFix;
}
