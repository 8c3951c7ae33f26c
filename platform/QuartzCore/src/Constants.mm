// Core Image's constants: the keys and values of its dictionaries, and pixel formats.
#import <QuartzCore/QuartzCore.h>

#define TEXT(symbol, text) NSString* const symbol = @text
/// The value is the symbol without its leading k.
#define NAME(name) NSString* const k##name = @ #name

NAME(CIAttributeFilterName);
NAME(CIAttributeFilterDisplayName);
NAME(CIAttributeFilterCategories);
NAME(CIAttributeFilterAvailable_Mac);
NAME(CIAttributeReferenceDocumentation);
NAME(CIAttributeDescription);
NAME(CIAttributeClass);
NAME(CIAttributeType);
NAME(CIAttributeMin);
NAME(CIAttributeMax);
NAME(CIAttributeSliderMin);
NAME(CIAttributeSliderMax);
NAME(CIAttributeDefault);
NAME(CIAttributeIdentity);
NAME(CIAttributeName);
NAME(CIAttributeDisplayName);

NAME(CIAttributeTypeTime);
NAME(CIAttributeTypeScalar);
NAME(CIAttributeTypeDistance);
NAME(CIAttributeTypeAngle);
NAME(CIAttributeTypeBoolean);
NAME(CIAttributeTypeInteger);
NAME(CIAttributeTypeCount);
NAME(CIAttributeTypePosition);
NAME(CIAttributeTypeOffset);
NAME(CIAttributeTypePosition3);
NAME(CIAttributeTypeRectangle);
NAME(CIAttributeTypeOpaqueColor);
NAME(CIAttributeTypeColor);
NAME(CIAttributeTypeGradient);
NAME(CIAttributeTypeImage);
NAME(CIAttributeTypeTransform);

NAME(CICategoryDistortionEffect);
NAME(CICategoryGeometryAdjustment);
NAME(CICategoryCompositeOperation);
NAME(CICategoryHalftoneEffect);
NAME(CICategoryColorAdjustment);
NAME(CICategoryColorEffect);
NAME(CICategoryTransition);
NAME(CICategoryTileEffect);
NAME(CICategoryGenerator);
NAME(CICategoryReduction);
NAME(CICategoryGradient);
NAME(CICategoryStylize);
NAME(CICategorySharpen);
NAME(CICategoryBlur);
NAME(CICategoryVideo);
NAME(CICategoryStillImage);
NAME(CICategoryInterlaced);
NAME(CICategoryNonSquarePixels);
NAME(CICategoryHighDynamicRange);
NAME(CICategoryBuiltIn);
NAME(CICategoryFilterGenerator);

TEXT(kCIApplyOptionExtent, "extent");
TEXT(kCIApplyOptionDefinition, "definition");
TEXT(kCIApplyOptionUserInfo, "user_info");

TEXT(kCIOutputImageKey, "outputImage");
TEXT(kCIInputBackgroundImageKey, "inputBackgroundImage");
TEXT(kCIInputImageKey, "inputImage");
TEXT(kCIInputTimeKey, "inputTime");
TEXT(kCIInputTransformKey, "inputTransform");
TEXT(kCIInputScaleKey, "inputScale");
TEXT(kCIInputAspectRatioKey, "inputAspectRatio");
TEXT(kCIInputCenterKey, "inputCenter");
TEXT(kCIInputRadiusKey, "inputRadius");
TEXT(kCIInputAngleKey, "inputAngle");
TEXT(kCIInputRefractionKey, "inputRefraction");
TEXT(kCIInputWidthKey, "inputWidth");
TEXT(kCIInputSharpnessKey, "inputSharpness");
TEXT(kCIInputIntensityKey, "inputIntensity");
TEXT(kCIInputEVKey, "inputEV");
TEXT(kCIInputSaturationKey, "inputSaturation");
TEXT(kCIInputColorKey, "inputColor");
TEXT(kCIInputBrightnessKey, "inputBrightness");
TEXT(kCIInputContrastKey, "inputContrast");
TEXT(kCIInputGradientImageKey, "inputGradientImage");
TEXT(kCIInputMaskImageKey, "inputMaskImage");
TEXT(kCIInputShadingImageKey, "inputShadingImage");
TEXT(kCIInputTargetImageKey, "inputTargetImage");
TEXT(kCIInputExtentKey, "inputExtent");

NAME(CIFilterGeneratorExportedKey);
NAME(CIFilterGeneratorExportedKeyTargetObject);
NAME(CIFilterGeneratorExportedKeyName);

TEXT(kCIImageColorSpace, "color_space");
TEXT(kCIImageProperties, "properties");
TEXT(kCIImageProviderTileSize, "tile_size");
TEXT(kCIImageProviderUserInfo, "user_info");
NAME(CIImageAutoAdjustEnhance);
NAME(CIImageAutoAdjustRedEye);
NAME(CIImageAutoAdjustFeatures);

TEXT(kCIContextOutputColorSpace, "output_color_space");
TEXT(kCIContextWorkingColorSpace, "working_color_space");
TEXT(kCIContextUseSoftwareRenderer, "software_renderer");

TEXT(kCISamplerAffineMatrix, "affine_matrix");
TEXT(kCISamplerWrapMode, "wrap_mode");
TEXT(kCISamplerFilterMode, "filter_mode");
TEXT(kCISamplerColorSpace, "color_space");
TEXT(kCISamplerWrapBlack, "black");
TEXT(kCISamplerWrapClamp, "clamp");
TEXT(kCISamplerFilterNearest, "nearest");
TEXT(kCISamplerFilterLinear, "linear");

CIFormat kCIFormatBGRA8 = 20;
CIFormat kCIFormatARGB8 = 23;
CIFormat kCIFormatRGBA8 = 24;
CIFormat kCIFormatRGBA16 = 27;
CIFormat kCIFormatRGBAh = 31;
CIFormat kCIFormatRGBAf = 34;
