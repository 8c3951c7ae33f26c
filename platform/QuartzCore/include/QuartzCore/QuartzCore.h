// The part of QuartzCore that is Core Image.
#pragma once

#import <QuartzCore/CoreImage.h>
