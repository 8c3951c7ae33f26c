// Image I/O.
#pragma once

#include <ImageIO/CGImageDestination.h>
#include <ImageIO/CGImageProperties.h>
#include <ImageIO/CGImageSource.h>
