// Kernels: image processing written in Core Image's kernel language.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIImage;

#ifdef __BLOCKS__
/** The part of image `index` that the pixels of `destRect` depend on. Called while an image is rendered, from
 * any thread, but never from two at once for one image. */
typedef CGRect (^CIKernelROICallback)(int index, CGRect destRect);
#endif

/**
 * A routine that computes each pixel of an image, from its position, from arguments and from what it reads of
 * images. Immutable, apart from the ROI selector. docs/kernels.md describes the language.
 *
 * Arguments are CISamplers and CIImages for samplers, NSNumbers for single numbers, CIVectors for vectors,
 * and CIColors for colours, which are matched to the working space, and for a vec4, for which they are not.
 */
@interface CIKernel : NSObject {
  @private
    struct CIKernelState* _state;
}

/**
 * The kernels of a text, in order: CIColorKernels and CIWarpKernels where they can be. Nil, and a line in the
 * log that says in which line of the text what was expected, for a text with a mistake.
 */
+ (NSArray*)kernelsWithString:(NSString*)s;
/** The first kernel of a text. Nil, and a line in the log, for a mistake and for a kernel that is not of this
 * class. */
+ (CIKernel*)kernelWithString:(NSString*)s;

- (NSString*)name;

/**
 * A method of the filter that applies the kernel, with the signature
 * - (CGRect)regionOf:(int)index destRect:(CGRect)r userInfo:(id)info;
 * The result is the part of image `index` that the pixels of `r` depend on, in the coordinates of the output.
 * It is asked where the kernel's text does not show what is read; without it, that is taken to be `r`. What a
 * kernel reads elsewhere is right all the same, only slower.
 */
- (void)setROISelector:(SEL)aMethod;

#ifdef __BLOCKS__
/** The image that the kernel computes inside `extent`. Raises NSInvalidArgumentException for arguments of the
 * wrong number or kind. A null callback stands for destRect. */
- (CIImage*)applyWithExtent:(CGRect)extent roiCallback:(CIKernelROICallback)callback arguments:(NSArray*)args;
#endif

@end

/** A kernel that computes a pixel from pixels at the same place: it returns a vec4 and has no sampler, but
 * any number of
 * __sample parameters. */
@interface CIColorKernel : CIKernel

+ (CIColorKernel*)kernelWithString:(NSString*)s;
/** As for CIKernel. */
- (CIImage*)applyWithExtent:(CGRect)extent arguments:(NSArray*)args;

@end

/** A kernel that says where to read an image: it returns a vec2 and has no images among its parameters. */
@interface CIWarpKernel : CIKernel

+ (CIWarpKernel*)kernelWithString:(NSString*)s;
#ifdef __BLOCKS__
/** As for CIKernel. */
- (CIImage*)applyWithExtent:(CGRect)extent
                roiCallback:(CIKernelROICallback)callback
                 inputImage:(CIImage*)image
                  arguments:(NSArray*)args;
#endif

@end
