// Not Apple's: the linkage of what a process may lack.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

#define CORE_IMAGE_WEAK_EXPORT CORE_IMAGE_EXPORT __attribute__((weak, visibility("default")))
