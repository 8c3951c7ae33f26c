// What CIKernel's file declares for itself, because it is compiled without blocks.
#pragma once

#import <QuartzCore/QuartzCore.h>

#include "Kernels.h"

@interface CIKernel ()
- (id)initWithKernel:(const engine::kernels::KernelPtr&)kernel;
- (CIImage*)applyWithExtent:(CGRect)extent roiCallback:(void*)callback arguments:(NSArray*)args;
/// How -[CIFilter apply:arguments:options:] works. Of a warp the first argument is the image.
- (CIImage*)applyFor:(CIFilter*)filter arguments:(NSArray*)args options:(NSDictionary*)options;
- (NSUInteger)argumentCount;
@end
