// The parts of ApplicationServices that the platform has; on 32-bit Macs it contains both.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <ImageIO/ImageIO.h>
