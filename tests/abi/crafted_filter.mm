// A filter class that the tests wrote, with attributes of every kind.
#include "crafted_filter.h"

#import <QuartzCore/QuartzCore.h>

#include <cstdint>
#include <cstring>

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

+ (NSAffineTransform*)scaled:(CGFloat)factor {
    NSAffineTransform* transform = [NSAffineTransform transform];
    [transform scaleBy:factor];
    return transform;
}

+ (NSDictionary*)makeAttributes {
    NSMutableDictionary* numbers =
        [NSMutableDictionary dictionaryWithDictionary:[CraftedFilter entryWith:@7]];
    [numbers setObject:@0 forKey:kCIAttributeMin];
    [numbers setObject:@"inputOther" forKey:kCIAttributeName];
    NSMutableDictionary* texts =
        [NSMutableDictionary dictionaryWithDictionary:[CraftedFilter entryWith:@"7"]];
    [texts setObject:[NSNumber numberWithInt:12] forKey:kCIAttributeClass];
    return @{
        // A key that counts its references, which the text of a program does not.
        [NSString stringWithFormat:@"input%@", @"Numbers"] : numbers,
        @"inputVectors" : [CraftedFilter entryWith:[CIVector vectorWithX:1 Y:2]],
        @"inputTexts" : texts,
        @"inputNothing" : [NSDictionary dictionary],
        @"inputDistinct" : @{
            kCIAttributeMin : @1,
            kCIAttributeMax : @2,
            kCIAttributeSliderMin : @3,
            kCIAttributeSliderMax : @4,
            kCIAttributeDefault : @5,
            kCIAttributeIdentity : @6,
            kCIAttributeClass : @"class",
            kCIAttributeType : @"type",
            kCIAttributeDisplayName : @"display name",
        },
        @"inputMinimum" : @{kCIAttributeMin : @0},
        @"inputMaximum" : @{kCIAttributeMax : @0},
        @"inputSliderMinimum" : @{kCIAttributeSliderMin : @0},
        @"inputSliderMaximum" : @{kCIAttributeSliderMax : @0},
        @"inputTwoVectors" : @{
            kCIAttributeDefault : [CIVector vectorWithX:1 Y:2],
            kCIAttributeIdentity : [CIVector vectorWithX:3 Y:4],
        },
        @"inputTwoTransforms" : @{
            kCIAttributeDefault : [CraftedFilter scaled:2],
            kCIAttributeIdentity : [CraftedFilter scaled:3],
        },
        @"inputText" : @"no dictionary",
        @"inputList" : @[ @"no", @"dictionary" ],
    };
}

- (NSDictionary*)attributes {
    static NSDictionary* attributes = nil;
    // Nothing but the dictionary holds what is in it.
    @autoreleasepool {
        if (!attributes) attributes = [[CraftedFilter makeAttributes] retain];
    }
    return attributes;
}

@end

@interface BrightestFilter : CIFilter {
    CIImage* inputImage;
    NSNumber* inputStops;
}
@end

@implementation BrightestFilter

- (NSDictionary*)customAttributes {
    return @{@"inputStops" : @{kCIAttributeDefault : @2, kCIAttributeType : kCIAttributeTypeScalar}};
}

- (CIImage*)outputImage {
    return [[CIFilter filterWithName:@"CIExposureAdjust"
                       keysAndValues:kCIInputImageKey, inputImage, kCIInputEVKey, inputStops, nil]
        valueForKey:kCIOutputImageKey];
}

@end

void registerFilter() {
    @autoreleasepool {
        [CIFilter registerFilterName:@"OurBrightest"
                         constructor:[BrightestFilter class]
                     classAttributes:@{
                         kCIAttributeFilterDisplayName : @"Brightest",
                         kCIAttributeFilterCategories : @[ @"OurEffects" ],
                     }];
    }
}

int craftedFilter() {
    static CIFilter* filter = static_cast<CIFilter*>(class_createInstance([CraftedFilter class], 0));
    return static_cast<int>(reinterpret_cast<std::intptr_t>(filter));
}

int classOfObjects() { return static_cast<int>(reinterpret_cast<std::intptr_t>([NSObject class])); }

CraftedReferences referencesTo(const char* key) {
    @autoreleasepool {
        CIFilter* filter = reinterpret_cast<CIFilter*>(craftedFilter());
        NSDictionary* attributes = [filter attributes];
        for (NSString* name in attributes)
            if (std::strcmp([name UTF8String], key) == 0)
                return {static_cast<int>([name retainCount]),
                        static_cast<int>([[attributes objectForKey:name] retainCount])};
    }
    return {};
}

const void* raiseInsteadOfCFString(REALstring, std::uint32_t) {
    [NSException raise:NSInternalInconsistencyException format:@"no text"];
    return nullptr;
}
