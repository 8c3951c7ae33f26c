// Filters, their attributes and their catalogue.
#pragma once

#import <QuartzCore/CIFilterConstructor.h>
#import <QuartzCore/CoreImageDefines.h>

@class CIImage;

/** Keys of the whole filter in its attributes. */
CORE_IMAGE_EXPORT NSString* const kCIAttributeFilterName;
CORE_IMAGE_EXPORT NSString* const kCIAttributeFilterDisplayName;
CORE_IMAGE_EXPORT NSString* const kCIAttributeFilterCategories;
/** The first version of the system with the filter, such as "10.4". */
CORE_IMAGE_EXPORT NSString* const kCIAttributeFilterAvailable_Mac;
/** An NSURL. */
CORE_IMAGE_EXPORT NSString* const kCIAttributeReferenceDocumentation;
CORE_IMAGE_EXPORT NSString* const kCIAttributeDescription;

/** Keys of one input's attributes. */
CORE_IMAGE_EXPORT NSString* const kCIAttributeClass;
CORE_IMAGE_EXPORT NSString* const kCIAttributeType;
CORE_IMAGE_EXPORT NSString* const kCIAttributeMin;
CORE_IMAGE_EXPORT NSString* const kCIAttributeMax;
CORE_IMAGE_EXPORT NSString* const kCIAttributeSliderMin;
CORE_IMAGE_EXPORT NSString* const kCIAttributeSliderMax;
CORE_IMAGE_EXPORT NSString* const kCIAttributeDefault;
CORE_IMAGE_EXPORT NSString* const kCIAttributeIdentity;
CORE_IMAGE_EXPORT NSString* const kCIAttributeName;
CORE_IMAGE_EXPORT NSString* const kCIAttributeDisplayName;

CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeTime;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeScalar;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeDistance;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeAngle;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeBoolean;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeInteger;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeCount;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypePosition;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeOffset;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypePosition3;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeRectangle;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeOpaqueColor;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeColor;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeGradient;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeImage;
CORE_IMAGE_EXPORT NSString* const kCIAttributeTypeTransform;

CORE_IMAGE_EXPORT NSString* const kCICategoryDistortionEffect;
CORE_IMAGE_EXPORT NSString* const kCICategoryGeometryAdjustment;
CORE_IMAGE_EXPORT NSString* const kCICategoryCompositeOperation;
CORE_IMAGE_EXPORT NSString* const kCICategoryHalftoneEffect;
CORE_IMAGE_EXPORT NSString* const kCICategoryColorAdjustment;
CORE_IMAGE_EXPORT NSString* const kCICategoryColorEffect;
CORE_IMAGE_EXPORT NSString* const kCICategoryTransition;
CORE_IMAGE_EXPORT NSString* const kCICategoryTileEffect;
CORE_IMAGE_EXPORT NSString* const kCICategoryGenerator;
CORE_IMAGE_EXPORT NSString* const kCICategoryReduction;
CORE_IMAGE_EXPORT NSString* const kCICategoryGradient;
CORE_IMAGE_EXPORT NSString* const kCICategoryStylize;
CORE_IMAGE_EXPORT NSString* const kCICategorySharpen;
CORE_IMAGE_EXPORT NSString* const kCICategoryBlur;
CORE_IMAGE_EXPORT NSString* const kCICategoryVideo;
CORE_IMAGE_EXPORT NSString* const kCICategoryStillImage;
CORE_IMAGE_EXPORT NSString* const kCICategoryInterlaced;
CORE_IMAGE_EXPORT NSString* const kCICategoryNonSquarePixels;
CORE_IMAGE_EXPORT NSString* const kCICategoryHighDynamicRange;
CORE_IMAGE_EXPORT NSString* const kCICategoryBuiltIn;
/** Of filters that a CIFilterGenerator makes. */
CORE_IMAGE_EXPORT NSString* const kCICategoryFilterGenerator;

CORE_IMAGE_EXPORT NSString* const kCIApplyOptionExtent;
CORE_IMAGE_EXPORT NSString* const kCIApplyOptionDefinition;
CORE_IMAGE_EXPORT NSString* const kCIApplyOptionUserInfo;

/** The keys that most filters share. */
CORE_IMAGE_EXPORT NSString* const kCIOutputImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputBackgroundImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputTimeKey;
CORE_IMAGE_EXPORT NSString* const kCIInputTransformKey;
CORE_IMAGE_EXPORT NSString* const kCIInputScaleKey;
CORE_IMAGE_EXPORT NSString* const kCIInputAspectRatioKey;
CORE_IMAGE_EXPORT NSString* const kCIInputCenterKey;
CORE_IMAGE_EXPORT NSString* const kCIInputRadiusKey;
CORE_IMAGE_EXPORT NSString* const kCIInputAngleKey;
CORE_IMAGE_EXPORT NSString* const kCIInputRefractionKey;
CORE_IMAGE_EXPORT NSString* const kCIInputWidthKey;
CORE_IMAGE_EXPORT NSString* const kCIInputSharpnessKey;
CORE_IMAGE_EXPORT NSString* const kCIInputIntensityKey;
CORE_IMAGE_EXPORT NSString* const kCIInputEVKey;
CORE_IMAGE_EXPORT NSString* const kCIInputSaturationKey;
CORE_IMAGE_EXPORT NSString* const kCIInputColorKey;
CORE_IMAGE_EXPORT NSString* const kCIInputBrightnessKey;
CORE_IMAGE_EXPORT NSString* const kCIInputContrastKey;
CORE_IMAGE_EXPORT NSString* const kCIInputGradientImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputMaskImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputShadingImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputTargetImageKey;
CORE_IMAGE_EXPORT NSString* const kCIInputExtentKey;

/**
 * A filter: inputs by key, and the image that it makes of them. Inputs are read and written by key-value
 * coding; the key "outputImage" is read only. Inputs have no value until they are set or -setDefaults is
 * called; without a value, the output of a built-in filter is made with the default.
 *
 * Any object can be set as a value. If the input of a built-in filter cannot use it, asking for the output
 * raises NSInvalidArgumentException with a reason that names the filter and the input. Unknown keys raise
 * NSUnknownKeyException.
 *
 * A program's own filter is a subclass that implements -outputImage. Its inputs are its instance variables
 * whose names begin with "input" or "_input"; CIFilter releases them unless the subclass has a -dealloc of
 * its own. CIFilter itself cannot be instantiated.
 */
@interface CIFilter : NSObject <NSCopying> {
  @private
    NSString* _name;
}

/** Nil for an unknown name. Inputs of a built-in filter are unset. */
+ (CIFilter*)filterWithName:(NSString*)name;
/** The same with the defaults set and then the given values; the list ends with nil. */
+ (CIFilter*)filterWithName:(NSString*)name keysAndValues:(id)key0, ...;

/** The names in alphabetical order; nil means all filters. */
+ (NSArray*)filterNamesInCategory:(NSString*)category;
/** The filters that are in all of the categories; nil or an empty array means all filters. */
+ (NSArray*)filterNamesInCategories:(NSArray*)categories;

/**
 * Adds a filter to the catalogue. `anObject` is a CIFilterConstructor, or a subclass of CIFilter, which may
 * implement +filterWithName: or leave it to CIFilter. The attributes are the filter's own keys, of which
 * kCIAttributeFilterCategories tells where it is listed. A name that was registered before gets the new
 * constructor. A nil name or constructor and the name of a built-in filter raise NSInvalidArgumentException.
 */
+ (void)registerFilterName:(NSString*)name constructor:(id)anObject classAttributes:(NSDictionary*)attributes;

/** Texts for users; nil for an unknown name. The display name of a filter that has none is its name. */
+ (NSString*)localizedNameForFilterName:(NSString*)filterName;
/** A category that only registered filters are in is its own name. */
+ (NSString*)localizedNameForCategory:(NSString*)category;
+ (NSString*)localizedDescriptionForFilterName:(NSString*)filterName;
+ (NSURL*)localizedReferenceDocumentationForFilterName:(NSString*)filterName;

/** The name that the filter was made by, such as "CISepiaTone"; the class's name if it was not made by name.
 */
- (NSString*)name;
- (void)setName:(NSString*)name;
- (NSArray*)inputKeys;
- (NSArray*)outputKeys;
/** Sets every input that has a default to it. */
- (void)setDefaults;
/**
 * The filter's own keys, and for each input a dictionary of the kCIAttribute keys that apply. The output's
 * dictionary has only its class.
 */
- (NSDictionary*)attributes;
/**
 * For subclasses to override, as an instance or a class method: dictionaries by input key, such as
 * kCIAttributeDefault and kCIAttributeMax, which are added to the attributes.
 */
- (NSDictionary*)customAttributes;
/** Nil if an image that the filter needs is missing. */
- (CIImage*)outputImage;

@end

@class CIKernel;

/** For filters that are made of kernels. */
@interface CIFilter (CIKernelApplying)
/**
 * The image that a kernel computes: its arguments, then keys and values of options; the list ends with nil.
 * Of a CIWarpKernel the first argument is the image that it reads. Nil for a nil kernel. Raises
 * NSInvalidArgumentException for arguments of the wrong number or kind.
 */
- (CIImage*)apply:(CIKernel*)k, ... NS_REQUIRES_NIL_TERMINATION;
/**
 * The same with the options in a dictionary. The image is as large as kCIApplyOptionDefinition (a
 * CIFilterShape or an NSArray of four numbers: x, y, width, height) and kCIApplyOptionExtent (such an array)
 * say together, and without both as its samplers' definitions together, or infinite if it has none.
 * kCIApplyOptionUserInfo is any object, for the ROI selector.
 */
- (CIImage*)apply:(CIKernel*)k arguments:(NSArray*)args options:(NSDictionary*)dict;
@end
