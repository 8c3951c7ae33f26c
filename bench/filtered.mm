// Filters in a line each.
#include "filtered.h"

CIImage* bench::filtered(NSString* name, CIImage* image, NSDictionary* values) {
    CIFilter* filter = [CIFilter filterWithName:name];
    [filter setDefaults];
    [filter setValue:image forKey:@"inputImage"];
    for (NSString* key in values) [filter setValue:[values objectForKey:key] forKey:key];
    return [filter valueForKey:@"outputImage"];
}

CIImage* bench::filtered(NSString* name, CIImage* image, NSString* key, double number) {
    return filtered(name, image,
                    [NSDictionary dictionaryWithObject:[NSNumber numberWithDouble:number] forKey:key]);
}
