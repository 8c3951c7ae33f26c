// Core Image.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

#import <QuartzCore/CIColor.h>
#import <QuartzCore/CIContext.h>
#import <QuartzCore/CIDetector.h>
#import <QuartzCore/CIFeature.h>
#import <QuartzCore/CIFilter.h>
#import <QuartzCore/CIFilterConstructor.h>
#import <QuartzCore/CIFilterGenerator.h>
#import <QuartzCore/CIFilterShape.h>
#import <QuartzCore/CIImage.h>
#import <QuartzCore/CIImageAccumulator.h>
#import <QuartzCore/CIKernel.h>
#import <QuartzCore/CISampler.h>
#import <QuartzCore/CIVector.h>
