// Carbon: file references, timing and Gestalt.
#pragma once

#include <Carbon/Files.h>
#include <Carbon/Folders.h>
#include <Carbon/Gestalt.h>
#include <Carbon/Timing.h>
