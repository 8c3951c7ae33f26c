// The filter that docs/kernels.md shows, word for word.
#pragma once

#import <QuartzCore/QuartzCore.h>

// clang-format off
@interface DuotoneFilter : CIFilter {
    CIImage* inputImage;
    CIColor* inputDark;
    CIColor* inputLight;
}
@end

@implementation DuotoneFilter

- (CIImage*)outputImage {
    static CIKernel* kernel = nil;
    if (!kernel)
        kernel = [[[CIKernel kernelsWithString:
            @"kernel vec4 duotone(sampler image, __color dark, __color light) {"
             "    vec4 c = unpremultiply(sample(image, samplerCoord(image)));"
             "    float light_ = dot(c.rgb, vec3(0.2125, 0.7154, 0.0721));"
             "    return premultiply(vec4(mix(dark.rgb, light.rgb, light_), c.a));"
             "}"] objectAtIndex:0] retain];
    CISampler* image = [CISampler samplerWithImage:inputImage];
    return [self apply:kernel, image, inputDark, inputLight, kCIApplyOptionDefinition, [image definition], nil];
}

@end
// clang-format on
