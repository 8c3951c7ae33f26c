#pragma once

#import <QuartzCore/CoreImage.h>
