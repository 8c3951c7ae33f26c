// Carbon: the file manager, timing and Gestalt.
#pragma once

#include <Carbon/DriverServices.h>
#include <Carbon/Files.h>
#include <Carbon/Folders.h>
#include <Carbon/Gestalt.h>
#include <Carbon/MacErrors.h>
#include <Carbon/MacTypes.h>
#include <Carbon/Multiprocessing.h>
