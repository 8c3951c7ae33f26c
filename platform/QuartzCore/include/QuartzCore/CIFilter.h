// Filters, their attributes and their catalogue.
#pragma once

#import <QuartzCore/CoreImageDefines.h>

@class CIImage;

/** Keys of the whole filter in its attributes. */
CORE_IMAGE_EXTERN NSString* const kCIAttributeFilterName;
CORE_IMAGE_EXTERN NSString* const kCIAttributeFilterDisplayName;
CORE_IMAGE_EXTERN NSString* const kCIAttributeFilterCategories;
/** The first version of the system with the filter, such as "10.4". */
CORE_IMAGE_EXTERN NSString* const kCIAttributeFilterAvailable_Mac;
/** An NSURL. */
CORE_IMAGE_EXTERN NSString* const kCIAttributeReferenceDocumentation;
CORE_IMAGE_EXTERN NSString* const kCIAttributeDescription;

/** Keys of one input's attributes. */
CORE_IMAGE_EXTERN NSString* const kCIAttributeClass;
CORE_IMAGE_EXTERN NSString* const kCIAttributeType;
CORE_IMAGE_EXTERN NSString* const kCIAttributeMin;
CORE_IMAGE_EXTERN NSString* const kCIAttributeMax;
CORE_IMAGE_EXTERN NSString* const kCIAttributeSliderMin;
CORE_IMAGE_EXTERN NSString* const kCIAttributeSliderMax;
CORE_IMAGE_EXTERN NSString* const kCIAttributeDefault;
CORE_IMAGE_EXTERN NSString* const kCIAttributeIdentity;
CORE_IMAGE_EXTERN NSString* const kCIAttributeName;
CORE_IMAGE_EXTERN NSString* const kCIAttributeDisplayName;

CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeTime;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeScalar;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeDistance;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeAngle;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeBoolean;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeInteger;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeCount;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypePosition;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeOffset;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypePosition3;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeRectangle;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeOpaqueColor;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeColor;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeGradient;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeImage;
CORE_IMAGE_EXTERN NSString* const kCIAttributeTypeTransform;

CORE_IMAGE_EXTERN NSString* const kCICategoryDistortionEffect;
CORE_IMAGE_EXTERN NSString* const kCICategoryGeometryAdjustment;
CORE_IMAGE_EXTERN NSString* const kCICategoryCompositeOperation;
CORE_IMAGE_EXTERN NSString* const kCICategoryHalftoneEffect;
CORE_IMAGE_EXTERN NSString* const kCICategoryColorAdjustment;
CORE_IMAGE_EXTERN NSString* const kCICategoryColorEffect;
CORE_IMAGE_EXTERN NSString* const kCICategoryTransition;
CORE_IMAGE_EXTERN NSString* const kCICategoryTileEffect;
CORE_IMAGE_EXTERN NSString* const kCICategoryGenerator;
CORE_IMAGE_EXTERN NSString* const kCICategoryReduction;
CORE_IMAGE_EXTERN NSString* const kCICategoryGradient;
CORE_IMAGE_EXTERN NSString* const kCICategoryStylize;
CORE_IMAGE_EXTERN NSString* const kCICategorySharpen;
CORE_IMAGE_EXTERN NSString* const kCICategoryBlur;
CORE_IMAGE_EXTERN NSString* const kCICategoryVideo;
CORE_IMAGE_EXTERN NSString* const kCICategoryStillImage;
CORE_IMAGE_EXTERN NSString* const kCICategoryInterlaced;
CORE_IMAGE_EXTERN NSString* const kCICategoryNonSquarePixels;
CORE_IMAGE_EXTERN NSString* const kCICategoryHighDynamicRange;
CORE_IMAGE_EXTERN NSString* const kCICategoryBuiltIn;

CORE_IMAGE_EXTERN NSString* const kCIApplyOptionExtent;
CORE_IMAGE_EXTERN NSString* const kCIApplyOptionDefinition;
CORE_IMAGE_EXTERN NSString* const kCIApplyOptionUserInfo;

/** The keys that most filters share. */
CORE_IMAGE_EXTERN NSString* const kCIInputImageKey;
CORE_IMAGE_EXTERN NSString* const kCIInputBackgroundImageKey;
CORE_IMAGE_EXTERN NSString* const kCIOutputImageKey;

/**
 * A filter: inputs by key, and the image that it makes of them. Inputs are read and written by key-value
 * coding; the key "outputImage" is read only. Inputs have no value until they are set or -setDefaults is
 * called; without a value, the output is made with the default.
 *
 * Any object can be set as a value. If the input cannot use it, asking for the output raises
 * NSInvalidArgumentException with a reason that names the filter and the input. Unknown keys raise
 * NSUnknownKeyException.
 */
@interface CIFilter : NSObject <NSCopying> {
  @private
    struct CIFilterState* _state;
}

/** Nil for an unknown name. Inputs are unset. */
+ (CIFilter*)filterWithName:(NSString*)name;
/** The same with the defaults set and then the given values; the list ends with nil. */
+ (CIFilter*)filterWithName:(NSString*)name keysAndValues:(id)key0, ...;

/** The names in alphabetical order; nil means all filters. */
+ (NSArray*)filterNamesInCategory:(NSString*)category;
/** The filters that are in all of the categories; nil or an empty array means all filters. */
+ (NSArray*)filterNamesInCategories:(NSArray*)categories;

/** Texts for users; nil for an unknown name. */
+ (NSString*)localizedNameForFilterName:(NSString*)filterName;
+ (NSString*)localizedNameForCategory:(NSString*)category;
+ (NSString*)localizedDescriptionForFilterName:(NSString*)filterName;
+ (NSURL*)localizedReferenceDocumentationForFilterName:(NSString*)filterName;

/** The class name of the filter, such as "CISepiaTone". */
- (NSString*)name;
- (NSArray*)inputKeys;
- (NSArray*)outputKeys;
/** Sets every input that has a default to it. */
- (void)setDefaults;
/**
 * The filter's own keys, and for each input a dictionary of the kCIAttribute keys that apply. The output's
 * dictionary has only its class.
 */
- (NSDictionary*)attributes;
/** Nil if an image that the filter needs is missing. */
- (CIImage*)outputImage;

@end
