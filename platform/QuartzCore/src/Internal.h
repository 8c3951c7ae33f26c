// Methods that Core Image's classes share only among themselves.
#pragma once

#import <QuartzCore/QuartzCore.h>

#include "Shim.h"

#include <engine/kernels.h>

@interface CIColor (Internal)
/// Borrowed.
- (CGColorRef)CGColor;
@end

@interface CIImage (Internal)
/// Nil for a null recipe.
+ (CIImage*)imageWithRecipe:(const engine::Image&)recipe;
- (const engine::Image&)recipe;
@end

@interface CISampler (Internal)
/// The image as the sampler reads it. Raises for a matrix that is not finite.
- (engine::Image)recipe;
/// How a kernel reads it.
- (engine::kernels::Sampler)reader;
@end
