#include "crafted_filter.h"

#import <QuartzCore/QuartzCore.h>

#include <cstdint>

@interface CraftedFilter : CIFilter
@end

@implementation CraftedFilter

+ (NSDictionary*)entryWith:(id)value {
    NSMutableDictionary* entry = [NSMutableDictionary dictionary];
    for (NSString* key in @[
             kCIAttributeMin, kCIAttributeMax, kCIAttributeSliderMin, kCIAttributeSliderMax,
             kCIAttributeDefault, kCIAttributeIdentity
         ])
        [entry setObject:value forKey:key];
    return entry;
}

- (NSDictionary*)attributes {
    NSMutableDictionary* numbers =
        [NSMutableDictionary dictionaryWithDictionary:[CraftedFilter entryWith:@7]];
    [numbers setObject:@0 forKey:kCIAttributeMin];
    [numbers setObject:@"inputOther" forKey:kCIAttributeName];
    NSMutableDictionary* texts =
        [NSMutableDictionary dictionaryWithDictionary:[CraftedFilter entryWith:@"7"]];
    [texts setObject:[NSNumber numberWithInt:12] forKey:kCIAttributeClass];
    return @{
        @"inputNumbers" : numbers,
        @"inputVectors" : [CraftedFilter entryWith:[CIVector vectorWithX:1 Y:2]],
        @"inputTexts" : texts,
        @"inputNothing" : [NSDictionary dictionary],
        @"inputText" : @"no dictionary",
        @"inputList" : @[ @"no", @"dictionary" ],
    };
}

@end

int craftedFilter() {
    static CIFilter* filter = static_cast<CIFilter*>(class_createInstance([CraftedFilter class], 0));
    return static_cast<int>(reinterpret_cast<std::intptr_t>(filter));
}
